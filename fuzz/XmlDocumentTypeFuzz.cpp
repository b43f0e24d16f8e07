// The document type out of the first bytes of a file.

#include "xml/XMLDocument.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<char> exact(data, data + size);
    const std::string_view bytes(exact.data(), exact.size());
    const std::string_view type = XMLDocument::documentTypeIn(bytes);
    if (type.data() && (type.data() <= bytes.data() || type.data() + type.size() >= bytes.data() + size))
        std::abort();
    return 0;
}
