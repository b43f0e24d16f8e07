#include "macros/MacroSystem.h"

#include "macros/Path.h"

#include <QSysInfo>

MacroSystem macroSystem;

MacroSystem::MacroSystem() {
    for (const char* name :
         {"Date", "DateYear", "DateMonth", "DateDay", "Time", "TimeHour", "TimeMinute", "TimeSecond"})
        setSystemMacro(QLatin1String(name), QString("")); // computed at each use
    const QString arch = QSysInfo::buildCpuArchitecture();
    const QString os = QSysInfo::kernelType();
    setSystemMacro("HostArch", arch);
    setSystemMacro("HostOS", os);
    setSystemMacro("HostEXE", QString(""));
    setSystemMacro("HostDLL", ".so_" + os + "_" + arch);
}

QString MacroSystem::escape(const QString& text) {
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar c : text) {
        if (c == u';' || c == u'\\')
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

QString MacroSystem::stringFromStringList(const QStringList& entries) {
    QStringList escaped;
    escaped.reserve(entries.size());
    for (const QString& entry : entries)
        escaped.append(escape(entry));
    return escaped.join(u';');
}

QStringList MacroSystem::stringListFromString(const QString& text, bool keepEmpty) {
    QStringList entries;
    QString entry("");
    const auto finishEntry = [&] {
        if (keepEmpty || !entry.isEmpty())
            entries.append(entry);
        entry = QString("");
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size())
            entry += text[++i];
        else if (text[i] == u';')
            finishEntry();
        else
            entry += text[i];
    }
    finishEntry();
    return entries;
}

MacroMap MacroSystem::macrosFromStringList(const QStringList& entries) {
    MacroMap macros;
    for (const QString& entry : entries) {
        const qsizetype equals = entry.indexOf(u'=');
        if (equals < 0)
            macros.insert(entry, QString(""));
        else
            macros.insert(entry.left(equals), entry.mid(equals + 1));
    }
    return macros;
}

QStringList MacroSystem::stringListFromMacros(const MacroMap& macros) {
    QStringList entries;
    entries.reserve(macros.size());
    for (auto macro = macros.cbegin(); macro != macros.cend(); ++macro)
        entries.append(macro.key().trimmed() + "=" + macro.value());
    return entries;
}

MacroMap MacroSystem::overwriteMacros(const MacroMap& base, const MacroMap& overrides) {
    MacroMap macros = base;
    for (auto macro = overrides.cbegin(); macro != overrides.cend(); ++macro)
        macros.insert(macro.key(), macro.value());
    return macros;
}

void MacroSystem::setSystemMacroPath(const QString& name, const QString& path) {
    setSystemMacro(name, Path(path).osPathQString());
}

MacroMap MacroSystem::globalMacros(bool includeSystem) const {
    const MacroMap globals = macrosFromStringList(globalMacroEntries());
    return includeSystem ? overwriteMacros(m_systemMacros, globals) : globals;
}

QString MacroSystem::globalMacro(const QString& name) const {
    return globalMacros(true).value(name, QString(""));
}

void MacroSystem::setGlobalMacro(const QString& name, const QString& value) {
    MacroMap macros = globalMacros(false);
    if (value.isEmpty())
        macros.remove(name);
    else
        macros.insert(name, value);
    const QStringList entries = stringListFromMacros(macros);
    if (m_store)
        m_store->write(entries);
    else
        m_entries = entries;
}
