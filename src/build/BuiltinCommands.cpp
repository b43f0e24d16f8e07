#include "build/BuiltinCommands.h"

#include "build/Words.h"
#include "docgen/DocGen.h"
#include "foundation/FileAccess.h"
#include "macros/Path.h"
#include "macros/QTx.h"

namespace {

struct Call {
    const QString& directory;
    const QStringList& words;
    QString& errorText;
};

void copyFile(const Call& call) {
    BuiltinCommands::cp(call.directory, call.words[1], call.words[2], call.errorText);
}

void changeMode(const Call& call) {
    BuiltinCommands::chmod(call.directory, call.words[1] == "+w", call.words[2], call.errorText);
}

void generate(const Call& call) {
    DocGen::generateDocumentation(Path(getAbsPath(call.directory, call.words[1])),
                                  getAbsPath(call.directory, call.words[2]));
}

void removeFile(const Call& call) { BuiltinCommands::rm(call.directory, call.words[1], call.errorText); }

struct Keyword {
    const char* word;
    qsizetype arguments;
    const char* expected;
    void (*carryOut)(const Call& call);
};

constexpr Keyword keywords[] = {
    {"cp", 2, "a source and a destination", copyFile},
    {"chmod", 2, "a mode and a file", changeMode},
    {"docgen", 2, "an input file and an output directory", generate},
    {"rm", 1, "a file", removeFile},
};

/// Programs of ours that a project calls by a short name.
bool isShortName(const QString& word) { return word == "xmldup" || word == "hdrgen"; }

/// The one directory entry that a name stands for: links are followed up to the file, but not the file
/// itself.
QString entryOf(const QString& path) {
    const qsizetype nameAt = path.lastIndexOf(u'/') + 1;
    QString directory = resolvedPath(path.left(nameAt));
    if (directory.isNull())
        return path;
    if (!directory.endsWith(u'/'))
        directory += u'/';
    return directory + path.mid(nameAt);
}

bool isLink(const QString& path) {
    const QString resolved = resolvedPath(path);
    return !resolved.isNull() && resolved != entryOf(path);
}

/// Whether the source would be gone with the destination.
bool goesWith(const QString& from, const QString& to) {
    const QString entry = entryOf(to);
    return entry == entryOf(from) || entry == resolvedPath(from);
}

QString quoted(const QString& text) { return "\"" + text + "\""; }

} // namespace

bool BuiltinCommands::builtinCommand(const QString& directory, QStringList& command, QString& errorText) {
    if (command.isEmpty())
        return false;
    for (const Keyword& keyword : keywords) {
        if (command[0] != QLatin1String(keyword.word))
            continue;
        if (command.size() > keyword.arguments)
            keyword.carryOut({directory, command, errorText});
        else
            errorText = command[0] + " failed: " + QLatin1String(keyword.expected) + " expected";
        return true;
    }
    if (isShortName(command[0]))
        command[0] = QTx::rootDirectory() + "/bin/" + command[0];
    return false;
}

bool BuiltinCommands::getExportableBuiltinCommand(const QString&, const QStringList& command, QString& out) {
    const QString word = command.value(0);
    if (word == "cp" && command.size() > 2)
        out = "cp -f " + quoted(Path::toOsPath(command[1])) + " " + quoted(Path::toOsPath(command[2]));
    else if (word == "rm" && command.size() > 1)
        out = "rm -f " + quoted(Path::toOsPath(command[1]));
    else if (isShortName(word))
        out = QString();
    else
        return false;
    return true;
}

// A read-only copy of an earlier build is replaced, and so is a link. Another process that looks finds the
// old file or the new one; a copy that fails leaves neither, so that nothing is taken for the new one.
void BuiltinCommands::cp(const QString& directory, const QString& source, const QString& destination,
                         QString& errorText) {
    const QString from = getAbsPath(directory, source);
    const QString to = getAbsPath(directory, destination);
    const bool ontoItself = goesWith(from, to);
    if (!ontoItself && isLink(to))
        QTx::removeFile(to);
    if (!ontoItself && QTx::copyFile(from, to, false))
        return;
    if (!ontoItself)
        QTx::removeFile(to);
    errorText = QString("cp failed: can't copy \"%1\" to \"%2\"").arg(from, to);
}

void BuiltinCommands::chmod(const QString& directory, bool writable, const QString& file,
                            QString& errorText) {
    const QString path = getAbsPath(directory, file);
    if (!QTx::setWriteable(path, writable))
        errorText = QString("chmod failed: can't make \"%1\" writable").arg(path);
}

void BuiltinCommands::rm(const QString& directory, const QString& file, QString& errorText) {
    const QString path = getAbsPath(directory, file);
    if (!QTx::removeFile(path))
        errorText = QString("rm failed: can't remove \"%1\" writable").arg(path);
}
