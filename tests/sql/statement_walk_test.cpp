#include <kestrion/statement_walk.h>

#include "gls/locale_texts.h"
#include "support/guarded_bytes.h"
#include <kestrion/gls_env.h>

#include <gtest/gtest.h>
#include <string>

namespace {

// A code set of one and two bytes whose second bytes are those of quotes, braces and letters.
code_set hostile_seconds() {
    code_set set;
    add_ascii(set);
    for (const char second : {'{', '}', '\'', 'a', '-'})
        set.add(std::string("\x83") + second, letter_mask);
    set.add_pair("\x83{", "\x83}");
    return set;
}

class StatementWalk : public testing::Test {
protected:
    loaded object{hostile_seconds()};

    StatementWalk() {
        CheckGlsEnv()->cur_lc = object.lc;
        CheckGlsEnv()->state->init_flags = 1;
    }
    ~StatementWalk() override { CheckGlsEnv()->cur_lc = nullptr; }
};

using step = const char *(*)(const char *);

std::string rest_after(step walk, const char *text) {
    guarded_bytes bytes(std::string_view(text, strlen(text) + 1));
    return walk(bytes.data());
}

TEST_F(StatementWalk, StepsGoByCharactersAndStopAtTheEnd) {
    const struct {
        step walk;
        const char *text;
        const char *rest;
    } rows[] = {
        {skipwhite, " \t\na ", "a "},
        {skipwhite, "  ", ""},
        {skipquote, "'a\x83'b'c", "'c"}, // the second byte of a character is not a quote
        {skipquote, "'a''b'", "''b'"},
        {skipquote, "'a", ""},
        {skipquote, "", ""},
        {skipword, "a_1$b c", " c"},
        {skipword, "_a-b", "-b"},
        {skipword, "$a", "a"},
        {skipword, "\x83{b-", "-"},
        {skipword, "'a b'c", "c"},
        {skipword, "'a b", ""},
        {skipword, "(a", "a"},
        {skipword, "\xFFz", "z"}, // not a character: one byte
        {skipword, "\x83", ""},   // cut off by the end
        {skipword, "", ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(rest_after(row.walk, row.text), row.rest) << row.text;
}

TEST_F(StatementWalk, CommentsAreSkippedWholeOrNotAtAll) {
    const struct {
        const char *text;
        int wanted;
        const char *rest;
    } rows[] = {
        {" {a\x83}b} -- c\n\n d", 0, "d"},
        {"a", 0, "a"},
        {" {a} {b", 1, " {a} {b"},
        {"--a", 1, "--a"},
        {" {a} - b", 0, "- b"},
        {"-", 0, "-"},
        {"\x83{a", 0, "\x83{a"},
        {"", 0, ""},
    };
    for (const auto &row : rows) {
        guarded_bytes bytes(std::string_view(row.text, strlen(row.text) + 1));
        const char *position = bytes.data();
        EXPECT_EQ(skipcomments(&position), row.wanted) << row.text;
        EXPECT_STREQ(position, row.rest) << row.text;
    }
}

TEST_F(StatementWalk, ComparisonsFoldLetters) {
    const std::string many(300, 'a');
    const struct {
        int32_t (*compare)(const char *, const char *, int32_t);
        std::string a, b;
        int32_t count;
        int wanted;
    } rows[] = {
        {cbncmpr, "select", "SELECTs", 6, 0},
        {cbncmpr, "select", "sel", 6, 1},
        {cbncmpr, "Select", "Select", 6, 1}, // the pattern is not folded
        {cbncmpr, "a\x83}", "A\x83{", 2, 0},
        {cbncmpr, "ab", "a\xFF", 2, 1},
        {cbncmpr, "ab", "ab", 9, 0},
        {cbncmpr, many, many, 256, 0},
        {cbncmpr, many, many, 257, 1},
        {cbncmpr, "a", "b", 0, 0},
        {bycbcmpr, "aBc", "AbD", 3, -1},
        {bycbcmpr, "aBc", "AbC", 3, 0},
        {bycbcmpr, "b", "A", 1, 1},
        {bycbcmpr, "\x83{", "\x83}", 1, 0},
        {bycbcmpr, "a", "", 4, 1},
        {bycbcmpr, "", "a", 4, -1},
        {bycbcmpr, "B\xFF", "a\xFF", 2, -1}, // by bytes
        {bycbcmpr, many + "x", many + "y", 301, 0},
    };
    for (const auto &row : rows)
        EXPECT_EQ(row.compare(row.a.c_str(), row.b.c_str(), row.count), row.wanted)
            << row.a << " " << row.b << " " << row.count;
}

TEST(RightShift, MovesFromTheEnd) {
    char bytes[] = "abcdef";
    rightshift(bytes, bytes + 2, 2);
    EXPECT_STREQ(bytes, "ababcf");
    rightshift(bytes + 1, bytes, 1);
    rightshift(bytes, bytes + 1, 0);
    rightshift(nullptr, bytes, 1);
    EXPECT_STREQ(bytes, "ababcf");
}

} // namespace
