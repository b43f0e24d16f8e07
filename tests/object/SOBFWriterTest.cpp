#include "object/SOBFWriter.h"

#include "object/ModuleGenerator.h"
#include "object/ObjectBytes.h"

using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

const std::string module = "09 09 09 4A 4E 00 21 4F ";
const std::string section = module + "'S' 28 27 ";

std::string rewritten(const std::string& file) { return ReadObject(file).written(); }

/// What is written of a file must be read again, and written again must give the same.
void expectStable(const std::string& file, const std::string& what) {
    const std::string once = rewritten(file);
    EXPECT_EQ(refusalOf(once), "") << what;
    EXPECT_TRUE(rewritten(once) == once) << what;
}

std::string repeat(const std::string& text, int times) {
    std::string result;
    while (times-- > 0)
        result += text;
    return result;
}

std::string alias(int index) {
    char text[40];
    std::snprintf(text, sizeof text, "08 03 %02X %02X %02X ", index >> 16 & 0xFF, index >> 8 & 0xFF,
                  index & 0xFF);
    return text;
}

} // namespace

TEST(SOBFWriterTest, LiteralsTakeTheFewestBytes) {
    const struct {
        int64_t value;
        std::string bytes;
    } cases[] = {
        {0, std::string(1, '\0')},
        {7, "\x07"},
        {8, "\x08\x01\x08"},
        {0xFF, "\x08\x01\xFF"},
        {0x1234, "\x08\x02\x12\x34"},
        {-2, "\x08\x08\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE"},
        {INT64_MIN, std::string("\x08\x08\x80\0\0\0\0\0\0\0", 10)},
    };
    for (const auto& each : cases) {
        SOBFWriter writer;
        writer.externalizeLiteral(each.value);
        EXPECT_EQ(writer.finish().view(), std::string("\0\x26", 2) + each.bytes) << each.value;
    }
}

TEST(SOBFWriterTest, BodyComesInTheCanonicalOrder) {
    const std::string file = ObjectBytes::bytes(
        "09 09 09 4A 4E 00 21 "                          // the module
        "'a' 1D 4E 4E 01 21 05 29 02 3A 02 21 02 20 2A " // a symbol with value and type in it
        "01 20 49 4F "
        "00 20 09 09 4B 4E 03 21 4F " // a function
        "'lib' 48 'key' 'value' 51 66 "
        "'b' 1D 04 21 04 20 33 "          // public
        "'c' 1D 4E 05 21 03 56 00 25 29 " // special
        "'S' 28 06 21 06 20 27 01 60 "
        "32 04 37 01 63 04 37 'c' 00 24 " // a break, a marker
        "06 37 01 20 1F 02 2C '' 38 08 01 08 37 00 63 0A 08 02 41 30 2D 08 01 08 37 01 63 02 50 05 5B "
        "54 04 58");
    EXPECT_EQ(rewritten(file), file);
}

TEST(SOBFWriterTest, TypesComeOutInTheirCanonicalForms) {
    const std::string file =
        ObjectBytes::bytes("09 09 09 4A 4E 00 21 'a' 1D 4E 01 21 "
                           "02 52 02 21 08 01 0A 57 4E 03 21 'node' 2B " // a pointer to a structure
                           "'next' 00 02 02 20 45 "
                           "01 39 04 21 04 20 03 3D 05 21 'x' 02 04 05 20 45 "
                           "04 20 05 20 08 01 09 3E 06 21 's' 07 06 20 44 "
                           "4F 02 20 03 20 3F 6F 02 20 2A 01 20 49 4F 66");
    const ReadObject object(file);
    const ReadObject again(object.written());
    EXPECT_EQ(again.written(), object.written());
    EXPECT_EQ(object.written(), file);
    EXPECT_EQ(again->symbols[0]->type->getName()->view(), "node*");
}

TEST(SOBFWriterTest, WhatIsWrittenOfAnOddFileIsReadAndWrittenTheSame) {
    const std::pair<const char*, std::string> cases[] = {
        {"record without a break in front", section + "04 37 71"},
        {"records before any address, behind others", section + "71 'T' 28 27 05 37 71"},
        {"break that falls into another section", section + "32 'T' 28 27 05 37 71 06 37 71"},
        {"break at no address", section + "32 08 08 FF FF FF FF FF FF FF FF 37 71 05 37 71"},
        {"one marker in two places", section + "05 37 09 00 24 06 37 09 00 24"},
        {"two symbols for one marker",
         module + "'a' 1D 4E 01 21 00 25 29 'b' 1D 4E 02 21 00 25 29 02 20 33 01 20 33 'S' 28 27 09 00 24"},
        {"symbol that is renamed to one that is there",
         module +
             "'a' 1D 4E 33 4E 01 21 4F 'b' 1D 4E 33 4E 02 21 4F 01 20 'b' 2B 4F 00 20 01 20 49 02 20 49 4F"},
        {"section that is renamed to one that is there", section + "'T' 28 'S' 2B 27 71"},
        {"symbol that is marked but not special", module + "'a' 1D 08 08 FF FF FF FF FF FF FF FF 56 4F"},
        {"symbol that is marked and not defined", module + "'a' 1D 02 56 03 59 04 5C 33"},
        {"function that takes a pointer to itself",
         module +
             "00 00 00 42 4E 01 21 02 52 4E 02 21 01 20 3F 'p' 1D 4E 02 20 2A 46 4F 'f' 1D 4E 01 20 2A 33"},
        {"array of a structure that holds it",
         module + "02 57 4E 01 21 4F 01 20 03 3D 02 21 01 20 'm' 00 00 02 20 45 4F 'v' 1D 4E 02 20 2A 33"},
        {"symbol whose type is a function with that symbol",
         module + "00 00 00 42 4E 01 21 4F 's' 1D 4E 02 21 01 20 2A 01 20 02 20 46 4F 02 20 33"},
        {"module inside a scope", "09 09 09 4B 4E 01 21 09 09 4A 4E 00 21 4F 01 20 's' 1D 49 4F"},
        {"line that ends before its record", section + "'f' 36 05 35 61 71"},
        {"pointer with a name", module + "02 52 'P' 2B 4E 01 21 4F 'p' 1D 4E 01 20 2A 33"},
    };
    for (const auto& [what, source] : cases) {
        const std::string file = ObjectBytes::bytes(source);
        ASSERT_EQ(refusalOf(file), "") << what;
        expectStable(file, what);
    }
}

