#include "object/SOBFMSP430Support.h"

namespace {

struct PrintCase {
    unsigned opcode;
    const char* text; ///< "src" and "dst" are symbols, and given as operands where they occur
};

} // namespace

// The forms that LLVM knows stand in data/msp430.txt.
class SOBFMSP430Print : public MSP430Test {
protected:
    static void expectTexts(std::initializer_list<PrintCase> cases) {
        for (const PrintCase& each : cases) {
            const std::string_view text = each.text;
            SOBFExpr* source = text.find("src") == text.npos ? nullptr : symbol("src");
            SOBFExpr* destination = text.find("dst") == text.npos ? nullptr : symbol("dst");
            EXPECT_EQ(insn(each.opcode, source, destination)->printString(), text) << std::hex << each.opcode;
        }
    }
};

TEST_F(SOBFMSP430Print, CustomaryNames) {
    expectTexts({{0x0110, "RETA"},
                 {0x4130, "RET"},
                 {0x1300, "RETI"},
                 {0xC312, "CLRC"},
                 {0xD312, "SETC"},
                 {0xC222, "CLRN"},
                 {0xD222, "SETN"},
                 {0xC322, "CLRZ"},
                 {0xD322, "SETZ"},
                 {0xC232, "DINT"},
                 {0xD232, "EINT"},
                 {0x4303, "NOP"},
                 {0x4131, "POP.W\tSP"},
                 {0x4170, "POP.B\tPC"},
                 {0x4175, "POP.B\tR5"}});
}

TEST_F(SOBFMSP430Print, SourceModesOfEachSpecialRegister) {
    expectTexts({{0x4305, "MOV.W\t#0, R5"},
                 {0x4205, "MOV.W\tSR, R5"},
                 {0x4215, "MOV.W\t&src, R5"},
                 {0x4315, "MOV.W\t#1, R5"},
                 {0x4015, "MOV.W\tsrc(PC), R5"},
                 {0x4115, "MOV.W\tsrc(SP), R5"},
                 {0x4325, "MOV.W\t#2, R5"},
                 {0x4225, "MOV.W\t#4, R5"},
                 {0x4025, "MOV.W\t@PC, R5"},
                 {0x4335, "MOV.W\t#-1, R5"},
                 {0x4235, "MOV.W\t#8, R5"},
                 {0x4035, "MOV.W\t#src, R5"},
                 {0x4035, "MOV.W\t@PC+, R5"},
                 {0x4475, "MOV.B\t@R4+, R5"},
                 {0x44F2, "MOV.B\t@R4+, &dst"},
                 {0x4483, "MOV.W\tR4, dst(R3)"},
                 {0x4030, "\tBR\t#src"},
                 {0x4520, "\tBR\t@R5"},
                 {0x4070, "MOV.B\t#src, PC"}});
}

TEST_F(SOBFMSP430Print, OneOperandForms) {
    expectTexts({{0x1045, "RRC.B\tR5"},
                 {0x1095, "SWPB\tsrc(R5)"},
                 {0x1165, "RRA.B\t@R5"},
                 {0x1192, "SXT\t&src"},
                 {0x1230, "PUSH.W\t#src"},
                 {0x1262, "PUSH.B\t#4"},
                 {0x1290, "CALL\tsrc(PC)"},
                 {0x12B5, "CALL\t@R5+"},
                 {0x1305, "RETI\tR5"},
                 {0x1345, "CALLA\tR5"},
                 {0x1355, "CALLA\tsrc(R5)"},
                 {0x1365, "CALLA\t@R5"},
                 {0x1375, "CALLA\t@R5+"},
                 {0x1380, "CALLA\t&src"},
                 {0x1391, "CALLA\tsrc(PC)"},
                 {0x13B0, "CALLA\t#src"},
                 {0x13B0, "CALLA\t#dst"},
                 {0x10C5, "???"},
                 {0x11C5, "???"},
                 {0x12C5, "???"},
                 {0x13A0, "???"},
                 {0x13C0, "???"},
                 {0x1800, "???"},
                 {0x1FFF, "???"},
                 {0x143A, "PUSHM.A\tR10-R7"},
                 {0x1504, "PUSHM.W\tR4-R4"},
                 {0x1637, "POPM.A\tR7-R10"},
                 {0x172E, "POPM.W\tR14-(undefined)"},
                 {0x1421, "PUSHM.A\tSP-(undefined)"}});
}

