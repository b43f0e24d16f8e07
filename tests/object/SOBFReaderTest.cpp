#include "object/ObjectBytes.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"

using ::testing::AllOf;
using ::testing::Each;
using ::testing::IsNull;
using ::testing::NotNull;
using ::testing::SizeIs;

namespace {

// Made once more in every row that needs it: a module that is known as alias 0, and a section that is
// current.
const std::string module = "09 09 09 4A 4E 00 21 4F ";
const std::string section = module + "'S' 28 27 ";

std::string read(const std::string& source) { return refusalOf(ObjectBytes::bytes(source)); }

std::string repeat(const std::string& text, int times) {
    std::string result;
    while (times-- > 0)
        result += text;
    return result;
}

} // namespace

TEST(SOBFReaderTest, RefusesWhatIsNotWellFormedInTheWordsOfEachFault) {
    const struct {
        std::string source;
        const char* refusal;
    } cases[] = {
        {"1E", "bad object file: unknown tag"},
        {"34", "bad object file: unknown tag"},
        {"4D", "bad object file: unknown tag"},
        {"5A", "bad object file: unknown tag"},
        {"72", "bad object file: unknown tag"},
        {"FF", "bad object file: unknown tag"},
        {"00", "bad object file: stack not empty at EOF"},
        {repeat("09 ", 100) + repeat("4F ", 100), ""},
        {repeat("09 ", 101), "bad object file: reader stack overflow"},
        {"4F", "bad object file: reader empty stack"},
        {"00 0B", "bad object file: reader empty stack"},
        {"08", "premature end of SOBF file"},
        {"08 02 01", "premature end of SOBF file"},
        {"05 26 01", "premature end of SOBF file"},
        {"09 02 22", "bad object file: operand value error (constant out of range)"},
        {"'abc' 4F 02 02 23 4F", "bad object file: operand value error (constant out of range)"},
        {"'abc' 4F 04 00 23 4F", "bad object file: operand value error (constant out of range)"},
        {"08 04 01 00 00 00 26", "bad object file: operand value error (constant out of range)"},
        {"09 26", "bad object file: operand type error (constant expression expected)"},
        {"'a' 26", "bad object file: operand type error (constant expression expected)"},
        {"'a' 00 0B", "bad object file: operand type error (expression expected)"},
        {"09 00 0B", "bad object file: operand type error (expression expected)"},
        {"00 09 09 4B", "bad object file: operand type error (scope expected)"},
        {"09 09 49", "operand type error: symbol expected"},
        {"00 1F", "operand type error: symbol expected"},
        {"00 36", "bad object file: operand type error (string expected)"},
        {"00 27", "bad object file: operand type error (section expected)"},
        {"00 00 3D", "bad object file: operand type error (type expected)"},
        {"02 39 02 39 3F", "bad object file: operand type error (pointer expected)"},
        {"02 39 'x' 00 02 39 44", "bad object file: operand type error (structure expected)"},
        {"02 39 'x' 00 00 02 39 45", "bad object file: operand type error (structure expected)"},
        {module + "02 39 's' 1D 46", "bad object file: operand type error (function type expected)"},
        {section + "00 00 35", "bad object file: operand type error (file expected)"},
        {module + "'s' 1D 00 00 65", "bad object file: operand type error (file expected)"},
        {section + "00 00 24", "bad object file: operand type error (string expected)"},
        {"00 20", "bad object file: alias not defined"},
        {"00 03 21 02 20", "bad object file: alias not defined"},
        {"00 03 21 00 03 21", "bad object file: alias defined more than once"},
        {"09 03 21 00 03 21", ""},
        {"09 09 2B", "bad object file: operand type error (string expected)"},
        {"09 'a' 2B", "bad object file: operand type error (object expected)"},
        {"09 02 39 2A", "bad object file: operand type error (object expected)"},
        {"00 38", "bad object file: no instruction defined"},
        {"00 5B", "bad object file: no instruction defined"},
        {"00 67", "bad object file: no instruction defined"},
        {"6E", "bad object file: no pointer type defined"},
        {"6F", "bad object file: no pointer type defined"},
        {section + "00 00 2C", "bad object file: operand value error (constant out of range)"},
        {section + "00 05 2C", "bad object file: operand value error (constant out of range)"},
        {section + "00 08 08 00 00 00 01 00 00 00 01 2C",
         "bad object file: operand value error (constant out of range)"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(read(each.source), each.refusal) << each.source;
}

TEST(SOBFReaderTest, TagsThatNeedAModuleOrASectionSayThatThereIsNone) {
    for (const char* tag : {"1D", "28", "33", "48", "51", "54", "56", "58", "59"})
        EXPECT_EQ(read(tag), "bad object file: no defined module") << tag;
    for (const char* tag :
         {"24", "2C", "2D", "2E", "2F", "30", "31", "32", "35", "50", "5F", "60", "64", "68", "70", "71"})
        EXPECT_EQ(read(tag), "bad object file: no defined section") << tag;
}

TEST(SOBFReaderTest, FileThatWouldGrowOutOfItsSizeIsRefused) {
    const std::string deep = section + "01 25 " + repeat("02 25 0C ", 600) + "01 2C";
    const std::string shared = section + "01 25 " + repeat("4E 0C ", 40) + "01 2C";
    const std::string wide = repeat("02 25 ", 90) + repeat("0C ", 89) + "4F";
    const std::string arrays = "02 39 " + repeat("01 3D ", 60) + "4F";
    const std::string twice = "02 39 " + repeat("4E 01 3E ", 10) + "4F";
    EXPECT_EQ(read(deep), "bad object file: expressions nested too deep");
    EXPECT_EQ(read(wide), "bad object file: expressions nested too deep");
    EXPECT_EQ(read(shared), "bad object file: expressions too large");
    EXPECT_EQ(read(arrays), "bad object file: types nested too deep");
    EXPECT_EQ(read(twice), "bad object file: types nested too deep");
    EXPECT_EQ(read("09 08 04 FF FF FF FF 21"),
              "bad object file: operand value error (constant out of range)");
    EXPECT_EQ(read("08 04 FF FF FF FF 25 4F"),
              "bad object file: operand value error (constant out of range)");
    const std::string text = "'" + std::string(1000, 'x') + "' 4F ";
    EXPECT_EQ(read(text + repeat("00 08 02 03 E8 23 4F ", 1000)), "bad object file: texts too large");
}

TEST(SOBFReaderTest, EmptyFileMakesNoModule) {
    EXPECT_THAT(ReadObject("").module(), IsNull());
    EXPECT_THAT(ReadObject(ObjectBytes::bytes("53")).module(), IsNull());
}

TEST(SOBFReaderTest, FailedRunPutsTheFormerPoolBack) {
    Pool former;
    const CurrentPool current(&former);
    HByteStream stream;
    stream.write(ObjectBytes::bytes(module + "'a' 1D"));
    SOBFMSP430Reader reader(&stream, false);
    EXPECT_THROW(reader.readFile(), HException);
    EXPECT_EQ(Pool::currentPool, &former);
}

TEST(SOBFReaderTest, QuickReadStopsWhereTheInformationEnds) {
    const std::string info = module + "'k' 'v' 51 ";
    EXPECT_EQ(refusalOf(ObjectBytes::bytes(info + "66 FF FF"), true), "");
    EXPECT_EQ(refusalOf(ObjectBytes::bytes(info + "66 FF FF"), false), "bad object file: unknown tag");
    EXPECT_EQ(refusalOf(ObjectBytes::bytes(info + "00 66 FF"), true),
              "bad object file: stack not empty at EOF");
    const ReadObject object(ObjectBytes::bytes(info + "66 'k' 'w' 51"), true);
    EXPECT_EQ(object->attributes.value(name("k")), name("v"));
}

TEST(SOBFReaderTest, LaterAttributeLibraryAndSectionOfANameTakeTheEntry) {
    const ReadObject object(
        ObjectBytes::bytes(module + "'k' 'v' 51 'k' 'w' 51 'l' 48 'l' 48 'S' 28 4F 'S' 28 4F 04 58 54"));
    EXPECT_EQ(object->attributes.value(name("k")), name("w"));
    EXPECT_THAT(object->libraries, SizeIs(1));
    EXPECT_THAT(object->sections, SizeIs(2));
    EXPECT_EQ(object->sectionsByName.value(name("S")), object->sections[1]);
    EXPECT_EQ(object->linkOrderPriority, 4);
    EXPECT_TRUE(object->isProtected);
}

TEST(SOBFReaderTest, MarkerReferenceBeforeItsDefinitionIsTheSameMarker) {
    const ReadObject object(
        ObjectBytes::bytes(section + "'a' 1D 00 25 29 'b' 1D 00 25 29 32 08 01 20 37 'own' 00 24"));
    const auto* marker = dynamic_cast<SOBFMarker*>(object->sections[0]->fragments[0]->insns.back());
    ASSERT_THAT(marker, NotNull());
    EXPECT_EQ(marker->symbol, object->symbols[1]) << "the later symbol stands";
    EXPECT_EQ(marker->name, name("b"));
    EXPECT_EQ(object->symbols[0]->value->evaluate().value, 0x20);
}

TEST(SOBFReaderTest, AddressStackAndLineReachTheRecordsTheyBelongTo) {
    const ReadObject object(ObjectBytes::bytes(
        section + "32 04 37 03 63 'f' 36 4E 01 21 07 35 0A 00 2D 06 37 00 01 2C 01 20 05 35 61 71"));
    const auto& insns = object->sections[0]->currentFragment->insns;
    ASSERT_THAT(insns, SizeIs(7));
    auto next = insns.begin();
    EXPECT_THAT(dynamic_cast<SOBFBreakInsn*>(*next), NotNull());
    const auto* locus = dynamic_cast<SOBFLocus*>(*++next);
    ASSERT_THAT(locus, NotNull());
    EXPECT_EQ(locus->line, 7);
    const SOBFInsn* instruction = *++next;
    EXPECT_EQ(instruction->locus, locus);
    EXPECT_EQ(instruction->pc, 4);
    EXPECT_EQ(instruction->stackAdjust, 3);
    const SOBFInsn* data = *++next;
    EXPECT_THAT(data->locus, IsNull()) << "a line holds for one record";
    EXPECT_EQ(data->pc, 6);
    EXPECT_EQ(data->stackAdjust, 1);
    EXPECT_THAT(insns.back()->locus, IsNull()) << "tag 61 takes the line away";
}

TEST(SOBFReaderTest, FurtherModulesBelongToTheFirst) {
    const ReadObject object(ObjectBytes::bytes(module + "00 20 09 09 4A 4F 00 20 09 09 4B 4F 's' 1D 4F"));
    ASSERT_THAT(object->children, SizeIs(2));
    EXPECT_EQ(object->children[0]->kind, TAG_SCOPE_MODULE);
    EXPECT_EQ(object->children[1]->kind, TAG_SCOPE_FUNCTION);
    EXPECT_THAT(object->symbols, SizeIs(1));
}

TEST(SOBFReaderTest, SymbolWithoutTypeTakesThatOfItsValue) {
    const ReadObject object(ObjectBytes::bytes(module + "'a' 1D 05 4E 02 39 2A 29"));
    ASSERT_THAT(object->symbols[0]->type, NotNull());
    EXPECT_TRUE(object->symbols[0]->type->isSimple());
}

TEST(SOBFReaderTest, TraceTellsOffsetTagAndStack) {
    std::ostringstream trace;
    const ReadObject object(
        ObjectBytes::bytes("05 08 01 FF 09 4F 0B 37 09 09 09 4A 's' 1D 02 39 61 4F 4F 4F"), false, &trace);
    EXPECT_EQ(trace.str(), "1\tLIT 1\tn:1 \n"
                           "2\tSTRINGPOOL\t\n"
                           "4\tLIT 5\tn:5 \n"
                           "5\tLITX\tn:5 n:255 \n"
                           "8\tNULL\tn:5 n:255 unk \n"
                           "9\tDROP\tn:5 n:255 \n"
                           "10\t<binary>\tn:260 \n"
                           "11\tSETPC 260\t\n"
                           "12\tNULL\tunk \n"
                           "13\tNULL\tunk unk \n"
                           "14\tNULL\tunk unk unk \n"
                           "15\tSCOPE_MODULE\tscp \n"
                           "16\tLIT 0\tscp n:0 \n"
                           "17\tLIT 1\tscp n:0 n:1 \n"
                           "18\tMKSTRING\tscp str:s \n"
                           "19\tMKSYMBOL\tscp sym:s \n"
                           "20\tLIT 2\tscp sym:s n:2 \n"
                           "21\tCHAR | UNSIGNED | INT\tscp sym:s typ \n"
                           "22\t\tscp sym:s typ \n"
                           "23\tDROP\tscp sym:s \n"
                           "24\tDROP\tscp \n"
                           "25\tDROP\t\n");
}

TEST(SOBFReaderTest, TraceTellsTextsAndFunctionsOnTheStack) {
    std::ostringstream trace;
    const ReadObject object(ObjectBytes::bytes("'text' 4F 02 22 4E 00 00 00 42 4F 4F 4F"), false, &trace);
    EXPECT_THAT(trace.str(), testing::HasSubstr("MKSTRING\tstr:xt \n"));
    EXPECT_THAT(trace.str(), testing::HasSubstr("DUP\tstr:xt str:xt \n"));
    EXPECT_THAT(trace.str(), testing::HasSubstr("FUNCTION\tstr:xt str:xt fcn \n"));
}

TEST(SOBFReaderTest, TraceOfAnUnknownTagEndsWithItsNumber) {
    std::ostringstream trace;
    HByteStream stream;
    stream.write("\x4D");
    SOBFMSP430Reader reader(&stream, false);
    EXPECT_THROW(reader.readFile(&trace), HException);
    EXPECT_EQ(trace.str(), "1\ttag=77\n");
}
