// Expressions. What is read prints as something that reads the same; a host that knows every name gets no
// further than its bounds; and an expression of integers, made out of the same bytes, has the value that
// another way of evaluation gives.

#include "memorymap/ParserException.h"
#include "memorymap/SimpleExpressionParser.h"
#include "support/IntegerExpression.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// Every name is a number, every type is known, and every assignment works.
class Host : public SimpleExpressionParser {
public:
    ExpressionType getIdentifier(const std::string& name) override {
        return ExpressionType::ofUnsigned(name.size(), 1 << (name.size() % 4));
    }
    ExpressionType getRegister(const std::string&) override { return ExpressionType::ofFloat(1.5, 4); }
    bool isUserTypeName(const std::string& name) override { return name.size() % 2; }
    ExpressionType cast(const BaseType* type, const ExpressionType& value) override {
        return ExpressionType::ofSigned(value.getInteger(), type->dump().size() % 2 ? 2 : 1);
    }
    ExpressionType getDereference(const ExpressionType& marker, uint64_t offset) override {
        return ExpressionType::ofUnsigned(marker.getUInteger() + offset);
    }
    ExpressionType assign(const ExpressionType&, const ExpressionType& value) override { return value; }
};

void evaluate(ExpressionParser& parser, const std::string& text) {
    try {
        parser.parseAndEvaluate(text.c_str());
    } catch (const ParserException& failure) {
        if (failure.getCause().empty())
            std::abort();
    }
}

void checkPrinting(ExpressionParser& parser, const std::string& text) {
    try {
        const std::string printed = parser.parse(text.c_str())->dump();
        if (printed.size() < 2000 && parser.parse(printed.c_str())->dump() != printed)
            std::abort();
    } catch (const ParserException&) {
    }
}

void checkIntegers(const uint8_t* data, size_t size) {
    const IntegerExpression expression([&] { return size ? --size, *data++ : uint8_t{0}; });
    try {
        const ExpressionType value = simpleExpressionParser.parseAndEvaluate(expression.text().c_str());
        if (!expression.value() || value.getUInteger() != *expression.value())
            std::abort();
    } catch (const ParserException& failure) {
        if (expression.value() || failure.getCause() != "divide by zero")
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Host host;
    evaluate(simpleExpressionParser, text);
    evaluate(host, text);
    checkPrinting(host, text);
    checkIntegers(data, size);
    return 0;
}
