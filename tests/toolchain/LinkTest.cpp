#include "toolchain/qlink/Link.h"

#include "foundation/HException.h"
#include "object/ObjectBytes.h"
#include "support/TemporaryDirectory.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/qlink/Checksum.h"
#include "toolchain/qlink/LinkOptions.h"

#include <fstream>
#include <gmock/gmock.h>

using namespace testing;

namespace {

std::string shown(const std::string& word) {
    std::string text;
    try {
        const Placement placement = parsePlacement(word);
        for (const std::string& section : placement.sections)
            text += section + " ";
        for (const AddressRange& range : placement.ranges) {
            char part[40];
            std::snprintf(part, sizeof part, "[%x,%x)", range.start, range.end);
            text += part;
        }
    } catch (const HException& exception) {
        text = exception.text();
    }
    return text;
}

TEST(LinkTest, PlacementsAsTheBuildWritesThem) {
    const struct {
        const char* word;
        const char* shown;
    } rows[] = {
        {"CODE,CONST=1100-ffe0", "CODE CONST [1100,ffe0)"},
        {"CODE=1100-2000,3000-10000", "CODE [1100,2000)[3000,10000)"},
        {"INTVEC=ffe0-ffff", "INTVEC [ffe0,10000)"},
        {"UDATA0=200-a00", "UDATA0 [200,a00)"},
        {"A,B=200-2ff", "A B [200,2ff)"},
        {"=1000-1100", "[1000,1100)"},
        {"CODE", "CODE "},
        {"", ""},
        {"CODE=", "CODE "},
        {"CODE=1100", "no range of addresses in -TCODE=1100: 1100"},
        {"CODE=11g0-1200", "no address in -TCODE=11g0-1200: 11g0"},
        {"CODE=0-ffffff", "no address in -TCODE=0-ffffff: ffffff"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(shown(row.word), row.shown) << row.word;
}

/// The check values that the catalogues of these algorithms give.
TEST(LinkTest, ChecksumsHaveTheirCheckValues) {
    EXPECT_EQ(checksumAlgorithm("crc16")("123456789"), 0x29B1U);
    EXPECT_EQ(checksumAlgorithm("crc32")("123456789"), 0xCBF43926U);
    EXPECT_EQ(checksumAlgorithm("sum")("\x01\xFF\x02"), 0x102U);
    EXPECT_EQ(checksumAlgorithm("xor")("\x0F\xF0\x01"), 0xFEU);
    EXPECT_EQ(checksumAlgorithm("CRC16"), nullptr);
}

TEST(LinkTest, WhatAConditionExcludesIsLeftOut) {
    const TemporaryDirectory directory;
    LinkOptions options;
    options.inputs = {directory.bytes() + "/a.vko"};
    options.output = "a.vkx";
    options.placements = {parsePlacement("S=1000-2000")};
    std::ofstream(options.inputs[0]) << ObjectBytes::bytes(
        "09 09 09 4A 4F 'S' 28 27 01 01 2C "
        "00 70 02 01 2C 01 70 03 01 2C 71 04 01 2C 71 05 01 2C "
        "01 70 06 01 2C 71 07 01 2C");
    Tool tool("qlink", "");
    const auto made = linkInMemory(tool, options);
    ASSERT_TRUE(made);
    EXPECT_EQ(ElfFile(made->executable).find("S")->bytes, "\1\5\6\7");
}

} // namespace
