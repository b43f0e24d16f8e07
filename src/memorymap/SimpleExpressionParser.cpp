#include "memorymap/SimpleExpressionParser.h"

#include "memorymap/ParserException.h"

SimpleExpressionParser simpleExpressionParser;

namespace {

[[noreturn]] void fail(const char* cause) { throw ParserException(cause); }

} // namespace

SimpleExpressionParser& SimpleExpressionParser::instance() { return simpleExpressionParser; }

uint64_t SimpleExpressionParser::getUInteger(const char* text, bool& ok) {
    ok = false;
    const ExpressionType value = parseAndEvaluate(text);
    if (!value.isNumberType())
        return 0;
    ok = true;
    return value.getUInteger();
}

ExpressionType SimpleExpressionParser::getScopedIdentifier(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names)
        all += (all.empty() ? "" : "::") + name;
    throw ParserException(all + " symbol not found");
}

ExpressionType SimpleExpressionParser::getIdentifier(const std::string& name) {
    throw ParserException(name + " symbol not found");
}

ExpressionType SimpleExpressionParser::getRegister(const std::string&) { fail("unknown register"); }

bool SimpleExpressionParser::isUserTypeName(const std::string&) { return false; }

ExpressionType SimpleExpressionParser::cast(const BaseType*, const ExpressionType&) { fail("cannot cast"); }

ExpressionType SimpleExpressionParser::getDereference(const ExpressionType&, uint64_t) {
    fail("cannot dereference");
}

ExpressionType SimpleExpressionParser::getDereference(const ExpressionType&, const std::string&) {
    fail("cannot dereference");
}

ExpressionType SimpleExpressionParser::getDereference(const ExpressionType&,
                                                      const std::vector<std::string>&) {
    fail("cannot dereference");
}

ExpressionType SimpleExpressionParser::assign(const ExpressionType&, const ExpressionType&) {
    fail("this symbol not found");
}

ExpressionType SimpleExpressionParser::getValue(const ExpressionType&) { fail("this symbol not found"); }
