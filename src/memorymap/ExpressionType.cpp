#include "memorymap/ExpressionType.h"

#include "memorymap/ParserException.h"

#include <bit>
#include <cmath>
#include <limits>

namespace {

[[noreturn]] void failBinary() { throw ParserException("unsupported binary numeric operation"); }
[[noreturn]] void failComparison() { throw ParserException("unsupported comparison operation"); }
[[noreturn]] void failUnary() { throw ParserException("unsupported unary num operation"); }

bool isComparison(Operator op) { return op >= Operator::Lt && op <= Operator::Ne; }

uint64_t lowBytes(uint64_t bits, int size) {
    switch (size) {
    case 1:
        return static_cast<uint8_t>(bits);
    case 2:
        return static_cast<uint16_t>(bits);
    case 4:
        return static_cast<uint32_t>(bits);
    default:
        return bits;
    }
}

int64_t signExtended(uint64_t bits, int size) {
    switch (size) {
    case 1:
        return static_cast<int8_t>(bits);
    case 2:
        return static_cast<int16_t>(bits);
    case 4:
        return static_cast<int32_t>(bits);
    default:
        return static_cast<int64_t>(bits);
    }
}

int64_t truncated(double value) {
    constexpr double limit = 9223372036854775808.0; // 2 to the 63rd
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<int64_t>::max();
    if (value < -limit)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

/// The bits of a quotient or remainder, neither of which a processor forms of the least number and -1.
template<class Integer>
uint64_t divided(Operator op, Integer left, Integer right) {
    if (right == 0)
        throw ParserException("divide by zero");
    if constexpr (std::is_signed_v<Integer>) {
        if (right == -1)
            return op == Operator::Divide ? 0 - static_cast<uint64_t>(left) : 0;
    }
    return static_cast<uint64_t>(op == Operator::Divide ? left / right : left % right);
}

/// The bits of a result. Only division tells signed operands from unsigned ones.
template<class Integer>
uint64_t calculate(Operator op, Integer left, Integer right) {
    const auto l = static_cast<uint64_t>(left);
    const auto r = static_cast<uint64_t>(right);
    switch (op) {
    case Operator::Plus:
        return l + r;
    case Operator::Minus:
        return l - r;
    case Operator::Multiply:
        return l * r;
    case Operator::Divide:
    case Operator::Mod:
        return divided(op, left, right);
    case Operator::BitAnd:
        return l & r;
    case Operator::BitXor:
        return l ^ r;
    case Operator::BitOr:
        return l | r;
    case Operator::LogicalAnd:
        return l && r;
    case Operator::LogicalOr:
        return l || r;
    default:
        failBinary();
    }
}

double calculateFloat(Operator op, double left, double right) {
    switch (op) {
    case Operator::Plus:
        return left + right;
    case Operator::Minus:
        return left - right;
    case Operator::Multiply:
        return left * right;
    case Operator::Divide:
        if (right == 0)
            throw ParserException("divide by zero");
        return left / right;
    default:
        failBinary();
    }
}

template<class Value>
bool compare(Operator op, Value left, Value right) {
    switch (op) {
    case Operator::Lt:
        return left < right;
    case Operator::Le:
        return left <= right;
    case Operator::Gt:
        return left > right;
    case Operator::Ge:
        return left >= right;
    case Operator::Eq:
        return left == right;
    case Operator::Ne:
        return left != right;
    default:
        failComparison();
    }
}

} // namespace

ExpressionType ExpressionType::ofBoolean(bool value) { return {Boolean, 1, value}; }

ExpressionType ExpressionType::ofSigned(int64_t value, int size) {
    return {Signed, size, static_cast<uint64_t>(value)};
}

ExpressionType ExpressionType::ofUnsigned(uint64_t value, int size) { return {Unsigned, size, value}; }

ExpressionType ExpressionType::ofFloat(double value, int size) {
    return {Float, size, std::bit_cast<uint64_t>(value)};
}

ExpressionType ExpressionType::ofString(std::string text) {
    ExpressionType value(String, 0, 0);
    value.m_text = std::move(text);
    return value;
}

ExpressionType ExpressionType::ofMarker(std::shared_ptr<const MarkerType> marker) {
    ExpressionType value(Marker, 0, 0);
    value.m_marker = std::move(marker);
    return value;
}

const char* ExpressionType::TypeToString() const {
    static constexpr const char* signedNames[] = {"char", "short", "int", "long long"};
    static constexpr const char* unsignedNames[] = {"unsigned char", "unsigned short", "unsigned int",
                                                    "unsigned long long"};
    const int width = m_size == 1 ? 0 : m_size == 2 ? 1 : m_size == 4 ? 2 : 3;
    switch (m_kind) {
    case Boolean:
        return "boolean";
    case Signed:
        return signedNames[width];
    case Unsigned:
        return unsignedNames[width];
    case String:
        return "string";
    case Marker:
        return "marker";
    case Float:
        return m_size == 4 ? "float" : "double";
    case None:
        break;
    }
    return "unknown";
}

uint64_t ExpressionType::getUInteger() const {
    switch (m_kind) {
    case Boolean:
    case Signed:
    case Unsigned:
        return lowBytes(m_bits, m_size);
    case Float:
        return m_size == 4 ? std::bit_cast<uint32_t>(static_cast<float>(std::bit_cast<double>(m_bits)))
                           : m_bits;
    default:
        return 0;
    }
}

int64_t ExpressionType::getInteger() const {
    if (m_kind == Float)
        return truncated(std::bit_cast<double>(m_bits));
    if (m_kind == Boolean)
        return static_cast<int64_t>(m_bits);
    return signExtended(m_bits, m_size);
}

double ExpressionType::getDouble() const {
    if (m_kind == Float)
        return std::bit_cast<double>(m_bits);
    return m_kind == Signed ? static_cast<double>(getInteger()) : static_cast<double>(getUInteger());
}

ExpressionType ExpressionType::fetched() const { return m_marker ? m_marker->value() : *this; }

ExpressionType ExpressionType::binary(Operator op, const ExpressionType& left, const ExpressionType& right) {
    if (left.m_marker || right.m_marker) {
        const ExpressionType fetchedRight = right.fetched();
        const ExpressionType fetchedLeft = left.fetched();
        if (fetchedLeft.m_marker || fetchedRight.m_marker)
            failBinary(); // a host that answers a marker with a marker
        return binary(op, fetchedLeft, fetchedRight);
    }
    if (op == Operator::Lshift || op == Operator::Rshift)
        return shifted(op, left, right);
    return isComparison(op) ? left.compared(op, right) : left.calculated(op, right);
}

/// A shift by the width and more leaves nothing but the sign.
ExpressionType ExpressionType::shifted(Operator op, const ExpressionType& left, const ExpressionType& right) {
    if (left.m_kind != Signed && left.m_kind != Unsigned)
        throw ParserException("can only shift numeric values");
    if (right.m_kind != Signed && right.m_kind != Unsigned)
        throw ParserException("integer shift value expected");
    const uint64_t count =
        right.m_kind == Signed ? static_cast<uint64_t>(right.getInteger()) : right.getUInteger();
    uint64_t bits = 0;
    if (op == Operator::Rshift && left.m_kind == Signed)
        bits = static_cast<uint64_t>(static_cast<int64_t>(left.m_bits) >> (count > 63 ? 63 : count));
    else if (count <= 63)
        bits = op == Operator::Lshift ? left.m_bits << count : left.m_bits >> count;
    return {left.m_kind, left.m_size, bits};
}

ExpressionType ExpressionType::compared(Operator op, const ExpressionType& right) const {
    switch (m_kind) {
    case Boolean:
        return ofBoolean(compare(op, static_cast<uint8_t>(m_bits), static_cast<uint8_t>(right.getInteger())));
    case Signed:
        return ofBoolean(compare(op, static_cast<int64_t>(m_bits), right.getInteger()));
    case Unsigned:
        return ofBoolean(compare(op, m_bits, right.getUInteger()));
    case Float:
        return ofBoolean(compare(op, getDouble(), right.getDouble()));
    case String:
        if (op == Operator::Eq || op == Operator::Ne)
            return ofBoolean((m_text == right.m_text) == (op == Operator::Eq));
        failComparison();
    default:
        failComparison();
    }
}

ExpressionType ExpressionType::calculated(Operator op, const ExpressionType& right) const {
    switch (m_kind) {
    case Boolean: {
        const uint64_t byte = calculate(op, m_bits & 0xFF, static_cast<uint64_t>(right.getInteger()) & 0xFF);
        return ofBoolean(byte & 0xFF);
    }
    case Signed:
        return {Signed, m_size, calculate(op, static_cast<int64_t>(m_bits), right.getInteger())};
    case Unsigned:
        return {Unsigned, m_size, calculate(op, m_bits, right.getUInteger())};
    case Float:
        return ofFloat(calculateFloat(op, getDouble(), right.getDouble()), m_size);
    default:
        failBinary();
    }
}

ExpressionType ExpressionType::negated() const {
    const ExpressionType value = fetched();
    if (value.m_kind == Float)
        return ofFloat(-value.getDouble(), value.m_size);
    if (value.m_kind != Signed && value.m_kind != Unsigned)
        failUnary();
    return {value.m_kind, value.m_size, 0 - value.m_bits};
}

ExpressionType ExpressionType::bitNot() const {
    const ExpressionType value = fetched();
    if (value.m_kind != Signed && value.m_kind != Unsigned)
        failUnary();
    return {value.m_kind, value.m_size, ~value.m_bits};
}

ExpressionType ExpressionType::logicalNot() const {
    const ExpressionType value = fetched();
    if (value.m_kind != Boolean && !value.isNumberType())
        failUnary();
    return ofBoolean(value.m_kind == Float ? value.getDouble() == 0 : value.m_bits == 0);
}
