// Casts and the types that they name.

#include "memorymap/ExpressionParser.h"
#include "memorymap/ParserException.h"

using T = CStyleLexer;

namespace {

[[noreturn]] void fail(const char* cause) { throw ParserException(cause); }

} // namespace

/// The words of a simple type, in any mix.
struct ExpressionParser::TypeWords {
    int longs = 0;
    bool isShort = false;
    bool isChar = false;
    bool isUnsigned = false;
    bool isQualified = false; ///< which alone makes an int
    bool any = false;         ///< any word that tells the type

    /// Whether the word is one of a type.
    bool add(std::string_view word) {
        if (word == "long")
            ++longs;
        else if (word == "short")
            isShort = true;
        else if (word == "char")
            isChar = true;
        else if (word == "unsigned")
            isUnsigned = true;
        else if (word == "const" || word == "volatile")
            return isQualified = true;
        else if (word != "int" && word != "signed")
            return false;
        return any = true;
    }
    SimpleType::Size size() const {
        if (isChar)
            return SimpleType::Char;
        if (isShort)
            return SimpleType::Short;
        return longs > 1 ? SimpleType::LongLong : longs == 1 ? SimpleType::Long : SimpleType::Int;
    }
};

int64_t ExpressionParser::expectInteger(const char* failure) {
    if (!at(T::Integer))
        fail(failure);
    const int64_t value = m_lexer.intTok();
    m_lexer.gettok();
    return value;
}

/// Null, with the token where it was, if no type follows the "(".
ExpressionPtr ExpressionParser::parseCast() {
    if (!at(T::Identifier))
        return nullptr;
    BaseTypePtr type;
    if (m_lexer.identIs("struct"))
        type = parseStructType();
    else if (m_lexer.identIs("register"))
        type = parseRegisterType();
    else
        type = parseSimpleType();
    if (!type)
        return nullptr;
    type = parseTypeSuffixes(std::move(type));
    expect(T::RightParenthesis, "')' expected");
    return make<CastExpression>(std::move(type), parseExpression(T::lowestPrecedence), *this);
}

BaseTypePtr ExpressionParser::parseStructType() {
    m_lexer.gettok();
    if (at(T::Identifier)) {
        const std::string name = "struct " + std::string(m_lexer.tokenText());
        if (!isUserTypeName(name))
            fail("struct type not found");
        m_lexer.gettok();
        return std::make_shared<UserType>(name);
    }
    expect(T::LeftBrace, "'{' expected");
    std::vector<StructType::Field> fields;
    while (!take(T::RightBrace)) {
        StructType::Field field{parseSimpleType(), {}, 0};
        if (!field.type)
            fail("struct parse error");
        if (at(T::Identifier))
            field.name = takeIdentifier();
        if (take(T::Colon))
            field.bits = expectInteger("integer must follow ':'");
        expect(T::Semicolon, "';' expected");
        fields.push_back(std::move(field));
    }
    return std::make_shared<StructType>(std::move(fields));
}

BaseTypePtr ExpressionParser::parseRegisterType() {
    m_lexer.gettok();
    const int64_t size = expectInteger("size expected");
    std::vector<RegisterType::Field> fields;
    while (!take(T::Semicolon)) {
        RegisterType::Field field{expectIdentifier("fieldname expected"), 0, 0};
        field.bitOffset = expectInteger("bitoffset expected");
        field.bitSize = expectInteger("bitsize expected");
        fields.push_back(std::move(field));
    }
    return std::make_shared<RegisterType>(size, std::move(fields));
}

/// Null, with the token where it was, if it begins no type.
BaseTypePtr ExpressionParser::parseSimpleType() {
    TypeWords words;
    BaseTypePtr userType;
    while (at(T::Identifier)) {
        const std::string word(m_lexer.tokenText());
        if (!userType && !words.any && isUserTypeName(word))
            userType = std::make_shared<UserType>(word);
        else if (!words.add(word))
            break;
        m_lexer.gettok();
    }
    if (userType || (!words.any && !words.isQualified))
        return userType;
    return std::make_shared<SimpleType>(words.size(), words.isUnsigned);
}

BaseTypePtr ExpressionParser::parseTypeSuffixes(BaseTypePtr type) {
    for (int count = 0; count < nestingLimit; ++count) {
        if (take(T::Asterisk)) {
            type = std::make_shared<PointerType>(std::move(type));
        } else if (take(T::LeftSquareBracket)) {
            ExpressionPtr length = parseExpression(T::lowestPrecedence);
            expect(T::RightSquareBracket, "']' expected");
            type = std::make_shared<ArrayType>(std::move(type), std::move(length));
        } else {
            return type;
        }
    }
    fail("expression nested too deep");
}
