#include "memorymap/CStyleLexer.h"

#include <array>

namespace {

enum Class : uint8_t {
    Space = 1,
    Digit = 2,
    HexDigit = 4,
    NameStart = 8,    ///< of an identifier
    Name = 16,        ///< further on in it
    RegisterName = 32 ///< behind the "@"
};

constexpr std::array<uint8_t, 256> classes = [] {
    std::array<uint8_t, 256> table{};
    for (char c : std::string_view(" \t\n\v\f\r"))
        table[static_cast<unsigned char>(c)] = Space;
    for (unsigned c = '0'; c <= '9'; ++c)
        table[c] = Digit | HexDigit | Name | RegisterName;
    for (unsigned c = 'a'; c <= 'z'; ++c)
        table[c] = table[c - 'a' + 'A'] =
            static_cast<uint8_t>(NameStart | Name | RegisterName | (c <= 'f' ? HexDigit : 0));
    table['_'] = NameStart | Name | RegisterName;
    table['$'] = NameStart | Name;
    return table;
}();

bool is(char c, Class wanted) { return classes[static_cast<unsigned char>(c)] & wanted; }

/// Where the run of such characters from `at` on ends.
size_t endOfRun(std::string_view text, size_t at, Class wanted) {
    while (at < text.size() && is(text[at], wanted))
        ++at;
    return at;
}

size_t whiteSpaceLength(std::string_view text) { return endOfRun(text, 0, Space); }
size_t integerLength(std::string_view text) { return endOfRun(text, 0, Digit); }

size_t stringLength(std::string_view text) {
    if (!text.starts_with('"'))
        return 0;
    const size_t end = text.find('"', 1);
    return end == std::string_view::npos ? 0 : end + 1;
}

/// "0x" alone is one too.
size_t hexadecimalLength(std::string_view text) {
    return text.starts_with("0x") ? endOfRun(text, 2, HexDigit) : 0;
}

size_t floatingLength(std::string_view text) {
    const size_t point = integerLength(text);
    if (point == 0 || !text.substr(point).starts_with('.'))
        return 0;
    const size_t end = endOfRun(text, point + 1, Digit);
    return end == point + 1 ? 0 : end;
}

size_t identifierLength(std::string_view text) {
    return is(text[0], NameStart) ? endOfRun(text, 1, Name) : 0;
}

size_t registerLength(std::string_view text) {
    return text.starts_with('@') ? endOfRun(text, 1, RegisterName) : 0;
}

using T = CStyleLexer;
constexpr int none = CStyleLexer::noPrecedence;

// In the order of matching: what begins like another one stands in front of it.
constexpr LexerToken tokens[] = {
    {whiteSpaceLength, Lexer::whiteSpace, none},
    {stringLength, T::String, none},
    {hexadecimalLength, T::Hexadecimal, none},
    {floatingLength, T::Floating, none},
    {integerLength, T::Integer, none},
    {identifierLength, T::Identifier, none},
    {registerLength, T::Register, none},
    {";", T::Semicolon, none},
    {"::", T::Scope, none},
    {":", T::Colon, none},
    {"(", T::LeftParenthesis, none},
    {")", T::RightParenthesis, none},
    {"[", T::LeftSquareBracket, none},
    {"]", T::RightSquareBracket, none},
    {"{", T::LeftBrace, none},
    {"}", T::RightBrace, none},
    {".", T::Dot, none},
    {"->", T::Arrow, none},
    {"++", T::Increment, none},
    {"--", T::Decrement, none},
    {"!=", T::NotEqual, 5},
    {"!", T::Exclamation, none},
    {"~", T::Tilde, none},
    {"*=", T::MultiplyAssign, -3},
    {"*", T::Asterisk, 9},
    {"/=", T::DivideAssign, -3},
    {"/", T::Slash, 9},
    {"%=", T::ModAssign, -3},
    {"%", T::Percent, 9},
    {"+=", T::PlusAssign, -3},
    {"+", T::Plus, 8},
    {"-=", T::MinusAssign, -3},
    {"-", T::Minus, 8},
    {"<<=", T::ShiftLeftAssign, -3},
    {"<<", T::ShiftLeft, 7},
    {">>>=", T::ShiftRightUnsignedAssign, -3},
    {">>>", T::ShiftRightUnsigned, 7},
    {">>=", T::ShiftRightAssign, -3},
    {">>", T::ShiftRight, 7},
    {"<=", T::LessOrEqual, 6},
    {"<", T::Less, 6},
    {">=", T::GreaterOrEqual, 6},
    {">", T::Greater, 6},
    {"==", T::Equal, 5},
    {"^=", T::XorAssign, -3},
    {"^", T::Caret, 3},
    {"&=", T::AndAssign, -3},
    {"&&", T::AndAnd, 1},
    {"&", T::Ampersand, 4},
    {"|=", T::OrAssign, -3},
    {"||", T::OrOr, 0},
    {"|", T::Bar, 2},
    {"?", T::Question, -1},
    {"=", T::Assign, -2},
    {",", T::Comma, -4},
};

} // namespace

CStyleLexer::CStyleLexer() : Lexer(tokens) {}
