#include "foundation/HString.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>

TEST(HString, EqualTextsHaveEqualPointers) {
    HString* abc = HString::intern("abc", HString::AsIs);
    EXPECT_EQ(abc, HString::intern(std::string("abc"), HString::AsIs));
    EXPECT_EQ(abc, HString::intern("abcdef", 3, HString::AsIs));
    EXPECT_NE(abc, HString::intern("abd", HString::AsIs));
    EXPECT_EQ(abc->length(), 3);
    EXPECT_EQ(abc->text()[3], '\0');
}

TEST(HString, ModifierChangesCaseAndSlashes) {
    const struct {
        unsigned modifier;
        const char* result;
    } rows[] = {{0, "A/B\\C"},     {1, "a/b\\c"},   {2, "a/B\\c"}, {0x10, "A/B/C"},
                {0x22, "a\\B\\c"}, {0x12, "a/B/c"}, {7, "a/B\\c"}, {0x32, "a/B\\c"}};
    for (const auto& row : rows)
        EXPECT_STREQ(HString::intern("a/B\\c", row.modifier)->text(), row.result) << row.modifier;
}

TEST(HString, LengthCountsBytesAndNotTheTextsEnd) {
    const char zero[] = {'a', '\0', 'b', '\0'};
    HString* whole = HString::intern(zero, 3, HString::AsIs);
    EXPECT_EQ(whole->view(), std::string_view(zero, 3));
    EXPECT_NE(whole, HString::intern("a", HString::AsIs));
    // A modified copy ends at the zero byte; what the length asks for beyond it reads as zero bytes.
    EXPECT_EQ(HString::intern(zero, 3, HString::UpperCase)->view(), std::string_view("A\0\0", 3));
    EXPECT_EQ(HString::intern("abcdef", 2, HString::UpperCase), HString::intern("AB", HString::AsIs));
    EXPECT_EQ(HString::intern("abc", -1, HString::AsIs)->length(), 0);
}

TEST(HString, NumbersAndStreams) {
    std::ostringstream out;
    out << HString::intern(-2147483648L) << ' ' << HString::intern(0L);
    EXPECT_EQ(out.str(), "-2147483648 0");
    EXPECT_EQ(HString::intern(42L), HString::intern("42", HString::AsIs));
}

TEST(HString, HashWeighsEachByteTwiceTheNext) {
    EXPECT_EQ(HString::scatter[0], 0x7BE9C1BDu);
    EXPECT_EQ(HString::scatter[3], 0x746B9FBEu);
    EXPECT_EQ(std::set<uint32_t>(HString::scatter.begin(), HString::scatter.end()).size(), 256u);
    for (uint32_t value : HString::scatter)
        EXPECT_LT(value, 1u << 31);
    const auto expected = HString::scatter['b'] + 2 * HString::scatter['a'];
    EXPECT_EQ(HString::intern("ab", HString::AsIs)->hash(), expected);
}

// The hash sees only the last 32 bytes of a text: all of these share one.
TEST(HString, TextsOfOneHashStayFastAndDifferent) {
    const std::string tail(40, 'x');
    std::set<HString*> records;
    for (int i = 0; i < 50'000; ++i)
        records.insert(HString::intern(std::to_string(i) + tail, HString::AsIs));
    EXPECT_EQ(records.size(), 50'000u);
    EXPECT_EQ((*records.begin())->hash(), (*records.rbegin())->hash());
    for (int i = 0; i < 50'000; ++i)
        EXPECT_TRUE(records.count(HString::intern(std::to_string(i) + tail, HString::AsIs)));
}

TEST(HString, TextsAreFoundAgainWhenTheTableHasGrown) {
    std::vector<const HString*> texts;
    for (int i = 0; i < 200'000; ++i)
        texts.push_back(HString::intern("grown " + std::to_string(i), HString::AsIs));
    for (size_t i = 0; i < texts.size(); ++i)
        ASSERT_EQ(HString::intern("grown " + std::to_string(i), HString::AsIs), texts[i]);
}
