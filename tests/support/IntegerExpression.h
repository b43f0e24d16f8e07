#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// An expression of integers made out of bytes, with its value by another way than the grammar's: two stacks,
/// one of operands and one of operators.
class IntegerExpression {
public:
    /// `next` gives the bytes that decide, and 0 for ever behind their end.
    explicit IntegerExpression(const std::function<uint8_t()>& next) {
        addSum(next, 4);
        m_value = evaluate();
    }

    const std::string& text() const { return m_text; }
    /// Nothing if something is divided by zero.
    std::optional<uint64_t> value() const { return m_value; }

private:
    struct Operator {
        const char* text;
        int precedence;
    };
    static constexpr Operator operators[] = {{"*", 9},  {"/", 9}, {"%", 9}, {"+", 8}, {"-", 8},  {"<<", 7},
                                             {">>", 7}, {"&", 4}, {"^", 3}, {"|", 2}, {"&&", 1}, {"||", 0}};
    static constexpr int unary = 10;
    static constexpr int parenthesis = -1;

    struct Token {
        enum Kind { Number, Binary, Unary, Open, Close } kind;
        uint64_t number;
        std::string text;
        int precedence;
    };

    void add(Token token) {
        m_text += (m_text.empty() ? "" : " ") + token.text;
        m_tokens.push_back(std::move(token));
    }

    void addSum(const std::function<uint8_t()>& next, int depth) {
        addOperand(next, depth);
        for (int more = next() % 4; more > 0; --more) {
            const Operator& op = operators[next() % std::size(operators)];
            add({Token::Binary, 0, op.text, op.precedence});
            addOperand(next, depth);
        }
    }

    void addOperand(const std::function<uint8_t()>& next, int depth) {
        const uint8_t kind = next();
        if (kind >= 0xC0 && depth > 0) {
            add({Token::Unary, 0, kind % 3 == 0 ? "-" : kind % 3 == 1 ? "~" : "+", unary});
            addOperand(next, depth - 1);
        } else if (kind >= 0x80 && depth > 0) {
            add({Token::Open, 0, "(", parenthesis});
            addSum(next, depth - 1);
            add({Token::Close, 0, ")", parenthesis});
        } else {
            addNumber(next, kind);
        }
    }

    void addNumber(const std::function<uint8_t()>& next, uint8_t kind) {
        uint64_t number = next();
        for (int bytes = kind % 4; bytes > 0; --bytes)
            number = number << 8 | next();
        char digits[32];
        const char* formats[] = {"%llu", "0x%llx", "0%llo"};
        std::snprintf(digits, sizeof digits, formats[kind % 3], static_cast<unsigned long long>(number));
        add({Token::Number, number, digits, 0});
    }

    std::optional<uint64_t> evaluate() const {
        std::vector<uint64_t> operands;
        std::vector<const Token*> open;
        const auto reduce = [&](int least) {
            while (!open.empty() && open.back()->precedence >= least) {
                if (!apply(*open.back(), operands))
                    return false;
                open.pop_back();
            }
            return true;
        };
        for (const Token& token : m_tokens) {
            if (token.kind == Token::Number) {
                operands.push_back(token.number);
            } else if (token.kind == Token::Close) {
                if (!reduce(0))
                    return std::nullopt;
                open.pop_back();
            } else {
                if (token.kind == Token::Binary && !reduce(token.precedence))
                    return std::nullopt;
                open.push_back(&token);
            }
        }
        if (!reduce(0))
            return std::nullopt;
        return operands.back();
    }

    static bool apply(const Token& token, std::vector<uint64_t>& operands) {
        const uint64_t right = operands.back();
        if (token.kind == Token::Unary) {
            operands.back() = token.text == "-" ? ~right + 1 : token.text == "~" ? ~right : right;
            return true;
        }
        operands.pop_back();
        uint64_t& left = operands.back();
        const bool divides = token.text == "/" || token.text == "%";
        if (divides && right == 0)
            return false;
        left = result(token.text, left, right);
        return true;
    }

    /// In 128 bits, where nothing overflows, and cut to 64.
    static uint64_t result(const std::string& op, uint64_t left, uint64_t right) {
        __extension__ using Wide = __int128;
        const Wide l = static_cast<int64_t>(left);
        const Wide r = static_cast<int64_t>(right);
        const bool shiftsOut = right > 63;
        const auto cut = [](Wide value) { return static_cast<uint64_t>(value); };
        switch (op[0]) {
        case '*':
            return cut(l * r);
        case '/':
            return cut(l / r);
        case '%':
            return cut(l % r);
        case '+':
            return cut(l + r);
        case '-':
            return cut(l - r);
        case '<':
            return shiftsOut ? 0 : left << right;
        case '>':
            return cut(l >> (shiftsOut ? 64 : right));
        case '^':
            return left ^ right;
        case '&':
            return op == "&&" ? left && right : left & right;
        default:
            return op == "||" ? left || right : left | right;
        }
    }

    std::string m_text;
    std::vector<Token> m_tokens;
    std::optional<uint64_t> m_value;
};
