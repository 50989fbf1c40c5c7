// Comparing by codes.

#include "gls/locale_texts.h"
#include <kestrion/code_order.h>

#include <climits>

namespace {

TEST(CodeOrder, WideTexts) {
    const struct {
        std::vector<gl_wchar> a, b;
        int32_t compared, counted, first_two;
    } rows[] = {
        {{'a', 'b'}, {'a', 'b'}, 0, 0, 0},
        {{'a'}, {'a', 'b'}, -1, -1, -'b'},
        {{'a', 'b', 'c', 'd'}, {'a'}, 1, 3, 'b'},
        {{'b'}, {'a', 'b'}, 1, 1, 1},
        {{'a', 'b', 'c'}, {'a', 'b', 'e'}, -1, -1, 0},
        {{0xFFFFFFFF}, {1}, 1, 1, INT_MAX},
        {{1}, {0xFFFFFFFF}, -1, -1, INT_MIN},
        {{}, {'a', 'b'}, -1, -2, -'a'},
    };
    for (auto [a, b, compared, counted, first_two] : rows) {
        const auto a_length = static_cast<int32_t>(a.size()),
                   b_length = static_cast<int32_t>(b.size());
        a.push_back(0);
        b.push_back(0);
        EXPECT_EQ(gl_wcscmp(nullptr, a.data(), b.data()), compared);
        EXPECT_EQ(_qvt_gl_wcfscmp(nullptr, a.data(), a_length, b.data(), b_length), counted);
        EXPECT_EQ(gl_wcsncmp(nullptr, a.data(), b.data(), 2), first_two);
        EXPECT_EQ(gl_wcsncmp(nullptr, a.data(), b.data(), 0), 0);
    }
    EXPECT_EQ(_qvt_gl_wcfscmp(nullptr, nullptr, -5, nullptr, 2), -7);
    EXPECT_EQ(_qvt_gl_wcfscmp(nullptr, nullptr, INT_MIN, nullptr, 2), INT_MIN) << "held in 32 bits";
}

TEST(CodeOrder, LongerCharactersAreGreater) {
    const code_set set = four_byte();
    const loaded lc(set);
    const struct {
        const char *a;
        const char *b;
        int32_t order;
        int32_t error;
    } rows[] = {
        {"a", "b", -1, 0},
        {"", "", 0, 0},
        {"", "a", -1, 0},
        {"\xc3\x80", "z", 1, 0},
        {"\xc3\xbf", "\xe4\xb8\x80", -1, 0},
        {"a\xf0\x9f\x98\x80", "a\xf0\x9f\x98\x81", -1, 0},
        {"ab", "a", 1, 0},
        {"\xff", "", -1, GLS_ERR_BAD_CHARACTER},
        {"a\xff", "a\xff", 0, GLS_ERR_BAD_CHARACTER},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.a) + " and " + testing::PrintToString(row.b));
        EXPECT_EQ(gl_full_mbscmp(lc, row.a, row.b), row.order);
        EXPECT_EQ(lc.error(), row.error);
        EXPECT_EQ(gl_full_mbscmp(lc, row.b, row.a), -row.order);
        lc.error();
    }
    const loaded bytes(latin1());
    EXPECT_EQ(gl_full_mbscmp(bytes, "z", "\xc3"), -1);
    EXPECT_EQ(gl_full_mbscmp(nullptr, "ab", "a"), 1);
}

TEST(CodeOrder, TheFirstCharacters) {
    const loaded lc(four_byte());
    const struct {
        const char *a;
        const char *b;
        int32_t count;
        int32_t order;
    } rows[] = {
        {"abc", "abd", 2, 0},
        {"abc", "abd", 3, -1},
        {"ab", "abd", 9, -1},
        {"a\xc3\x80", "ab", 2, 1},
        {"a\xc3\x80", "ab", 1, 0},
        {"b", "a", 0, 0},
        {"\xc3\x80", "\xc3\x81", 1, -1},
    };
    for (const auto &row : rows)
        EXPECT_EQ(gl_full_mbsncmp(lc, row.a, row.b, row.count), row.order) << row.a << " " << row.b;
    EXPECT_EQ(gl_full_mbsncmp(lc, "b\xff", "a", 2), 0);
    EXPECT_EQ(lc.error(), GLS_ERR_BAD_CHARACTER);
    EXPECT_EQ(gl_full_mbsncmp(lc, "b\xff", "a", 1), 1)
        << "no character is read that does not count";
}

TEST(CodeOrder, Bytes) {
    EXPECT_EQ(_qvt_gl_mbscmp(nullptr, "abc", 3, "ab", 2), 1);
    EXPECT_EQ(_qvt_gl_mbscmp(nullptr, "ab", 2, "abcd", 4), -2);
    EXPECT_GT(_qvt_gl_mbscmp(nullptr, "\xff", 1, "abcd", 4), 0);
    EXPECT_EQ(_qvt_gl_fast_mbscmp(nullptr, "abc", 3, "abc", 3), 0);
    EXPECT_EQ(_qvt_gl_fast_mbscmp(nullptr, "abc", 3, "abd", 3), 1);
    EXPECT_EQ(_qvt_gl_fast_mbscmp(nullptr, "abc", 2, "abc", 3), 1);
    EXPECT_EQ(_qvt_gl_fast_mbscmp(nullptr, "bbc", 3, "abc", 3), 1);
}

} // namespace
