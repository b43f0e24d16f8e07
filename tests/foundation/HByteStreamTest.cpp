#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "support/MemoryFiles.h"

#include <gtest/gtest.h>

TEST(HByteStream, GrowsByItsStepAndKeepsThePosition) {
    HByteStream stream(4);
    stream.write("abcd");
    EXPECT_EQ(stream.read(), 'a');
    EXPECT_EQ(stream.limit() - stream.start(), 4);
    stream.write(uint8_t{'e'});
    EXPECT_EQ(stream.limit() - stream.start(), 8);
    EXPECT_EQ(stream.view(), "abcde");
    EXPECT_EQ(stream.read(), 'b');
    stream.write("0123456789");
    EXPECT_EQ(stream.limit() - stream.start(), 16);
    EXPECT_EQ(stream.view(), "abcde0123456789");
    for (int i = 0; i < 13; ++i)
        stream.read();
    EXPECT_TRUE(stream.atEnd());
    EXPECT_EQ(stream.read(), -1);
}

TEST(HFileInputByteStream, HoldsTheWholeFileAndNoMore) {
    MemoryFiles memory;
    memory.write("/a.vko", std::string_view("\0\xFF", 2));
    memory.write("/empty", "");
    const FilesInPlace inPlace(&memory);
    HFileInputByteStream stream("/a.vko");
    EXPECT_EQ(stream.view(), std::string_view("\0\xFF", 2));
    EXPECT_EQ(stream.limit(), stream.end());
    EXPECT_EQ(stream.read(), 0);
    EXPECT_EQ(stream.read(), 0xFF);
    const HFileInputByteStream empty("/empty");
    EXPECT_EQ(empty.start(), empty.end());
}

TEST(HFileInputByteStream, FailuresNameThePath) {
    const auto textFor = [](const QString& path) {
        try {
            const HFileInputByteStream stream(path);
        } catch (const HException& failure) {
            EXPECT_EQ(HException::m_count, 1);
            return failure.text();
        }
        return std::string();
    };
    EXPECT_EQ(textFor("/no/such"), "can't open file /no/such");
    EXPECT_EQ(textFor("/"), "can't read file /");
    EXPECT_EQ(HException::m_count, 0);
}
