#include "memorymap/Expression.h"

#include "memorymap/ExpressionParser.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr uint64_t mostSteps = uint64_t{1} << 62; ///< where counting ends

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : separator) + text;
    return all;
}

} // namespace

Expression::Expression(std::initializer_list<const Expression*> children) {
    for (const Expression* child : children)
        countChild(*child);
}

void Expression::countChild(const Expression& child) {
    m_height = std::max(m_height, child.m_height + 1);
    m_steps = std::min(m_steps + child.m_steps, mostSteps);
}

const char* symbolOf(Operator op) {
    static constexpr const char* symbols[] = {
        "+", "-", "*", "/", "%", "<<", ">>", "<", "<=", ">", ">=", "==", "!=", "&", "^", "|", "&&", "||"};
    return symbols[static_cast<size_t>(op)];
}

std::string ConstantExpression::dump() const {
    switch (m_value.kind()) {
    case ExpressionType::String:
        return "\"" + m_value.text() + "\"";
    case ExpressionType::Float: {
        std::array<char, 512> digits; // more than the largest number has
        const auto end =
            std::to_chars(digits.begin(), digits.end(), m_value.getDouble(), std::chars_format::fixed).ptr;
        const std::string_view number(digits.begin(), end);
        return std::string(number) + (number.find('.') == number.npos ? ".0" : "");
    }
    default:
        return std::to_string(m_value.getUInteger());
    }
}

ExpressionType IdentifierExpression::evaluate() const { return m_parser.getIdentifier(m_name); }

ExpressionType ScopedIdentifierExpression::evaluate() const { return m_parser.getScopedIdentifier(m_names); }

std::string ScopedIdentifierExpression::dump() const {
    return (m_names.size() == 1 ? "::" : "") + joined(m_names, "::");
}

ExpressionType RegisterExpression::evaluate() const { return m_parser.getRegister(m_name); }

ExpressionType SizeofExpression::evaluate() const { return m_parser.getSizeof(operand().evaluate()); }

ExpressionType AddressofExpression::evaluate() const { return m_parser.getAddressof(operand().evaluate()); }

ExpressionType CastExpression::evaluate() const {
    return m_parser.cast(m_type.get(), operand().evaluate().fetched());
}

ExpressionType AssignExpression::evaluate() const {
    const ExpressionType value = right().evaluate().fetched();
    return m_parser.assign(left().evaluate(), value);
}

ExpressionType DotExpression::evaluate() const {
    const ExpressionType whole = left().evaluate();
    if (const auto* field = dynamic_cast<const IdentifierExpression*>(&right()))
        return m_parser.getDereference(whole, field->name());
    return m_parser.getDereference(whole, dynamic_cast<const ScopedIdentifierExpression&>(right()).names());
}

ExpressionType LeftSquareBracketExpression::evaluate() const {
    const uint64_t offset = right().evaluate().fetched().getUInteger();
    return m_parser.getDereference(left().evaluate(), offset);
}

CallExpression::CallExpression(ExpressionPtr callee, std::vector<ExpressionPtr> arguments,
                               ExpressionParser& parser)
    : Expression({callee.get()}),
      m_callee(std::move(callee)),
      m_arguments(std::move(arguments)),
      m_parser(parser) {
    for (const ExpressionPtr& argument : m_arguments)
        countChild(*argument);
}

ExpressionType CallExpression::evaluate() const {
    const ExpressionType callee = m_callee->evaluate();
    std::vector<ExpressionType> arguments;
    for (const ExpressionPtr& argument : m_arguments)
        arguments.push_back(argument->evaluate());
    return m_parser.callFunction(callee, arguments);
}

std::string CallExpression::dump() const {
    std::vector<std::string> texts;
    for (const ExpressionPtr& argument : m_arguments)
        texts.push_back(argument->dump());
    return m_callee->dump() + "(" + joined(texts, ", ") + ")";
}
