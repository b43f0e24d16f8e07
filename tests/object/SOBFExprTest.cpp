#include "object/SOBFExpr.h"

#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"

using ::testing::IsNull;

namespace {

class SOBFExprTest : public ::testing::Test {
protected:
    static SOBFExpr* number(int64_t value) { return new SOBFConstExpr(value); }
    static SOBFExpr* make(int op, SOBFExpr* left, SOBFExpr* right) {
        return SOBFBinaryExpr::make(op, left, right);
    }
    static SOBFSymbol* symbol(const char* text, SOBFExpr* value = nullptr) {
        auto* made = new SOBFSymbol(HString::intern(text, HString::AsIs));
        made->value = value;
        return made;
    }
    static SOBFExpr* use(SOBFSymbol* symbol) { return new SOBFSymbolExpr(symbol); }
    /// An address in a section of its own.
    static SOBFExpr* label(const char* text, int pc) {
        auto* section = new SOBFSection(HString::intern("S", HString::AsIs));
        auto* marker = new SOBFMarker;
        marker->name = HString::intern(text, HString::AsIs);
        marker->setPC(pc);
        section->addInsn(marker);
        return new SOBFMarkerExpr(marker);
    }

private:
    Pool m_pool;
    CurrentPool m_current{&m_pool};
};

constexpr int64_t least = INT64_MIN;

} // namespace

TEST_F(SOBFExprTest, OperatorsComputeIn64Bits) {
    const struct {
        int op;
        int64_t left, right, value;
    } cases[] = {
        {TAG_ADD, INT64_MAX, 1, least},
        {TAG_SUBTRACT, least, 1, INT64_MAX},
        {TAG_MULTIPLY, INT64_MAX, 2, -2},
        {TAG_DIVIDE, -7, 2, -3},
        {TAG_DIVIDE, least, -1, least},
        {TAG_MODULUS, -7, 2, -1},
        {TAG_MODULUS, least, -1, 0},
        {TAG_AND, 6, 3, 2},
        {TAG_OR, 6, 3, 7},
        {TAG_XOR, 6, 3, 5},
        {TAG_SHIFT_LEFT, 1, 65, 2},
        {TAG_SHIFT_RIGHT, -1, 63, 1},
        {TAG_ARITHMETIC_SHIFT_RIGHT, -8, 66, -2},
        {TAG_EQUAL, 2, 2, 1},
        {TAG_NOT_EQUAL, 2, 2, 0},
        {TAG_GREATER, -1, 0, 0},
        {TAG_LESS, -1, 0, 1},
        {TAG_GREATER_EQUAL, 0, 0, 1},
        {TAG_LESS_EQUAL, 1, 0, 0},
        {TAG_LOGICAL_AND, 5, 0, 0},
        {TAG_LOGICAL_AND, 5, 2, 1},
        {TAG_LOGICAL_OR, 5, 0, 1},
        {TAG_LOGICAL_OR, 0, 0, 0},
        {TAG_PAIR, 5, 9, 5},
        {TAG_WORD_ADDRESS, -3, 0, -2},
    };
    for (const auto& each : cases) {
        const SOBFExpr* folded = make(each.op, number(each.left), number(each.right));
        EXPECT_TRUE(folded->isConstant()) << each.op;
        EXPECT_EQ(folded->evaluate().value, each.value) << each.op;
        const SOBFExpr* late = make(each.op, use(symbol("a", number(each.left))), number(each.right));
        EXPECT_FALSE(late->isConstant()) << each.op;
        EXPECT_EQ(late->evaluate().value, each.value) << each.op;
    }
}

