#pragma once

#include "memorymap/BaseType.h"
#include "memorymap/ExpressionType.h"

#include <initializer_list>

class ExpressionParser;

/// A node of the tree of an expression. A tree is never changed, and parts of it may be shared. Nodes that
/// need a host keep its parser, which must outlive them.
class Expression {
public:
    virtual ~Expression() = default;
    /// Throws ParserException.
    virtual ExpressionType evaluate() const = 0;
    /// The expression as C writes it, each operator in parentheses.
    virtual std::string dump() const = 0;

    /// How many nodes lie on the longest way down.
    uint32_t height() const { return m_height; }
    /// How many nodes an evaluation visits, shared ones as often as it does.
    uint64_t steps() const { return m_steps; }

protected:
    Expression() = default;
    explicit Expression(std::initializer_list<const Expression*> children);
    void countChild(const Expression& child);

private:
    uint32_t m_height = 1;
    uint64_t m_steps = 1;
};

using ExpressionPtr = std::shared_ptr<const Expression>;

class ConstantExpression : public Expression {
public:
    explicit ConstantExpression(ExpressionType value) : m_value(std::move(value)) {}
    ExpressionType evaluate() const override { return m_value; }
    std::string dump() const override;

private:
    ExpressionType m_value;
};

class IntegerConstantExpression : public ConstantExpression {
public:
    explicit IntegerConstantExpression(int64_t value) : ConstantExpression(ExpressionType::ofSigned(value)) {}
};

class FloatConstantExpression : public ConstantExpression {
public:
    explicit FloatConstantExpression(double value) : ConstantExpression(ExpressionType::ofFloat(value)) {}
};

class StringConstantExpression : public ConstantExpression {
public:
    explicit StringConstantExpression(std::string text)
        : ConstantExpression(ExpressionType::ofString(std::move(text))) {}
};

class IdentifierExpression : public Expression {
public:
    IdentifierExpression(std::string name, ExpressionParser& parser)
        : m_name(std::move(name)), m_parser(parser) {}
    const std::string& name() const { return m_name; }
    ExpressionType evaluate() const override;
    std::string dump() const override { return m_name; }

private:
    std::string m_name;
    ExpressionParser& m_parser;
};

/// Names with "::" between them, or one with "::" in front.
class ScopedIdentifierExpression : public Expression {
public:
    ScopedIdentifierExpression(std::vector<std::string> names, ExpressionParser& parser)
        : m_names(std::move(names)), m_parser(parser) {}
    const std::vector<std::string>& names() const { return m_names; }
    ExpressionType evaluate() const override;
    std::string dump() const override;

private:
    std::vector<std::string> m_names;
    ExpressionParser& m_parser;
};

class RegisterExpression : public Expression {
public:
    RegisterExpression(std::string name, ExpressionParser& parser)
        : m_name(std::move(name)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return "@" + m_name; }

private:
    std::string m_name;
    ExpressionParser& m_parser;
};

class UnaryExpression : public Expression {
protected:
    explicit UnaryExpression(ExpressionPtr operand)
        : Expression({operand.get()}), m_operand(std::move(operand)) {}
    const Expression& operand() const { return *m_operand; }

private:
    ExpressionPtr m_operand;
};

class NegateExpression : public UnaryExpression {
public:
    explicit NegateExpression(ExpressionPtr operand) : UnaryExpression(std::move(operand)) {}
    ExpressionType evaluate() const override { return operand().evaluate().negated(); }
    std::string dump() const override { return "(-" + operand().dump() + ")"; }
};

class BitNotExpression : public UnaryExpression {
public:
    explicit BitNotExpression(ExpressionPtr operand) : UnaryExpression(std::move(operand)) {}
    ExpressionType evaluate() const override { return operand().evaluate().bitNot(); }
    std::string dump() const override { return "(~" + operand().dump() + ")"; }
};

class LogicalNotExpression : public UnaryExpression {
public:
    explicit LogicalNotExpression(ExpressionPtr operand) : UnaryExpression(std::move(operand)) {}
    ExpressionType evaluate() const override { return operand().evaluate().logicalNot(); }
    std::string dump() const override { return "(!" + operand().dump() + ")"; }
};

class SizeofExpression : public UnaryExpression {
public:
    SizeofExpression(ExpressionPtr operand, ExpressionParser& parser)
        : UnaryExpression(std::move(operand)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return "sizeof(" + operand().dump() + ")"; }

private:
    ExpressionParser& m_parser;
};

