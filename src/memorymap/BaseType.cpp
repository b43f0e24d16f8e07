#include "memorymap/BaseType.h"

#include "memorymap/Expression.h"

std::string SimpleType::dump() const {
    static constexpr const char* names[] = {"char", "short", "int", "long", "long long"};
    return std::string(m_isUnsigned ? "unsigned " : "") + names[m_size];
}

std::string StructType::dump() const {
    std::string text = "struct { ";
    for (const Field& field : m_fields) {
        text += field.type->dump();
        if (!field.name.empty())
            text += " " + field.name;
        if (field.bits)
            text += " : " + std::to_string(field.bits);
        text += "; ";
    }
    return text + "}";
}

std::string RegisterType::dump() const {
    std::string text = "register " + std::to_string(m_size);
    for (const Field& field : m_fields)
        text +=
            " " + field.name + " " + std::to_string(field.bitOffset) + " " + std::to_string(field.bitSize);
    return text + ";";
}

std::string ArrayType::dump() const { return m_of->dump() + "[" + m_length->dump() + "]"; }
