#include "gls/engine_test.h"
#include "tests/support/temp_dir.h"
#include <kestrion/categories.h>
#include <kestrion/name_cache.h>

#include <vector>

namespace {

// Characters of one byte, and C3 80 to C3 BF in two; A and E acute have lower cases.
constexpr char small_locale[] =
    "FILE_TYPE=locale_object\nCOMPILER_VERSION=11\nHEADER_LINES=3\nutf8\n"
    "### LC_CTYPE\n"
    "2 1 1 0000\n1 0\n0000108004\nc300100101\n0000000\n"
    "1 0\n8000104004\n0000000\n"
    "0\n"
    "2 1 1 0000\n1 1\n0000108004\nc300100101\n0000000\n"
    "410010010001\n610010010001\n0000000\n"
    "1 1\n8000104004\n0000000\n890010010002\na90010010002\n0000000\n"
    "2\n0000004100000061\n0000c3890000c3a9\n1.0\n";

// A locale of these characters.
locale_rec *load_small_locale(const temp_dir &dir) {
    dir.write("xx_xx/e01c.lco", small_locale);
    locale_rec *lc = nullptr;
    EXPECT_EQ(gl_create_null_locale_4(&lc), 0);
    _gl_free_ptr(set_categories(lc, GL_CAT_CTYPE, "xx_xx/e01c.lco", dir.path().c_str()));
    EXPECT_EQ(lc->ctype_cat.case_pair_count, 2);
    lc->err = 0;
    return lc;
}

struct match {
    int32_t value;
    int32_t used;
    bool operator==(const match &) const = default;
};

TEST(NameCache, LongestNameOfATextIsFoundInAnyCase) {
    const counting_allocator memory;
    gl_mb_name_node *cache = nullptr;
    const std::pair<const char *, int32_t> names[] = {
        {"Mar", 3}, {"March", 30}, {"May", 5}, {"MAY", 50}, {"m", 0}};
    for (const auto &[name, value] : names)
        EXPECT_EQ(_gl_cache_mb_string(nullptr, &cache, name, value), 0);
    const struct {
        const char *text;
        int32_t length;
        match wanted;
    } rows[] = {
        {"march", -1, {30, 5}}, {"MARCHING", -1, {30, 5}},
        {"marc", -1, {3, 3}},                        // goes on towards March and falls back
        {"march", 4, {3, 3}},   {"mAy", -1, {5, 3}}, // the first of two equal names
        {"mx", -1, {0, 1}},     {"april", -1, {-1, 0}},
        {"", -1, {-1, 0}},      {"march", 0, {-1, 0}},
    };
    for (const auto &row : rows) {
        match found;
        found.value = _gl_validate_mb_string(nullptr, cache, row.text, row.length, &found.used);
        EXPECT_EQ(found, row.wanted) << row.text << ' ' << found.value << ' ' << found.used;
    }
    match found;
    EXPECT_EQ(_gl_cache_mb_string(nullptr, &cache, "", 99), 0);
    for (const std::string_view text : {std::string_view("april"), std::string_view("\0m", 2)}) {
        found.value = _gl_validate_mb_string(nullptr, cache, text.data(),
                                             static_cast<int32_t>(text.size()), &found.used);
        EXPECT_EQ(found, (match{99, 0})) << "the empty name serves where no other does";
    }
    _gl_free_mb_cache(cache);
}

TEST(NameCache, CaseFoldsByTheLocale) {
    const temp_dir dir;
    locale_rec *const lc = load_small_locale(dir);
    gl_mb_name_node *cache = nullptr;
    EXPECT_EQ(_gl_cache_mb_string(lc, &cache, "\xC3\x89t\xC3\xA9", 7), 0);
    match found;
    found.value = _gl_validate_mb_string(lc, cache, "\xC3\xA9t\xC3\x89 2", -1, &found.used);
    EXPECT_EQ(found, (match{7, 5}));
    found.value = _gl_validate_mb_string(lc, cache, "\xC3\xA9t\xC3\x89", 4, &found.used);
    EXPECT_EQ(found, (match{-1, 0})) << "cut off inside a character";
    found.value = _gl_validate_mb_string(lc, cache, "\xC3\xA9t\xFF", -1, &found.used);
    EXPECT_EQ(found, (match{-1, 0}));
    EXPECT_EQ(lc->err, 0) << "text that is not a name is not an error";
    EXPECT_EQ(_gl_cache_mb_string(lc, &cache, "a\xFF", 8), -1);
    EXPECT_EQ(lc->err, 1);
    _gl_free_mb_cache(cache);

    gl_wc_name_node *wide = nullptr;
    const gl_wchar name[] = {0xC389, 'A', 0};
    const gl_wchar text[] = {0xC3A9, 'a', 'x', 0};
    EXPECT_EQ(_gl_cache_wc_string(lc, &wide, name, 7), 0);
    EXPECT_EQ(_gl_cache_wc_string(lc, &wide, name, 8), 0);
    found.value = _gl_validate_wc_string(lc, wide, text, -1, &found.used);
    EXPECT_EQ(found, (match{7, 2}));
    found.value = _gl_validate_wc_string(lc, wide, text, 1, &found.used);
    EXPECT_EQ(found, (match{-1, 0}));
    EXPECT_EQ(_gl_cache_wc_string(lc, &wide, name + 2, 9), 0);
    found.value = _gl_validate_wc_string(lc, wide, text + 2, -1, &found.used);
    EXPECT_EQ(found, (match{9, 0}));
    _gl_free_wc_cache(wide);
    gl_lc_unload(lc);
}

TEST(NameCache, FailedInsertLeavesTheAnswers) {
    const counting_allocator memory;
    for (int call = 0; call < 6; ++call) {
        gl_mb_name_node *cache = nullptr;
        counting_allocator::fail_call(-1);
        EXPECT_EQ(_gl_cache_mb_string(nullptr, &cache, "ab", 1), 0);
        counting_allocator::fail_call(call);
        temperr = 0;
        const int added = _gl_cache_mb_string(nullptr, &cache, "abcd", 2);
        EXPECT_EQ(added, call < 2 ? -1 : 0);
        EXPECT_EQ(temperr, call < 2 ? 3 : 0);
        int32_t used;
        EXPECT_EQ(_gl_validate_mb_string(nullptr, cache, "abcd", -1, &used), added == 0 ? 2 : 1);
        _gl_free_mb_cache(cache);
    }
}

TEST(NameCache, NamesOfAnyLengthAreReleased) {
    const counting_allocator memory;
    const std::string name(1000000, 'n');
    gl_mb_name_node *cache = nullptr;
    EXPECT_EQ(_gl_cache_mb_string(nullptr, &cache, name.c_str(), 1), 0);
    EXPECT_EQ(_gl_cache_mb_string(nullptr, &cache, "no", 2), 0);
    _gl_free_mb_cache(cache);
}

} // namespace
