#include "xml/XMLParser.h"

#include "support/XMLText.h"

#include <gtest/gtest.h>

namespace {

std::string repeat(std::string_view text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

struct Good {
    std::string_view text;
    std::string tree;
};

void expectTrees(std::initializer_list<Good> rows, bool keepText = false) {
    for (const auto& [text, tree] : rows) {
        const ExactParse parse(text, keepText);
        EXPECT_EQ(treeText(parse.root()), tree) << text;
        EXPECT_EQ(parse.error(), XMLParser::NoError) << text;
    }
}

} // namespace

TEST(XMLParser, ReadsElementsAndAttributes) {
    expectTrees({
        {"<a/>", "a"},
        {"\r\n\t <a ></a>", "a"},
        {"<a><b x=\"1\"/><c><d/></c>\n<e/></a>", "a [b x=1, c [d], e]"},
        {"<a x=\"1\" x=\"2\"/>", "a x=2"},
        {"<a x=\"1\" y=\"2\" x=\"\"/>", "a x= y=2"},
        {"<a\tx\n=\r\"1\"y=\"2\"/>", "a x=1 y=2"},
        {"<a x=\"<b>'\n/>\"/>", "a x=<b>'\n/>"},
        {"<a b/>", "a"},
        {"<a b c=\"1\" d/>", "a c=1"},
        {"<a _b9=\"1\" c=d=\"2\"/>", "a _b9=1 d=2"},
        {"<a></a >", "a"},
        {"<a></>", "a"},
        {"<a/a>", "a"},
        {"<9/>", "9"},
        {"< a=\"1\"><><b/></></>", " a=1 [ [b]]"},
        {"<a>text<b/>more</a>", "a [b]"},
        {"<a x=\"\xE9\xFF\"/>", "a x=\xE9\xFF"},
    });
}

TEST(XMLParser, TheLastElementAtTopLevelIsTheResult) {
    expectTrees({
        {"", "nothing"},
        {"   \n", "nothing"},
        {"text", "nothing"},
        {"x<a/>", "nothing"},
        {"\xEF\xBB\xBF<a/>", "nothing"},
        {"<a/><b/>", "b"},
        {"<a/>text", "a"},
        {"<a/><b>", "a"},
        {"<a>", "nothing"},
        {"<a><b/>", "nothing"},
        {"</a><b/></c>", "b"},
        {"</a b><b/>", "b"},
        {"<a></a x><b/></a>", "a [b]"},
        {std::string_view("<a/>\0<b/>", 9), "a"},
        {std::string_view("<a x=\"1\0\"/>", 11), "nothing"},
        {"<", "nothing"},
        {"<a", "nothing"},
        {"<a></a", "nothing"},
        {"<a x=\"1", "nothing"},
        {"<a/></", "a"},
    });
}

TEST(XMLParser, PassesOverWhatItDoesNotKnow) {
    expectTrees({
        {"<?php x?><a/>", "a"},
        {"<!ELEMENT b (c)><a/>", "a"},
        {"<!-x--><a/>", "a"},
        {"<!><a/>", "a"},
        {"<a><!-- <b/> --><c/></a>", "a [c]"},
        {"<!----><a/>", "a"},
        {"<!-- -- -> -- > --><a/>", "a"},
        {"<!-- ---><a/>", "nothing"},
        {"<!-- ---><a/>--><b/>", "b"},
        {"<!-- ----><a/>", "a"},
        {"<!--><a/>", "nothing"},
        {"<!---><a/>", "nothing"},
        {"<!-- x -", "nothing"},
        {"<!-- x --", "nothing"},
        {"<![CDATA[x]]><a/>", "a"},
        {"<a><![CDATA[ <b/>&lt;\r]] > ]>]]]></a>", "a [{ <b/>&lt;\r]] > ]>]}]"},
        {"<a><![CDATA[]]><b/></a>", "a [{}, b]"},
        {"<a><![CDATA[x]]", "nothing"},
        {"<a><![cdata[x]]></a>", "a"},
    });
}

TEST(XMLParser, DecodesReferences) {
    const struct {
        std::string_view value;
        std::string decoded;
    } rows[] = {
        {"&lt;&#65;&#x41;&bogus;", "<AA&bogus;"},
        {"a&amp;b", "a&b"},
        {"&amp;lt;&quot;&gt;", "&lt;\">"},
        {"&lt", "&lt"},
        {"&&lt;", "&<"},
        {"&", "&"},
        {"&#", "&#"},
        {"&#;", "&#;"},
        {"&#x;", "&#x;"},
        {"&#65", "&#65"},
        {"&#65 &#66;", "&#65 B"},
        {"&#321;", "A"},                  // the low 8 bits
        {"&#18446744073709551681;", "A"}, // of any number
        {"&#xe9;&#xE9;", "\xE9\xE9"},
        {"&#xg1;", "\x01"}, // 16 * 16 + 1
        {"&#5f;", "A"},     // 5 * 10 + 15
        {"&#6A;", "&#6A;"},
        {"&#x4-1;", "&#x4-1;"},
        {"&LT;", "&LT;"},
        {"x&#0;y", "x"},
    };
    for (const auto& [value, decoded] : rows) {
        const ExactParse parse("<a x=\"" + std::string(value) + "\" y=\"1\"/>");
        ASSERT_TRUE(parse.root()) << value;
        EXPECT_EQ(parse.root()->attribute("x"), decoded) << value;
        EXPECT_STREQ(parse.root()->attribute("y"), "1") << value;
    }
}

TEST(XMLParser, ReadsTheDeclarations) {
    const struct {
        std::string_view text;
        const char* version;
        const char* encoding;
        const char* docType;
    } rows[] = {
        {"<?xml version=\"1.0\" encoding = \"UTF-8\"?><a/>", "1.0", "UTF-8", nullptr},
        {"<?xml version=\"&lt;?>\"?><a/>", "&lt;?>", nullptr, nullptr},
        {"<?xml version='1.0' standalone=\"no\"?><a/>", nullptr, nullptr, nullptr},
        {"<?xml version=1.0 encoding=\"x\"?><a/>", nullptr, "x", nullptr},
        {"<?xml = . \" ; encoding=\"x\"\n?><a/>", nullptr, "x", nullptr},
        {"<?xml?><a/>", nullptr, nullptr, nullptr},
        {"<?xml ?<a/>", nullptr, nullptr, nullptr},
        {"<?xmlx version=\"1\"?><a/>", nullptr, nullptr, nullptr},
        {"<!DOCTYPE x><a/>", nullptr, nullptr, "x"},
        {"<!DOCTYPE\n x\n><a/>", nullptr, nullptr, "x"},
        {"<!DOCTYPEx><a/>", nullptr, nullptr, "x"},
        {"<!DOCTYPE><a/>", nullptr, nullptr, ""},
        {"<!DOCTYPE x SYSTEM \"y\"><a/>", nullptr, nullptr, nullptr},
        {"<!DOCTYPE x [<!ELEMENT y z>]><a/>", nullptr, nullptr, nullptr},
    };
    for (const auto& [text, version, encoding, docType] : rows) {
        const ExactParse parse(text);
        EXPECT_EQ(treeText(parse.root()), "a") << text;
        EXPECT_STREQ(parse.document().version(), version) << text;
        EXPECT_STREQ(parse.document().encoding(), encoding) << text;
        EXPECT_STREQ(parse.document().docType(), docType) << text;
    }
}

TEST(XMLParser, KeepsTextOfOpenElementsWhenAsked) {
    expectTrees(
        {
            {"<!-- x -->y<a/>z", "a"},
            {"<a></a>", "a [\"\"]"},
            {"<a>\r\n 1 &lt;\r2<b/></a>", "a [\"\n 1 <2\", b, \"\"]"},
            {"<a><!-- - c --></a>", "a [\"\", <! - c >, \"\"]"},
            {"<a><?pi x?></a>", "a [\"\", \" x?>\"]"},
            {"<a><!x></a>", "a [\"\", \"!x>\"]"},
            {"<a><![CDATA[x]]>y</a>", "a [\"\", {x}, \"y\"]"},
        },
        true);
}

TEST(XMLParser, StopsWithTheLineOfTheCursor) {
    const auto tag = XMLParser::BadTagName;
    const auto mismatch = XMLParser::TagNameMismatch;
    const struct {
        std::string_view text;
        XMLParser::Error error;
        unsigned line;
    } rows[] = {
        {"<a b='1'/>", tag, 0},
        {"<a-b/>", tag, 0},
        {"<a xml:lang=\"en\"/>", tag, 0},
        {"<a 1b=\"x\"/>", tag, 0},
        {"<a\xE9/>", tag, 0},
        {"<a=\"1\"/>", tag, 0},
        {"<a<b/>", tag, 0},
        {"<a></b>", mismatch, 0},
        {"<abc></ab>", mismatch, 0},
        {"<ab></abc>", mismatch, 0},
        {"<a><b></a>", mismatch, 0},
        {"<a></ a>", mismatch, 0},
        {"<a / >", mismatch, 0},
        {"<a/b>", mismatch, 0},
        {"<a></", mismatch, 0},
        {"<a/", mismatch, 0},
        // A line feed as the very first byte is not stepped onto.
        {"\n<a-b/>", tag, 0},
        {" \n<a-b/>", tag, 1},
        {"\n\n\n<a-b/>", tag, 2},
        // Line feeds that the tree's strings overwrite, in the places where they may stand.
        {"<a\n-/>", tag, 1},
        {"<a\n\nx\n=\n\"1\"\n-/>", tag, 5},
        {"<a x=\"\n\n\"\ny\n-/>", tag, 4},
        {"<a></a\n\n-><b\n></a\n>", mismatch, 4},
        {"<?xml\nversion\n=\n\"1\n\"\n?>\n<a\n-/>", tag, 7},
        {"<!DOCTYPE\nx\n>\n<a-/>", tag, 3},
        {"<!--\n--><a><![CDATA[\n]]>\n</b>", mismatch, 3},
        // References that lose, move and make line feeds.
        {"<a x=\"&lt;\n&#10;\n&#10;&#10;\n\"\n-/>", tag, 4},
        {"<a x=\"&amp;\n\n&amp;\n\n&amp;&amp;\"><b\n></a>", mismatch, 5},
        {"<a x=\"&#10;\"-/>", tag, 0},
        {"<a x=\"&#0;\n\n\"-/>", tag, 2},
    };
    for (const auto& [text, error, line] : rows) {
        for (const bool keepText : {false, true}) {
            const ExactParse parse(text, keepText);
            EXPECT_EQ(parse.error(), error) << text;
            EXPECT_EQ(parse.line(), line) << text;
            EXPECT_FALSE(parse.root()) << text;
        }
    }
    const ExactParse kept("<a>\n&#10;\r\n&lt;\n<b\n-/></a>", true);
    EXPECT_EQ(kept.line(), 4u);
}

TEST(XMLParser, KeepsWhatWasClosedBeforeTheStop) {
    const ExactParse parse("<a><b/></a><c></d>");
    EXPECT_EQ(parse.error(), XMLParser::TagNameMismatch);
    EXPECT_EQ(treeText(parse.root()), "a [b]");
}

TEST(XMLParser, EveryPrefixOfADocumentIsAnUnfinishedDocument) {
    const std::string text =
        "<?xml version=\"1.0\"?><!DOCTYPE x><!-- c --><a x=\"1&amp;2\" y = \"\"><b/>t<![CDATA[d]]>"
        "<c z=\"&#65;\"></c></a >";
    for (size_t length = 0; length < text.size(); ++length) {
        for (const bool keepText : {false, true}) {
            const ExactParse parse(std::string_view(text).substr(0, length), keepText);
            EXPECT_FALSE(parse.root()) << length;
            // An end tag that is cut short ends another element than the open one.
            const char last = length ? text[length - 1] : ' ';
            EXPECT_EQ(parse.error(), last == '/' ? XMLParser::TagNameMismatch : XMLParser::NoError) << length;
        }
    }
    EXPECT_EQ(treeText(ExactParse(text).root()), "a x=1&2 y= [b, {d}, c z=A]");
}

TEST(XMLParser, ManyAttributesOfATagKeepTheirOrderAndAreReplacedByName) {
    std::string text = "<a";
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 100'000; ++i)
            text.append(" n").append(std::to_string(i)).append("=\"").append(std::to_string(i + round)) +=
                '"';
    }
    const ExactParse parse(text + "><b n1=\"x\" n1=\"y\"/></a>");
    const auto attributes = parse.root()->getAttributeList();
    ASSERT_EQ(attributes.size(), 100'000u);
    for (size_t i = 0; i < attributes.size(); ++i) {
        ASSERT_EQ(std::string_view(attributes[i].name).substr(1), std::to_string(i));
        ASSERT_EQ(attributes[i].value, std::to_string(i + 1));
    }
    EXPECT_EQ(treeText(parse.root()->firstChild()), "b n1=y");
}

TEST(XMLParser, AMillionLevelsAreATree) {
    constexpr int levels = 1'000'000;
    const ExactParse parse(repeat("<a>", levels) + repeat("</a>", levels));
    int depth = 0;
    for (XMLNode* node = parse.root(); node; node = node->firstChild())
        ++depth;
    EXPECT_EQ(depth, levels);
    EXPECT_FALSE(ExactParse(repeat("<a>", levels)).root());
}

TEST(XMLParser, LargeTextsTakeLinearTime) {
    constexpr int many = 500'000; // a quadratic road would take minutes
    for (const char* text : {"<![CDATA[", "<!--", "<!-- -", "<!DOCTYPE ", "<?xml ", "<?", "<a x=\"&#1", "&#x",
                             "</", "<a ", "<", "-", "]]", "&amp"}) {
        for (const char* start : {"", "<a>", "<a x=\"", "<!--", "<![CDATA["})
            ExactParse(start + repeat(text, many), true);
    }
    const ExactParse wide("<a>" + repeat("<b/>", many) + "</a>");
    int children = 0;
    for (XMLNode* child = wide.root()->firstChild(); child; child = child->nextSibling())
        children += child->parent() == wide.root();
    EXPECT_EQ(children, many);
}
