#include "build/CommandWords.h"

#include "build/SOBFBuildSystem.h"
#include "macros/MacroSystem.h"

QString CommandWords::setting(Setting setting) const { return system.settingFor(element, setting, config); }

QString CommandWords::expanded(Setting setting) const {
    return system.settingForExpanded(element, setting, config);
}

void CommandWords::appendExpandedList(const char* prefix, Setting setting) {
    for (const QString& entry : MacroSystem::stringListFromString(expanded(setting), false))
        words.append(prefix + entry);
}

void CommandWords::appendList(const char* prefix, Setting setting, bool expand) {
    words += system.stringListSetting(prefix, element, setting, config, expand, false);
}

bool appendBuildOptions(CommandWords& command) {
    return command.system.appendBuildOptions(command.element, command.config, command.action, command.words,
                                             command.builder);
}

bool CommandRow::applies(const CommandWords& command) const {
    if (!(m_actions & (1U << command.action)))
        return false;
    return m_test == Always || (command.setting(m_setting) == QLatin1String(m_value)) == (m_test == Is);
}

bool CommandRow::compose(std::span<const CommandRow> rows, CommandWords& command) {
    for (const CommandRow& row : rows) {
        if (!row.applies(command))
            continue;
        if (row.m_word)
            command.append(row.m_word);
        else if (!row.m_words(command))
            return false;
    }
    return true;
}
