#include "object/SOBFMSP430Support.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"

#include <random>

using SOBFMSP430EncodeTest = MSP430Test;

struct EncodeCase {
    unsigned opcode;
    int64_t source; ///< -1: there is none
    int64_t destination;
    const char* bytes;
};

// The plain instructions stand in data/msp430.txt; these are what LLVM does not know. All lie at 0x4400.
TEST_F(SOBFMSP430EncodeTest, WordsOfEveryForm) {
    const EncodeCase cases[] = {
        // PUSH from memory, and an increment into memory.
        {0x1211, 0x10, -1, "11121000"},
        {0x1210, 0x4420, -1, "10121e00"},
        {0x1252, 0x200, -1, "52120002"},
        {0x1225, -1, -1, "2512"},
        {0x44B6, -1, 6, "b6440600"},
        // CALLA by register, absolute, symbolic (from its own word), immediate; without the operand it must
        // have.
        {0x1345, -1, -1, "4513"},
        {0x1380, 0x12345, -1, "81134523"},
        {0x1390, 0x14402, -1, "91130000"},
        {0x1390, 0x4400, -1, "9f13feff"},
        {0x13B0, 0xFEDCB, -1, "bf13cbed"},
        {0x13B0, -1, -1, "b013"},
        // PUSHM.A #4, R10; RETI.
        {0x143A, -1, -1, "3a14"},
        {0x1300, -1, -1, "0013"},
        // The forms on 20 bits: the operand that is there, the destination first.
        {0x0025, 0x12345, -1, "25014523"},
        {0x0536, 0x1234, -1, "36053412"},
        {0x0560, -1, 0x1234, "60053412"},
        {0x0576, -1, 0x1234, "76053412"},
        {0x0085, 0xF1234, -1, "850f3412"},
        {0x0095, 0x51234, -1, "95053412"},
        {0x00A5, 0x11234, 0x21234, "a5023412"},
        {0x00B5, 0x11234, -1, "b5013412"},
        {0x0085, -1, -1, "8500"},
        {0x05C6, -1, -1, "c605"},
        {0x0455, 7, -1, "5504"},
        {0x0110, -1, -1, "1001"},
        // Jumps.
        {0x3C00, 0x4400, -1, "ff3f"},
        {0x3C00, -1, 0x4404, "013c"},
        {0x2405, -1, -1, "0524"},
        // Extended, format I: registers, immediate, absolute, symbolic on both sides, indexed.
        {0x18405546, -1, -1, "40184655"},
        {0x18005075, 0xFEDCB, -1, "801f7550cbed"},
        {0x184052D2, 0x12345, 0xF6789, "cf18d25245238967"},
        {0x184050D0, 0x14404, 0x24406, "c218d05000000000"},
        {0x184050D0, 0x4404, 0x4406, "4018d05000000000"},
        {0x184050D0, 0x4400, 0x4400, "cf1fd050fcfffaff"},
        {0x184055D6, 0x20000, 0x30000, "4319d65500000000"},
        // Extended, format II.
        {0x18401045, -1, -1, "40184510"},
        {0x18401210, 0x14404, -1, "c01810120000"},
        {0x18401212, 0xF4404, -1, "c01f12120444"},
        // Words of no format keep their operands, so that bytes and length agree.
        {0x1800, 1, 2, "001801000200"},
        {0x1840183F, 1, 2, "40183f1801000200"},
    };
    for (const EncodeCase& each : cases) {
        auto* record = insn(each.opcode, each.source == -1 ? nullptr : number(each.source),
                            each.destination == -1 ? nullptr : number(each.destination));
        EXPECT_EQ(encoded(record), each.bytes) << std::hex << each.opcode;
        EXPECT_EQ(encoded(record), each.bytes) << "a second time";
    }
}

TEST_F(SOBFMSP430EncodeTest, MarkersAndSymbolsEnterWithTheirAddress) {
    SOBFSection section(nullptr);
    auto* marker = new SOBFMarker;
    section.addInsn(marker);
    auto* load = insn(0x4015, symbol("label", new SOBFMarkerExpr(marker)));
    EXPECT_EQ(encoded(load), "1540febb") << "unknown";
    marker->setPC(0x4406);
    EXPECT_EQ(encoded(load), "15400400");
}

TEST_F(SOBFMSP430EncodeTest, BranchTakesTwentyBitsOnlyWithTheExtension) {
    struct Case {
        bool extension;
        uint32_t target;
        const char* bytes;
    };
    for (const Case& each :
         {Case{false, 0x4400, "30400044"}, Case{false, 0x14400, "30400044"}, Case{true, 0xFFFF, "3040ffff"},
          Case{true, 0x14400, "80010044"}, Case{true, 0xFFFFFFFF, "800fffff"}}) {
        g_msp430x = each.extension;
        auto* record = insn(0x4130);
        record->encode();
        record->encodeBranch(each.target);
        EXPECT_EQ(bytesOf(*record), each.bytes);
    }
}

TEST_F(SOBFMSP430EncodeTest, AnyOpcodeAndOperandsAreSafeAndFillTheirLength) {
    std::mt19937 random(430);
    const auto operand = [&]() -> SOBFExpr* {
        switch (random() % 4) {
        case 0:
            return nullptr;
        case 1:
            return symbol("undefined");
        case 2:
            return number(static_cast<int64_t>(random()) << 32 | random());
        default:
            return number(static_cast<int16_t>(random()));
        }
    };
    for (int i = 0; i < 50'000; ++i) {
        const auto opcode = static_cast<unsigned>(random() >> random() % 32);
        SOBFExpr* source = operand();
        SOBFExpr* destination = random() % 2 ? nullptr : operand();
        auto* record = insn(opcode, source, destination, random() % 2, static_cast<int>(random()));
        record->encode();
        EXPECT_LE(record->byteCount, 8);
        EXPECT_FALSE(record->printString().empty());
        EXPECT_GE(record->estimatedLength(), 2);
        for (int byte = 0; byte < record->length(); ++byte)
            record->getByte(byte);
        SOBFInsnList list{record};
        auto position = list.begin();
        record->recode(list, position);
    }
}
