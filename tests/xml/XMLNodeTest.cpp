#include "xml/XMLNode.h"

#include "support/XMLText.h"

#include <gtest/gtest.h>

namespace {

class XMLNodeTest : public testing::Test {
protected:
    XMLElement* child(const char* name) {
        XMLNode* node = root->firstChild();
        while (node && treeText(node) != name)
            node = node->nextSibling();
        return node ? node->toElement() : nullptr;
    }
    static XMLElement* make(const char* name) { return new XMLElement(name); }

    Pool pool;
    CurrentPool current{&pool};
    ExactParse parse{"<r><a/><b/><c/></r>"};
    XMLElement* root = parse.root();
};

} // namespace

TEST_F(XMLNodeTest, AppendsAndPrepends) {
    root->appendChild(make("d"));
    root->prependChild(make("z"));
    EXPECT_EQ(treeText(root), "r [z, a, b, c, d]");
    EXPECT_EQ(child("d")->parent(), root);
    EXPECT_EQ(child("z")->parent(), root);
    XMLElement* alone = make("e");
    alone->appendChild(make("f"));
    EXPECT_EQ(treeText(alone), "e [f]");
}

TEST_F(XMLNodeTest, NamesAndTextsAreReplaced) {
    root->setTagName("s");
    EXPECT_EQ(treeText(root), "s [a, b, c]");
    XMLData data("old");
    XMLComment comment("old");
    XMLCDATASection section("old");
    data.setData("data");
    comment.setComment("comment");
    section.setCDATASection("section");
    EXPECT_EQ(std::string(data.data()) + comment.comment() + section.CDATASection(), "datacommentsection");
}

TEST_F(XMLNodeTest, ARemovedChildStillLeadsOn) {
    XMLElement* b = child("b");
    root->removeChild(b);
    EXPECT_EQ(treeText(root), "r [a, c]");
    EXPECT_EQ(b->nextSibling(), child("c"));
    root->removeChild(b);
    root->removeChild(child("a"));
    EXPECT_EQ(treeText(root), "r [c]");
}

TEST_F(XMLNodeTest, ReplacesInPlace) {
    root->replaceChild(child("c"), make("x"));
    root->replaceChild(child("a"), make("y"));
    root->replaceChild(make("stranger"), make("z"));
    EXPECT_EQ(treeText(root), "r [y, b, x]");
    EXPECT_EQ(child("y")->parent(), root);
}

TEST_F(XMLNodeTest, SplicesAChainBehindAChild) {
    const ExactParse other("<o><x/><y/></o>");
    root->reparentChildrenAfter(child("a"), other.root()->firstChild());
    EXPECT_EQ(treeText(root), "r [a, x, y, b, c]");
    EXPECT_EQ(child("x")->parent(), root);
    EXPECT_EQ(child("y")->parent(), root);
    const ExactParse last("<o><z/></o>");
    root->reparentChildrenAfter(child("c"), last.root()->firstChild());
    root->reparentChildrenAfter(child("c"), nullptr);
    EXPECT_EQ(treeText(root), "r [a, x, y, b, c, z]");
    XMLElement* empty = make("e");
    empty->reparentChildrenAfter(nullptr, root->firstChild());
    EXPECT_EQ(treeText(empty), "e [a, x, y, b, c, z]");
}

TEST_F(XMLNodeTest, FindsTheElementsAmongOtherNodes) {
    const ExactParse mixed("<r><![CDATA[1]]><a/><![CDATA[2]]><b/><![CDATA[3]]></r>");
    XMLElement* a = mixed.root()->firstChildElement();
    EXPECT_EQ(treeText(a), "a");
    EXPECT_EQ(treeText(a->nextSiblingElement()), "b");
    EXPECT_FALSE(a->nextSiblingElement()->nextSiblingElement());
    EXPECT_FALSE(a->firstChildElement());
}

TEST_F(XMLNodeTest, AttributesAreReplacedAppendedAndRemoved) {
    const ExactParse parsed("<a x=\"1\" y=\"\"/>");
    XMLElement* a = parsed.root();
    a->setAttribute("y", "2");
    for (const char* name : {"p", "q", "r", "s"})
        a->setAttribute(name, name);
    EXPECT_EQ(treeText(a), "a x=1 y=2 p=p q=q r=r s=s");
    a->removeAttribute("x");
    a->removeAttribute("s");
    a->removeAttribute("nothing");
    a->setAttribute("t", XMLNode::mkString("text", 2));
    EXPECT_EQ(treeText(a), "a y=2 p=p q=q r=r t=te");
    EXPECT_TRUE(a->hasAttribute("y"));
    EXPECT_FALSE(a->hasAttribute("x"));
    EXPECT_EQ(a->attribute("x"), nullptr);
}

TEST_F(XMLNodeTest, AnAbsentAttributeIsNullAndAnEmptyOneIsEmpty) {
    const ExactParse parsed("<a y=\"\" z=\"\xE9\"/>");
    EXPECT_TRUE(parsed.root()->attributeText("x").isNull());
    EXPECT_FALSE(parsed.root()->attributeText("y").isNull());
    EXPECT_TRUE(parsed.root()->attributeText("y").isEmpty());
    EXPECT_EQ(parsed.root()->attributeText("z"), QString(QChar(0xE9)));
}
