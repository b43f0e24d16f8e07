#include "object/SOBFMSP430Fields.h"
#include "object/SOBFMSP430Insn.h"

#include <cstdio>

// An instruction prints in stages: words with a name of their own first, then the forms of few opcodes, then
// the name of the format and its operands in one common notation.

namespace {

using namespace msp430;

constexpr const char* unknown = "???";

/// Opcodes with a customary name.
struct NamedWord {
    unsigned opcode;
    const char* text;
};
constexpr NamedWord namedWords[] = {
    {0x0110, "RETA"}, {0x4130, "RET"},  {0x1300, "RETI"}, {0xC312, "CLRC"},
    {0xD312, "SETC"}, {0xC222, "CLRN"}, {0xD222, "SETN"}, {0xC322, "CLRZ"},
    {0xD322, "SETZ"}, {0xC232, "DINT"}, {0xD232, "EINT"}, {0x4303, "NOP"},
};

constexpr const char* formatINames[] = {
    nullptr, nullptr, nullptr, nullptr, "MOV", "ADD", "ADDC", "SUBC",
    "SUB",   "CMP",   "DADD",  "BIT",   "BIC", "BIS", "XOR",  "AND",
};

constexpr const char* conditionNames[] = {"JNZ", "JZ", "JNC", "JC", "JN", "JGE", "JL", "JMP"};

constexpr const char* rotationNames[] = {"RRCM", "RRAM", "RLAM", "RRUM"};

constexpr const char* multipleNames[] = {"PUSHM.A\t", "PUSHM.W\t", "POPM.A\t", "POPM.W\t"};

/// Format II by the bits from 6 up: the plain name, and the name behind an extension word, which the width
/// follows.
struct FormatIIName {
    unsigned bits;
    const char* plain;
    const char* extended;
};
constexpr FormatIIName formatIINames[] = {
    {0x40, "RRC.W", "RRCX"}, {0x41, "RRC.B", "RRCX"}, {0x42, "SWPB", "SWPBX"},   {0x44, "RRA.W", "RRAX"},
    {0x45, "RRA.B", "RRAX"}, {0x46, "SXT", "SXTX"},   {0x48, "PUSH.W", "PUSHX"}, {0x49, "PUSH.B", "PUSHX"},
    {0x4A, "CALL", nullptr}, {0x4C, "RETI", nullptr}, {0x4D, "CALLA", nullptr},
};

/// The address forms by bits 4 to 7: the name and how its two operands are written. `s` and `d` are registers
/// and `x` is the expression.
struct AddressForm {
    const char* name;
    const char* operands;
};
constexpr AddressForm addressForms[] = {
    {"MOVA", "@s, d"},  {"MOVA", "@s+, d"}, {"MOVA", "&x, d"}, {"MOVA", "x(s), d"},
    {nullptr, nullptr}, {nullptr, nullptr}, {"MOVA", "s, &x"}, {"MOVA", "s, x(d)"},
    {"MOVA", "#x, d"},  {"CMPA", "#x, d"},  {"ADDA", "#x, d"}, {"SUBA", "#x, d"},
    {"MOVA", "s, d"},   {"CMPA", "s, d"},   {"ADDA", "s, d"},  {"SUBA", "s, d"},
};

std::string hex(int64_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%04X", static_cast<unsigned>(value));
    return text;
}

/// What stands for an operand that a damaged file left out is nothing.
std::string print(const SOBFExpr* expression) {
    return expression ? expression->printString() : std::string();
}

std::string registerText(unsigned number) { return regName(static_cast<int>(number)); }

/// A source operand or the one of format II, with the tab in front.
std::string printSource(unsigned mode, unsigned number, const SOBFExpr* expression) {
    switch (mode) {
    case Direct:
        return "\t" + (number == R3 ? "#0" : registerText(number));
    case Indexed:
        if (number == SR)
            return "\t&" + print(expression);
        return number == R3 ? "\t#1" : "\t" + print(expression) + "(" + registerText(number) + ")";
    case Indirect:
        return number == R3 ? "\t#2" : number == SR ? "\t#4" : "\t@" + registerText(number);
    default:
        if (number == PC && expression)
            return "\t#" + print(expression);
        return number == R3 ? "\t#-1" : number == SR ? "\t#8" : "\t@" + registerText(number) + "+";
    }
}

std::string printDestination(unsigned word, const SOBFExpr* expression) {
    const unsigned number = destinationRegister(word);
    if (!destinationIndexed(word))
        return ", " + registerText(number);
    return number == SR ? ", &" + print(expression)
                        : ", " + print(expression) + "(" + registerText(number) + ")";
}

const FormatIIName* formatIIName(unsigned word) {
    for (const FormatIIName& each : formatIINames)
        if (each.bits == word >> 6)
            return &each;
    return nullptr;
}

/// PUSHM and POPM: a register and the count of those that follow it, downward for PUSHM and upward for POPM.
std::string printMultiple(unsigned word) {
    const int first = static_cast<int>(word & 15);
    const int more = static_cast<int>(word >> 4 & 15);
    const bool push = word < 0x1600;
    const int last = push ? first - more : first + more;
    return multipleNames[word >> 8 & 3] + registerText(word & 15) + "-" + regName(last);
}

std::string printAddressForm(unsigned word, const SOBFExpr* expression) {
    if ((word & 0xF0E0) == 0x0040) {
        const unsigned count = (word >> 10 & 3) + 1;
        return std::string(rotationNames[word >> 8 & 3]) + (word & 0x10 ? ".W" : ".A") + "\t#" +
               std::to_string(count) + ", " + registerText(destinationRegister(word));
    }
    const AddressForm& form = addressForms[word >> 4 & 15];
    std::string text = std::string(form.name) + "\t";
    for (const char* c = form.operands; *c; ++c) {
        if (*c == 's')
            text += registerText(sourceRegister(word));
        else if (*c == 'd')
            text += registerText(destinationRegister(word));
        else if (*c == 'x')
            text += print(expression);
        else
            text += *c;
    }
    return text;
}

const char* widthSuffix(unsigned opcode) {
    switch (opcode & widthBits) {
    case widthAddress:
        return ".A";
    case widthWord:
        return ".W";
    case widthByte:
        return ".B";
    default:
        return ".?";
    }
}

/// What an instruction without operand words has in front: how often it is carried out.
std::string repeatPrefix(unsigned opcode) {
    const unsigned bits = opcode >> 16 & 15;
    return "RPT " + (opcode & countInRegister ? registerText(bits) : "#" + std::to_string(bits + 1)) + " || ";
}

} // namespace

