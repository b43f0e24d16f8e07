#pragma once

#include "memorymap/Lexer.h"

/// The tokens of expressions as C writes them.
class CStyleLexer : public Lexer {
public:
    enum Token {
        Integer = 3,
        Hexadecimal = 4,
        Floating = 5,
        String = 6,
        Identifier = identifier,
        Register = 8,
        Semicolon = 9,
        Colon = 0x0A,
        Scope = 0x0B,
        LeftParenthesis = 0x0C,
        RightParenthesis = 0x0D,
        LeftSquareBracket = 0x0E,
        RightSquareBracket = 0x0F,
        LeftBrace = 0x10,
        RightBrace = 0x11,
        Dot = 0x12,
        Arrow = 0x13,
        Increment = 0x14,
        Decrement = 0x15,
        Tilde = 0x16,
        Exclamation = 0x17,
        Asterisk = 0x18,
        Slash = 0x19,
        Percent = 0x1A,
        Plus = 0x1B,
        Minus = 0x1C,
        ShiftLeft = 0x1D,
        ShiftRight = 0x1E,
        ShiftRightUnsigned = 0x1F,
        Less = 0x20,
        LessOrEqual = 0x21,
        Greater = 0x22,
        GreaterOrEqual = 0x23,
        Equal = 0x24,
        NotEqual = 0x25,
        Ampersand = 0x26,
        Caret = 0x27,
        Bar = 0x28,
        AndAnd = 0x29,
        OrOr = 0x2A,
        Question = 0x2B,
        Assign = 0x2C,
        PlusAssign = 0x2D,
        MinusAssign = 0x2E,
        MultiplyAssign = 0x2F,
        DivideAssign = 0x30,
        ModAssign = 0x31,
        ShiftRightAssign = 0x32,
        ShiftLeftAssign = 0x33,
        ShiftRightUnsignedAssign = 0x34,
        AndAssign = 0x35,
        XorAssign = 0x36,
        OrAssign = 0x37,
        Comma = 0x38
    };

    /// Of what is no operator.
    static constexpr int noPrecedence = 10;
    static constexpr int lowestPrecedence = -4;
    static constexpr int highestPrecedence = 9;

    CStyleLexer();
};
