#include "driver/ToolOutput.h"
#include "foundation/Text.h"

#include <gmock/gmock.h>

using namespace std::string_literals;

TEST(ToolOutput, LinesEndAtNewlinesAndAtACarriageReturnWithTheByteBehindIt) {
    const QString null;
    const struct {
        std::string bytes;
        QStringList lines;
    } rows[] = {
        {"", {}},
        {"\n", {null}},
        {"a\n", {"a"}},
        {"a\n\nb\n", {"a", null, "b"}},
        {"a\r\nb\r\n", {"a", "b"}},
        {"a\rbc\n", {"a", "c"}}, // a bare carriage return swallows a byte
        {"a\r\r\nb\n", {"a", null, "b"}},
        {"a\r", {"a"}}, // with nothing to swallow
        {"\r\r\r", {null, null}},
        {"a\r\nbc", {"a", "bc"}},
        {"a\nb", {"a"}}, // a last line of one byte is lost
        {"b", {}},
        {"bc", {"bc"}},
        {"a\rb", {"a"}},
        {"tab\there \xE9\0."s, {QString::fromLatin1("tab\there \xE9\0.", 12)}},
    };
    for (const auto& row : rows) {
        const QStringList lines = linesOf(row.bytes);
        EXPECT_EQ(lines, row.lines) << testing::PrintToString(row.bytes);
        QString printed;
        for (const QString& line : lines) {
            EXPECT_EQ(line.isNull(), line.isEmpty()) << testing::PrintToString(row.bytes);
            printed += line + "\n";
        }
        EXPECT_EQ(consoleLinesOf(QByteArray::fromStdString(row.bytes)), toBytes(printed))
            << testing::PrintToString(row.bytes);
    }
}

// Each of these would take hours if a byte were looked at more than once for each line.
TEST(ToolOutput, ManyLinesTakeTimeInProportion) {
    constexpr size_t size = 4'000'000;
    EXPECT_EQ(linesOf(std::string(size, '\n')).size(), size);
    EXPECT_EQ(linesOf(std::string(size, '\r')).size(), size / 2);
    EXPECT_EQ(linesOf(std::string(size, 'x')).size(), 1);
    EXPECT_EQ(linesOf(std::string(size, '\n') + "\r").size(), size + 1);
    EXPECT_EQ(consoleLinesOf(QByteArray(size, '\r')).size(), size / 2);
    EXPECT_EQ(consoleLinesOf(QByteArray("\r\nx\n").repeated(size / 4)).size(), size * 3 / 4);
}
