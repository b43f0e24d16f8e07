#pragma once

#include "memorymap/ExpressionParser.h"

/// Arithmetic with constants: literals, operators and parentheses. Whatever names something fails.
class SimpleExpressionParser : public ExpressionParser {
public:
    /// The parser of the process.
    static SimpleExpressionParser& instance();

    /// The value of an expression that is a number; of anything else 0, with `ok` false. Throws
    /// ParserException, with `ok` false too.
    uint64_t getUInteger(const char* text, bool& ok);

    ExpressionType getScopedIdentifier(const std::vector<std::string>& names) override;
    ExpressionType getIdentifier(const std::string& name) override;
    ExpressionType getRegister(const std::string& name) override;
    bool isUserTypeName(const std::string& name) override;
    ExpressionType cast(const BaseType* type, const ExpressionType& value) override;
    ExpressionType getDereference(const ExpressionType& marker, uint64_t offset) override;
    ExpressionType getDereference(const ExpressionType& marker, const std::string& field) override;
    ExpressionType getDereference(const ExpressionType& marker,
                                  const std::vector<std::string>& names) override;
    ExpressionType assign(const ExpressionType& marker, const ExpressionType& value) override;
    ExpressionType getValue(const ExpressionType& marker) override;
};

/// The parser of the process, which reads the addresses of memory maps.
extern SimpleExpressionParser simpleExpressionParser;
