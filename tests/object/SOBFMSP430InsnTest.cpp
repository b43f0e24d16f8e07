#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "object/SOBFMSP430Reader.h"
#include "object/SOBFMSP430Support.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFWriter.h"

#include <QByteArray>

using SOBFMSP430InsnTest = MSP430Test;

TEST_F(SOBFMSP430InsnTest, LengthGoesByTheFormAndTheOperandsThatAreThere) {
    struct Case {
        unsigned opcode;
        int operands, length, estimated;
    };
    const Case cases[] = {
        {0x4405, 0, 2, 2},     {0x4035, 1, 4, 4},     {0x40B2, 2, 6, 6},     {0x1300, 0, 2, 2},
        {0x1230, 1, 4, 4},     {0x13B0, 1, 4, 4},     {0x3C00, 1, 2, 2},     {0x3C05, 0, 2, 2},
        {0x0080, 1, 4, 4},     {0x0110, 0, 2, 2},     {0x18405566, 0, 4, 4}, {0x18405516, 1, 6, 6},
        {0x184055B2, 2, 8, 8}, {0x00010000, 0, 6, 6}, {0x17FF3C00, 1, 6, 6}, {0xFFFFFFFF, 2, 8, 8},
    };
    for (const Case& each : cases) {
        auto* record = insn(each.opcode, each.operands > 0 ? number(0x4410) : nullptr,
                            each.operands > 1 ? number(0x200) : nullptr);
        EXPECT_EQ(record->length(), each.length) << std::hex << each.opcode;
        EXPECT_EQ(record->estimatedLength(), each.estimated) << std::hex << each.opcode;
    }
}

TEST_F(SOBFMSP430InsnTest, ConstantGeneratorTakesConstantsUnderTheWidthMask) {
    struct Case {
        unsigned opcode;
        int64_t value;
        unsigned optimised; ///< 0 if nothing changes
    };
    const Case cases[] = {
        {0x4035, 0, 0x4305},
        {0x4035, 1, 0x4315},
        {0x4035, 2, 0x4325},
        {0x4035, 4, 0x4225},
        {0x4035, 8, 0x4235},
        {0x4035, -1, 0x4335},
        {0x4035, 0xFFFF, 0x4335},
        {0x4035, 0x10001, 0x4315},
        {0x4035, 3, 0},
        {0x4035, 0xFF, 0},
        {0x4075, 0xFF, 0x4375},
        {0x4075, 0x101, 0x4355},
        {0x4075, 0xFFFF, 0x4375},
        {0x4025, 1, 0},
        {0x4135, 1, 0},
        {0x4015, 1, 0},
        {0x40B2, 8, 0x42B2},
        {0x1230, 0, 0x1203},
        {0x1230, 1, 0x1213},
        {0x1230, 2, 0x1223},
        {0x1230, -1, 0x1233},
        {0x1230, 4, 0},
        {0x1230, 8, 0},
        {0x1270, 0xFF, 0},
        {0x12B0, 2, 0x12A3},
        {0x13B0, 2, 0},
        {0x1430, 2, 0},
        {0x3C30, 2, 0},
        {0x00B5, 1, 0},
        {0x18401230, 1, 0},
        // Extended: address, word, byte, and no width at all.
        {0x18005075, 0xFFFFF, 0x18005375},
        {0x18005075, 0xFFFF, 0},
        {0x18405035, 0xFFFF, 0x18405335},
        {0x18405075, 0xFF, 0x18405375},
        {0x18005035, 0xFFFFF, 0},
        {0x18005035, -1, 0x18005335},
    };
    for (const Case& each : cases) {
        const SOBFMSP430Insn* record = insn(each.opcode, number(each.value), nullptr, true);
        EXPECT_EQ(record->opcode, each.optimised ? each.optimised : each.opcode)
            << std::hex << each.opcode << " with " << each.value;
        EXPECT_EQ(record->source() == nullptr, each.optimised != 0) << std::hex << each.opcode;
        EXPECT_NE(insn(each.opcode, number(each.value))->source(), nullptr);
    }
    g_msp430x = true;
    EXPECT_EQ(insn(0x1230, number(4), nullptr, true)->opcode, 0x1222u);
    EXPECT_EQ(insn(0x1230, number(8), nullptr, true)->opcode, 0x1232u);
}

