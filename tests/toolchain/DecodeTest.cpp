#include "toolchain/common/Decode.h"

#include "object/SOBFExpr.h"
#include "object/SOBFMSP430Insn.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sstream>

using namespace testing;

namespace {

std::string bytesOf(std::string_view digits) {
    std::string bytes;
    for (size_t at = 0; at + 1 < digits.size(); at += 2)
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(at, 2)), nullptr, 16));
    return bytes;
}

std::string hexadecimal(std::string_view bytes) {
    std::string digits;
    for (const char byte : bytes) {
        char text[4];
        std::snprintf(text, sizeof text, "%02x", static_cast<uint8_t>(byte));
        digits += text;
    }
    return digits;
}

/// Takes an instruction apart and puts it together again.
std::string roundTrip(std::string_view bytes, bool extended) {
    const auto insn = decodeInsn(bytes, extended);
    if (!insn || insn->length != bytes.size())
        return insn ? "length " + std::to_string(insn->length) : "none";
    Pool pool;
    const CurrentPool current(&pool);
    SOBFMSP430Insn record(insn->opcode, nullptr, nullptr, false);
    record.setPC(0x4000);
    const auto operand = [&](const DecodedInsn::Operand& from) -> SOBFExpr* {
        const int64_t base = from.symbolic ? 0x4000 + from.at : 0;
        return from.isThere() ? new SOBFConstExpr(base + from.value) : nullptr;
    };
    record.operand1 = insn->isJump ? new SOBFConstExpr(0x4000 + insn->jumpOffset) : operand(insn->source);
    record.operand2 = operand(insn->destination);
    record.encode();
    return hexadecimal(record.encodedBytes());
}

/// The last column of the table that an assembler has made.
TEST(DecodeTest, WhatAnAssemblerMadeComesTogetherAgain) {
    std::ifstream table(OSTMAKE_SOURCE_DIR "/tests/object/data/msp430.txt");
    std::string line;
    int rows = 0;
    while (std::getline(table, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::string digits = line.substr(line.rfind(' ') + 1);
        if (digits.find_first_not_of("0123456789abcdef") != std::string::npos)
            continue;
        EXPECT_EQ(roundTrip(bytesOf(digits), true), digits) << line;
        ++rows;
    }
    EXPECT_GT(rows, 100);
}

/// Every word is an instruction that comes together again, or none; nothing is read behind the end.
TEST(DecodeTest, EveryWordComesTogetherAgainOrIsNone) {
    for (unsigned word = 0; word <= 0xFFFF; ++word) {
        std::string bytes = {static_cast<char>(word), static_cast<char>(word >> 8)};
        bytes += std::string("\x34\x12\x78\x56\xBC\x7A", 6);
        for (const bool extended : {false, true}) {
            const auto insn = decodeInsn(bytes, extended);
            if (!insn)
                continue;
            const std::string own = bytes.substr(0, insn->length);
            ASSERT_EQ(roundTrip(own, extended), hexadecimal(own));
            for (size_t size = 0; size < own.size(); ++size)
                ASSERT_FALSE(decodeInsn(std::string_view(own).substr(0, size), extended));
        }
    }
}

TEST(DecodeTest, InstructionsOfTheExtensionCountOnlyThere) {
    for (const char* digits : {"80007856", "0014", "4018084c", "b0133412"}) {
        const std::string bytes = bytesOf(digits);
        EXPECT_FALSE(decodeInsn(bytes, false)) << digits;
        EXPECT_TRUE(decodeInsn(bytes, true)) << digits;
    }
}

} // namespace
