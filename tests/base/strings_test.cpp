#include "support/guarded_bytes.h"
#include <kestrion/strings.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string.h>
#include <string>
#include <vector>

namespace {

std::string random_text(std::mt19937 &random, std::string_view alphabet, size_t longest) {
    std::string text(random() % (longest + 1), ' ');
    for (char &c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

TEST(Strings, CopiesTakeTheSourceFirstAndReturnTheDestination) {
    char text[16] = "ab";
    EXPECT_EQ(stcat("cd", text), text);
    EXPECT_STREQ(text, "abcd");
    EXPECT_EQ(stcopy("xy", text), text);
    EXPECT_STREQ(text, "xy");
}

TEST(Strings, BoundedCopyAlwaysTerminatesInsideItsSize) {
    const struct {
        const char *source;
        ptrdiff_t size;
        const char *wanted; // with what follows it untouched
    } rows[] = {
        {"abcdef", 4, "abc"}, {"abc", 4, "abc"}, {"abc", 3, "ab"}, {"", 4, ""}, {"abc", 1, ""},
    };
    for (const auto &row : rows) {
        char field[8];
        memset(field, '#', sizeof field);
        stncopy(row.source, field, row.size);
        EXPECT_STREQ(field, row.wanted);
        EXPECT_EQ(field[strlen(row.wanted) + 1], '#') << "fills no further than the terminator";
    }
    char field[2] = "#";
    stncopy("abc", field, 0);
    stncopy("abc", field, -5);
    EXPECT_STREQ(field, "#");
    // Only what fits is read: a source need not be terminated after it.
    guarded_bytes source("abc");
    char whole[4];
    stncopy(source.data(), whole, 4);
    EXPECT_STREQ(whole, "abc");
}

TEST(Strings, ComparisonIsByUnsignedBytesAndGivesExactlyOne) {
    const struct {
        const char *a, *b;
        int plain, folded;
    } rows[] = {
        {"", "", 0, 0},      {"a", "", 1, 1},        {"abc", "abz", -1, -1},   {"abc", "ab", 1, 1},
        {"\xE9", "z", 1, 1}, {"\xE9", "\x80", 1, 1}, {"aB", "Ab", 1, 0},       {"AB", "ab", -1, 0},
        {"AZ", "a[", -1, 1}, {"_a", "A", 1, -1},     {"\xC9", "\xE9", -1, -1}, {"ab", "aB!", 1, -1},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(stcmpr(row.a, row.b), row.plain) << row.a << " " << row.b;
        EXPECT_EQ(stcmpr(row.b, row.a), -row.plain) << row.a << " " << row.b;
        EXPECT_EQ(stcmpri(row.a, row.b), row.folded) << row.a << " " << row.b;
        EXPECT_EQ(stcmpri(row.b, row.a), -row.folded) << row.a << " " << row.b;
    }
}

TEST(Strings, LimitedLengthReadsNoFurther) {
    guarded_bytes text("abcd");
    EXPECT_EQ(stnleng(text.data(), 4), 4);
    EXPECT_EQ(stnleng(text.data(), 2), 2);
    EXPECT_EQ(stnleng("ab", 9), 2);
    EXPECT_EQ(stnleng(text.data() + 4, 0), 0);
    EXPECT_EQ(stnleng(nullptr, -1), 0);
    EXPECT_EQ(stleng("abc"), 3);
}

TEST(Strings, SearchComparesSignedBytesAndNeverFindsTheTerminator) {
    const char *text = "a\xE9 b";
    EXPECT_EQ(stchr(text, 'b'), text + 3);
    EXPECT_EQ(stchr(text, -23), text + 1);
    EXPECT_EQ(stchr(text, 0xE9), nullptr);
    EXPECT_EQ(stchr(text, 'a' + 256), nullptr);
    EXPECT_EQ(stchr(text, 0), nullptr);
    EXPECT_EQ(stchr("", 'a'), nullptr);
}

TEST(Strings, FirstWordsCompareUpToTheLimit) {
    EXPECT_EQ(cmprstr(nullptr, nullptr, 3), 0);
    EXPECT_EQ(cmprstr(nullptr, "a", 0), -1);
    EXPECT_EQ(cmprstr("a", nullptr, 3), -1);
    EXPECT_EQ(cmprstr("a", "b", 0), 0);
    EXPECT_EQ(cmprstr("ab cd", "ab", 9), 0);
    EXPECT_EQ(cmprstr("ab", "abc", 9), -1);
    EXPECT_EQ(cmprstr("zz", "aa", 9), -1);
    // Against cutting the first word out of each.
    const auto word = [](const std::string &text, size_t limit) {
        return text.substr(0, limit).substr(0, text.find(' '));
    };
    std::mt19937 random(5);
    for (int i = 0; i < 50000; ++i) {
        const std::string a = random_text(random, "ab ", 6), b = random_text(random, "ab ", 6);
        const size_t limit = random() % 8;
        const int wanted = word(a, limit) == word(b, limit) ? 0 : -1;
        ASSERT_EQ(cmprstr(a.c_str(), b.c_str(), static_cast<ptrdiff_t>(limit)), wanted)
            << "[" << a << "] [" << b << "] " << limit;
    }
}

TEST(Strings, TrimmingWritesOnlyWhenTheTextGetsShorter) {
    char text[] = "ab  ";
    EXPECT_EQ(_sttrmrt(text, -1), 2);
    EXPECT_STREQ(text, "ab");
    char blanks[] = "   ";
    EXPECT_EQ(_sttrmrt(blanks, -1), 0);
    EXPECT_STREQ(blanks, "");
    char counted[] = "ab cd";
    EXPECT_EQ(_sttrmrt(counted, 3), 2);
    EXPECT_STREQ(counted, "ab");
    guarded_bytes full(" ab"); // no terminator, and no room for one
    EXPECT_EQ(_sttrmrt(full.data(), 3), 3);
    EXPECT_EQ(full.view(), " ab");
    EXPECT_EQ(_sttrmrt(full.data() + 3, 0), 0);
}

TEST(Strings, TokenWalksDoNotDisturbEachOther) {
    char outer[] = "\t a b;  c d ;;", inner[] = "x--y";
    char *outer_place = nullptr, *inner_place = nullptr;
    std::vector<std::string> seen;
    for (char *token = qvt_strtok(outer, ";", &outer_place); token != nullptr;
         token = qvt_strtok(nullptr, ";", &outer_place)) {
        seen.push_back(token);
        const char *part = qvt_strtok(inner_place == nullptr ? inner : nullptr, "-", &inner_place);
        seen.push_back(part != nullptr ? part : "none");
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"\t a b", "x", "  c d ", "y"}));
    EXPECT_EQ(qvt_strtok(nullptr, ";", &outer_place), nullptr);
    char empty[] = ";;";
    EXPECT_EQ(qvt_strtok(empty, ";", &outer_place), nullptr);
    char *never_begun = nullptr;
    EXPECT_EQ(qvt_strtok(nullptr, ";", &never_begun), nullptr);
}

} // namespace
