// The line splitter against the plainest way to write it down.

#include "driver/ToolOutput.h"
#include "foundation/Text.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

QStringList plainly(std::string_view bytes) {
    QStringList lines;
    std::string line;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\n' && bytes[i] != '\r') {
            line += bytes[i];
            continue;
        }
        lines.append(line.empty() ? QString() : toText(line));
        line.clear();
        if (bytes[i] == '\r')
            ++i;
    }
    if (line.size() > 1)
        lines.append(toText(line));
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const QStringList lines = linesOf(bytes);
    const QStringList expected = plainly(bytes);
    if (lines != expected)
        std::abort();
    QString printed;
    for (const QString& line : lines) {
        if (line.isNull() != line.isEmpty())
            std::abort();
        printed += line + "\n";
    }
    if (consoleLinesOf({bytes.data(), static_cast<qsizetype>(bytes.size())}) != toBytes(printed))
        std::abort();
    return 0;
}
