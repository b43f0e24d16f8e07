#include "xml/XMLPP2.h"

#include "macros/MacroSystem.h"
#include "support/MemoryFiles.h"
#include "support/XMLText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char prefix[] = "XmlPP::processConditionals(): ";

class Document : public XMLPP2 {
public:
    void warning(const QString& message) override {
        const std::string text = toBytes(message).toStdString();
        EXPECT_TRUE(text.starts_with(prefix)) << text;
        warnings.push_back(text.substr(std::min(text.size(), sizeof prefix - 1)));
    }
    std::vector<std::string> warnings;
};

class XMLPP2Test : public testing::Test {
protected:
    /// The tree that `text` in the file /p/top.xml becomes.
    std::string load(const std::string& text, const char* macros = "", bool expandMacros = true) {
        memory.write("/p/top.xml", text);
        Document document;
        document.setGrowthLimit(growthLimit);
        EXPECT_TRUE(document.load("/p/top.xml", QString(macros), expandMacros));
        warnings = document.warnings;
        return treeText(document.root());
    }
    /// The same for what stands in a root `r`: the text of its children.
    std::string inRoot(const std::string& text, const char* macros = "", bool expandMacros = true) {
        std::string tree = load("<r>" + text + "</r>", macros, expandMacros);
        return tree == "r" ? "" : tree.substr(3, tree.size() - 4);
    }

    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
    size_t growthLimit = XMLPP2::usualGrowthLimit;
    std::vector<std::string> warnings;
};

} // namespace

TEST_F(XMLPP2Test, TestsKeepOrDropTheirContent) {
    const struct {
        std::string text;
        const char* macros;
        std::string tree;
    } rows[] = {
        {"<if A=\"x,y\"><a/></if><b/>", "A=y", "a, b"},
        {"<if A=\"x,y\"><a/></if><b/>", "", "b"},
        {"<if A=\"x\"><a/></if>", "A=X", ""},
        {"<ifnot A=\"x\"><a/><b/></ifnot>", "", "a, b"},
        {"<ifnot A=\"x\"><a/></ifnot>", "A=x", ""},
        {"<if A=\"\"><a/></if>", "A=", ""},
        {"<if A=\",,\"><a/></if>", "", ""},
        {"<ifnot A=\"\"><a/></ifnot>", "A=", "a"},
        {"<if A=\"1\"/><b/>", "A=1", "b"},
        {"<if A=\"1\"><if B=\"2\"><a/></if><b/></if><c/>", "A=1;B=2", "a, b, c"},
        {"<ifdef name=\"A\"><a/></ifdef>", "A", "a"},
        {"<ifdef name=\"A\"><a/></ifdef>", "B;;", ""},
        {"<ifndef name=\"A\"><a/></ifndef>", "B", "a"},
        {"<ifndef name=\"A\"><a/></ifndef>", "A=1", ""},
        {"<ifdef><a/></ifdef><ifndef><b/></ifndef>", "A=1", "b"},
        {"<a><if A=\"1\"><b/></if></a>", "A=1", "a [b]"},
        {"<if A=\"$(B)\"><a/></if>", "A=1;B=1", "a"},
        {"<if A=\"$x $(B)\"><a/></if>", "A=$x 1;B=1", "a"},
    };
    for (const auto& [text, macros, tree] : rows) {
        EXPECT_EQ(inRoot(text, macros), tree) << text;
        EXPECT_THAT(warnings, IsEmpty()) << text;
    }
}