TEST_F(SOBFExprTest, SectionFollowsTheOperator) {
    struct Case {
        int op;
        bool ofBoth, ofLeft, ofRight; ///< whether the result has a section: of two labels, of one
    };
    const Case cases[] = {
        {TAG_ADD, true, true, true},           {TAG_SUBTRACT, false, true, true},
        {TAG_MULTIPLY, false, true, false},    {TAG_AND, false, false, false},
        {TAG_PAIR, true, true, false},         {TAG_WORD_ADDRESS, true, true, false},
        {TAG_SHIFT_LEFT, false, false, false},
    };
    SOBFExpr* first = label("a", 0x30);
    SOBFExpr* second = label("b", 0x10);
    for (const Case& each : cases) {
        EXPECT_EQ(make(each.op, first, second)->evaluate().section != nullptr, each.ofBoth) << each.op;
        EXPECT_EQ(make(each.op, first, number(2))->evaluate().section != nullptr, each.ofLeft) << each.op;
        EXPECT_EQ(make(each.op, number(2), second)->evaluate().section != nullptr, each.ofRight) << each.op;
    }
    EXPECT_EQ(make(TAG_ADD, first, second)->evaluate().section, first->evaluate().section);
    EXPECT_EQ(make(TAG_SUBTRACT, first, second)->evaluate().value, 0x20);
}

TEST_F(SOBFExprTest, ConstantsThatAreAddedOneAfterTheOtherAreAddedUp) {
    SOBFExpr* a = label("a", 0x10);
    EXPECT_EQ(make(TAG_ADD, make(TAG_ADD, a, number(2)), number(3))->printString(), "a + 5");
    EXPECT_EQ(make(TAG_ADD, number(2), make(TAG_ADD, a, number(3)))->printString(), "a + 5");
    EXPECT_EQ(make(TAG_SUBTRACT, make(TAG_SUBTRACT, a, number(2)), number(3))->printString(), "a - 2 - 3");
    EXPECT_EQ(make(TAG_ADD, number(2), a)->printString(), "2 + a");
    EXPECT_FALSE(make(TAG_DIVIDE, number(2), number(0))->isConstant()) << "what fails is not folded";
}

TEST_F(SOBFExprTest, PrintedTextMeansTheExpression) {
    SOBFExpr* a = use(symbol("a"));
    SOBFExpr* b = use(symbol("b"));
    const std::pair<SOBFExpr*, const char*> cases[] = {
        {make(TAG_ADD, a, make(TAG_MULTIPLY, b, number(-3))), "a + b * -3"},
        {make(TAG_MULTIPLY, make(TAG_ADD, a, b), number(3)), "(a + b) * 3"},
        {make(TAG_SUBTRACT, a, make(TAG_SUBTRACT, b, a)), "a - (b - a)"},
        {make(TAG_ARITHMETIC_SHIFT_RIGHT, a, number(2)), "a ASHR 2"},
        {make(TAG_LOGICAL_OR, make(TAG_LOGICAL_AND, a, b), make(TAG_EQUAL, a, b)), "a && b || a == b"},
        {make(TAG_PAIR, a, make(TAG_ADD, b, number(1))), "[b + 1, a]"},
        {make(TAG_WORD_ADDRESS, a, number(0)), "W:a"},
        {make(TAG_WORD_ADDRESS, label("m", 2), number(0)), "W:(m)"},
        {make(0x42, a, b), "a ?? b"},
        {new SOBFRegisterExpr(3), "R3"},
        {new SOBFRegisterExpr(16), "(undefined)"},
    };
    for (const auto& [expr, text] : cases)
        EXPECT_EQ(expr->printString(), text);
}

TEST_F(SOBFExprTest, FailureSaysWhyAndTheLeftOneCountsFirst) {
    SOBFExpr* undefined = use(symbol("u"));
    auto* marker = new SOBFMarker;
    auto* named = new SOBFMarkerExpr(marker);
    named->name = HString::intern("n", HString::AsIs);
    const std::pair<SOBFExpr*, const char*> cases[] = {
        {undefined, "undefined symbol u"},
        {make(TAG_DIVIDE, number(1), number(0)), "division by zero"},
        {make(TAG_MODULUS, number(1), number(0)), "modulus by zero"},
        {make(TAG_ADD, make(TAG_DIVIDE, number(1), number(0)), undefined), "division by zero"},
        {make(TAG_ADD, number(1), undefined), "undefined symbol u"},
        {new SOBFMarkerExpr(marker), "forward reference to label"},
        {named, "forward reference to label n"},
        {new SOBFRegisterExpr(4), ""},
    };
    for (const auto& [expr, why] : cases) {
        const SOBFExprValue value = expr->evaluate();
        EXPECT_TRUE(value.failed) << why;
        EXPECT_EQ(value.message, why);
    }
}

