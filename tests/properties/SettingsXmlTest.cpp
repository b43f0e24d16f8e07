#include "properties/SettingsXml.h"
#include "foundation/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using SettingsXml::Entries;

/// The value of "k" in a file whose element holds `content`; "(none)" if the file can't be read.
QString valueOf(const QByteArray& content) {
    Entries entries;
    const QByteArray file = "<settings><setting name=\"k\">" + content + "</setting></settings>";
    return SettingsXml::read(viewOf(file), entries) ? entries.value("k", "(absent)") : QString("(none)");
}

bool isRefused(const QByteArray& file) {
    Entries entries = {{"kept", "x"}};
    return !SettingsXml::read(viewOf(file), entries) && entries == Entries{{"kept", "x"}};
}

TEST(SettingsXml, FileHasOneLineAnEntryInKeyOrder) {
    EXPECT_EQ(SettingsXml::write({{"B/x", "2"}, {"A", QString::fromLatin1("a<b>&\"'\xB7")}}),
              QByteArray("<!DOCTYPE Ostrel_Settings_File>\n<settings>\n"
                         "  <setting name=\"A\">a&lt;b&gt;&amp;&quot;&apos;&middot;</setting>\n"
                         "  <setting name=\"B/x\">2</setting>\n</settings>\n"));
}

TEST(SettingsXml, EveryLatin1ValueComesBack) {
    QString all;
    for (char16_t c = 1; c < 256; ++c) {
        if (c >= 32 || c == '\t' || c == '\n' || c == '\r')
            all += QChar(c);
    }
    const QStringList values = {all,
                                "",
                                " ",
                                " \n ",
                                "\r",
                                "\r\n",
                                "\n",
                                "\t",
                                " a ",
                                "&middot;",
                                "&nbsp;",
                                "&amp;lt;",
                                "&#10;",
                                "&#xd;",
                                "]]>",
                                "<![CDATA[x]]>",
                                "<!-- x -->",
                                "a=b;c\\;d;",
                                "</setting>",
                                QString(QChar(0xA0)),
                                QString::fromUtf16(u"\u20AC \U0001F600"),
                                QString(QChar(0xFDD0)),
                                QString(100'000, u'<')};
    Entries entries;
    for (const QString& value : values)
        entries.insert("Key " + QString::number(entries.size()), value);
    Entries read;
    ASSERT_TRUE(SettingsXml::read(viewOf(SettingsXml::write(entries)), read));
    EXPECT_EQ(read, entries);
}

TEST(SettingsXml, CharactersThatNoXmlHoldsHarmOnlyThemselves) {
    Entries read;
    const Entries entries = {{"a", QString("x") + QChar(1) + QChar(0) + QChar(0xFFFF) + "y"}, {"b", "whole"}};
    ASSERT_TRUE(SettingsXml::read(viewOf(SettingsXml::write(entries)), read));
    EXPECT_EQ(read, (Entries{{"a", "x???y"}, {"b", "whole"}}));
}

TEST(SettingsXml, ValueIsTheFirstChild) {
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"", ""},
        {"a&nbsp;b&middot;", "a b\xB7"},
        {"&nbsp;", " "},
        {"&#65;&#x42;", "AB"},
        {"\xE9", "\xE9"},
        {"<![CDATA[a&amp;b]]>", "<![CDATA[a&b]]>"},
        {"<!--c-->text", "<!--c-->"},
        {"text<b/>more", "text"},
    };
    for (const auto& [content, value] : cases)
        EXPECT_EQ(valueOf(content), QString::fromLatin1(value)) << content;
}

TEST(SettingsXml, SettingsAreFoundAtAnyDepthAndNeedAName) {
    Entries read;
    ASSERT_TRUE(SettingsXml::read(
        "<?xml version='1.0'?><r><?more?><a><setting name='x'>1<setting name='y'>2</setting></setting></a>"
        "<setting name=''>3</setting><setting>4</setting><other name='o'>5</other></r>",
        read));
    EXPECT_EQ(read, (Entries{{"x", "1"}, {"y", "2"}}));
}

TEST(SettingsXml, DamagedAndHostileFilesAreRefused) {
    const QByteArray nested = QByteArray("<a>").repeated(1'000'000);
    const std::vector<QByteArray> files = {
        "",
        "text",
        "<settings>",
        "<settings><setting name=\"a&b\">x</setting></settings>",
        "<settings><setting name=\"a\">\x01</setting></settings>",
        QByteArray("<s><setting name=\"a\"><b \0c=\"\"/></setting></s>", 45),
        "<settings><setting name=\"a\">&other;</setting></settings>",
        "<!DOCTYPE s [<!ENTITY a \"x\"><!ENTITY b \"&a;&a;&a;&a;\">]><s><setting "
        "name=\"k\">&b;</setting></s>",
        "<!DOCTYPE s",
        "<s><!-- ",
        "<s a=\"" + QByteArray(2000, 'x') + "\"/>",
        nested,
        nested + QByteArray("</a>").repeated(1'000'000),
        "<s>" + QByteArray("<a/>").repeated(300'000) + "</s>",
    };
    for (const QByteArray& file : files)
        EXPECT_TRUE(isRefused(file)) << file.left(80).constData();
}

TEST(SettingsXml, EveryPrefixOfAFileIsReadOrRefused) {
    const QByteArray file = SettingsXml::write({{"a", "x & y"}, {"b", "\r"}, {"c", "\xB7"}});
    for (qsizetype length = 0; length < file.size() - 1; ++length) {
        const std::string exact(file.constData(), static_cast<size_t>(length));
        Entries entries;
        EXPECT_FALSE(SettingsXml::read(exact, entries)) << length;
    }
}

TEST(SettingsXml, KeysThatCantBeWrittenAsTheyStandArePassedOver) {
    Entries read;
    ASSERT_TRUE(
        SettingsXml::read("<s><setting name=\"a&amp;b\">1</setting><setting name=\"a&#9;b\">2</setting>"
                          "<setting name='\"'>3</setting><setting name=\"ok '>\">4</setting></s>",
                          read));
    EXPECT_EQ(read, (Entries{{"ok '>", "4"}}));
}

} // namespace