TEST_F(XMLPP2Test, SwitchKeepsTheFirstMatchOrTheLastDefault) {
    const std::string text =
        "<switch name=\"S\"><x/><default><d/></default><case value=\"1,2\"><a/><b/></case>"
        "<case value=\"2,3\"><c/></case><default><e/></default></switch><z/>";
    EXPECT_EQ(inRoot(text, "S=1"), "a, b, z");
    EXPECT_EQ(inRoot(text, "S=2"), "a, b, z");
    EXPECT_EQ(inRoot(text, "S=3"), "c, z");
    EXPECT_EQ(inRoot(text, "S=4"), "e, z");
    EXPECT_EQ(inRoot("<switch name=\"S\"><case value=\"1\"><a/></case></switch><z/>", "S=2"), "z");
    EXPECT_EQ(inRoot("<switch name=\"S\"><case value=\"1\"/></switch><z/>", "S=1"), "z");
    EXPECT_EQ(inRoot("<switch name=\"S\"><case><a/></case><default><b/></default></switch>"), "b");
    EXPECT_EQ(inRoot("<switch name=\"S\"><case value=\"1\"><if A=\"1\"><a/></if><switch name=\"S\"><case "
                     "value=\"1\"><b/></case></switch></case></switch><z/>",
                     "S=1;A=1"),
              "a, b, z");
}

TEST_F(XMLPP2Test, DefinesHoldFromWhereTheyStandAndBeforeTheMacros) {
    const std::string test = "<if A=\"1\"><yes/></if>";
    EXPECT_EQ(inRoot(test + "<define name=\"A\" value=\"1\"/>" + test), "yes");
    EXPECT_EQ(inRoot("<define name=\"A\" value=\"1\"/>" + test, "A=2"), "yes");
    EXPECT_EQ(inRoot("<b><define name=\"A\" value=\"$(V)\"/></b>" + test, "V=1"), "b, yes");
    EXPECT_EQ(inRoot("<define name=\"A\" value=\"\"/><ifdef name=\"A\"><a/></ifdef>"), "a");
    EXPECT_EQ(inRoot("<if B=\"1\"><define name=\"A\" value=\"1\"/></if>" + test), "");
    EXPECT_EQ(inRoot("<switch name=\"S\"><case value=\"1\"><define name=\"A\" value=\"1\"/></case>"
                     "<default/></switch>" +
                     test),
              "yes");
    EXPECT_EQ(inRoot("<switch name=\"S\"><case value=\"1\"><define name=\"A\" value=\"1\"/></case></switch>" +
                     test),
              "");
}

TEST_F(XMLPP2Test, LoopsCopyTheirChildrenWithTheirMacros) {
    EXPECT_EQ(
        inRoot(
            "<for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"><a n=\"$(i)\" m=\"k\"><b h=\"$(i_hex)\"/></a>"
            "<c x=\"$(i_alpha)\"/></for><z/>"),
        "a n=0 m=k [b h=0x0], c x=A, a n=1 m=k [b h=0x1], c x=B, z");
    EXPECT_EQ(inRoot("<for index=\"i\" start=\"0\" end=\"0\" incr=\"1\"><a/></for><z/>"), "z");
    EXPECT_EQ(inRoot("<for index=\"i\" start=\"0x8\" end=\"20\" incr=\"0x5\"><a n=\"$(i)\"/></for>"),
              "a n=8, a n=13, a n=18");
    EXPECT_EQ(
        inRoot("<for index=\"i\" start=\"0b10\" end=\"03\" incr=\"2\" add=\"0B11\"><a n=\"$(i_ap)\"/></for>"),
        "a n=0, a n=2");
    EXPECT_EQ(
        inRoot(
            "<for index=\"i\" start=\"0\" end=\"2\" incr=\"1\" sub=\"1\" mul=\"4\"><a n=\"$(i_ap)\"/></for>"),
        "a n=4294967295, a n=3");
    EXPECT_EQ(inRoot("<for index=\"i\" start=\"3\" end=\"4\" incr=\"1\" add=\"$(A)\" sub=\"1\" mul=\"$(M)\">"
                     "<a n=\"$(i_ap) $(i_ap_hex) $(i_ap_plus_127) $(i_ap_hex_plus_10)\"/></for>",
                     "A=0x100;M=2", false),
              "a n=262 0x106 389 0x110");
    const std::string unknown =
        "$(i_ap_plus_128)$(i_ap_plus_07)$(i_ap_plus_)$(i_ap_hex_plus_+1)$(j)$(i_x)$(Date)";
    EXPECT_EQ(inRoot("<for index=\"i\" start=\"0\" end=\"1\" incr=\"1\"><a n=\"" + unknown + "\"/></for>"),
              "a n=" + unknown);
    EXPECT_EQ(
        inRoot(
            "<for index=\"i\" start=\"0xFFFFFFF0\" end=\"0xFFFFFFFF\" incr=\"16\"><a n=\"$(i_hex)\"/></for>"),
        "a n=0xFFFFFFF0");
}

