#include "build/Words.h"

#include <gtest/gtest.h>

TEST(Words, OfACommandText) {
    const struct {
        const char* text;
        QStringList words;
    } rows[] = {
        {"", {}},
        {"   ", {}},
        {"cp a b", {"cp", "a", "b"}},
        {"  cp   a ", {"cp", "a"}},
        {"cp \"my file\" b", {"cp", "my file", "b"}},
        {"-D\"A B\"=\"c d\"x", {"-DA B=c dx"}},
        {"a \"\" b", {"a", "b"}},
        {"\"\"", {}},
        {"say \\\"hi\\\"", {"say", "\"hi\""}},
        {"\"a \\\" b\"", {"a \" b"}},
        {"a\\b c\\", {"a\\b", "c\\"}},
        {"a\\\\\"b c", {"a\\\"b", "c"}}, // only the second "\" stands before the quote
        {"\"open to the end", {"open to the end"}},
        {"a\tb\nc", {"a\tb\nc"}},
        {"\"", {}},
        {"\\", {"\\"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(dequotify(row.text), row.words) << row.text;
}

TEST(Words, OfHostileTextsInLinearTime) {
    for (const char* piece : {"\"", "\\", "\\\"", " ", "a ", "\" "})
        EXPECT_LE(dequotify(QString(piece).repeated(2'000'000)).size(), 2'000'000) << piece;
}

TEST(Words, PathsCountFromTheDirectory) {
    EXPECT_EQ(getAbsPath("/p", "a/b"), "/p/a/b");
    EXPECT_EQ(getAbsPath("/p", "/a/b"), "/a/b");
    EXPECT_EQ(getAbsPath("/p", "../a"), "/p/../a");
    EXPECT_EQ(getAbsPath("/p", ""), "/p/");
}
