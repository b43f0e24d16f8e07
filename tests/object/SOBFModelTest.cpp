#include "object/ObjectBytes.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"

#include <climits>

using ::testing::ElementsAre;
using ::testing::IsNull;

namespace {

class SOBFModelTest : public ::testing::Test {
protected:
    template<class Insn>
    static Insn* at(int pc, Insn* insn) {
        insn->setPC(pc);
        return insn;
    }
    static SOBFDefBytesInsn* data(int64_t value, int size) {
        auto* insn = new SOBFDefBytesInsn(new SOBFConstExpr(value), size);
        insn->encode();
        return insn;
    }
    static SOBFSymbol* symbol(const char* text, SOBFType* type) {
        auto* made = new SOBFSymbol(name(text));
        made->type = type;
        return made;
    }

private:
    Pool m_pool;
    CurrentPool m_current{&m_pool};
};

} // namespace

TEST_F(SOBFModelTest, SectionMeasuresWhatHasAnAddress) {
    SOBFSection section(name("S"));
    section.addInsn(data(1, 2));
    EXPECT_EQ(section.getSize(), 2) << "the sum, as long as nothing has an address";
    section.addInsn(at(0x20, data(1, 2)));
    section.addInsn(at(0x10, new SOBFMarker));
    section.newFragment();
    section.addInsn(at(0x14, data(1, 1)));
    EXPECT_EQ(section.getSize(), 0x0E);
    EXPECT_EQ(section.lowest, 0x14);
    EXPECT_EQ(section.highest, 0x21);
    EXPECT_EQ(section.accumulatedSize(), 5);
    EXPECT_EQ(section.findInsnInRange(0x21)->pc, 0x20);
    EXPECT_THAT(section.findInsnInRange(0x22), IsNull());
    EXPECT_THAT(section.findInsnAt(0x10), IsNull()) << "a marker takes no bytes";
}

TEST_F(SOBFModelTest, DumpStoresEveryByteAtItsPlace) {
    SOBFModule module;
    SOBFSection source(name("source"));
    source.addInsn(at(4, data(0x4142, 2)));
    module.sectionsByName.set(name("source"), &source);
    SOBFSection section(name("S"));
    section.addInsn(data(0x99, 1));
    section.addInsn(at(0x10, data(0x0102, 2)));
    section.addInsn(at(0x13, new SOBFAlignInsn(8)));
    section.addInsn(at(0x18, new SOBFFillInsn(2, 0x1EE)));
    section.addInsn(at(0x1A, new SOBFInitInsn(name("source"), &module)));
    section.addInsn(at(0x1C, new SOBFInitInsn(name("none"), &module)));
    ASSERT_EQ(section.getSize(), 12);
    uint8_t image[12];
    std::fill(std::begin(image), std::end(image), uint8_t{0xCC});
    section.dump(0, image);
    EXPECT_THAT(image, ElementsAre(0x02, 0x01, 0xCC, 0, 0, 0, 0, 0, 0xEE, 0xEE, 0x42, 0x41));
    SOBFReader::release(&module);
}

TEST_F(SOBFModelTest, SectionsThatCopyEachOtherHaveASizeAndBytes) {
    SOBFModule module;
    SOBFSection first(name("first"));
    SOBFSection second(name("second"));
    module.sectionsByName.set(first.name, &first);
    module.sectionsByName.set(second.name, &second);
    first.addInsn(at(0, new SOBFInitInsn(second.name, &module)));
    first.addInsn(at(8, data(5, 1)));
    auto* copy = at(0, new SOBFInitInsn(first.name, &module));
    second.addInsn(copy);
    EXPECT_EQ(first.getSize(), 1) << "a copy of itself counts as nothing";
    EXPECT_EQ(copy->length(), 1);
    EXPECT_EQ(copy->getByte(0), 5);
    EXPECT_EQ(copy->getByte(INT_MAX), 0);
    SOBFReader::release(&module);
}

TEST_F(SOBFModelTest, HugeLengthsAreCountedAndNeverStored) {
    SOBFModule module;
    SOBFSection section(name("huge"));
    module.sectionsByName.set(section.name, &section);
    section.addInsn(at(INT_MAX, new SOBFFillInsn(INT_MAX, 0x55)));
    section.addInsn(at(1, new SOBFSpaceInsn(new SOBFConstExpr(INT64_MAX))));
    section.addInsn(at(1, new SOBFSpaceInsn(new SOBFConstExpr(-5))));
    section.addInsn(at(1, new SOBFFillInsn(-5, 0)));
    section.addInsn(at(1, new SOBFAlignInsn(INT_MIN)));
    section.addInsn(at(3, new SOBFAlignInsn(INT_MAX)));
    EXPECT_EQ(section.getSize(), INT_MAX);
    EXPECT_EQ(section.accumulatedSize(), INT_MAX);
    uint8_t byte = 0xCC;
    section.dump(0, &byte);
    EXPECT_EQ(byte, 0xCC);
    auto* copy = new SOBFInitInsn(section.name, &module);
    EXPECT_EQ(copy->length(), INT_MAX);
    EXPECT_EQ(copy->getByte(0), 0);
    SOBFReader::release(&module);
}

