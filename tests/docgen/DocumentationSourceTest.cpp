#include "docgen/DocumentationSource.h"
#include "docgen/SourceBrowserObject.h"

namespace {

/// A document of its own as HTML.
std::string html(const char* text) {
    DocObjects objects;
    return DocumentationSource(objects).documentationSource(QString::fromUtf8(text), nullptr).toStdString();
}

/// The comment of a function "int f (char *s)" in /p/a.h as HTML, and what the index learns.
struct Comment {
    explicit Comment(const char* comment) {
        SourceBrowserMethod method;
        method.setName("f");
        method.setType("int");
        method.addArgument({"s", "char *", 6});
        method.declarationFile = "/p/a.h";
        method.comment = QString::fromUtf8(comment);
        const QString result = DocumentationSource(objects).documentationSource(method);
        html = result.isNull() ? "null" : result.toStdString();
        entry = objects.docObjects.value("f");
    }
    DocObjects objects;
    std::string html;
    Obj entry;
};

} // namespace

TEST(DocumentationSource, KeywordByKeyword) {
    const struct {
        const char* text;
        const char* html;
    } rows[] = {
        {"\\$", "<p>$</p>"},
        {"\\&", "<p>&amp;</p>"},
        {"\\<b\\>", "<p>&lt;b&gt;</p>"},
        {"a\\\\b", "<p>a\\b</p>"},
        {"10\\,V", "<p>10&#x202f;V</p>"},
        {"a\\-b", "<p>a&ndash;b</p>"},
        {"a\\--b", "<p>a&mdash;b</p>"},
        {"\\a x \\b y", "<p><b>x</b> <b>y</b></p>"},
        {"\\q x", "<p>&ldquo;x&rdquo;</p>"},
        {"\\sq x", "<p>&lsquo;x&rsquo;</p>"},
        {"\\bi x", "<p><b><i>x</i></b></p>"},
        {"\\i x\\em y\\e z", "<p><i>x</i><i>y</i><i>z</i></p>"},
        {"\\c x\\tt y", "<p><tt>x</tt><tt>y</tt></p>"},
        {"a\\nb", "<p>a</p>"},
        {"a\\n b\\br", "<p>a<br/> b<br/></p>"},
        {"\\code\nint a;\n b\n\\endcode\nc",
         "<p><blockquote><tt><br/>int a;<br/> b<br/></tt></blockquote></p><p>c</p>"},
        {"\\item a\n\\item b", "<ul><li> a\n</li>\n<li> b</li></ul>"},
        {"\\step a\\step b", "<ol><li> a</li>\n<li> b</li></ol>"},
        {"\\item a\\step b", "<ul><li> a</li></ul><ol><li> b</li></ol>"},
        {"\\xref f", "<p><a href=\"f.htm\">f</a></p>"},
        {"\\ref{a b}", "<p><a href=\"a b.htm\">a b</a></p>"},
        {"\\synopsis", "<h5>Synopsys</h5>"},
        {"a\\description b", "<p>a</p><h5>Description</h5><p>b</p>"},
        {"\\desc", "<h5>Description</h5>"},
        {"\\ts", "<h5>Thread Safety</h5>"},
        {"\\note", "<h5>Note</h5>"},
        {"\\errors", "<h5>Errors</h5>"},
        {"\\sa", "<h5>See Also</h5>"},
        {"\\seealso", "<h5>See Also</h5>"},
        {"\\stds", "<h5>Standards</h5>"},
        {"\\standards", "<h5>Standards</h5>"},
        {"\\section One two\nthree", "<h2>One two</h2><p>three</p>"},
        {"\\subsection{One} two", "<h3>One</h3><p>two</p>"},
        {"\\title One", "<h1>One</h1>"},
        {"\\task One", "<h5>One</h5>"},
        {"\\split x", "<p align=\"right\"><font color=\"#000080\"><b>x</b></font></p>"},
        {"a\\split x",
         "<p>a</p><p align=\"right\"><hr color=\"#000080\" /><font color=\"#000080\"><b>x</b></font></p>"},
        {"\\brief One\\ingroup Two\nthree", "<p>three</p>"},
        {"a \\brief b", "<p>a "}, // the paragraph is forgotten, not closed
    };
    for (const auto& row : rows)
        EXPECT_EQ(html(row.text), row.html) << row.text;
}