TEST_F(SOBFMSP430InsnTest, ConstantGeneratorLeavesWhatIsNotKnownOrMoves) {
    EXPECT_EQ(insn(0x4035, symbol("undefined"), nullptr, true)->opcode, 0x4035u);
    SOBFSection section(nullptr);
    auto* marker = new SOBFMarker;
    section.addInsn(marker);
    marker->setPC(0);
    EXPECT_EQ(insn(0x4035, new SOBFMarkerExpr(marker), nullptr, true)->opcode, 0x4035u);
    EXPECT_EQ(insn(0x4035, nullptr, nullptr, true)->opcode, 0x4035u);
}

TEST_F(SOBFMSP430InsnTest, PushThroughTheStackPointerBecomesIndexed) {
    SOBFMSP430Insn* word = insn(0x1221, nullptr, nullptr, true);
    EXPECT_EQ(word->opcode, 0x1211u);
    EXPECT_EQ(word->printString(), "PUSH.W\t0(SP)");
    EXPECT_EQ(insn(0x1261, nullptr, nullptr, true)->opcode, 0x1251u);
    EXPECT_EQ(insn(0x1221)->opcode, 0x1221u);
}

/// Jumps.

class SOBFMSP430Recode : public MSP430Test {
protected:
    static constexpr int pc = 0x8000;

    /// A jump to the target that lies `words` behind the word after it.
    static SOBFMSP430Insn* jump(unsigned opcode, int words) {
        return insn(opcode, number(pc + 2 + 2 * words), nullptr, false, pc);
    }

    /// The list that the jump becomes, each record as it prints.
    std::string recoded(SOBFMSP430Insn* record) {
        SOBFSection section(nullptr);
        section.addInsn(record);
        auto& list = record->fragment->insns;
        section.addInsn(new SOBFAlignInsn(2)); // what follows the jump
        auto position = list.begin();
        m_changed = record->recode(list, position);
        std::string text;
        for (SOBFInsn* each : list) {
            EXPECT_EQ(each->fragment, record->fragment);
            text += position != list.end() && each == *position ? "|" : "";
            text += each->printString() + "\n";
        }
        return text;
    }

    bool m_changed = false;
};

TEST_F(SOBFMSP430Recode, ReachesFrom512WordsBackTo511Forward) {
    for (unsigned opcode = 0x2000; opcode < 0x4000; opcode += 0x400) {
        for (int words : {0, 0x1FF, -1, -0x200}) {
            recoded(jump(opcode, words));
            EXPECT_FALSE(m_changed) << words;
            EXPECT_EQ(jump(opcode, words)->estimatedLength(), 2);
        }
        for (int words : {0x200, -0x201, 0x3000}) {
            recoded(jump(opcode, words));
            EXPECT_TRUE(m_changed) << words;
            EXPECT_EQ(jump(opcode, words)->estimatedLength(), opcode == 0x3C00   ? 4
                                                              : opcode == 0x3000 ? 8
                                                                                 : 6);
        }
    }
}

TEST_F(SOBFMSP430Recode, TurnsAJumpThatDoesNotReachIntoOnesThatDo) {
    struct Case {
        unsigned opcode;
        const char* records;
    };
    const Case cases[] = {
        {0x2000, "JZ\t@0\nJMP\tfar\t ; = 9000\n@0\n|"},
        {0x2400, "JNZ\t@0\nJMP\tfar\t ; = 9000\n@0\n|"},
        {0x2800, "JC\t@0\nJMP\tfar\t ; = 9000\n@0\n|"},
        {0x2C00, "JNC\t@0\nJMP\tfar\t ; = 9000\n@0\n|"},
        {0x3000, "JN\t@0\nJMP\t@1\n@0\nJMP\tfar\t ; = 9000\n@1\n|"},
        {0x3400, "JL\t@0\nJMP\tfar\t ; = 9000\n@0\n|"},
        {0x3800, "JGE\t@0\nJMP\tfar\t ; = 9000\n@0\n|"},
        {0x3C00, "|\tBR\t#far\n"},
    };
    for (const Case& each : cases) {
        SOBFMarker::m_markCount = 0;
        const std::string text =
            recoded(insn(each.opcode, symbol("far", number(0x9000)), nullptr, false, pc));
        EXPECT_EQ(text, std::string(each.records) + "\t.ALIGN\t2\n");
    }
}

TEST_F(SOBFMSP430Recode, BranchesWithTheExtensionTakeTwentyBits) {
    g_msp430x = true;
    SOBFMSP430Insn* record = jump(0x3C00, 0x8000); // 16 bits of this distance would be in reach
    record->operand1 = number(pc + 2 + 0x20000);
    recoded(record);
    ASSERT_TRUE(m_changed);
    EXPECT_EQ(encoded(record), "80020280");
    EXPECT_EQ(record->length(), 4);
    recoded(jump(0x3C00, -0x200));
    EXPECT_FALSE(m_changed);
    g_msp430x = false;
    SOBFMSP430Insn* around = jump(0x2400, 0x10000);
    recoded(around);
    EXPECT_FALSE(m_changed) << "sixteen bits of address wrap round";
}