TEST_F(SOBFModelTest, RecordsPrintAsAssembly) {
    SOBFModule module;
    auto* place = new SOBFMarkerExpr(new SOBFMarker);
    place->marker->name = name("here");
    auto* local = new SOBFSymbolExpr(new SOBFSymbol(name("v")));
    auto* letter = new SOBFConstExpr('A');
    letter->type = new SOBFSimpleType(1, TAG_CHAR);
    const std::pair<SOBFInsn*, const char*> cases[] = {
        {data(65, 1), "\tDB\t65"},
        {data(65, 2), "\tDW\t65"},
        {data(65, 3), "\tDT\t65"},
        {data(-1, 4), "\tDL\t-1"},
        {new SOBFDefBytesInsn(letter, 1), "\tDC\t'A'"},
        {new SOBFDefAddrInsn(place), "\tDA\there"},
        {new SOBFAlignInsn(4), "\t.ALIGN\t4"},
        {new SOBFOriginInsn(16), "\tORG\t16"},
        {new SOBFFillInsn(3, 7), "\t.FILL\t3, 7"},
        {new SOBFBreakInsn, ""},
        {new SOBFSpaceInsn(place), "\t.SPACE\there"},
        {new SOBFLinkIf(place), "\tLINKIF\there"},
        {new SOBFEndLinkIf, "\tENDLINKIF"},
        {new SOBFLocalInsn(SOBFBinaryExpr::make(TAG_PAIR, place, local)), "\tLOCAL\tv @ here"},
        {new SOBFLocalInsn(SOBFBinaryExpr::make(TAG_PAIR, local, place)), "\tLOCAL\tv @ here"},
        {new SOBFLocalInsn(local), "\tLOCAL\tv"},
        {new SOBFInitInsn(name("S"), &module), "\t.INIT\t\"S\""},
        {place->marker, "here"},
    };
    for (const auto& [insn, text] : cases)
        EXPECT_EQ(insn->printString(), text);
    SOBFMarker first;
    SOBFMarker second;
    const std::string text = second.printString();
    EXPECT_NE(text, first.printString());
    EXPECT_EQ(text, second.printString()) << "the number is given out once";
    SOBFReader::release(&module);
}

TEST_F(SOBFModelTest, DataIsEncodedLowByteFirst) {
    const struct {
        int64_t value;
        int size;
        const char* bytes;
    } cases[] = {
        {0x12345678, 1, "78"}, {0x12345678, 2, "7856"}, {0x12345678, 3, "785634"}, {-2, 4, "FEFFFFFF"}};
    for (const auto& each : cases)
        EXPECT_EQ(data(each.value, each.size)->printOpCode(), each.bytes);
    SOBFDefAddrInsn address(new SOBFConstExpr(0xFFF12345));
    address.encode();
    EXPECT_EQ(address.printOpCode(), "4523");
}

TEST_F(SOBFModelTest, EncodedBytesGrowBeyondTheFirstEight) {
    SOBFEndLinkIf insn;
    std::string expected;
    for (int i = 0; i < 100; ++i) {
        insn.encodeWord(i, 1);
        EXPECT_EQ(insn.getByte(i), i);
    }
    insn.encodeWord(0x0102, 2, true);
    EXPECT_EQ(insn.getByte(100), 1);
    insn.encodeWord(1, 5, true);
    EXPECT_EQ(insn.byteCount, 102);
    EXPECT_EQ(insn.getByte(102), 0);
}

