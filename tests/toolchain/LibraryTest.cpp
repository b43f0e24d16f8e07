#include "toolchain/common/Library.h"

#include "foundation/HException.h"

#include <gmock/gmock.h>

using namespace testing;

namespace {

const std::vector<LibraryEntry> entries = {
    {"short.vko", "odd", {"one", "two"}},
    {"a name that is longer than fifteen bytes.vko", "even", {"three"}},
    {"short.vko", "", {}},
};

TEST(LibraryTest, MembersAndIndexComeBack) {
    const std::string bytes = libraryBytes(entries);
    const Library library(bytes);
    ASSERT_EQ(library.members().size(), entries.size());
    for (size_t index = 0; index < entries.size(); ++index) {
        EXPECT_EQ(library.members()[index].name, entries[index].name);
        EXPECT_EQ(library.members()[index].bytes, entries[index].bytes);
    }
    EXPECT_EQ(library.definer("two"), 0);
    EXPECT_EQ(library.definer("three"), 1);
    EXPECT_EQ(library.definer("four"), -1);
}

TEST(LibraryTest, SameEntriesGiveTheSameBytes) { EXPECT_EQ(libraryBytes(entries), libraryBytes(entries)); }

/// A library that was cut off is refused, or has lost whole members.
TEST(LibraryTest, EveryPrefixIsSafe) {
    const std::string bytes = libraryBytes(entries);
    for (size_t size = 0; size < bytes.size(); ++size) {
        const std::string prefix = bytes.substr(0, size);
        try {
            EXPECT_LT(Library(prefix).members().size(), entries.size() + 1);
        } catch (const HException& exception) {
            EXPECT_EQ(exception.text(), "bad library");
        }
    }
}

TEST(LibraryTest, EveryDamageIsSafe) {
    const std::string bytes = libraryBytes(entries);
    int refused = 0;
    for (size_t place = 0; place < bytes.size(); ++place) {
        for (const char value : {'\0', ' ', '/', '9', '\xFF'}) {
            std::string damaged = bytes;
            damaged[place] = value;
            try {
                EXPECT_LT(Library(damaged).definer("two"), 3);
            } catch (const HException& exception) {
                EXPECT_EQ(exception.text(), "bad library");
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, 100);
}

/// A nameless member would be the index of a library that is made of it.
TEST(LibraryTest, AMemberHasAName) {
    std::string bytes = libraryBytes({{"a", "text", {}}});
    bytes.replace(bytes.find("a/"), 2, "  ");
    EXPECT_THROW(Library{bytes}, HException);
}

TEST(LibraryTest, AWrongIndexLeadsNowhere) {
    std::string bytes = libraryBytes({{"a", "text", {"symbol"}}});
    bytes[8 + 60 + 7] = 1; // the place of the member
    EXPECT_EQ(Library(bytes).definer("symbol"), -1);
    bytes[8 + 60 + 1] = '\x7F'; // the count of symbols
    EXPECT_THROW(Library{bytes}, HException);
}

} // namespace