TEST_F(SOBFMSP430Print, FormsOnTwentyBits) {
    expectTexts({{0x0506, "MOVA\t@R5, R6"},     {0x0516, "MOVA\t@R5+, R6"}, {0x0F26, "MOVA\t&src, R6"},
                 {0x0536, "MOVA\tsrc(R5), R6"}, {0x0560, "MOVA\tR5, &dst"}, {0x0576, "MOVA\tR5, dst(R6)"},
                 {0x0080, "MOVA\t#src, PC"},    {0x0096, "CMPA\t#src, R6"}, {0x00A6, "ADDA\t#src, R6"},
                 {0x00B6, "SUBA\t#src, R6"},    {0x05C6, "MOVA\tR5, R6"},   {0x05D6, "CMPA\tR5, R6"},
                 {0x05E6, "ADDA\tR5, R6"},      {0x05F6, "SUBA\tR5, R6"},   {0x0045, "RRCM.A\t#1, R5"},
                 {0x0455, "RRCM.W\t#2, R5"},    {0x0945, "RRAM.A\t#3, R5"}, {0x0D55, "RRAM.W\t#4, R5"},
                 {0x0245, "RLAM.A\t#1, R5"},    {0x0655, "RLAM.W\t#2, R5"}, {0x0B45, "RRUM.A\t#3, R5"},
                 {0x0F5F, "RRUM.W\t#4, R15"}});
}

TEST_F(SOBFMSP430Print, ExtendedForms) {
    expectTexts({{0x18404506, "RPT #1 || MOVX.W\tR5, R6"},
                 {0x18425506, "RPT #3 || ADDX.W\tR5, R6"},
                 {0x18CF6546, "RPT R15 || ADDCX.B\tR5, R6"},
                 {0x18007546, "RPT #1 || SUBCX.A\tR5, R6"},
                 {0x18008506, "RPT #1 || SUBX.?\tR5, R6"},
                 {0x18409516, "CMPX.W\tsrc(R5), R6"},
                 {0x1840A5D6, "DADDX.B\tsrc(R5), dst(R6)"},
                 {0x1800B0F2, "BITX.A\t#src, &dst"},
                 {0x1840C326, "BICX.W\t#2, R6"},
                 {0x1840D526, "BISX.W\t@R5, R6"},
                 {0x1840E536, "XORX.W\t@R5+, R6"},
                 {0x1840F586, "ANDX.W\tR5, dst(R6)"},
                 {0x18401105, "RPT #1 || RRAX.W \tR5"},
                 {0x18401145, "RPT #1 || RRAX.B \tR5"},
                 {0x18001155, "RRAX.A \tsrc(R5)"},
                 {0x18401055, "RRCX.B\tsrc(R5)"},
                 {0x18401085, "SWPBX.W\tR5"},
                 {0x18401195, "SXTX.W\tsrc(R5)"},
                 {0x18001252, "PUSHX.A\t&src"},
                 {0x18401295, "???"},
                 {0x18401300, "???"},
                 {0x18403C00, "???"},
                 {0x18400110, "???"},
                 {0x00014303, "???"},
                 {0x17FF4303, "???"}});
}

TEST_F(SOBFMSP430Print, JumpsShowTheTargetThatIsKnown) {
    EXPECT_EQ(insn(0x2000, symbol("label"))->printString(), "JNZ\tlabel");
    EXPECT_EQ(insn(0x2400, symbol("label", number(0x12)))->printString(), "JZ\tlabel\t ; = 0012");
    EXPECT_EQ(insn(0x2800, nullptr, symbol("label", number(0x12345)))->printString(),
              "JNC\tlabel\t ; = 12345");
    EXPECT_EQ(insn(0x3C05)->printString(), "JMP");
}

TEST_F(SOBFMSP430Print, AddressAndBytes) {
    SOBFMSP430Insn* record = insn(0x40B2, number(0x1234), number(0x200));
    EXPECT_EQ(record->printPC(), "004400");
    record->setPC(0xABCDE);
    EXPECT_EQ(record->printPC(), "0ABCDE");
    EXPECT_EQ(record->printOpCode(), "");
    record->encode();
    EXPECT_EQ(record->printOpCode(), "B24034120002");
}
