#pragma once

#include "memorymap/CStyleLexer.h"
#include "memorymap/Expression.h"

/// Reads expressions as C writes them, and evaluates them. What a name, a register, a cast, a member or an
/// assignment means is for a host to say, which derives from this class; those operations stand first. All
/// failures are ParserExceptions, and the first one ends the parse.
class ExpressionParser {
public:
    // What a host supplies. A value that comes in may be a marker of its own.
    virtual ExpressionType getScopedIdentifier(const std::vector<std::string>& names) = 0;
    virtual ExpressionType getIdentifier(const std::string& name) = 0;
    virtual ExpressionType getRegister(const std::string& name) = 0;
    virtual bool isUserTypeName(const std::string& name) = 0;
    virtual ExpressionType cast(const BaseType* type, const ExpressionType& value) = 0;
    virtual ExpressionType getDereference(const ExpressionType& marker, uint64_t offset) = 0;
    virtual ExpressionType getDereference(const ExpressionType& marker, const std::string& field) = 0;
    virtual ExpressionType getDereference(const ExpressionType& marker,
                                          const std::vector<std::string>& names) = 0;
    virtual ExpressionType getAddressof(const ExpressionType& marker);
    virtual ExpressionType getSizeof(const ExpressionType& marker);
    virtual ExpressionType assign(const ExpressionType& marker, const ExpressionType& value) = 0;
    virtual ExpressionType getValue(const ExpressionType& marker) = 0;
    virtual ExpressionType callFunction(const ExpressionType& marker,
                                        const std::vector<ExpressionType>& arguments);
    virtual ~ExpressionParser() = default;

    /// The value of the expression that the text begins with; no value for a null or empty text. `end`
    /// receives where what is left over begins, which is not looked at.
    ExpressionType parseAndEvaluate(const char* text, int* end = nullptr);
    /// The tree of the expression, never null. It must not outlive the parser.
    ExpressionPtr parse(const char* text, int* end = nullptr);

    // Expressions are short; what goes beyond these bounds fails.
    static constexpr size_t lengthLimit = 65536; ///< characters
    static constexpr int nestingLimit = 1000;    ///< operations of the grammar within each other; nodes too
    static constexpr uint64_t stepsLimit = 1'000'000; ///< nodes that an evaluation visits

private:
    class Nesting;
    struct TypeWords;
    using Token = CStyleLexer::Token;

    bool at(Token token) const { return m_lexer.code() == token; }
    bool take(Token token);
    void expect(Token token, const char* failure);
    std::string takeIdentifier();
    std::string expectIdentifier(const char* failure);
    int64_t expectInteger(const char* failure);

    ExpressionPtr parseExpression(int level);
    ExpressionPtr parseExpr10();
    ExpressionPtr parsePrimary();
    ExpressionPtr parseLiteral();
    ExpressionPtr parsePrefix(Token token);
    ExpressionPtr parseParenthesis();
    ExpressionPtr parseSizeof();
    ExpressionPtr parseIdentifier(bool scoped);
    ExpressionPtr parsePostfix(ExpressionPtr expression);
    ExpressionPtr parseCall(ExpressionPtr callee);
    ExpressionPtr combine(int code, ExpressionPtr left, ExpressionPtr right);
    ExpressionPtr assignment(ExpressionPtr target, ExpressionPtr value);

    ExpressionPtr parseCast();
    BaseTypePtr parseStructType();
    BaseTypePtr parseRegisterType();
    BaseTypePtr parseSimpleType();
    BaseTypePtr parseTypeSuffixes(BaseTypePtr type);

    template<class Node, class... Arguments>
    ExpressionPtr make(Arguments&&... arguments) {
        return bounded(std::make_shared<Node>(std::forward<Arguments>(arguments)...));
    }
    static ExpressionPtr bounded(ExpressionPtr node);

    CStyleLexer m_lexer;
    int m_nesting = 0;
};