TEST(SOBFWriterTest, ChainsAsLongAsTheFileAreWrittenAndReadAgain) {
    constexpr int length = 5000;
    std::string symbols = module + "'s' 1D 4E " + alias(1) + "21 01 29 ";
    std::string pointers = module + "02 3A " + alias(1) + "21 ";
    std::string structures = module + "02 57 " + alias(1) + "21 ";
    std::string scopes = module;
    std::string functions = module + "00 00 00 42 " + alias(1) + "21 ";
    for (int i = 2; i <= length; ++i) {
        symbols += "'s' 1D 4E " + alias(i) + "21 " + alias(i - 1) + "20 1F 01 25 0B 29 ";
        pointers += "02 52 " + alias(i) + "21 " + alias(i) + "20 " + alias(i - 1) + "20 3F 6F ";
        structures += "02 57 'm' 00 00 " + alias(i - 1) + "20 45 " + alias(i) + "21 ";
        functions += "00 00 00 42 'p' 1D 4E " + alias(i - 1) + "20 2A 46 " + alias(i) + "21 ";
        scopes += alias(i == 2 ? 0 : i - 1) + "20 09 09 4C " + alias(i) + "21 ";
    }
    const std::string use = "'u' 1D 4E " + alias(length) + "20 ";
    expectStable(ObjectBytes::bytes(symbols + alias(length) + "20 33"), "symbols");
    expectStable(ObjectBytes::bytes(pointers + use + "2A 33"), "pointers");
    expectStable(ObjectBytes::bytes(structures + use + "2A 33"), "structures");
    expectStable(ObjectBytes::bytes(functions + use + "2A 33"), "functions");
    expectStable(ObjectBytes::bytes(scopes), "scopes");
    const ReadObject object(ObjectBytes::bytes(symbols + alias(length) + "20 33"));
    EXPECT_THAT(ReadObject(object.written())->symbols, SizeIs(length));
    object->symbols.back()->markReachable(true);
    EXPECT_TRUE(object->symbols.front()->reachable);
}

TEST(SOBFWriterTest, OperandAsWideAsTheStackAllowsIsReadAgain) {
    const std::string operand = repeat("00 25 ", 80) + repeat("0C ", 79);
    const std::string symbol = "'a' 1D 4E 4E 01 21 " + operand + "29 02 3A 2A ";
    expectStable(ObjectBytes::bytes(section + symbol + "01 20 1F " + repeat("01 20 1F 0C ", 3) + "01 2C " +
                                    operand + "01 2C 01 20 33"),
                 "operands");
}

TEST(SOBFWriterTest, TextsBeyondOneStringPoolGoToASecond) {
    Pool pool;
    const CurrentPool current(&pool);
    auto* module = new SOBFModule;
    const std::string big(0x900000, 'x');
    for (const char* key : {"a", "b", "c"})
        module->attributes.set(name(key), name(key + big));
    SOBFWriter writer;
    module->externalize(writer);
    const ReadObject object(writer.finish().view(), true);
    EXPECT_EQ(object->attributes.value(name("c")), name("c" + big));
    EXPECT_THROW(writer.externalizeString(big + big), HException);
    SOBFReader::release(module);
}

TEST(SOBFWriterTest, HidingMarksEveryRecord) {
    const ReadObject object(ObjectBytes::bytes(section + "71 32 71"));
    EXPECT_FALSE(object->hasHiddenInsns());
    SOBFWriter writer;
    object->externalize(writer, true);
    EXPECT_TRUE(object->hasHiddenInsns());
    EXPECT_TRUE(object->sections[0]->fragments[0]->insns.front()->hidden);
    EXPECT_TRUE(ReadObject(ObjectBytes::bytes(section + "0A 00 2E"))->hasHiddenInsns());
}

TEST(SOBFWriterTest, GeneratedModulesAreReadAndWrittenTheSame) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        Pool pool;
        const CurrentPool current(&pool);
        SOBFModule* module = ModuleGenerator(seed).make(static_cast<int>(seed));
        SOBFWriter writer;
        module->externalize(writer);
        const std::string file(writer.finish().view());
        SOBFReader::release(module);
        ASSERT_EQ(refusalOf(file), "") << "seed " << seed;
        ASSERT_TRUE(rewritten(file) == file) << "seed " << seed;
    }
}
