// Every character of every shipped locale, and its texts, beside what the C library says about the
// same source and charmap. The C library's locales are made for the test, in a directory of its
// own.

#include "compilers/mklco/listing_words.h"
#include "compilers/posix/charmap.h"
#include "support/shipped_locales.h"
#include <kestrion/char_case.h>
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/char_length.h>
#include <kestrion/char_width.h>

#include <gtest/gtest.h>
#include <langinfo.h>
#include <locale.h>
#include <map>
#include <string.h>
#include <wchar.h>
#include <wctype.h>

using namespace kestrion;

namespace {

// Where the two may differ, and why.
constexpr struct {
    const char *what;
    int64_t engine, library;
    const char *reason;
} justified_differences[] = {
    {"width", 1, 0, "an object marks characters of two columns alone"},
};

class ShippedLocale : public testing::TestWithParam<shipped_locale> {
protected:
    void differ(const charmap_row &row, const std::string &what, int64_t engine, int64_t library) {
        for (const auto &justified : justified_differences)
            if (what == justified.what && engine == justified.engine &&
                library == justified.library) {
                ++excused_;
                return;
            }
        if (++differences_ <= 20)
            ADD_FAILURE() << what << " of U+" << std::hex << row.code_point << " ("
                          << row.sequence.packed() << "): engine " << engine << ", library "
                          << library;
    }

    void compare(const charmap_row &row);
    void compare_characters();
    void compare_texts() const;

    const locale_pair pair_{GetParam()};
    locale_rec *const engine_ = pair_.engine;
    wctype_t library_classes_[std::size(class_words)];
    size_t differences_ = 0, excused_ = 0;
};

// The bytes of the library's wide character as the engine packs them; 0 when it has none here.
uint32_t packed(wint_t character) {
    char bytes[16];
    mbstate_t state{};
    size_t length = wcrtomb(bytes, static_cast<wchar_t>(character), &state);
    uint32_t value = 0;
    for (size_t i = 0; length != static_cast<size_t>(-1) && i < length; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

void ShippedLocale::compare(const charmap_row &row) {
    char text[8] = {};
    memcpy(text, row.sequence.bytes, row.sequence.length);
    wchar_t wide = 0;
    mbstate_t state{};
    size_t length = mbrtowc(&wide, text, row.sequence.length, &state);
    int64_t library_length =
        row.sequence.packed() == 0 && length == 0 ? 1 : static_cast<int64_t>(length);
    gl_wchar character = 0;
    _qvt_gl_full_mbtowc(engine_, &character, text, row.sequence.length);
    int32_t engine_length = _qvt_gl_full_mblen(engine_, text, row.sequence.length);
    if (engine_length != library_length)
        return differ(row, "length", engine_length, library_length);
    if (character != row.sequence.packed())
        differ(row, "wide value", character, row.sequence.packed());

    auto point = static_cast<wint_t>(wide);
    for (size_t i = 0; i < std::size(class_words); ++i) {
        bool engine = _gl_im_iswctype(engine_, character, class_words[i].mask) != 0;
        bool library = iswctype(point, library_classes_[i]) != 0;
        if (engine != library)
            differ(row, class_words[i].word, engine, library);
    }
    auto partner = [&](wint_t mapped) {
        return mapped == point || packed(mapped) == 0 ? character : packed(mapped);
    };
    if (_gl_im_towupper(engine_, character) != partner(towupper(point)))
        differ(row, "toupper", _gl_im_towupper(engine_, character), partner(towupper(point)));
    if (_gl_im_towlower(engine_, character) != partner(towlower(point)))
        differ(row, "tolower", _gl_im_towlower(engine_, character), partner(towlower(point)));
    int engine_width = gl_wcwidth(engine_, character), library_width = wcwidth(wide);
    if (engine_width != library_width)
        differ(row, "width", engine_width, library_width);
}

void ShippedLocale::compare_characters() {
    for (size_t i = 0; i < std::size(class_words); ++i)
        library_classes_[i] = wctype(class_words[i].word);
    auto source = find_source_file(GetParam().charmap, {"/usr/share/i18n/charmaps"});
    charmap map(*source);
    for (const charmap_row &row : map.rows)
        compare(row);
    EXPECT_EQ(differences_, 0u) << "of " << map.rows.size() << "; " << excused_
                                << " more are justified";
}

void ShippedLocale::compare_texts() const {
    const struct {
        const char *engine;
        nl_item library;
    } texts[] = {
        {engine_->numeric_cat.decimal_point, RADIXCHAR},
        {engine_->numeric_cat.thousands_sep, THOUSEP},
        {engine_->time_cat.am, AM_STR},
        {engine_->time_cat.pm, PM_STR},
        {engine_->messages_cat.yesexpr, YESEXPR},
        {engine_->messages_cat.noexpr, NOEXPR},
    };
    for (const auto &text : texts)
        EXPECT_STREQ(text.engine, nl_langinfo(text.library));
    for (int i = 0; i < 7; ++i) {
        EXPECT_STREQ(engine_->time_cat.day[i], nl_langinfo(DAY_1 + i));
        EXPECT_STREQ(engine_->time_cat.abday[i], nl_langinfo(ABDAY_1 + i));
    }
    ASSERT_EQ(engine_->time_cat.month_count, 12);
    for (int i = 0; i < 12; ++i) {
        EXPECT_STREQ(engine_->time_cat.mon[i], nl_langinfo(MON_1 + i));
        EXPECT_STREQ(engine_->time_cat.abmon[i], nl_langinfo(ABMON_1 + i));
    }
    const lconv *money = localeconv();
    const monetary_rec &own = engine_->monetary_cat;
    EXPECT_STREQ(own.int_curr_symbol, money->int_curr_symbol);
    EXPECT_STREQ(own.currency_symbol, money->currency_symbol);
    EXPECT_STREQ(own.mon_decimal_point, money->mon_decimal_point);
    EXPECT_STREQ(own.mon_thousands_sep, money->mon_thousands_sep);
    EXPECT_STREQ(own.positive_sign, money->positive_sign);
    EXPECT_STREQ(own.negative_sign, money->negative_sign);
    const int32_t numbers[] = {own.int_frac_digits, own.frac_digits,   own.p_cs_precedes,
                               own.p_sep_by_space,  own.n_cs_precedes, own.n_sep_by_space,
                               own.p_sign_posn,     own.n_sign_posn};
    const char library[] = {money->int_frac_digits, money->frac_digits,   money->p_cs_precedes,
                            money->p_sep_by_space,  money->n_cs_precedes, money->n_sep_by_space,
                            money->p_sign_posn,     money->n_sign_posn};
    for (size_t i = 0; i < std::size(numbers); ++i)
        EXPECT_EQ(numbers[i], library[i]) << i;
}

} // namespace

// One test for both: making the library's locale is what takes long.
TEST_P(ShippedLocale, CharactersAndTextsAreWhatTheLibrarySays) {
    compare_characters();
    compare_texts();
}

INSTANTIATE_TEST_SUITE_P(All, ShippedLocale, testing::ValuesIn(shipped()), shipped_locale_name);
