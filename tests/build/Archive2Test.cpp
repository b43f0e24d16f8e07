#include "build/Archive2.h"
#include "foundation/Text.h"

#include <gtest/gtest.h>

namespace {

std::string word(quint32 value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

const std::string magic = "\xC8\xC3\x52\x41";

std::string entry(std::string name, quint32 offset, quint32 size, quint32 time, char flag = 1) {
    name.resize(1024);
    return name + word(offset) + word(size) + flag + std::string(3, '\0') + word(time);
}

std::string text(const Archive2& archive) {
    std::string all;
    for (const ArchiveChunk2& chunk : archive.members())
        all += chunk.name.toStdString() + "=" + std::string(chunk.data()) + "@" + std::to_string(chunk.time) +
               " ";
    return all;
}

} // namespace

TEST(Archive2, WritesTheImageByteForByte) {
    const std::string source = "--abc--";
    Archive2 archive;
    archive.addMember("s", source, "first", 2, 3, 1, 0x11223344);
    archive.addMember("s", source, "dir/second", 5, 2, 7, 0);
    QByteArray image;
    ASSERT_EQ(archive.write("p", image), Archive2::Ok);
    EXPECT_EQ(image.toStdString(), magic + word(2) + entry("first", 2088, 3, 0x11223344) +
                                       entry("dir/second", 2091, 2, 0, 7) + "abc--");
    Archive2 again;
    EXPECT_EQ(again.open(viewOf(image), "p"), Archive2::Ok);
    EXPECT_EQ(text(again), "first=abc@287454020 dir/second=--@0 ");
    EXPECT_EQ(again.findMember("dir/second"), &again.members()[1]);
    EXPECT_EQ(again.findMember("second"), nullptr);
    Archive2 empty;
    ASSERT_EQ(empty.write("p", image), Archive2::Ok);
    EXPECT_EQ(image.toStdString(), magic + word(0));
}

TEST(Archive2, OpensWhatItCan) {
    const std::string one = entry("a", 0, 0, 5);
    const struct {
        std::string image;
        Archive2::Result result;
        size_t members;
    } rows[] = {
        {"", Archive2::BadHeader, 0},
        {magic + "\1\0\0", Archive2::BadHeader, 0},
        {"\xC8\xC3\x52\x42" + word(0), Archive2::BadHeader, 0},
        {magic + word(0xFFFFFFFF) + one, Archive2::BadHeader, 0},
        {magic + word(0) + one, Archive2::Ok, 0},
        {magic + word(1) + one, Archive2::Ok, 1},
        {magic + word(2) + one, Archive2::ShortDirectory, 1},
        {magic + word(2) + one + one.substr(1), Archive2::ShortDirectory, 1},
        {magic + word(0x7FFFFFFF) + one, Archive2::ShortDirectory, 1},
    };
    for (const auto& row : rows) {
        Archive2 archive;
        const std::unique_ptr<char[]> exact(new char[row.image.size()]);
        std::ranges::copy(row.image, exact.get());
        EXPECT_EQ(archive.open({exact.get(), row.image.size()}, "p"), row.result);
        EXPECT_EQ(archive.members().size(), row.members);
    }
}

TEST(Archive2, CutsLongNamesAndEndsThemAtAZero) {
    Archive2 archive;
    for (const int length : {1023, 1024, 1025})
        archive.addMember("s", "", QByteArray(length, 'n'), 0, 0, 1, 1);
    archive.addMember("s", "", QByteArray("ab\0cd", 5), 0, 0, 1, 1);
    QByteArray image;
    ASSERT_EQ(archive.write("p", image), Archive2::Ok);
    Archive2 again;
    ASSERT_EQ(again.open(viewOf(image), "p"), Archive2::Ok);
    std::vector<qsizetype> lengths;
    for (const ArchiveChunk2& chunk : again.members())
        lengths.push_back(chunk.name.size());
    EXPECT_EQ(lengths, (std::vector<qsizetype>{1023, 1024, 1024, 2}));
}

TEST(Archive2, RefusesToWriteDataThatAreNotThere) {
    const std::string source(10, 'x');
    const struct {
        quint32 offset, size;
        bool good;
    } rows[] = {{0, 10, true},          {10, 0, true},          {0, 11, false}, {11, 0, false},
                {0xFFFFFFFF, 1, false}, {1, 0xFFFFFFFF, false}, {5, 5, true}};
    for (const auto& row : rows) {
        Archive2 archive;
        archive.addMember("from", source, "a", row.offset, row.size, 1, 1);
        QByteArray image;
        EXPECT_EQ(archive.write("p", image), row.good ? Archive2::Ok : Archive2::WriteFailed);
        EXPECT_EQ(archive.errorText(), row.good ? "" : "FATAL: read error on from.\n");
        EXPECT_EQ(image.isEmpty(), !row.good);
    }
}

TEST(Archive2, RefusesMembersThatShareTheirData) {
    const std::string source(1'000'000, 'x');
    Archive2 archive;
    for (int i = 0; i < 5'000; ++i)
        archive.addMember("from", source, "m", 0, 1'000'000, 1, 1);
    QByteArray image;
    EXPECT_EQ(archive.write("p", image), Archive2::WriteFailed);
}