TEST_F(XMLPP2Test, CopiesOfALoopAreWalkedInTheOuterScope) {
    const std::string text =
        "<for index=\"i\" start=\"1\" end=\"3\" incr=\"1\"><for index=\"j\" start=\"0\" end=\"$(i)\" "
        "incr=\"1\"><a n=\"$(i)$(j)$(O)\"/></for><if O=\"$(i)\"><b/></if></for>";
    EXPECT_EQ(inRoot(text, "O=2"), "a n=102, a n=202, a n=212, b");
    EXPECT_EQ(inRoot(text, "O=2", false), "a n=10$(O), a n=20$(O), a n=21$(O), b");
    EXPECT_EQ(inRoot("<for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"><a/><![CDATA[x]]><b/></for>"),
              "a, a");
    EXPECT_EQ(
        inRoot("<for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"><a><![CDATA[x]]><b/><c><d/></c></a></for>"),
        "a [b, c [d]], a [b, c [d]]");
}

TEST_F(XMLPP2Test, FaultsOfElementsWarn) {
    const std::string loop = "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">";
    const struct {
        std::string text;
        std::string tree;
        std::string warning;
    } rows[] = {
        {"<if><a/></if>", "if [a]", "one condition required for <if[not]>"},
        {"<ifnot a=\"1\" b=\"2\"/>", "ifnot a=1 b=2", "one condition required for <if[not]>"},
        {"<define name=\"A\"/><b/>", "b", "missing name and/or value in <define>"},
        {"<define value=\"A\"/><b/>", "b", "missing name and/or value in <define>"},
        {"<for index=\"i\" start=\"0\" end=\"1\"><a/></for><b/>", "b", loop},
        {"<for index=\"i\" start=\"0\" end=\"1\" incr=\"1\"/><b/>", "b", loop},
        {"<for index=\"i\" start=\"0\" end=\"1\" incr=\"0\"><a/></for>", "", "error: <for> with incr 0"},
        {"<include><a/></include>", "include [a]", "missing filename in <include>"},
        {"<include filename=\"no\" />", "include filename=no",
         "error \"couldn't read /p/no\" in include file /p/no line:0"},
        {"<include filename=\"no\" no_root=\"\"><a/></include><b/>", "a, b",
         "error \"couldn't read /p/no\" in include file /p/no line:0"},
        {"<include filename=\"bad\"/><b/>", "include filename=bad, b",
         "error: include file '/p/bad' is empty"},
        {"<include filename=\"late\"/>", "include filename=late",
         "error \"bad tagName\" in include file /p/late line:1"},
        {"<include filename=\"empty\"><if A=\"\"/></include>", "include filename=empty",
         "error: include file '/p/empty' is empty"},
    };
    memory.write("/p/bad", "<a>\n<b x='1'/></a>");
    memory.write("/p/late", "<a/>\n<b x='1'/>");
    memory.write("/p/empty", "");
    for (const auto& [text, tree, warning] : rows) {
        EXPECT_EQ(inRoot(text), tree) << text;
        EXPECT_THAT(warnings, ElementsAre(warning)) << text;
    }
}

TEST_F(XMLPP2Test, AnIncludeIsReplacedByTheRootOfItsFile) {
    memory.write("/p/sub/one.xml",
                 "<!DOCTYPE One><one v=\"$(A)\"><in v=\"$(A)\"/><include filename=\"two.xml\"/></one>");
    memory.write("/p/sub/two.xml", "<envelope><a/><if A=\"1\"><b/></if></envelope>");
    const std::string include = "<x/><include filename=\"sub/one.xml\"/><y/>";
    EXPECT_EQ(inRoot(include, "A=1"), "x, one v=1 [in v=1, a, b], y");
    EXPECT_EQ(inRoot(include, "A=2", false), "x, one v=$(A) [in v=$(A), a], y");
    EXPECT_EQ(inRoot("<x/><include filename=\"/p/sub/one.xml\" no_root=\"\"/><y/>", "A=1"),
              "x, in v=1, a, b, y");
    EXPECT_EQ(inRoot("<include filename=\"sub/two.xml\"/>", "A=2"), "a");
    EXPECT_THAT(warnings, IsEmpty());
}

TEST_F(XMLPP2Test, AnIncludeBringsMacrosAndAttributes) {
    memory.write("/p/i.xml", "<i v=\"$(A)$(B)\" old=\"1\"><if A=\"9\"><w/></if><j v=\"$(A)$(B)\"/></i>");
    const std::string plain = "<include filename=\"i.xml\" macros=\"A=9;\n\nC=2\"/>";
    const std::string wished = "<include filename=\"i.xml\" expand_macros=\"\" macros=\"A=9\"/>";
    EXPECT_EQ(inRoot(plain, "A=1;B=2"), "i v=92 old=1 [w, j v=92]");
    EXPECT_EQ(inRoot(plain, "A=1;B=2", false), "i v=$(A)$(B) old=1 [j v=$(A)$(B)]");
    EXPECT_EQ(inRoot(wished + "<k v=\"$(A)\"/>", "A=1;B=2", false), "i v=92 old=1 [w, j v=92], k v=$(A)");
    EXPECT_EQ(
        inRoot("<include filename=\"i.xml\" inherit_attributes=\"old;;new;none\" old=\"$(A)\" new=\"3\"/>",
               "A=1"),
        "i v=1$(B) old=1 new=3 [j v=1$(B)]");
    EXPECT_EQ(inRoot("<include filename=\"i.xml\" inherit_attributes=\"old\" old=\"7\"/>", "", false),
              "i v=$(A)$(B) old=7 [j v=$(A)$(B)]");
}

TEST_F(XMLPP2Test, TheNameOfAnIncludeExpandsWithSystemMacros) {
    macroSystem.setSystemMacro("XMLPP2TestDir", "/q");
    memory.write("/q/i.xml", "<i/>");
    EXPECT_EQ(inRoot("<include filename=\"$(XMLPP2TestDir)/i.xml\"/>", "", false), "i");
    EXPECT_EQ(inRoot("<include filename=\"$(A)/i.xml\"/>", "A=/q", false), "include filename=$(A)/i.xml");
    EXPECT_THAT(warnings,
                ElementsAre("error \"couldn't read /p/$(A)/i.xml\" in include file /p/$(A)/i.xml line:0"));
}

TEST_F(XMLPP2Test, TheDocumentKeepsItsOwnRootAndType) {
    memory.write("/p/i.xml", "<!DOCTYPE Inner><i/>");
    memory.write("/p/top.xml", "<!DOCTYPE Outer><r><include filename=\"i.xml\"/></r>");
    Document document;
    ASSERT_TRUE(document.load("/p/top.xml", QString(), false));
    EXPECT_EQ(treeText(document.root()), "r [i]");
    EXPECT_STREQ(document.docType(), "Outer");
    EXPECT_FALSE(document.load("/p/none.xml", QString(), false));
    EXPECT_STREQ(document.errorText(), "couldn't read /p/none.xml");
}

TEST_F(XMLPP2Test, AConditionalAsTheRootStaysAsPlainData) {
    memory.write("/p/i.xml", "<envelope><if A=\"1\"><a/></if></envelope>");
    EXPECT_EQ(load("<include filename=\"i.xml\"/>", "A=1"), "envelope [a]");
    EXPECT_THAT(warnings, IsEmpty());
    EXPECT_EQ(load("<include filename=\"i.xml\" no_root=\"\"/>", "A=1"), "envelope [a]");
    EXPECT_THAT(warnings, ElementsAre("error: <include> with no_root can't be the root"));
    for (const char* name : {"if", "ifnot", "ifdef", "ifndef", "switch", "define", "for"}) {
        const std::string tag = name;
        EXPECT_EQ(load("<" + tag + "><if A=\"1\"><a/></if></" + tag + ">", "A=1"), tag + " [a]");
        EXPECT_THAT(warnings, ElementsAre("error: <" + tag + "> can't be the root"));
    }
}

TEST_F(XMLPP2Test, CDATAIsPassedOver) {
    EXPECT_EQ(inRoot("<![CDATA[1]]><if A=\"1\"><![CDATA[2]]><a/></if><![CDATA[3]]>", "A=1"),
              "{1}, {2}, a, {3}");
}

TEST_F(XMLPP2Test, EndlessFilesEndWithOneWarning) {
    memory.write("/p/self.xml", "<s><include filename=\"self.xml\"/></s>");
    inRoot("<include filename=\"self.xml\"/>");
    EXPECT_THAT(warnings, ElementsAre("error: include file '/p/self.xml' nests too deep"));
    inRoot("<for index=\"i\" start=\"0\" end=\"0xFFFFFFFF\" incr=\"1\"><a/></for>");
    EXPECT_THAT(warnings, ElementsAre("error: the document grows too large"));
    growthLimit = 2'000'000;
    memory.write("/p/twice.xml", "<s><include filename=\"twice.xml\"/><include filename=\"twice.xml\"/></s>");
    inRoot("<include filename=\"twice.xml\"/>");
    EXPECT_EQ(warnings.back(), "error: the document grows too large");
    const std::string loop = "<for index=\"i\" start=\"0\" end=\"1000\" incr=\"1\">";
    inRoot(loop + loop + loop + loop + "<a/></for></for></for></for>");
    EXPECT_THAT(warnings, ElementsAre("error: the document grows too large"));
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "<a x=\"$(L)\"/>";
    inRoot(many, ("L=" + std::string(50'000, 'x')).c_str());
    EXPECT_THAT(warnings, ElementsAre("error: the document grows too large"));
}

TEST_F(XMLPP2Test, LargeAndDeepDocumentsTakeLinearTime) {
    const auto nest = [](const std::string& start, int levels, const std::string& inner,
                         const std::string& end) {
        std::string text;
        for (int i = 0; i < levels; ++i)
            text += start;
        text += inner;
        for (int i = 0; i < levels; ++i)
            text += end;
        return text;
    };
    const auto wide = [&](const std::string& item) { return nest(item, 100'000, "", ""); };
    memory.write("/p/e.xml", "<envelope/>");
    EXPECT_EQ(inRoot(nest("<if A=\"1\">", 100'000, "<a/>", "</if>"), "A=1"), "a");
    EXPECT_EQ(inRoot(nest("<if A=\"1\">", 50'000, wide("<if A=\"2\"><b/></if>"), "</if>"), "A=1"), "");
    EXPECT_EQ(inRoot(wide("<define name=\"A\" value=\"1\"/><if A=\"2\"/>")), "");
    EXPECT_EQ(inRoot(nest("<include filename=\"e.xml\"/>", 20'000, "", "")), "");
    EXPECT_EQ(
        inRoot(nest("<switch name=\"S\"><case value=\"1\">", 50'000, "<a/>", "</case></switch>"), "S=1"),
        "a");
    const auto loadOnly = [&](const std::string& text, const char* macros) {
        memory.write("/p/deep.xml", text);
        Document document;
        document.setGrowthLimit(20'000'000);
        EXPECT_TRUE(document.load("/p/deep.xml", macros, true));
        return document.warnings;
    };
    const std::string switches =
        nest("<switch name=\"S\"><case value=\"1\">", 10'000, wide("<a/>"), "</case></switch>");
    EXPECT_THAT(loadOnly("<r>" + switches + "</r>", "S=1"),
                ElementsAre("error: the document grows too large"));
    EXPECT_THAT(loadOnly(nest("<a>", 1'000'000, "<if A=\"1\"/>", "</a>"), "A=1"), IsEmpty());
}