std::string SOBFMSP430Insn::printString() {
    if (isExtended())
        return printExtended();
    if (opcode > 0xFFFF)
        return unknown;
    for (const NamedWord& each : namedWords)
        if (each.opcode == opcode)
            return each.text;
    if (formatI())
        return printFormatI();
    if (formatIII())
        return printJump();
    if (formatII())
        return printFormatII();
    return opcode < 0x1000 ? printAddressForm(opcode, destination() ? destination() : source()) : unknown;
}

std::string SOBFMSP430Insn::printFormatI() const {
    if ((opcode & 0xFFB0) == 0x4130)
        return std::string("POP") + (opcode & byteBit ? ".B" : ".W") + "\t" +
               registerText(destinationRegister(opcode));
    const std::string from = printSource(mode(opcode), sourceRegister(opcode), source());
    if ((opcode & 0xF0CF) == 0x4000)
        return "\tBR" + from;
    return std::string(formatINames[opcode >> 12]) + (opcode & byteBit ? ".B" : ".W") + from +
           printDestination(opcode, destination());
}

std::string SOBFMSP430Insn::printFormatII() const {
    if (opcode >= 0x1400)
        return printMultiple(opcode);
    switch (opcode & 0xFFF0) {
    case CALLA_Absolute:
        return "CALLA\t&" + print(operand());
    case CALLA_Symbolic:
        return "CALLA\t" + print(operand()) + "(PC)";
    case CALLA_Immediate:
        return "CALLA\t#" + print(operand());
    default:
        break;
    }
    const FormatIIName* found = formatIIName(opcode);
    return found ? found->plain + printSource(mode(opcode), opcode & 15, operand()) : unknown;
}

std::string SOBFMSP430Insn::printJump() const {
    std::string text = conditionNames[(opcode & condition) >> 10];
    if (!operand())
        return text;
    text += "\t" + operand()->printString();
    const SOBFExprValue target = operand()->evaluate();
    return target.failed ? text : text + "\t ; = " + hex(target.value);
}

std::string SOBFMSP430Insn::printExtended() const {
    const unsigned word = opcode & 0xFFFF;
    std::string text = word & 0xB0 ? std::string() : repeatPrefix(opcode);
    if (formatI())
        return text + formatINames[word >> 12] + "X" + widthSuffix(opcode) +
               printSource(mode(word), sourceRegister(word), source()) +
               printDestination(word, destination());
    const FormatIIName* found = formatII() ? formatIIName(word) : nullptr;
    if (!found || !found->extended)
        return unknown;
    // RRAX alone has a blank behind its width.
    const char* blank = found->extended == std::string_view("RRAX") ? " " : "";
    return text + found->extended + widthSuffix(opcode) + blank +
           printSource(mode(word), word & 15, operand());
}
