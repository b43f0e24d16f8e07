// Command texts, split into words and carried out on files in memory, a line at a time.

#include "build/BuiltinCommands.h"
#include "build/Words.h"
#include "foundation/Text.h"
#include "support/MemoryFiles.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// The words as a text that must give them again.
QString quoted(const QStringList& words) {
    QString text;
    for (QString word : words) {
        // Behind a "\" a quote that ends the word would be taken for a character.
        const bool isPlain = word.endsWith(u'\\');
        word.replace("\"", "\\\"").replace(" ", "\" \"");
        text += isPlain ? word + " " : "\"" + word + "\" ";
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString input = toText({reinterpret_cast<const char*>(data), size});
    MemoryFiles memory;
    memory.write("/work/a", "one");
    memory.write("/work/sub/b", "two");
    const FilesInPlace inPlace(&memory);
    for (const QString& line : input.split(u'\n')) {
        const QStringList words = dequotify(line);
        if (words.contains(QString("")) || dequotify(quoted(words)).join(u'|') != words.join(u'|'))
            std::abort();
        QStringList command = words;
        QString errorText;
        const bool isBuiltin = BuiltinCommands::builtinCommand("/work", command, errorText, nullptr);
        if ((!isBuiltin && !errorText.isEmpty()) || command.size() != words.size())
            std::abort();
        QString out;
        BuiltinCommands::getExportableBuiltinCommand("/work", words, out);
    }
    return 0;
}