TEST_F(SOBFExprTest, CircleOfSymbolsIsFoundAndTheGuardIsLifted) {
    SOBFSymbol* a = symbol("a");
    SOBFSymbol* b = symbol("b");
    a->value = use(b);
    b->value = use(a);
    SOBFExpr* expr = a->value;
    EXPECT_EQ(expr->evaluate().message, "circular reference to b");
    b->value = number(7);
    EXPECT_EQ(expr->evaluate().value, 7);
}

TEST_F(SOBFExprTest, SymbolsThatDoubleEachOtherDoNotTakeForEver) {
    SOBFSymbol* last = symbol("s0", number(1));
    for (int level = 0; level < 60; ++level)
        last = symbol("s", make(TAG_ADD, use(last), use(last)));
    EXPECT_EQ(use(last)->evaluate().message, "expression too complex");
    SOBFSymbol* chain = symbol("c0", number(1));
    for (int level = 0; level < 100'000; ++level)
        chain = symbol("c", use(chain));
    EXPECT_EQ(use(chain)->evaluate().message, "expression too complex");
    EXPECT_EQ(use(symbol("plain", number(1)))->evaluate().value, 1);
}

TEST_F(SOBFExprTest, MarksAreThoseOfTheSymbolAndOfTheLeftSide) {
    SOBFSymbol* inner = symbol("i", number(1));
    inner->codelet = 5;
    SOBFSymbol* outer = symbol("o", use(inner));
    outer->patchable = true;
    const SOBFExprValue value = make(TAG_ADD, use(outer), use(inner))->evaluate();
    EXPECT_EQ(value.codelet, -1);
    EXPECT_TRUE(value.patchable);
    EXPECT_EQ(make(TAG_ADD, use(inner), use(outer))->evaluate().codelet, 5);
}

TEST_F(SOBFExprTest, EqualsComparesPartByPart) {
    SOBFSymbol* a = symbol("a");
    EXPECT_TRUE(make(TAG_SUBTRACT, use(a), number(1))->equals(make(TAG_SUBTRACT, use(a), number(1))));
    EXPECT_FALSE(make(TAG_SUBTRACT, use(a), number(1))->equals(make(TAG_ADD, use(a), number(1))));
    EXPECT_FALSE(use(a)->equals(use(symbol("a")))) << "two symbols of one name";
    const auto place = new SOBFMarker;
    const auto wrapped = [](SOBFExpr* inner) { return new SOBFTypeExpr(inner); };
    SOBFExpr* const distinct[] = {number(4),
                                  number(5),
                                  new SOBFRegisterExpr(4),
                                  new SOBFRegisterExpr(5),
                                  new SOBFMarkerExpr(place),
                                  new SOBFMarkerExpr(new SOBFMarker),
                                  wrapped(number(4)),
                                  wrapped(use(a))};
    for (const SOBFExpr* one : distinct)
        for (const SOBFExpr* other : distinct)
            EXPECT_EQ(one->equals(other), one == other) << one->printString() << other->printString();
    EXPECT_TRUE(distinct[0]->equals(number(4)) && distinct[3]->equals(new SOBFRegisterExpr(5)));
    EXPECT_TRUE(distinct[4]->equals(new SOBFMarkerExpr(place)) && distinct[7]->equals(wrapped(use(a))));
    EXPECT_TRUE(distinct[6]->isConstant() && !distinct[7]->isConstant());
    EXPECT_EQ(distinct[6]->evaluate().value, 4);
    distinct[7]->markReachable(true);
    EXPECT_TRUE(a->reachable);
    EXPECT_EQ(SOBFRegisterExpr::getRegisterNumber("SR"), 2);
    EXPECT_EQ(SOBFRegisterExpr::getRegisterNumber("R1"), -1);
}
