#pragma once

#include "memorymap/MarkerType.h"

#include <cstdint>
#include <memory>
#include <string>

/// The operators of arithmetic that stand between two operands.
enum class Operator {
    Plus,
    Minus,
    Multiply,
    Divide,
    Mod,
    Lshift,
    Rshift,
    Lt,
    Le,
    Gt,
    Ge,
    Eq,
    Ne,
    BitAnd,
    BitXor,
    BitOr,
    LogicalAnd,
    LogicalOr
};

/// A value of some type, and the arithmetic of values. The left operand's type decides how an operator works
/// and what it gives. Integers keep all their 64 bits in arithmetic, and overflow wraps; their size matters
/// when the value is read. Failures are ParserExceptions.
class ExpressionType {
public:
    enum Kind { Boolean = 0, Signed = 1, Unsigned = 2, String = 3, Marker = 4, Float = 5, None = 6 };

    /// No value.
    ExpressionType() = default;
    static ExpressionType ofBoolean(bool value);
    /// `size` is in bytes: 1, 2, 4 or 8, of a float 4 or 8.
    static ExpressionType ofSigned(int64_t value, int size = 8);
    static ExpressionType ofUnsigned(uint64_t value, int size = 8);
    static ExpressionType ofFloat(double value, int size = 8);
    static ExpressionType ofString(std::string text);
    static ExpressionType ofMarker(std::shared_ptr<const MarkerType> marker);

    Kind kind() const { return m_kind; }
    int size() const { return m_size; }
    /// Free for a host; 0 in all results.
    int flags() const { return m_flags; }
    void setFlags(int flags) { m_flags = flags; }
    /// The text of a string.
    const std::string& text() const { return m_text; }
    /// Null unless the value is a marker.
    const MarkerType* marker() const { return m_marker.get(); }

    /// A boolean is no number.
    bool isNumberType() const { return m_kind == Signed || m_kind == Unsigned || m_kind == Float; }
    /// The name of the type, as C has it.
    const char* TypeToString() const;

    /// The low bytes, as many as the value has, with zeros above them. Of a float its bits, those of a single
    /// if it has 4 bytes; of what is neither boolean nor number 0.
    uint64_t getUInteger() const;
    /// The same with the sign above them. A float is cut towards zero, and one beyond all integers gives the
    /// nearest of them.
    int64_t getInteger() const;
    double getDouble() const;

    /// What a marker stands for; any other value itself.
    ExpressionType fetched() const;
    static ExpressionType binary(Operator op, const ExpressionType& left, const ExpressionType& right);
    ExpressionType negated() const;
    ExpressionType bitNot() const;
    ExpressionType logicalNot() const;

private:
    ExpressionType(Kind kind, int size, uint64_t bits) : m_kind(kind), m_size(size), m_bits(bits) {}

    static ExpressionType shifted(Operator op, const ExpressionType& left, const ExpressionType& right);
    ExpressionType compared(Operator op, const ExpressionType& right) const;
    ExpressionType calculated(Operator op, const ExpressionType& right) const;

    Kind m_kind = None;
    int m_size = 0;
    int m_flags = 0;
    uint64_t m_bits = 0; ///< of a boolean, an integer, or a double
    std::string m_text;
    std::shared_ptr<const MarkerType> m_marker;
};