TEST_F(SOBFMSP430Recode, LeavesWhatCannotBeJudged) {
    for (SOBFMSP430Insn* record :
         {insn(0x3C00), insn(0x3C00, symbol("undefined")), insn(0x3C00, number(0x9000), nullptr, false, -1),
          insn(0x18403C00, number(0x9000)), insn(0x13C00, number(0x9000)), insn(0x4030, number(0x9000))}) {
        const unsigned opcode = record->opcode;
        recoded(record);
        EXPECT_FALSE(m_changed) << std::hex << opcode;
        EXPECT_EQ(record->opcode, opcode);
    }
}

TEST_F(SOBFMSP430Recode, OnlySixConditionsHaveAnOpposite) {
    const auto failureFor = [](unsigned word) {
        try {
            SOBFMSP430Insn::invertedJump(word);
        } catch (const HException& failure) {
            return failure.text();
        }
        return std::string();
    };
    EXPECT_EQ(failureFor(0x2400), "");
    EXPECT_EQ(failureFor(0x3000), "JN branch out of range");
    EXPECT_EQ(failureFor(0x3C00), "JMP branch out of range (should never happen)");
    EXPECT_EQ(failureFor(0x4000), "problem in insn");
}

TEST_F(SOBFMSP430InsnTest, ExternalizesOperandsOpcodeExtensionAndBytes) {
    const auto written = [](SOBFMSP430Insn* record) {
        SOBFWriter writer;
        writer.stackAdjust = record->stackAdjust;
        record->pc = -1;
        record->externalize(writer);
        const std::string_view file = writer.finish().view();
        return QByteArray(file.data(), static_cast<qsizetype>(file.size())).toHex();
    };
    // Length of the string pool, its tag, the pool, the record.
    EXPECT_EQ(written(insn(0x4130)), "00260a080241302d");
    EXPECT_EQ(written(insn(0x4035, number(0x1234))), "00260802123409080240352d");
    EXPECT_EQ(written(insn(0x4085, nullptr, number(6))), "00260906080240852d");
    auto* record = insn(0x4130);
    record->extensionWord = 0x10000;
    EXPECT_EQ(written(record), "00260a080241302d") << "only the low half counts";
    record->extensionWord = 0x12345;
    record->encode();
    EXPECT_EQ(written(record), "022630410a080241302d"
                               "080223456700022338");
}

TEST_F(SOBFMSP430InsnTest, ReaderTakesSourceDestinationAndOpcodeAsTheyStand) {
    HByteStream stream;
    for (const int byte :
         {0x00, 0x26, 0x09, 0x09, 0x09, 0x4A, 0x4F, 0x00, 0x00, 0x23, 0x28, 0x27, // a section
          0x08, 0x02, 0x12, 0x34, 0x09, 0x08, 0x02, 0x40, 0x35, 0x2D, 0x00, 0x09,
          0x08, 0x02, 0x40, 0x35, 0x2D, 0x0A, 0x08, 0x02, 0x41, 0x30, 0x2D})
        stream.write(static_cast<uint8_t>(byte));
    SOBFModule* module = SOBFMSP430Reader(&stream, false).readFile();
    std::string texts;
    for (SOBFInsn* each : (*module->sections.begin())->currentFragment->insns) {
        each->encode();
        texts += each->printString() + " " + each->printOpCode() + "\n";
        EXPECT_EQ(each->length(), each->byteCount);
    }
    EXPECT_EQ(texts, "MOV.W\t#4660, R5 35403412\nMOV.W\t#0, R5 35400000\nRET 3041\n");
    SOBFReader::release(module);
}

TEST_F(SOBFMSP430InsnTest, RegistersGoByNameBothWays) {
    for (int number = 0; number < 16; ++number)
        EXPECT_EQ(SOBFRegisterExpr::getRegisterNumber(SOBFRegisterExpr(number).getRegisterName()), number);
    EXPECT_STREQ(regName(3), "R3");
    EXPECT_STREQ(regName(16), "(undefined)");
    EXPECT_STREQ(regName(-1), "(undefined)");
    EXPECT_EQ(SOBFRegisterExpr::getRegisterNumber("R0"), -1);
    EXPECT_EQ(SOBFRegisterExpr::getRegisterNumber("(undefined)"), -1);
}
