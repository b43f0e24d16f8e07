// The settings file. What can be read, written and read again must be what it was.

#include "properties/SettingsXml.h"

#include "foundation/Text.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    SettingsXml::Entries entries;
    if (!SettingsXml::read(bytes, entries))
        return 0;
    SettingsXml::Entries again;
    if (!SettingsXml::read(viewOf(SettingsXml::write(entries)), again) || again != entries)
        std::abort();
    return 0;
}
