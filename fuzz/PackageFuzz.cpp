// Packages. The first byte of the input says what the rest is: a package file, or a container, which is then
// put into the compressed form, so that the fuzzer gets behind the compression. It is read, updated, and read
// again; names that are fit for extraction lead nowhere else.

#include "build/Archive2.h"
#include "build/PackageFile.h"
#include "foundation/Text.h"
#include "query/PackageExtraction.h"
#include "support/MemoryFiles.h"

#include <QtGlobal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using Member = std::pair<std::string, std::string>;

bool staysBelow(const std::string& name) {
    const std::filesystem::path root = "/root";
    const std::filesystem::path path = root / name;
    return path == path.lexically_normal() && path.string() == "/root/" + name;
}

/// False if the package holds a member whose data are not there.
bool read(std::vector<Member>& members) {
    QByteArray image;
    Archive2 archive;
    QTx::decompressFile("/p", image);
    archive.open(viewOf(image), "/p");
    quint64 bytes = 0;
    for (const ArchiveChunk2& chunk : archive.members()) {
        if (PackageExtraction::objection(chunk.name).isNull() && !staysBelow(chunk.name.toStdString()))
            std::abort();
        bytes += chunk.size;
        if (!chunk.data().data() || bytes > static_cast<quint64>(image.size()))
            return false;
        members.emplace_back(chunk.name.toStdString(), chunk.data());
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    memory.write("/p", input);
    memory.write("/input", "new data");
    if (data[0] % 2 == 1)
        QTx::compressFile({input.data(), static_cast<qsizetype>(input.size())}, "/p");
    const QByteArray before = memory.contents("/p");

    std::vector<Member> expected;
    const bool isWhole = read(expected);
    std::erase_if(expected, [](const Member& member) { return member.first == "a"; });
    expected.emplace_back("a", "new data");
    PackageUpdater().addToRemoveFromArchive("/", "p", "a", "/input", nullptr, true, data[0] % 4 > 1);

    std::vector<Member> found;
    const bool isUntouched = memory.contents("/p") == before;
    if (isWhole && !isUntouched && (!read(found) || found != expected))
        std::abort();
    return 0;
}