TEST(DocumentationSource, Blocks) {
    const struct {
        const char* text;
        const char* html;
    } rows[] = {
        {"", ""},
        {" \n \t\n", ""},
        {"a", "<p>a</p>"},
        {"  a\nb\n", "<p>a\nb\n</p>"},
        {"a\n\nb", "<p>a</p><p>b</p>"},
        {"a\n\n\n\n b", "<p>a</p><p>b</p>"},
        {"a\n \nb", "<p>a\n \nb</p>"},
        {"\\item a\n\nb", "<ul><li> a</li></ul><p>b</p>"},
        {"\\item a\\c b\\section c", "<ul><li> a<tt>b</tt></li></ul><h2>c</h2>"},
        {"\\code a\n\nb\\c d", "<p><blockquote><tt> a<br/><br/>b<tt>d</tt></tt></blockquote></p>"},
        {"\\code a\\item b", "<p><blockquote><tt> a</tt></blockquote></p><ul><li> b</li></ul>"},
        {"a\xC2\xB7"
         "b",
         "<p>a&nbsp;b</p>"},
        {"\xC2\xB7", "<p>&nbsp;</p>"},
        {"<i>as is</i> & so on", "<p><i>as is</i> & so on</p>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(html(row.text), row.html) << row.text;
}

TEST(DocumentationSource, WhatIsNoKeywordVanishes) {
    const struct {
        const char* text;
        const char* html;
    } rows[] = {
        {"a \\nothing b", "<p>a  b</p>"},
        {"\\itemize", ""},
        {"a\\", "<p>a</p>"},
        {"a\\ b", "<p>a b</p>"},
        {"a\\\n b", "<p>a\n b</p>"},
        {"a\\!b", "<p>ab</p>"},
        {"a\\&-b", "<p>ab</p>"},
        {"a\\---b", "<p>a&mdash;-b</p>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(html(row.text), row.html) << row.text;
}

TEST(DocumentationSource, Arguments) {
    const struct {
        const char* text;
        const char* html;
    } rows[] = {
        {"\\c a-b", "<p><tt>a</tt>-b</p>"},
        {"\\c   a_1 b", "<p><tt>a_1</tt> b</p>"},
        {"\\c{a b} c", "<p><tt>a b</tt> c</p>"},
        {"\\c {a} c", "<p><tt></tt>{a} c</p>"},
        {"\\c{a\nb}", "<p><tt>a</tt>b}</p>"},
        {"\\c{a", "<p><tt>a</tt></p>"},
        {"\\c", "<p><tt></tt></p>"},
        {"\\c gr\xC3\xB6\xC3\x9F"
         "e!",
         "<p><tt>gr\xC3\xB6\xC3\x9F"
         "e</tt>!</p>"},
        {"\\c %1", "<p><tt></tt>%1</p>"},
        {"\\c{%1}", "<p><tt>%1</tt></p>"},
        {"\\section a\\c b", "<h2>a</h2><p><tt>b</tt></p>"},
        {"\\section  a ", "<h2>a </h2>"},
        {"\\section", "<h2></h2>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(html(row.text), row.html) << row.text;
}

TEST(DocumentationSource, CommentOfAnObject) {
    const struct {
        const char* comment;
        const char* html;
        const char* group;
        const char* brief;
    } rows[] = {
        {"", "null", "", ""},
        {"a", "null", "", ""},
        {"! a", "<p>a</p>", "*** UNASSIGNED GROUP ***", ""},
        {"  !a  \t b\r\n\n  c ", "<p>a b </p><p>c</p>", "*** UNASSIGNED GROUP ***", ""},
        {"!\\brief one\n two", "<p>two</p>", "*** UNASSIGNED GROUP ***", "one"},
        {"!\\brief one\\c two", "<p><tt>two</tt></p>", "*** UNASSIGNED GROUP ***", "one"},
        {"!\\brief{one} \\ingroup{G h}", "", "G h", "one"},
        {"!\\ingroup A\n\\ingroup B\n", "", "B", ""},
        {"! \\this is \\c \\this.", "<p>f is <tt>f</tt>.</p>", "*** UNASSIGNED GROUP ***", ""},
        {"!\\synopsis", "<h5>Synopsys</h5><pre>#include &lt;a.h&gt;<br/>f (char *s)</pre>",
         "*** UNASSIGNED GROUP ***", ""},
        {"!\\code\n a   b\n\\endcode", "<p><blockquote><tt><br/> a b<br/></tt></blockquote></p>",
         "*** UNASSIGNED GROUP ***", ""},
    };
    for (const auto& row : rows) {
        const Comment comment(row.comment);
        EXPECT_EQ(comment.html, row.html) << row.comment;
        EXPECT_EQ(comment.entry.group.toStdString(), row.group) << row.comment;
        EXPECT_EQ(comment.entry.brief.toStdString(), row.brief) << row.comment;
    }
    EXPECT_EQ(Comment("!\\ingroup A\n\\ingroup B\n\\ingroup A").objects.docGroups, (QStringList{"A", "B"}));
}

TEST(DocumentationSource, OutputIsBounded) {
    SourceBrowserMethod method;
    method.setName("f");
    method.addArgument({"", QString(100'000, u'x'), -1});
    method.comment = "!" + QString("\\synopsis").repeated(10'000);
    DocObjects objects;
    EXPECT_LE(DocumentationSource(objects).documentationSource(method).size(),
              DocumentationSource::longestBody);
}
