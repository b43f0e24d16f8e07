// Expansion and list text. The first line of the input is a list of macros, the rest the text.

#include "foundation/Text.h"
#include "macros/MacroSystem.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString input = toText({reinterpret_cast<const char*>(data), size});
    const qsizetype lineEnd = input.indexOf(u'\n');
    const QString list = input.left(lineEnd);
    const QString text = input.mid(lineEnd + 1);

    const QStringList entries = MacroSystem::stringListFromString(list, true);
    if (MacroSystem::stringListFromString(MacroSystem::stringFromStringList(entries), true) != entries)
        std::abort();
    const MacroMap macros =
        MacroSystem::overwriteMacros(macroSystem.systemMacros(), MacroSystem::macrosFromStringList(entries));
    const QString expanded = MacroSystem::replaceMacros(macros, text);
    if (!text.contains(QLatin1String("$(")) && expanded != text)
        std::abort();
    return 0;
}
