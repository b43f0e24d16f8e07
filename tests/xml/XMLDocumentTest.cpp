#include "xml/XMLDocument.h"

#include "support/MemoryFiles.h"
#include "support/XMLText.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

class XMLDocumentTest : public testing::Test {
protected:
    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
    XMLDocument document{false};
};

} // namespace

TEST_F(XMLDocumentTest, LoadsAFile) {
    memory.write("/p/a.vkp", "<!DOCTYPE T>\n<a x=\"&lt;\"><b/></a>");
    EXPECT_TRUE(document.load("/p/a.vkp"));
    EXPECT_EQ(treeText(document.root()), "a x=< [b]");
    EXPECT_STREQ(document.docType(), "T");
    EXPECT_STREQ(document.errorText(), "");
}

TEST_F(XMLDocumentTest, AFileThatIsNotThereLeavesTheRoot) {
    ASSERT_TRUE(document.parse("<a/>"));
    EXPECT_FALSE(document.load("/p/\u00E9.vkp"));
    EXPECT_STREQ(document.errorText(), "couldn't read /p/\xE9.vkp");
    EXPECT_EQ(document.errorLine(), 0u);
    EXPECT_EQ(treeText(document.root()), "a");
}

TEST_F(XMLDocumentTest, ALongFileNameIsCutInTheErrorText) {
    EXPECT_FALSE(document.load(QString(5000, 'x')));
    EXPECT_EQ(document.errorText(), "couldn't read " + std::string(1009, 'x'));
}

TEST_F(XMLDocumentTest, TellsWhyAndWhereItStopped) {
    memory.write("/tag.xml", "<a>\n<b/>\n<c x='1'/></a>");
    EXPECT_FALSE(document.load("/tag.xml"));
    EXPECT_STREQ(document.errorText(), "bad tagName");
    EXPECT_EQ(document.errorLine(), 2u);
    EXPECT_FALSE(document.parse("<z/><a>\n</b>"));
    EXPECT_STREQ(document.errorText(), "tagName mismatch");
    EXPECT_EQ(document.errorLine(), 1u);
    EXPECT_EQ(treeText(document.root()), "z");
    EXPECT_TRUE(document.parse(""));
    EXPECT_FALSE(document.root());
    EXPECT_STREQ(document.errorText(), "tagName mismatch");
}

TEST_F(XMLDocumentTest, ALaterLoadLeavesTheFormerTreeInThePool) {
    ASSERT_TRUE(document.parse("<a x=\"1\"/>"));
    XMLElement* former = document.root();
    ASSERT_TRUE(document.parse("<b/>"));
    EXPECT_EQ(treeText(document.root()), "b");
    EXPECT_EQ(treeText(former), "a x=1");
}

TEST_F(XMLDocumentTest, TheCurrentPoolIsRestoredAlsoWhenTheFactoryThrows) {
    struct Refusing : XMLDocument {
        using XMLDocument::XMLDocument;
        XMLElement* mkXMLElement(const char* name) override {
            EXPECT_EQ(Pool::currentPool, this);
            if (std::string_view(name) == "no")
                throw std::runtime_error("no");
            return XMLDocument::mkXMLElement(name);
        }
    };
    Pool pool;
    const CurrentPool current(&pool);
    Refusing refusing(false);
    EXPECT_TRUE(refusing.parse("<yes/>"));
    EXPECT_EQ(Pool::currentPool, &pool);
    EXPECT_THROW(refusing.parse("<yes><no/></yes>"), std::runtime_error);
    EXPECT_EQ(Pool::currentPool, &pool);
}

TEST_F(XMLDocumentTest, FindsTheDocumentTypeInTheFirstKilobyte) {
    const std::string late(1010, ' '); // "<!DOCTYPE xyz" ends with byte 1,023, the last but one
    const struct {
        std::string text;
        const char* type;
    } rows[] = {
        {"<?xml version=\"1.0\"?>\n<!DOCTYPE  A_b9>", "A_b9"},
        {"x<!DOCTYPE \t\r\nA SYSTEM \"y\">", "A"},
        {"<!DOCTYPE A-b>", "A"},
        {"<!DOCTYPE >", ""},
        {"<!DOCTYPE A", nullptr},
        {"<!DOCTYPE\tA>", nullptr},
        {"<!-- c --><!DOCTYPE A>", nullptr},
        {"<a/><!DOCTYPE A>", nullptr},
        {"<?", nullptr},
        {"<", nullptr},
        {"", nullptr},
        {late + "<!DOCTYPE xyz>", "xyz"},
        {late + " <!DOCTYPE xyz>", nullptr},
    };
    for (const auto& [text, type] : rows) {
        memory.write("/f", text);
        EXPECT_STREQ(XMLDocument::xmlDocumentType("/f"), type) << text;
    }
    EXPECT_EQ(XMLDocument::xmlDocumentType("/missing"), nullptr);
}
