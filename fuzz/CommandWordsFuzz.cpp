// Command texts, split into words and carried out on files in memory, a line at a time.

#include "build/BuiltinCommands.h"
#include "build/Words.h"
#include "foundation/Text.h"
#include "support/MemoryFiles.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// The words as a text that must give them again. A "\" at a word's end stays outside the quotes, for in
/// front of the closing one it would turn that into a character.
QString quoted(const QStringList& words) {
    QString text;
    for (const QString& word : words) {
        qsizetype end = word.size();
        while (end > 0 && word[end - 1] == u'\\')
            --end;
        text += "\"" + word.left(end).replace("\"", "\\\"") + "\"" + word.mid(end) + " ";
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString input = toText({reinterpret_cast<const char*>(data), size});
    MemoryFiles memory;
    memory.write("/project/a", "one");
    memory.write("/project/sub/b", "two");
    const FilesInPlace inPlace(&memory);
    for (const QString& line : input.split(u'\n')) {
        const QStringList words = dequotify(line);
        if (words.contains(QString("")) || dequotify(quoted(words)).join(u'|') != words.join(u'|'))
            std::abort();
        QStringList command = words;
        QString errorText;
        const bool isBuiltin = BuiltinCommands::builtinCommand("/project", command, errorText);
        if ((!isBuiltin && !errorText.isEmpty()) || command.size() != words.size())
            std::abort();
        QString out;
        BuiltinCommands::getExportableBuiltinCommand("/project", words, out);
    }
    return 0;
}
