// Expressions of constants: what they give, what fails, and their bounds.

#include "memorymap/NumberText.h"
#include "memorymap/ParserException.h"
#include "memorymap/SimpleExpressionParser.h"
#include "support/IntegerExpression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace {

/// The value with its type, as in "14 long long"; the cause of a failure behind "! ".
std::string valueOf(const std::string& text) {
    try {
        const ExpressionType value = simpleExpressionParser.parseAndEvaluate(text.c_str());
        std::string number = value.text();
        if (value.kind() == ExpressionType::Signed)
            number = std::to_string(value.getInteger());
        else if (value.kind() == ExpressionType::Float)
            number = std::to_string(value.getDouble());
        else if (value.kind() == ExpressionType::Boolean)
            number = value.getUInteger() ? "true" : "false";
        return number + " " + value.TypeToString();
    } catch (const ParserException& failure) {
        return "! " + failure.getCause();
    }
}

/// The value of an expression that is an integer, without its type.
std::string integerOf(const std::string& text) {
    std::string value = valueOf(text);
    constexpr std::string_view type = " long long";
    if (value.ends_with(type))
        value.resize(value.size() - type.size());
    return value;
}

struct Row {
    std::string text;
    std::string value;
};

std::string repeated(const std::string& text, size_t count) {
    std::string all;
    for (size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

} // namespace

TEST(Expression, IntegersGoByThePrecedenceOfC) {
    const Row rows[] = {
        {"0x8000", "32768"},
        {"+0x100", "256"},
        {"(1<<16)-1", "65535"},
        {"2+3*4", "14"},
        {"(2+3)*4", "20"},
        {"1<<4+1", "32"},
        {"10-4-3", "3"},
        {"100/10/2*3%4", "3"},
        {"1|2^3&2", "1"},
        {"1|6^3", "5"},
        {"2||0&&0", "1"},
        {"0||0", "0"},
        {"-7/2", "-3"},
        {"-7%3", "-1"},
        {"-16>>2", "-4"},
        {"~0", "-1"},
        {"- - 3", "3"},
        {"-~!0", "! unsupported unary num operation"},
        {" \t 1 + \n 2 \r", "3"},
        {"0x", "0"},
        {"0xFFFFFFFF", "4294967295"},
        {"0x100000000", "4294967295"},
        {"0XFF", "0"},
        {"010", "8"},
        {"08", "8"},
        {"0b101", "0"},
        {"1 2", "1"},
        {"1)", "1"},
        {"9223372036854775807+1", "-9223372036854775808"},
        {"(9223372036854775807+1)/-1", "-9223372036854775808"},
        {"(9223372036854775807+1)%-1", "0"},
        {"18446744073709551615", "-1"},
        {"1<<63", "-9223372036854775808"},
        {"1<<64", "0"},
        {"1<<-1", "0"},
        {"-1>>1000", "-1"},
        {"1>>0-1", "0"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(integerOf(row.text), row.value) << row.text;
}

TEST(Expression, LeftOperandDecidesTheType) {
    const Row rows[] = {
        {"1 == 1", "true boolean"},
        {"1 != 1", "false boolean"},
        {"1 < 2", "true boolean"},
        {"2 <= 1", "false boolean"},
        {"2 > 1", "true boolean"},
        {"1 >= 2", "false boolean"},
        {"-1 < 0", "true boolean"},
        {"7&3==3", "1 long long"},
        {"7&(3==3)", "1 long long"},
        {"(1==1) + 0", "true boolean"},
        {"(1==1) - 1", "false boolean"},
        {"(1==1) / (1==2)", "! divide by zero"},
        {"(1==1) < 2", "true boolean"},
        {"1.5", "1.500000 double"},
        {"1.5 * 2", "3.000000 double"},
        {"2 * 1.5", "2 long long"},
        {"0-(0-1.5)", "1 long long"},
        {"2 + -1.9", "1 long long"},
        {"-1.5", "-1.500000 double"},
        {"0." + repeated("0", 400) + "1", "0.000000 double"},
        {repeated("9", 400) + ".0", "inf double"},
        {"1.5 > 1", "true boolean"},
        {"1.0 / 0", "! divide by zero"},
        {"1.5 - 0.25", "1.250000 double"},
        {"1.5 / 2", "0.750000 double"},
        {"1.0 / 0.0", "! divide by zero"},
        {"1.5 % 2", "! unsupported binary numeric operation"},
        {"1.5 | 2", "! unsupported binary numeric operation"},
        {"1.5 && 1", "! unsupported binary numeric operation"},
        {"\"a\" == \"a\"", "true boolean"},
        {"\"a\" != \"a\"", "false boolean"},
        {"\"a\" < \"b\"", "! unsupported comparison operation"},
        {"\"a\" + \"b\"", "! unsupported binary numeric operation"},
        {"\"a\" && 1", "! unsupported binary numeric operation"},
        {"\"a b\"", "a b string"},
        {"1.5 << 1", "! can only shift numeric values"},
        {"(1==1) << 1", "! can only shift numeric values"},
        {"1 << 1.0", "! integer shift value expected"},
        {"1 >> (1==1)", "! integer shift value expected"},
        {"!0", "true boolean"},
        {"!5", "false boolean"},
        {"!0.0", "true boolean"},
        {"!(1==2)", "true boolean"},
        {"!\"a\"", "! unsupported unary num operation"},
        {"-(1==1)", "! unsupported unary num operation"},
        {"~1.5", "! unsupported unary num operation"},
        {"-\"a\"", "! unsupported unary num operation"},
        {"", " unknown"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(valueOf(row.text), row.value) << row.text;
}

TEST(Expression, FailuresSayWhy) {
    const Row rows[] = {
        {"10/0", "divide by zero"},
        {"10%0", "divide by zero"},
        {"0 && 1/0", "divide by zero"},    // both sides are always evaluated
        {"1/0 + a", "a symbol not found"}, // the right one first
        {"a+1", "a symbol not found"},
        {"$a_1", "$a_1 symbol not found"},
        {"a::b::c", "a::b::c symbol not found"},
        {"::a", "a symbol not found"},
        {"@R1", "unknown register"},
        {"@", "unknown register"},
        {"1 ? 2 : 3", "operator not supported"},
        {"1 ? @", "operator not supported"},
        {"1 ? ", "expression expected"},
        {"1, 2", "operator not supported"},
        {"1 >>> 2", "operator not supported"},
        {"a >>>= 2", "operator not supported"},
        {"#", "unrecognised token: #"},
        {"1 # 2", "unrecognised token: # 2"},
        {"1 \"a", "unrecognised token: \"a"},
        {"1.", "identifier expected"},
        {"a.1", "identifier expected"},
        {"::", "identifier expected"},
        {"a::1", "identifier expected after '::'"},
        {"1+", "expression expected"},
        {")", "expression expected"},
        {" ", "expression expected"},
        {"(1", "')' expected"},
        {"()", "expression expected"},
        {"1[2", "expected ']'"},
        {"1[2]", "cannot dereference"},
        {"*1", "cannot dereference"},
        {"1 . a", "cannot dereference"},
        {"1->a::b", "cannot dereference"},
        {"&1", "addressof not implemented"},
        {"sizeof(1)", "sizeof not implemented"},
        {"sizeof 1", "'(' expected"},
        {"sizeof(1", "')' expected"},
        {"1(2 3, 4)", "function calling not implemented"},
        {"1(2", "expression expected"},
        {"1 = 2", "this symbol not found"},
        {"1 += 2", "this symbol not found"},
        {"1 /= 0", "divide by zero"},
        {"++1", "this symbol not found"},
        {"1--1", "this symbol not found"},
        {"(int)1", "cannot cast"},
        {"(const volatile)1", "cannot cast"},
        {"(unsigned long long*[2][3])1", "cannot cast"},
        {"(struct { int a : 3; unsigned; })1", "cannot cast"},
        {"(register 2 f 0 1 g 1 7;)1", "cannot cast"},
        {"(int 1", "')' expected"},
        {"(long a)1", "')' expected"},
        {"(int[2)1", "']' expected"},
        {"(a)1", "a symbol not found"},
        {"(struct a)1", "struct type not found"},
        {"(struct 1)1", "'{' expected"},
        {"(struct { a b; })1", "struct parse error"},
        {"(struct { int a })1", "';' expected"},
        {"(struct { int a : b; })1", "integer must follow ':'"},
        {"(struct { int a;", "struct parse error"},
        {"(register f)1", "size expected"},
        {"(register 2 3)1", "fieldname expected"},
        {"(register 2 f g)1", "bitoffset expected"},
        {"(register 2 f 0 g)1", "bitsize expected"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(valueOf(row.text), "! " + row.value) << row.text;
}

TEST(Expression, UnsignedIntegersAreReadFromNumbersAlone) {
    struct Reading {
        const char* text;
        bool ok;
        uint64_t value;
    };
    const Reading readings[] = {
        {"0x8000", true, 0x8000}, {"-1", true, UINT64_MAX}, {"0.5", true, 0x3FE0000000000000},
        {"1==1", false, 0},       {"\"1\"", false, 0},      {"", false, 0},
        {nullptr, false, 0}};
    for (const Reading& reading : readings) {
        bool ok = !reading.ok;
        EXPECT_EQ(SimpleExpressionParser::instance().getUInteger(reading.text, ok), reading.value);
        EXPECT_EQ(ok, reading.ok);
    }
    bool ok = true;
    EXPECT_THROW(simpleExpressionParser.getUInteger("a", ok), ParserException);
    EXPECT_FALSE(ok);
}

TEST(Expression, NarrowOperandsAreWidenedForTheLeftOne) {
    using T = ExpressionType;
    const auto sum = [](const T& left, const T& right) { return T::binary(Operator::Plus, left, right); };
    EXPECT_EQ(sum(T::ofSigned(0), T::ofUnsigned(0xFF, 1)).getInteger(), -1);
    EXPECT_EQ(sum(T::ofSigned(0), T::ofUnsigned(0xFFFE, 2)).getInteger(), -2);
    EXPECT_EQ(sum(T::ofSigned(0), T::ofUnsigned(0xFFFFFFFD, 4)).getInteger(), -3);
    EXPECT_EQ(sum(T::ofUnsigned(0), T::ofSigned(-1, 2)).getUInteger(), 0xFFFFu);
    EXPECT_EQ(sum(T::ofUnsigned(0), T::ofSigned(-1, 4)).getUInteger(), 0xFFFFFFFFu);
    EXPECT_EQ(sum(T::ofUnsigned(0), T::ofFloat(1, 4)).getUInteger(), 0x3F800000u);
    EXPECT_EQ(sum(T::ofFloat(0), T::ofUnsigned(UINT64_MAX)).getDouble(), 18446744073709551616.0);
    EXPECT_EQ(sum(T::ofSigned(1), T::ofFloat(1e300)).getInteger(), INT64_MIN) << "beyond all integers";
    const T wide = sum(T::ofUnsigned(200, 1), T::ofUnsigned(100, 1));
    EXPECT_EQ(wide.getUInteger(), 44u) << "a byte is read";
    EXPECT_EQ(T::binary(Operator::Rshift, wide, T::ofSigned(2)).getUInteger(), 75u) << "all bits were kept";
    EXPECT_STREQ(wide.TypeToString(), "unsigned char");
    EXPECT_EQ(T::binary(Operator::Divide, T::ofUnsigned(UINT64_MAX), T::ofSigned(2)).getUInteger(),
              UINT64_MAX / 2);
    EXPECT_EQ(T::binary(Operator::Rshift, T::ofUnsigned(UINT64_MAX), T::ofSigned(63)).getUInteger(), 1u);
    EXPECT_TRUE(T::binary(Operator::Gt, T::ofUnsigned(UINT64_MAX), T::ofSigned(1)).getUInteger());
    T flagged = T::ofSigned(1);
    flagged.setFlags(1);
    EXPECT_EQ(T::binary(Operator::Lshift, flagged, T::ofSigned(1)).flags(), 0) << "a host's stay behind";
}

TEST(Expression, LeftoverBeginsWhereTheParserStops) {
    int end = -1;
    EXPECT_EQ(simpleExpressionParser.parseAndEvaluate("1+2 )rest", &end).getInteger(), 3);
    EXPECT_EQ(end, 4);
    simpleExpressionParser.parseAndEvaluate("(7)", &end);
    EXPECT_EQ(end, 3);
}

TEST(Expression, TreesPrintAsTheyAreGrouped) {
    const Row rows[] = {
        {"1+2*3-4", "((1 + (2 * 3)) - 4)"},
        {"a=b=1", "((a = b) = 1)"},
        {"a+=1", "(a = (a + 1))"},
        {"a++", "(a = (a + 1))"},
        {"--a", "(a = (a - 1))"},
        {"-+~!1", "(-(~(!1)))"},
        {"*p.x->y[3]", "p.x.y[3][0]"},
        {"::a::b", "a::b"},
        {"&::a", "(&::a)"},
        {"f(1 2, \"x\")(@R4)", "f(1, 2, \"x\")(@R4)"},
        {"sizeof(1.5)", "sizeof(1.5)"},
        {"2.0", "2.0"},
        {"(unsigned*[2])1+2", "((unsigned int*[2])(1 + 2))"},
        {"(struct{short a:3;char;})1", "((struct { short a : 3; char; })1)"},
        {"(register 2 f 0 1;)1", "((register 2 f 0 1;)1)"},
        {"(long long int)1", "((long long)1)"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(simpleExpressionParser.parse(row.text.c_str())->dump(), row.value) << row.text;
}

TEST(Expression, NothingRunsWild) {
    constexpr size_t million = 1'000'000;
    const std::string tooLong = "! expression too long";
    const std::string tooDeep = "! expression nested too deep";
    EXPECT_EQ(valueOf(repeated("(", million)), tooLong);
    EXPECT_EQ(valueOf(repeated("1+2*", 2'500'000) + "1"), tooLong);
    for (const char* opening : {"(", "-", "*", "& ", "++", "a[", "a(", "(int)", "(int[", "sizeof(", "1||1*("})
        EXPECT_EQ(valueOf(repeated(opening, 8000)), tooDeep) << opening;
    for (const char* chained : {"+1", ".a", "[1]", "++", "()", "=1"})
        EXPECT_EQ(valueOf("1" + repeated(chained, 9000)),
                  chained == std::string("++") ? "! expression too complex" : tooDeep)
            << chained;
    EXPECT_EQ(valueOf("(int" + repeated("*", 9000) + ")1"), tooDeep);
    EXPECT_EQ(integerOf(repeated("(", 400) + "7" + repeated(")", 400)), "7");
    EXPECT_EQ(integerOf("1" + repeated("+1", 900)), "901");
    EXPECT_EQ(integerOf(repeated(" ", 60'000) + "7"), "7");
}

TEST(Expression, AgreesWithAnotherEvaluation) {
    std::mt19937 random(20240817);
    int divisionsByZero = 0;
    for (int round = 0; round < 20'000; ++round) {
        const IntegerExpression expression([&] { return static_cast<uint8_t>(random()); });
        const std::string wanted = expression.value()
                                       ? std::to_string(static_cast<int64_t>(*expression.value()))
                                       : "! divide by zero";
        divisionsByZero += !expression.value();
        ASSERT_EQ(integerOf(expression.text()), wanted) << expression.text();
    }
    EXPECT_GT(divisionsByZero, 10);
    EXPECT_LT(divisionsByZero, 10'000);
}

TEST(NumberText, IsReadWithoutQuestions) {
    struct Reading {
        const char* text;
        int64_t value;
    };
    const Reading readings[] = {{"", 0},       {" \t12", 12}, {"-12", -12}, {"+12", 12},    {"0x1f", 31},
                                {"0xAF", 175}, {"0b101", 5},  {"017", 15},  {"-0x10", -16}, {"0", 0},
                                {"08", 8},     {"1G", 26},    {"1-", 0},    {"0b9", 9}};
    for (const Reading& reading : readings)
        EXPECT_EQ(fromStringToint64(reading.text), reading.value) << reading.text;
    EXPECT_EQ(fromStringTouint64("-1"), UINT64_MAX);
    EXPECT_EQ(fromStringTouint64("18446744073709551616"), 0u) << "what does not fit wraps";
}
