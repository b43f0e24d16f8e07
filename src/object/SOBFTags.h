#pragma once

#include <array>
#include <cstdint>

class SOBFReader;

/// The one-byte tags of the object format. `SOBFTagTable` tells what each of them does.
enum SOBFTag : uint8_t {
    TAG_LITX = 0x08,
    TAG_NULL = 0x09,
    TAG_NULL_NULL = 0x0A,
    TAG_ADD = 0x0B,
    TAG_SUBTRACT = 0x0C,
    TAG_MULTIPLY = 0x0D,
    TAG_DIVIDE = 0x0E,
    TAG_MODULUS = 0x0F,
    TAG_AND = 0x10,
    TAG_OR = 0x11,
    TAG_XOR = 0x12,
    TAG_SHIFT_LEFT = 0x13,
    TAG_SHIFT_RIGHT = 0x14,
    TAG_EQUAL = 0x15,
    TAG_NOT_EQUAL = 0x16,
    TAG_GREATER = 0x17,
    TAG_LESS = 0x18,
    TAG_GREATER_EQUAL = 0x19,
    TAG_LESS_EQUAL = 0x1A,
    TAG_LOGICAL_AND = 0x1B,
    TAG_LOGICAL_OR = 0x1C,
    TAG_MKSYMBOL = 0x1D,
    TAG_SYMBOLVAL = 0x1F,
    TAG_ALIAS = 0x20,
    TAG_MKALIAS = 0x21,
    TAG_MKSTRING_TO_NUL = 0x22,
    TAG_MKSTRING = 0x23,
    TAG_MARKERDEF = 0x24,
    TAG_MARKERREF = 0x25,
    TAG_STRINGPOOL = 0x26,
    TAG_SECTION = 0x27,
    TAG_MKSECTION = 0x28,
    TAG_SYMBOLDEF = 0x29,
    TAG_SETTYPE = 0x2A,
    TAG_SETNAME = 0x2B,
    TAG_DEFBYTES = 0x2C,
    TAG_INSN = 0x2D,
    TAG_HIDDEN_INSN = 0x2E,
    TAG_FILL = 0x2F,
    TAG_ALIGN = 0x30,
    TAG_ORIGIN = 0x31,
    TAG_BREAK = 0x32,
    TAG_PUBLIC = 0x33,
    TAG_LOCUS = 0x35,
    TAG_MKFILENAME = 0x36,
    TAG_SETPC = 0x37,
    TAG_SETBYTES = 0x38,
    TAG_CHAR = 0x39,
    TAG_INT = 0x3A,
    TAG_UNSIGNED = 0x3B,
    TAG_OLD_STRUC = 0x3C,
    TAG_ARRAY = 0x3D,
    TAG_COUNTED_ARRAY = 0x3E,
    TAG_PTR = 0x3F,
    TAG_UNTYPED = 0x40,
    TAG_FLOAT = 0x41,
    TAG_FUNCTION = 0x42,
    TAG_MEMBER = 0x43,
    TAG_STATIC_FIELD = 0x44,
    TAG_DYNAMIC_FIELD = 0x45,
    TAG_PARAMIN = 0x46,
    TAG_PARAMOUT = 0x47,
    TAG_LIBRARY = 0x48,
    TAG_SETSCOPE = 0x49,
    TAG_SCOPE_MODULE = 0x4A,
    TAG_SCOPE_FUNCTION = 0x4B,
    TAG_SCOPE_BLOCK = 0x4C,
    TAG_DUP = 0x4E,
    TAG_DROP = 0x4F,
    TAG_SPACE = 0x50,
    TAG_ATTRIBUTE = 0x51,
    TAG_FORWARDTYPE = 0x52,
    TAG_NOP = 0x53,
    TAG_PROTECTED = 0x54,
    TAG_ARITHMETIC_SHIFT_RIGHT = 0x55,
    TAG_CODELET = 0x56,
    TAG_STRUC = 0x57,
    TAG_LINK_ORDER_PRIORITY = 0x58,
    TAG_PATCHABLE = 0x59,
    TAG_INSTRUMENTATION = 0x5B,
    TAG_PATCHED = 0x5C,
    TAG_REGISTER = 0x5D,
    TAG_PAIR = 0x5E,
    TAG_LOCAL_INSN = 0x5F,
    TAG_SETFLAGS = 0x60,
    TAG_RESET_LOCUS = 0x61,
    TAG_SET_FCT_SYMBOL = 0x62,
    TAG_ADJUST_STACK = 0x63,
    TAG_INIT = 0x64,
    TAG_SYMBOL_LOCUS = 0x65,
    TAG_END_OF_INFO = 0x66,
    TAG_EXTENSION_WORD = 0x67,
    TAG_DEFADDR = 0x68,
    TAG_WORD_ADDRESS = 0x69,
    TAG_FIRST_MEMSPACE = 0x6A,
    TAG_LAST_MEMSPACE = 0x6D,
    TAG_PTR_REP_1 = 0x6E,
    TAG_PTR_REP_2 = 0x6F,
    TAG_LINKIF = 0x70,
    TAG_ENDLINKIF = 0x71,
    TAG_COUNT = 0x72
};

/// What the machine must have met before a tag may run.
enum class SOBFNeeds : uint8_t { Nothing, Module, Section };

/// One tag: its name in a trace, what it does to the height of the operand stack, and the routine that runs
/// it.
struct SOBFTagRow {
    const char* name = nullptr; ///< null if there is no such tag
    int8_t growth = 0;          ///< entries pushed less entries popped
    SOBFNeeds needs = SOBFNeeds::Nothing;
    void (SOBFReader::*run)(uint8_t tag) = nullptr;
};

/// The table of all tags, indexed by tag.
struct SOBFTagTable {
    static const std::array<SOBFTagRow, TAG_COUNT> rows;
};
