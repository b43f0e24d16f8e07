// The grammar. One operation reads all levels of binary operators: it goes on as long as an operator binds at
// least as closely as its level, and reads the right side one level up, so that all operators associate to
// the left.

#include "memorymap/ExpressionParser.h"

#include "memorymap/ParserException.h"

#include <cstring>

using T = CStyleLexer;

/// Counts operations within each other, since outside bytes decide how deep they go.
class ExpressionParser::Nesting {
public:
    explicit Nesting(int& depth) : m_depth(depth) {
        if (m_depth >= nestingLimit)
            throw ParserException("expression nested too deep");
        ++m_depth;
    }
    ~Nesting() { --m_depth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    int& m_depth;
};

namespace {

[[noreturn]] void fail(const char* cause) { throw ParserException(cause); }

using Make = ExpressionPtr (*)(ExpressionPtr, ExpressionPtr);

template<class Node>
ExpressionPtr makeNode(ExpressionPtr left, ExpressionPtr right) {
    return std::make_shared<Node>(std::move(left), std::move(right));
}

struct OperatorRow {
    T::Token token;
    T::Token assigning; ///< the token that assigns the result as well; the same if there is none
    Make make;
};

constexpr OperatorRow operators[] = {
    {T::Plus, T::PlusAssign, makeNode<PlusExpression>},
    {T::Minus, T::MinusAssign, makeNode<MinusExpression>},
    {T::Asterisk, T::MultiplyAssign, makeNode<MultiplyExpression>},
    {T::Slash, T::DivideAssign, makeNode<DivideExpression>},
    {T::Percent, T::ModAssign, makeNode<ModExpression>},
    {T::ShiftLeft, T::ShiftLeftAssign, makeNode<LshiftExpression>},
    {T::ShiftRight, T::ShiftRightAssign, makeNode<RshiftExpression>},
    {T::Less, T::Less, makeNode<LtExpression>},
    {T::LessOrEqual, T::LessOrEqual, makeNode<LeExpression>},
    {T::Greater, T::Greater, makeNode<GtExpression>},
    {T::GreaterOrEqual, T::GreaterOrEqual, makeNode<GeExpression>},
    {T::Equal, T::Equal, makeNode<EqExpression>},
    {T::NotEqual, T::NotEqual, makeNode<NeExpression>},
    {T::Ampersand, T::AndAssign, makeNode<BitAndExpression>},
    {T::Caret, T::XorAssign, makeNode<BitXorExpression>},
    {T::Bar, T::OrAssign, makeNode<BitOrExpression>},
    {T::AndAnd, T::AndAnd, makeNode<LogicalAndExpression>},
    {T::OrOr, T::OrOr, makeNode<LogicalOrExpression>},
};

} // namespace

ExpressionType ExpressionParser::getAddressof(const ExpressionType&) { fail("addressof not implemented"); }

ExpressionType ExpressionParser::getSizeof(const ExpressionType&) { fail("sizeof not implemented"); }

ExpressionType ExpressionParser::callFunction(const ExpressionType&, const std::vector<ExpressionType>&) {
    fail("function calling not implemented");
}

ExpressionType ExpressionParser::parseAndEvaluate(const char* text, int* end) {
    if (!text || !*text)
        return {};
    return parse(text, end)->evaluate();
}

ExpressionPtr ExpressionParser::parse(const char* text, int* end) {
    const std::string_view view(text, strnlen(text, lengthLimit + 1));
    if (view.size() > lengthLimit)
        fail("expression too long");
    m_lexer.reset(view);
    ExpressionPtr tree = parseExpression(T::lowestPrecedence);
    if (end)
        *end = static_cast<int>(m_lexer.tokenPosition());
    return tree;
}

ExpressionPtr ExpressionParser::bounded(ExpressionPtr node) {
    if (node->height() > nestingLimit)
        fail("expression nested too deep");
    if (node->steps() > stepsLimit)
        fail("expression too complex");
    return node;
}

bool ExpressionParser::take(Token token) {
    if (!at(token))
        return false;
    m_lexer.gettok();
    return true;
}

void ExpressionParser::expect(Token token, const char* failure) {
    if (!take(token))
        fail(failure);
}

std::string ExpressionParser::takeIdentifier() {
    std::string name(m_lexer.tokenText());
    m_lexer.gettok();
    return name;
}

std::string ExpressionParser::expectIdentifier(const char* failure) {
    if (!at(T::Identifier))
        fail(failure);
    return takeIdentifier();
}

// Binary operators.

ExpressionPtr ExpressionParser::parseExpression(int level) {
    const Nesting nesting(m_nesting);
    ExpressionPtr left = parseExpr10();
    while (m_lexer.precedence() >= level && m_lexer.precedence() <= T::highestPrecedence) {
        const int code = m_lexer.code();
        const int precedence = m_lexer.precedence();
        m_lexer.gettok();
        left = combine(code, std::move(left), parseExpression(precedence + 1));
    }
    return left;
}

ExpressionPtr ExpressionParser::combine(int code, ExpressionPtr left, ExpressionPtr right) {
    if (code == T::Assign)
        return assignment(std::move(left), std::move(right));
    for (const OperatorRow& row : operators) {
        if (code == row.token)
            return bounded(row.make(std::move(left), std::move(right)));
        if (code == row.assigning)
            return assignment(left, bounded(row.make(left, std::move(right))));
    }
    fail("operator not supported");
}

ExpressionPtr ExpressionParser::assignment(ExpressionPtr target, ExpressionPtr value) {
    return make<AssignExpression>(std::move(target), std::move(value), *this);
}

// Operands.

ExpressionPtr ExpressionParser::parseExpr10() {
    const Nesting nesting(m_nesting);
    return parsePostfix(parsePrimary());
}

ExpressionPtr ExpressionParser::parsePrimary() {
    const auto token = static_cast<Token>(m_lexer.code());
    switch (token) {
    case T::Integer:
    case T::Hexadecimal:
    case T::Floating:
    case T::String:
    case T::Register:
        return parseLiteral();
    case T::Identifier:
        return m_lexer.identIs("sizeof") ? parseSizeof() : parseIdentifier(false);
    case T::Scope:
        return parseIdentifier(true);
    case T::LeftParenthesis:
        return parseParenthesis();
    case T::Increment:
    case T::Decrement:
    case T::Tilde:
    case T::Exclamation:
    case T::Minus:
    case T::Plus:
    case T::Asterisk:
    case T::Ampersand:
        return parsePrefix(token);
    default:
        fail("expression expected");
    }
}

ExpressionPtr ExpressionParser::parseLiteral() {
    ExpressionPtr literal;
    switch (m_lexer.code()) {
    case T::Integer:
        literal = make<IntegerConstantExpression>(m_lexer.intTok());
        break;
    case T::Hexadecimal:
        literal = make<IntegerConstantExpression>(m_lexer.hexTok());
        break;
    case T::Floating:
        literal = make<FloatConstantExpression>(m_lexer.doubleTok());
        break;
    case T::String:
        literal = make<StringConstantExpression>(m_lexer.strTok());
        break;
    default: // a register, named behind its "@"
        literal = make<RegisterExpression>(std::string(m_lexer.tokenText().substr(1)), *this);
    }
    m_lexer.gettok();
    return literal;
}

ExpressionPtr ExpressionParser::parsePrefix(Token token) {
    m_lexer.gettok();
    ExpressionPtr operand = parseExpr10();
    switch (token) {
    case T::Increment:
        return assignment(operand, make<PlusExpression>(operand, make<IntegerConstantExpression>(1)));
    case T::Decrement:
        return assignment(operand, make<MinusExpression>(operand, make<IntegerConstantExpression>(1)));
    case T::Tilde:
        return make<BitNotExpression>(operand);
    case T::Exclamation:
        return make<LogicalNotExpression>(operand);
    case T::Minus:
        return make<NegateExpression>(operand);
    case T::Asterisk:
        return make<LeftSquareBracketExpression>(
            operand, make<ConstantExpression>(ExpressionType::ofUnsigned(0, 2)), *this);
    case T::Ampersand:
        return make<AddressofExpression>(operand, *this);
    default: // "+" changes nothing
        return operand;
    }
}

ExpressionPtr ExpressionParser::parseParenthesis() {
    m_lexer.gettok();
    if (ExpressionPtr cast = parseCast())
        return cast;
    ExpressionPtr expression = parseExpression(T::lowestPrecedence);
    expect(T::RightParenthesis, "')' expected");
    return expression;
}

ExpressionPtr ExpressionParser::parseSizeof() {
    m_lexer.gettok();
    expect(T::LeftParenthesis, "'(' expected");
    ExpressionPtr operand = parseExpression(T::lowestPrecedence);
    expect(T::RightParenthesis, "')' expected");
    return make<SizeofExpression>(std::move(operand), *this);
}

/// With `scoped` the token is the "::" in front.
ExpressionPtr ExpressionParser::parseIdentifier(bool scoped) {
    if (scoped)
        m_lexer.gettok();
    std::vector<std::string> names = {expectIdentifier("identifier expected")};
    while (take(T::Scope))
        names.push_back(expectIdentifier("identifier expected after '::'"));
    if (names.size() == 1 && !scoped)
        return make<IdentifierExpression>(std::move(names.front()), *this);
    return make<ScopedIdentifierExpression>(std::move(names), *this);
}

ExpressionPtr ExpressionParser::parsePostfix(ExpressionPtr expression) {
    for (;;) {
        if (take(T::LeftSquareBracket)) {
            ExpressionPtr index = parseExpression(T::lowestPrecedence);
            expect(T::RightSquareBracket, "expected ']'");
            expression = make<LeftSquareBracketExpression>(std::move(expression), std::move(index), *this);
        } else if (take(T::Dot) || take(T::Arrow)) {
            expression = make<DotExpression>(std::move(expression), parseIdentifier(false), *this);
        } else if (take(T::Increment)) {
            expression =
                assignment(expression, make<PlusExpression>(expression, make<IntegerConstantExpression>(1)));
        } else if (take(T::Decrement)) {
            expression =
                assignment(expression, make<MinusExpression>(expression, make<IntegerConstantExpression>(1)));
        } else if (take(T::LeftParenthesis)) {
            expression = parseCall(std::move(expression));
        } else {
            return expression;
        }
    }
}

/// The "," between arguments may be left out.
ExpressionPtr ExpressionParser::parseCall(ExpressionPtr callee) {
    std::vector<ExpressionPtr> arguments;
    while (!take(T::RightParenthesis)) {
        arguments.push_back(parseExpr10());
        take(T::Comma);
    }
    return make<CallExpression>(std::move(callee), std::move(arguments), *this);
}