class AddressofExpression : public UnaryExpression {
public:
    AddressofExpression(ExpressionPtr operand, ExpressionParser& parser)
        : UnaryExpression(std::move(operand)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return "(&" + operand().dump() + ")"; }

private:
    ExpressionParser& m_parser;
};

class CastExpression : public UnaryExpression {
public:
    CastExpression(BaseTypePtr type, ExpressionPtr operand, ExpressionParser& parser)
        : UnaryExpression(std::move(operand)), m_type(std::move(type)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return "((" + m_type->dump() + ")" + operand().dump() + ")"; }

private:
    BaseTypePtr m_type;
    ExpressionParser& m_parser;
};

class BinaryExpression : public Expression {
protected:
    BinaryExpression(ExpressionPtr left, ExpressionPtr right)
        : Expression({left.get(), right.get()}), m_left(std::move(left)), m_right(std::move(right)) {}
    const Expression& left() const { return *m_left; }
    const Expression& right() const { return *m_right; }

private:
    ExpressionPtr m_left;
    ExpressionPtr m_right;
};

/// As C writes it.
const char* symbolOf(Operator op);

template<Operator op>
class OperatorExpression : public BinaryExpression {
public:
    OperatorExpression(ExpressionPtr left, ExpressionPtr right)
        : BinaryExpression(std::move(left), std::move(right)) {}
    ExpressionType evaluate() const override {
        const ExpressionType rightValue = right().evaluate(); // comes first
        return ExpressionType::binary(op, left().evaluate(), rightValue);
    }
    std::string dump() const override {
        return "(" + left().dump() + " " + symbolOf(op) + " " + right().dump() + ")";
    }
};

using PlusExpression = OperatorExpression<Operator::Plus>;
using MinusExpression = OperatorExpression<Operator::Minus>;
using MultiplyExpression = OperatorExpression<Operator::Multiply>;
using DivideExpression = OperatorExpression<Operator::Divide>;
using ModExpression = OperatorExpression<Operator::Mod>;
using LshiftExpression = OperatorExpression<Operator::Lshift>;
using RshiftExpression = OperatorExpression<Operator::Rshift>;
using LtExpression = OperatorExpression<Operator::Lt>;
using LeExpression = OperatorExpression<Operator::Le>;
using GtExpression = OperatorExpression<Operator::Gt>;
using GeExpression = OperatorExpression<Operator::Ge>;
using EqExpression = OperatorExpression<Operator::Eq>;
using NeExpression = OperatorExpression<Operator::Ne>;
using BitAndExpression = OperatorExpression<Operator::BitAnd>;
using BitXorExpression = OperatorExpression<Operator::BitXor>;
using BitOrExpression = OperatorExpression<Operator::BitOr>;
using LogicalAndExpression = OperatorExpression<Operator::LogicalAnd>;
using LogicalOrExpression = OperatorExpression<Operator::LogicalOr>;

class AssignExpression : public BinaryExpression {
public:
    AssignExpression(ExpressionPtr left, ExpressionPtr right, ExpressionParser& parser)
        : BinaryExpression(std::move(left), std::move(right)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return "(" + left().dump() + " = " + right().dump() + ")"; }

private:
    ExpressionParser& m_parser;
};

/// A member of what stands on the left; the right is its name and is not evaluated.
class DotExpression : public BinaryExpression {
public:
    DotExpression(ExpressionPtr left, ExpressionPtr right, ExpressionParser& parser)
        : BinaryExpression(std::move(left), std::move(right)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return left().dump() + "." + right().dump(); }

private:
    ExpressionParser& m_parser;
};

class LeftSquareBracketExpression : public BinaryExpression {
public:
    LeftSquareBracketExpression(ExpressionPtr left, ExpressionPtr right, ExpressionParser& parser)
        : BinaryExpression(std::move(left), std::move(right)), m_parser(parser) {}
    ExpressionType evaluate() const override;
    std::string dump() const override { return left().dump() + "[" + right().dump() + "]"; }

private:
    ExpressionParser& m_parser;
};

class CallExpression : public Expression {
public:
    CallExpression(ExpressionPtr callee, std::vector<ExpressionPtr> arguments, ExpressionParser& parser);
    ExpressionType evaluate() const override;
    std::string dump() const override;

private:
    ExpressionPtr m_callee;
    std::vector<ExpressionPtr> m_arguments;
    ExpressionParser& m_parser;
};
