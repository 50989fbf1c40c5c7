#include "base/locale_start.h"
#include "gls/locale_texts.h"
#include "support/failing_malloc.h"
#include "support/guarded_bytes.h"
#include <kestrion/byte_blocks.h>
#include <kestrion/case_shift.h>
#include <kestrion/character_tables.h>
#include <kestrion/gls_env.h>
#include <kestrion/text_length.h>

#include <gtest/gtest.h>
#include <string.h>
#include <string>

namespace {

// A piece of UTF-8: ASCII, an accented pair, a pair whose upper case is a byte longer than its
// lower case, and a wide blank.
code_set piece_of_utf8() {
    code_set set;
    set.name = "utf8";
    set.growth = "1.5";
    add_ascii(set);
    for (const char *letter : {"é", "É", "ß", "ẞ"})
        set.add(letter, CT_ALPHA);
    set.add_pair("É", "é");
    set.add_pair("ẞ", "ß");
    set.add("\u3000", CT_BLANK);
    return set;
}

// A locale that is the current one, as a start that has succeeded leaves it.
class current_locale : public loaded {
public:
    explicit current_locale(const code_set &set) : loaded(set) {
        CheckGlsEnv()->cur_lc = lc;
        CheckGlsEnv()->state->init_flags = 1;
    }
    ~current_locale() { CheckGlsEnv()->cur_lc = nullptr; }
};

using shift_fn = int (*)(const char *, char *, ptrdiff_t);

int to_upper(const char *source, char *out, ptrdiff_t length) {
    return sqlcaseshift(CASE_UPPER, source, out, length);
}
int to_lower(const char *source, char *out, ptrdiff_t length) {
    return sqlcaseshift(CASE_LOWER, source, out, length);
}

// The source ends, and so must the reading, at an unreadable page; the result keeps its own length.
std::string shifted(shift_fn shift, std::string_view source, int wanted = 0) {
    guarded_bytes bytes(source);
    std::string out(source.size(), '?');
    EXPECT_EQ(shift(bytes.data(), out.data(), static_cast<ptrdiff_t>(source.size())), wanted);
    return out;
}

TEST(CaseShift, WithoutALocaleTheProcessTablesServe) {
    EXPECT_EQ(shifted(to_upper, "aZ9 \xE9z"), "AZ9 \xE9Z");
    EXPECT_EQ(shifted(to_lower, "aZ9 \xC9Z"), "az9 \xC9z");
    EXPECT_EQ(
        shifted([](const char *s, char *o, ptrdiff_t n) { return sqlcaseshift(0, s, o, n); }, "AB"),
        "ab")
        << "any other operation is lower case";
    _ix2upmap[0xE9] = 0xC9;
    EXPECT_EQ(shifted(to_upper, "\xE9"), "\xC9");
    EXPECT_EQ(shifted(to_upper, std::string_view("a\0b", 3)), std::string("A\0B", 3));
}

TEST(CaseShift, LengthZeroWritesNothing) {
    char out = '#';
    EXPECT_EQ(sqlcaseshift(CASE_UPPER, "a", &out, 0), 0);
    EXPECT_EQ(sqlcaseshift(CASE_UPPER, "a", &out, -1), 0);
    EXPECT_EQ(sqlinitcap("a", &out, 0), 0);
    EXPECT_EQ(out, '#');
}

TEST(CaseShift, WordsGetAnInitialCapital) {
    const struct {
        const char *source, *wanted;
    } rows[] = {
        {"the QUICK  brown", "The Quick  Brown"},
        {"o'neil mc-kay", "O'Neil Mc-Kay"},
        {"2nd a b", "2Nd A B"},
        {" x", " X"},
        {"...", "..."},
    };
    for (const auto &row : rows)
        EXPECT_EQ(shifted(sqlinitcap, row.source), row.wanted);
}

TEST(CaseShift, ByteLocaleServesFromItsTablesAndClearsTheErrorWord) {
    const current_locale latin(latin1());
    latin.lc->err = 7;
    EXPECT_EQ(shifted(to_upper, "\xE9z"), "\xC9Z");
    EXPECT_EQ(latin.lc->err, 0);
    EXPECT_EQ(shifted(to_lower, "\xC9Z"), "\xE9z");
    EXPECT_EQ(shifted(sqlinitcap, "\xE9T\xC9 \xD7t"), "\xC9t\xE9 \xD7T");
    EXPECT_EQ(byleng("ab\t ", 4), 3) << "blanks of a byte locale are the byte 20 alone";
}

TEST(CaseShift, TextsAreShiftedInPlace) {
    char text[] = "aB c";
    rupshift(text);
    EXPECT_STREQ(text, "AB C");
    rdownshift(text);
    EXPECT_STREQ(text, "ab c");
    rupshift(nullptr);
    rdownshift(nullptr);
}

TEST(CaseShift, CharactersOfSeveralBytesKeepInsideTheLength) {
    const current_locale utf8(piece_of_utf8());
    utf8.lc->err = 7;
    EXPECT_EQ(shifted(to_upper, "aéz"), "AÉZ");
    EXPECT_EQ(utf8.lc->err, 0);
    EXPECT_EQ(shifted(to_lower, "ẞA"), std::string("ßa\0", 4));
    // The longer form has no room at the end, and just enough where others follow to be dropped.
    EXPECT_EQ(shifted(to_upper, "aß"), std::string("A\0\0", 3));
    EXPECT_EQ(shifted(to_upper, "ßab"), std::string("ẞA", 4));
    EXPECT_EQ(shifted(to_upper, "ßa\xFF"), "ẞA") << "what has no room is not looked at";
    EXPECT_EQ(shifted(to_upper, std::string_view("a\0b", 3)), std::string("A\0B", 3));
    EXPECT_EQ(shifted(sqlinitcap, "éA ßB!"), "Éa ẞb");
    EXPECT_EQ(shifted(sqlinitcap, "\u3000ÉÉ"), "\u3000Éé");
}

TEST(CaseShift, InvalidAndCutOffCharactersAreRefused) {
    const current_locale utf8(piece_of_utf8());
    for (const char *source : {"ab\xFF", "\xFFz", "a\xC3", "a \xE3\x80", "\xC3z", " \xE1\xBA"})
        for (shift_fn shift : {to_upper, to_lower, static_cast<shift_fn>(sqlinitcap)})
            shifted(shift, source, -941);
}

TEST(CaseShift, GrowingLocaleGoesThroughABlockOrNotAtAll) {
    const current_locale utf8(piece_of_utf8());
    char text[] = "aé", cut[] = "aß", bad[] = "a\xFF";
    {
        failing_malloc::scope refused(1);
        rupshift(text);
        EXPECT_TRUE(refused.happened());
        EXPECT_STREQ(text, "aé");
    }
    failing_malloc::scope counted(0);
    rupshift(text);
    EXPECT_STREQ(text, "AÉ");
    rupshift(cut);
    EXPECT_EQ(std::string(cut, 3), std::string("A\0\0", 3));
    rupshift(bad);
    EXPECT_STREQ(bad, "a\xFF");
    EXPECT_EQ(counted.calls(), 3u);
    EXPECT_EQ(counted.live(), 0);
}

TEST(CaseShift, NothingIsShiftedWhereTheLocaleDidNotStart) {
    locale_start_result = 4;
    char text[] = "ab";
    rupshift(text);
    EXPECT_STREQ(text, "ab");
    locale_start_result = 0;
}

TEST(CaseShift, BlanksAtTheEndAreTheLocalesOwn) {
    const current_locale utf8(piece_of_utf8());
    const struct {
        std::string_view block;
        ptrdiff_t wanted;
    } rows[] = {
        {"ab", 2},     {"ab \t", 2},    {"a\u3000 ", 1}, {"", 0},
        {"\u3000", 0}, {"\u3000a ", 4}, {"ab\xFF c", 2}, {"ab \xC3", 2},
    };
    for (const auto &row : rows) {
        guarded_bytes block(row.block);
        const ptrdiff_t length = static_cast<ptrdiff_t>(row.block.size());
        EXPECT_EQ(byleng(block.data(), length), row.wanted) << row.block;
    }
    for (ptrdiff_t below_zero : {ptrdiff_t{-1}, 1 - (ptrdiff_t{1} << 32)})
        EXPECT_EQ(byleng("x", below_zero), 0);
}

} // namespace
