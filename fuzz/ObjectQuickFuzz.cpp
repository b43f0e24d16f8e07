// The part of an object file that a build reads: whatever the bytes, a module or a refusal.

#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "object/SOBFMSP430Reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Pool pool;
    const CurrentPool current(&pool);
    HByteStream stream;
    stream.write({reinterpret_cast<const char*>(data), size});
    try {
        SOBFMSP430Reader reader(&stream, false);
        SOBFReader::release(reader.readFileQuickly());
    } catch (const HException&) {
    }
    return 0;
}
