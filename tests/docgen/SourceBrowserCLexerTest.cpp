#include "docgen/SourceBrowserCLexer.h"
#include "foundation/Text.h"

#include <cstdio>

namespace {

/// The tokens of a text with a blank between them: characters as they are, identifiers as 'x', other codes in
/// hexadecimal.
std::string tokens(std::string_view text, bool isSkipping = false) {
    // The exact size, so that a look behind the end is seen.
    const std::vector<char> bytes(text.begin(), text.end());
    CodeEditLineIterator lines(std::string_view(bytes.data(), bytes.size()));
    SourceBrowserEventInterface events;
    Metrics metrics;
    SourceBrowserCLexer lexer(lines, events, metrics);
    lexer.setSkipping(isSkipping);
    std::string result;
    while (const int token = lexer.gettok()) {
        char code[8];
        std::snprintf(code, sizeof code, token < 0x100 ? "%c" : "%X", token);
        result += result.empty() ? "" : " ";
        if (token == SourceBrowserToken::Identifier && !isSkipping)
            result.append("'").append(lexer.identifier()).append("'");
        else
            result += code;
    }
    return result;
}

class Recorder : public SourceBrowserEventInterface {
public:
    void preprocessorLine(std::string_view text, int line) override {
        log += std::to_string(line) + ":" + std::string(text) + "|";
    }
    void fixmeComment(const QString& text, int line) override {
        log += std::to_string(line) + ":" + text.toStdString() + "|";
    }
    std::string log;
};

} // namespace

TEST(SourceBrowserCLexer, CutsTextIntoTokens) {
    const struct {
        const char* text;
        const char* tokens;
    } rows[] = {
        {"", ""},
        {"class extern public protected private const volatile", "100 101 102 103 104 105 106"},
        {"register union static virtual enum typedef friend struct", "107 108 109 10A 10B 10C 10D 10E"},
        {"operator template throw namespace signals", "10F 110 111 112 102"},
        {"inline a Q_OBJECT b slots c", "'a' 'b' 'c'"},
        {"classes Class _ _1 a$b A9", "'classes' 'Class' '_' '_1' 'a$b' 'A9'"},
        {"$x x$ @y", "'x' 'x$' 'y'"},
        {"! & ( ) * + , - ; < = > ? [ ] ^ { } ~ . / :", "! & ( ) * + , - ; < = > ? [ ] ^ { } ~ . / :"},
        {"a % b | c # d \\ e ` f", "'a' 'b' 'c' 'd' 'e' 'f'"},
        {"a\x7F\x80\xFF\x01"
         "b",
         "'a' 'b'"},
        {"a :: b : c:::d", "'a' 115 'b' : 'c' 115 : 'd'"},
        {"... .. . a....", "113 . . . 'a' 113 ."},
        {"1 0x1Fu 1.5 12abc_d", "116 116 116 . 116 116 '_d'"},
        {"'a' '\\'' \"s\" \"a\\\"b\" \"\\\\\" x", "116 116 117 117 117 'x'"},
        {"L'a' L\"s\" L x L", "116 117 'L' 'x' 'L'"},
        {"\"open\nx 'open\ny", "117 'x' 116 'y'"},
        {"\"goes \\\non\" x", "117 'x'"},
        {"\"\\", "117"},
        {"a/b /", "'a' / 'b' /"},
        {"a/* b */c // d\ne /**/ f /*/ g */ h", "'a' 'c' 'e' 'f' 'h'"},
        {"a /* no end", "'a'"},
        {"a /* b\n*/ c /*\n*", "'a' 'c'"},
        {"#define f(x) \\\n x y\nz", "'z'"},
        {"  #if a\n# b\n c", "'if' 'a' 'c'"},
        {"a\n#x\\\n\\\n#b", "'a'"},
        {"\xEF\xBB\xBF#x\na", "'a'"},
        {"a\r\n#x\\\r\nb\r\nc\r\n", "'a' 'c'"},
        {"/* a\n#if */ b\n*/ c", "'c'"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(tokens(row.text), row.tokens) << row.text;
    EXPECT_EQ(tokens(std::string_view("a\0b", 3)), "'a' 'b'");
}

TEST(SourceBrowserCLexer, SkippingLooksAtNoWord) {
    EXPECT_EQ(tokens("class { inline x; } \"}\" '}'", true), "114 { 114 114 ; } 117 116");
}

TEST(SourceBrowserCLexer, RemembersTheLastBlockComment) {
    CodeEditLineIterator lines(std::string_view("/* one */ a\n/*! two\n * \xC3\xA9\n#gone\n*/ b // c\nd"));
    SourceBrowserEventInterface events;
    Metrics metrics;
    SourceBrowserCLexer lexer(lines, events, metrics);
    EXPECT_EQ(lexer.commentLastLine(), -1);
    lexer.gettok();
    EXPECT_EQ(lexer.commentText(), " one ");
    EXPECT_EQ(lexer.x(), 10);
    lexer.gettok();
    EXPECT_EQ(lexer.commentText(), QString::fromUtf8("! two\n * \xC3\xA9\n"));
    EXPECT_EQ(lexer.commentFirstLine(), 1);
    EXPECT_EQ(lexer.commentLastLine(), 4);
    EXPECT_EQ(lexer.y(), 5);
    lexer.gettok();
    EXPECT_EQ(lexer.y(), 6);
    EXPECT_EQ(lexer.commentLastLine(), 4) << "a line comment is none";
}

TEST(SourceBrowserCLexer, CountsLinesAndReports) {
    CodeEditLineIterator lines(
        std::string_view("#if x \\\n \\\n\n\n \t\n/* a\n\n*/ //  fixme:   now\n// Todo\n// no BUG\n//hack"));
    Recorder events;
    Metrics metrics;
    SourceBrowserCLexer lexer(lines, events, metrics);
    EXPECT_EQ(lexer.gettok(), SourceBrowserToken::End);
    EXPECT_EQ(lexer.gettok(), SourceBrowserToken::End);
    EXPECT_EQ(metrics.lines, 11);
    EXPECT_EQ(metrics.blankLines, 4);
    EXPECT_EQ(metrics.preprocessorLines, 3);
    EXPECT_EQ(metrics.commentLines, 7);
    EXPECT_EQ(metrics.blockComments, 1);
    EXPECT_EQ(metrics.lineComments, 4);
    EXPECT_EQ(events.log, "1:#if x \\|8:fixme: now|9:Todo|11:hack|");
}

TEST(SourceBrowserCLexer, TextThatIsNotUtf8IsACharacterAByte) {
    EXPECT_EQ(decodedSource("\xE9\xC3").size(), 2);
    EXPECT_EQ(decodedSource("\xC3\xA9"), QString(u'\xE9'));
}
