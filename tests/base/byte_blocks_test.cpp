#include "support/guarded_bytes.h"
#include <kestrion/byte_blocks.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string.h>
#include <string>

namespace {

std::string random_block(std::mt19937 &random) {
    // Near the edges that decide: blank, its neighbours, the sign bit.
    const std::string alphabet = {' ', ' ', ' ', '\x1F', '!', 'a', '\0', '\x7F', '\x80', '\xFF'};
    std::string block(random() % 7, ' ');
    for (char &c : block)
        c = alphabet[random() % alphabet.size()];
    return block;
}

int compare(const std::string &a, const std::string &b) {
    return charcmp(a.data(), static_cast<ptrdiff_t>(a.size()), b.data(),
                   static_cast<ptrdiff_t>(b.size()));
}

// The rule in other words: cut both blocks to the shorter length; if they are equal so far, strip
// the blanks that begin the longer one's tail and look at what is left.
int plain_charcmp(const std::string &a, const std::string &b) {
    if (a.size() < b.size())
        return -plain_charcmp(b, a);
    const int order = a.substr(0, b.size()).compare(b);
    if (order != 0)
        return order < 0 ? -1 : 1;
    const size_t decides = a.find_first_not_of(' ', b.size());
    if (decides == std::string::npos)
        return 0;
    const unsigned char byte = static_cast<unsigned char>(a[decides]);
    return byte > 32 && byte < 128 ? 1 : -1;
}

TEST(ByteBlocks, PaddedComparisonFollowsItsTailRule) {
    EXPECT_EQ(compare("ab", "ab   "), 0);
    EXPECT_EQ(compare("", "   "), 0);
    EXPECT_EQ(compare("ab", "abc"), -1);
    EXPECT_EQ(compare("ab\t", "ab"), -1);   // a control character: the longer one comes first
    EXPECT_EQ(compare("ab", "ab \xE9"), 1); // so does a high byte
    EXPECT_EQ(compare("\xE9", "z"), 1);     // while in the common part bytes are unsigned
    std::mt19937 random(9);
    for (int i = 0; i < 200000; ++i) {
        const std::string a = random_block(random), b = random_block(random);
        ASSERT_EQ(compare(a, b), plain_charcmp(a, b))
            << testing::PrintToString(a) << " " << testing::PrintToString(b);
    }
    EXPECT_EQ(charcmp("x", -4, "y", 0), 0);
}

TEST(ByteBlocks, LengthDropsTrailingBlanksOnly) {
    const struct {
        const char *block;
        ptrdiff_t length, wanted;
    } rows[] = {
        {"ab  ", 4, 2}, {"    ", 4, 0}, {" a", 2, 2}, {"a\t ", 3, 2},
        {"a b", 2, 1},  {"", 0, 0},     {"x", -3, 0}, {"a\0 ", 3, 2},
    };
    for (const auto &row : rows)
        EXPECT_EQ(qvt_byleng(row.block, row.length), row.wanted) << row.block;
    guarded_bytes blanks("   ");
    EXPECT_EQ(qvt_byleng(blanks.data(), 3), 0);
}

TEST(ByteBlocks, CopiesMayOverlapEitherWay) {
    char text[] = "abcdef";
    bycopy(text, text + 2, 4);
    EXPECT_STREQ(text, "ababcd");
    bylcopy(text + 2, text, 4);
    EXPECT_STREQ(text, "abcdcd");
    bycopy(text, text + 1, -1);
    byfill(text, 2, 'x');
    byfill(text + 2, -1, 'y');
    EXPECT_STREQ(text, "xxcdcd");
}

TEST(ByteBlocks, ComparisonGivesExactlyOne) {
    EXPECT_EQ(bycmpr("a\0b", "a\0c", 3), -1);
    EXPECT_EQ(bycmpr("\xFF", "\x01", 1), 1);
    EXPECT_EQ(bycmpr("az", "ab", 1), 0);
    EXPECT_EQ(bycmpr("a", "b", 0), 0);
    EXPECT_EQ(bycmpr("a", "b", -1), 0);
}

TEST(ByteBlocks, FilledRangeLooksAtEveryByte) {
    EXPECT_EQ(_gIsRangeFilled("\xFF\xFF\xFF", 3, 0xFF), 1);
    EXPECT_EQ(_gIsRangeFilled("\xFF\xFF\x00", 3, 0xFF), 0);
    EXPECT_EQ(_gIsRangeFilled("\x01\xFF\xFF", 3, 0xFF), 0);
    EXPECT_EQ(_gIsRangeFilled("x", 0, 'y'), 1);
    EXPECT_EQ(_gIsRangeFilled("x", -1, 'y'), 1);
}

} // namespace
