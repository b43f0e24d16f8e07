#include "driver/ArgParse.h"

#include "driver/OstmakeArgParse.h"
#include "driver/Report.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "support/MemoryFiles.h"

#include <gmock/gmock.h>
#include <sstream>

using testing::ElementsAre;

namespace {

/// A parser with an option of each kind, which notes all that it is told.
class NotingParser : public ArgParse {
public:
    NotingParser() {
        options["-s"] = {.kind = NextWord, .flagTarget = &flag};
        options["-t"] = {.kind = NextWord, .stringTarget = &target};
        options["-I"] = {
            .kind = Joined, .isHandler = true, .handler = static_cast<Handler>(&NotingParser::note)};
        options["-Iq"] = options["-I"];
    }
    void onArgument(const QString& text) override { seen.append(text); }
    void note(const char* option, const QString& argument) { seen.append(toText(option) + ":" + argument); }

    bool flag = false;
    QString target;
    QStringList seen;
};

class ArgParseTest : public testing::Test {
protected:
    void SetUp() override { report = &testReport; }
    void TearDown() override { report = nullptr; }

    QStringList parse(std::vector<const char*> words) {
        NotingParser parser;
        parser.parse(static_cast<int>(words.size()), words.data());
        return parser.seen;
    }
    std::string errors() { return stream.str(); }

    std::ostringstream stream;
    Report testReport{"test", stream};
    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
};

} // namespace

TEST_F(ArgParseTest, JoinedOptionsTakeTheRestOfTheWordTheLongerFirst) {
    EXPECT_THAT(parse({"-Iqa", "-Ia", "-I", "-Iq", "-"}), ElementsAre("-Iq:a", "-I:a", "-I:", "-Iq:"));
    EXPECT_EQ(errors(), "test: error: unrecognised option -\n");
}

TEST_F(ArgParseTest, TargetsAreSetAndAWordThatLooksLikeAnOptionIsAnArgument) {
    NotingParser parser;
    const char* words[] = {"-t", "-s", "-s", "x", "-t", toBytes("last\xE9").constData()};
    parser.parse(5, words);
    EXPECT_EQ(parser.target, "-s");
    EXPECT_TRUE(parser.flag);
    EXPECT_EQ(errors(), "test: error: expected argument for option -t\n");
}

TEST_F(ArgParseTest, LinesSplitIntoWords) {
    NotingParser parser;
    const struct {
        std::string line;
        std::vector<std::string> words;
    } rows[] = {
        {"", {}},
        {"   \n", {}},
        {" a  b\n", {"a", "b"}},
        {"a\tb\r\n", {"a\tb\r"}},
        {"\"a b\"c \"\" d\"e\"", {"a b", "c", "", "d\"e\""}},
        {std::string("a\0 b", 4), {"a"}},
        {"\"a\nb\"", {}},
    };
    for (const auto& row : rows) {
        std::vector<std::string> words;
        EXPECT_EQ(parser.argifyLine("", 1, row.line, words), static_cast<int>(row.words.size())) << row.line;
        if (!row.words.empty()) {
            EXPECT_EQ(words, row.words);
        }
    }
    EXPECT_EQ(errors(), "test: error: unterminated string in command line\n");
}

TEST_F(ArgParseTest, TheWordsOfALineAreBounded) {
    std::string line;
    for (int i = 0; i < 256; ++i)
        line += "x ";
    memory.write("fits", line);
    memory.write("more", line + "x");
    EXPECT_EQ(parse({"@fits"}).size(), 256);
    EXPECT_EQ(parse({"@more"}).size(), 0);
    EXPECT_EQ(errors(), "test: error: more than 256 words in indirect file more(1)\n");
}

TEST_F(ArgParseTest, ALongLineArrivesInPieces) {
    memory.write("long", std::string(1023, 'a').append("#comment b\nc\nd\"\n\""));
    EXPECT_THAT(parse({"@long"}), ElementsAre(QString(1023, 'a'), "c", "d\""));
    EXPECT_EQ(errors(), "test: error: unterminated string in indirect file long(5)\n");
}

TEST_F(ArgParseTest, FilesThatNameEachOtherTwiceComeToAnEnd) {
    memory.write("self", "@self\n@self\n");
    parse({"@self"});
    EXPECT_EQ(memory.reads["self"], ArgParse::maximumIndirectFiles);
    EXPECT_THAT(errors(), testing::StartsWith("test: error: too many indirect files\n"));
}

TEST_F(ArgParseTest, OptionsOfTheProgramAreRecorded) {
    OstmakeArgParse options;
    EXPECT_TRUE(options.config.isNull());
    const char* words[] = {"-file",  "a",     "-property", "p=1",       "-file",    "b",  "-config",
                           "-clean", "x.vkp", "-D",        "M1=a=b",    "-TarnDir", "t",  "-D",
                           "M2=",    "y.vkp", "-show",     "-property", "q",        "-D", "M1=c"};
    options.parse(static_cast<int>(std::size(words)), words);
    EXPECT_THAT(options.files, ElementsAre("a", "b"));
    EXPECT_THAT(options.properties, ElementsAre("p=1", "q"));
    EXPECT_EQ(options.config, "-clean");
    EXPECT_FALSE(options.clean);
    EXPECT_TRUE(options.show);
    EXPECT_EQ(options.argument, "y.vkp");
    EXPECT_EQ(options.tarnDir, "t");
    EXPECT_EQ(macroSystem.globalMacro("M1"), "c");
    EXPECT_FALSE(macroSystem.globalMacros(false).contains("M2"));
    EXPECT_EQ(errors(), "");
}
