#pragma once

#include <memory>
#include <string>
#include <vector>

class Expression;

/// A type that a cast names. What it means is for the host to say.
class BaseType {
public:
    virtual ~BaseType() = default;
    /// The type as C writes it, with its parts from left to right.
    virtual std::string dump() const = 0;
};

using BaseTypePtr = std::shared_ptr<const BaseType>;

class SimpleType : public BaseType {
public:
    enum Size { Char = 0, Short = 1, Int = 2, Long = 3, LongLong = 4 };

    SimpleType(Size size, bool isUnsigned) : m_size(size), m_isUnsigned(isUnsigned) {}
    Size size() const { return m_size; }
    bool isUnsigned() const { return m_isUnsigned; }
    std::string dump() const override;

private:
    Size m_size;
    bool m_isUnsigned;
};

/// A type that the host knows by this name; that of a structure begins with "struct ".
class UserType : public BaseType {
public:
    explicit UserType(std::string name) : m_name(std::move(name)) {}
    const std::string& name() const { return m_name; }
    std::string dump() const override { return m_name; }

private:
    std::string m_name;
};

class StructType : public BaseType {
public:
    struct Field {
        BaseTypePtr type;
        std::string name; ///< may be empty
        int64_t bits;     ///< 0 if the field is no bit field
    };

    explicit StructType(std::vector<Field> fields) : m_fields(std::move(fields)) {}
    const std::vector<Field>& fields() const { return m_fields; }
    std::string dump() const override;

private:
    std::vector<Field> m_fields;
};

class RegisterType : public BaseType {
public:
    struct Field {
        std::string name;
        int64_t bitOffset;
        int64_t bitSize;
    };

    RegisterType(int64_t size, std::vector<Field> fields) : m_size(size), m_fields(std::move(fields)) {}
    int64_t size() const { return m_size; }
    const std::vector<Field>& fields() const { return m_fields; }
    std::string dump() const override;

private:
    int64_t m_size;
    std::vector<Field> m_fields;
};

class ArrayType : public BaseType {
public:
    ArrayType(BaseTypePtr of, std::shared_ptr<const Expression> length)
        : m_of(std::move(of)), m_length(std::move(length)) {}
    const BaseType& of() const { return *m_of; }
    /// The number of elements, for the host to evaluate.
    const Expression& length() const { return *m_length; }
    std::string dump() const override;

private:
    BaseTypePtr m_of;
    std::shared_ptr<const Expression> m_length;
};

class PointerType : public BaseType {
public:
    explicit PointerType(BaseTypePtr to) : m_to(std::move(to)) {}
    const BaseType& to() const { return *m_to; }
    std::string dump() const override { return m_to->dump() + "*"; }

private:
    BaseTypePtr m_to;
};
