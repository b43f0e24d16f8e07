#include "macros/MacroSystem.h"

#include <QDateTime>
#include <QRegularExpression>
#include <chrono>
#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

QString expand(const MacroMap& macros, const QString& text) {
    return MacroSystem::replaceMacros(macros, text);
}

/// Seconds that an expansion takes, for what must not be endless.
double secondsFor(const MacroMap& macros, const QString& text) {
    const auto start = std::chrono::steady_clock::now();
    expand(macros, text);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

TEST(Macros, EveryFormOfReference) {
    const MacroMap macros{{"b", "B"},    {"c", "C"},     {"viaC", "$(c)"},
                          {"empty", ""}, {"x(y)z", "P"}, {"d", "p\\q;"}};
    const struct {
        const char* text;
        const char* expanded;
    } rows[] = {
        {"", ""},
        {"plain", "plain"},
        {"$x $", "$x $"},
        {"$$", "$$"},
        {"$$(b)", "$B"},
        {"$(b)$(c)", "BC"},
        {"[$(empty)]", "[]"},
        {"abc$(def", "abc(def"},
        {"$()", "$()"},
        {"$(u)", "$(u)"},
        {"$(x(y)z)", "P"},
        {"$(u(v)w)", "$(u(v)w)"},
        {"$(a:)", ""},
        {"$(b:)", "B"},
        {"$(:x)", "x"},
        {"$(a:b:c)", "b:c"},
        {"$(a::b:c)", "b:c"},
        {"$(b::x)", "B"},
        {"$(a:$(b))", "B"},
        {"$(a:$(u:$(b)))", "B"},
        {"$(a::$(b))", "$(b)"},
        {"$(viaC)", "$(c)"},
        {"$(viaC:$(b))", "C"},            // a "$" in a body lets the next pass see the value's own reference
        {"$(a:$(b)) $(c2::d)", "$(b) d"}, // a final default cancels the pass asked for before it
        {"$(c2::d) $(a:$(b))", "d B"},    // but not one asked for behind it
        {"$(a$(b))", "$(a$(b))"},
        {"($(b))", "(B)"},
        {"$(x$(b)", "(xB"},    // the first "$(" has no end; the second has
        {"$(x$(viaC)", "(xC"}, // its "$" counts as a request for a further pass all the same
        {"$(d)", "p\\q;"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(expand(macros, row.text), row.expanded) << row.text;
}

TEST(Macros, TextWithoutReferenceIsReturnedItself) {
    const QString text("no reference, one $ and (parentheses)");
    EXPECT_EQ(expand({}, text).constData(), text.constData());
    EXPECT_TRUE(expand({}, QString()).isNull());
}

TEST(Macros, LazyScopeIsMadeOnceAndOnlyForAReference) {
    int made = 0;
    const LazyScope scope([&] {
        ++made;
        return MacroMap{{"a", "1"}};
    });
    EXPECT_EQ(MacroSystem::replaceMacros(scope, "x"), "x");
    EXPECT_EQ(made, 0);
    EXPECT_EQ(MacroSystem::replaceMacros(scope, "$(a)$(a)"), "11");
    EXPECT_EQ(made, 1);
}

TEST(Macros, DynamicMacrosExpandOnlyWhereTheMapHoldsTheirName) {
    EXPECT_EQ(expand({{"i", "1"}}, "$(Date)"), "$(Date)");
    const QDateTime before = QDateTime::currentDateTime();
    const QString text = expand(macroSystem.systemMacros(), "$(DateYear)-$(DateMonth)-$(DateDay) $(Time)");
    const QDateTime after = QDateTime::currentDateTime();
    const QString format("yyyy-MM-dd hh:mm:ss");
    EXPECT_THAT((QStringList{before.toString(format), after.toString(format)}), testing::Contains(text));
    EXPECT_TRUE(QRegularExpression("^\\d{1,2} [A-Z][a-z]+ \\d{4}$")
                    .match(expand({{"Date", "x"}}, "$(Date)"))
                    .hasMatch());
}

TEST(Macros, CyclesEndWithTheTextAsItThenStands) {
    EXPECT_EQ(expand({{"a", "$(a:$(b))"}}, "$(a:$(b))"), "$(a:$(b))");
    const QString turning = expand({{"a", "$(b:$)"}, {"b", "$(a:$)"}}, "$(a:$)");
    EXPECT_THAT((QStringList{"$(a:$)", "$(b:$)"}), testing::Contains(turning));
}

TEST(Macros, GrowthAndDepthAreBoundedInTime) {
    EXPECT_LT(secondsFor({{"a", "x$(a:$)"}}, "$(a:$)"), 2);
    EXPECT_LT(secondsFor({{"a", "$(a:$)$(a:$)"}}, "$(a:$)"), 2);
    EXPECT_LT(secondsFor({{"a", QString(100'000, 'v')}}, QString("$(a)").repeated(100'000)), 2);
    EXPECT_LT(secondsFor({}, QString("$(").repeated(500'000)), 2);
    EXPECT_LT(secondsFor({}, QString("$(a:").repeated(200'000) + QString(")").repeated(200'000)), 2);
}

TEST(Macros, GrowthWithinReasonIsCarriedOut) {
    const QString megabyte(1 << 20, 'v');
    EXPECT_EQ(expand({{"a", megabyte}}, "$(a)$(a)$(a)").size(), 3 << 20);
}

TEST(ListText, SplitsAndJoins) {
    const auto split = [](const char* text) { return MacroSystem::stringListFromString(text, false); };
    EXPECT_THAT(split(""), IsEmpty());
    EXPECT_THAT(split("a;;b;"), ElementsAre("a", "b"));
    EXPECT_THAT(split("a\\;b;c\\\\"), ElementsAre("a;b", "c\\"));
    EXPECT_THAT(split("a\\"), ElementsAre("a\\"));
    EXPECT_THAT(split("\\x"), ElementsAre("x"));
    EXPECT_THAT(MacroSystem::stringListFromString("", true), ElementsAre(""));
    EXPECT_THAT(MacroSystem::stringListFromString(";a;", true), ElementsAre("", "a", ""));
    for (const QStringList& list :
         {QStringList{""}, QStringList{"a;b", "\\", "", ";\\;"}, QStringList{"", ""}})
        EXPECT_EQ(MacroSystem::stringListFromString(MacroSystem::stringFromStringList(list), true), list);
}

TEST(MacroLists, NamesSplitAtTheFirstEqualsSign) {
    const MacroMap map = MacroSystem::macrosFromStringList({"a=1", "b", "c=x=y", "a=2", " d =3"});
    EXPECT_THAT(MacroSystem::stringListFromMacros(map), ElementsAre("d=3", "a=2", "b=", "c=x=y"));
    EXPECT_EQ(MacroSystem::overwriteMacros({{"a", "1"}, {"b", "1"}}, {{"b", "2"}, {"c", "2"}}),
              (MacroMap{{"a", "1"}, {"b", "2"}, {"c", "2"}}));
}

TEST(GlobalMacros, LieOverTheSystemMacrosAndLiveInTheStore) {
    struct Store : GlobalMacroStore {
        QStringList entries;
        QStringList read() const override { return entries; }
        void write(const QStringList& list) override { entries = list; }
    } store;
    MacroSystem system;
    system.setSystemMacro("HostOS", "linux");
    system.setGlobalMacro("HostOS", "mine");
    EXPECT_EQ(system.globalMacro("HostOS"), "mine");
    EXPECT_EQ(system.systemMacro("HostOS"), "linux");
    EXPECT_TRUE(system.systemMacro("none").isNull());
    EXPECT_EQ(system.globalMacro("none"), "");

    system.setGlobalMacroStore(&store);
    EXPECT_EQ(system.globalMacro("HostOS"), "linux");
    system.setGlobalMacro("B", "2;\\");
    system.setGlobalMacro("A", "1");
    system.setGlobalMacro("B", "3");
    EXPECT_THAT(store.entries, ElementsAre("A=1", "B=3"));
    system.setGlobalMacro("A", "");
    EXPECT_THAT(store.entries, ElementsAre("B=3"));
    EXPECT_EQ(system.globalMacros(false), (MacroMap{{"B", "3"}}));
    EXPECT_TRUE(system.globalMacros(true).contains("Date"));
}