TEST_F(SOBFModelTest, TypesMakeUpTheirNames) {
    auto* integer = new SOBFSimpleType(2, TAG_INT);
    auto* character = new SOBFSimpleType(1, TAG_CHAR);
    auto* pointer = new SOBFPtrType(2);
    pointer->target = integer;
    auto* structure = new SOBFStrucType(4);
    structure->fields.push_back(new SOBFDynamicField(name("x"), 0, 2, integer));
    structure->fields.push_back(new SOBFStaticField(name("p"), new SOBFConstExpr(1), pointer));
    auto* function = new SOBFFunctionType;
    function->inputs = {symbol("a", integer), symbol("b", pointer)};
    auto* member = new SOBFMemberFunctionType(structure);
    member->outputs = {symbol("r", character)};
    const auto kindsOf = [](const SOBFType* type) {
        const std::pair<bool, char> kinds[] = {
            {type->isSimple(), 'i'},       {type->isFloat(), 'f'},    {type->isArray(), 'a'},
            {type->isCountedArray(), 'c'}, {type->isStruc(), 's'},    {type->isPtr(), 'p'},
            {type->isQualified(), 'q'},    {type->isFunction(), 'u'}, {type->isMemberFunction(), 'm'}};
        std::string text;
        for (const auto& [is, letter] : kinds)
            text += is ? std::string(1, letter) : "";
        return text;
    };
    const std::tuple<SOBFType*, const char*, const char*, SOBFType*> cases[] = {
        {integer, "INT(2)", "i", nullptr},
        {character, "UNSIGNED(1)", "i", nullptr},
        {new SOBFFloatType(4), "FLOAT(4)", "f", nullptr},
        {new SOBFUntypedType(0), "VOID", "", nullptr},
        {pointer, "INT(2)*", "p", nullptr},
        {new SOBFPtrType(2), "?*", "p", nullptr},
        {new SOBFQualifiedType(pointer, TAG_FIRST_MEMSPACE), "INT(2)*", "q", nullptr},
        {new SOBFArrayType(integer, 3), "INT(2)[3]", "a", integer},
        {new SOBFCountedArrayType(character, integer, 3), "UNSIGNED(1)::[INT(2)]", "c", integer},
        {structure, "{ INT(2) x; INT(2)* p }", "s", nullptr},
        {function, "(INT(2), INT(2)*)", "u", nullptr},
        {member, "{ INT(2) x; INT(2)* p }::()->(UNSIGNED(1))", "um", nullptr},
    };
    for (const auto& [type, text, kinds, element] : cases) {
        EXPECT_EQ(type->getName()->view(), text);
        EXPECT_EQ(kindsOf(type), kinds) << text;
        EXPECT_EQ(type->getElementType(), element) << text;
    }
    EXPECT_EQ(SOBFArrayType(integer, 3).size, 6);
    EXPECT_EQ(SOBFCountedArrayType(character, integer, 3).size, 2);
    EXPECT_EQ(structure->findField(name("p")), structure->fields[1]);
    EXPECT_THAT(integer->findField(name("p")), IsNull());
}

TEST_F(SOBFModelTest, NameOfATypeThatHoldsItselfIsCutOff) {
    auto* structure = new SOBFStrucType(4);
    auto* pointer = new SOBFPtrType(2);
    pointer->target = structure;
    for (const char* field : {"left", "right"})
        structure->fields.push_back(new SOBFDynamicField(name(field), 0, 2, pointer));
    const std::string_view text = structure->getName()->view();
    EXPECT_LE(text.size(), 1003u);
    EXPECT_EQ(text.substr(text.size() - 3), "...");
    structure->name = name("node");
    EXPECT_EQ(pointer->getName()->view(), "node*");
}

TEST_F(SOBFModelTest, ReachabilityFollowsUsesAndStopsWhereItHasBeen) {
    SOBFSection section(name("S"));
    auto* target = new SOBFMarker;
    section.addInsn(target);
    auto* used = new SOBFSymbol(name("used"));
    used->value = new SOBFMarkerExpr(target);
    auto* function = new SOBFScope(TAG_SCOPE_FUNCTION);
    auto* block = new SOBFScope(TAG_SCOPE_BLOCK);
    block->setScope(function);
    used->setScope(function);
    auto* unused = new SOBFSymbol(name("unused"));
    SOBFDefAddrInsn user(new SOBFSymbolExpr(used));
    user.markReachable(true);
    EXPECT_TRUE(used->reachable && target->reachable && function->reachable && block->reachable);
    EXPECT_TRUE(section.fragments[0]->reachable);
    EXPECT_FALSE(unused->reachable || section.reachable);
    used->markReachable(false);
    EXPECT_TRUE(user.reachable);
    EXPECT_FALSE(block->reachable);
}

TEST_F(SOBFModelTest, UndefinedSymbolIsResolvedWhenItIsReached) {
    SOBFSymbol::resolve = [](SOBFSymbol* symbol) { symbol->value = new SOBFConstExpr(9); };
    SOBFSymbol symbol(name("late"));
    symbol.markReachable(true);
    SOBFSymbol::resolve = nullptr;
    ASSERT_TRUE(symbol.value);
    EXPECT_EQ(symbol.value->evaluate().value, 9);
}

TEST_F(SOBFModelTest, ScopeTakesASymbolOnceAndTheLaterOfAName) {
    SOBFScope first(TAG_SCOPE_BLOCK);
    SOBFScope second(TAG_SCOPE_BLOCK);
    auto* one = new SOBFSymbol(name("s"));
    auto* other = new SOBFSymbol(name("s"));
    one->setScope(&first);
    one->setScope(&second);
    EXPECT_TRUE(second.symbolsByName.empty());
    other->setScope(&first);
    EXPECT_EQ(first.symbolsByName.value(name("s")), other);
}

TEST_F(SOBFModelTest, MapOfManyNamesKeepsTheirOrder) {
    SOBFNameMap<int> map;
    for (int round = 1; round <= 2; ++round)
        for (int i = 0; i < 1000; ++i)
            map.set(HString::intern(long{i}), i * round);
    ASSERT_EQ(map.size(), 1000u);
    int expected = 0;
    for (const auto& [key, value] : map)
        EXPECT_EQ(value, 2 * expected++);
    EXPECT_EQ(map.value(HString::intern(long{999})), 1998);
    EXPECT_FALSE(map.contains(HString::intern(long{1000})));
}
