#include "gls/numbers/number_conventions.h"

#include <kestrion/char_class.h>
#include <kestrion/char_width.h>
#include <kestrion/ext_funcs.h>

#include <locale.h>
#include <stdio.h>

namespace kestrion {

namespace {

// Not const: the record's pointers are those of any other record. Nothing writes here.
constinit gl_wchar empty[] = {0};
constinit gl_wchar point[] = {'.', 0};
constinit gl_wchar plus[] = {'+', 0};
constinit gl_wchar minus[] = {'-', 0};

// Puts the error word back to what it was.
class kept_error_word {
public:
    explicit kept_error_word(locale_rec *lc) : word_(_gl_ext_errno(lc)), value_(*word_) {}
    ~kept_error_word() { *word_ = value_; }
    kept_error_word(const kept_error_word &) = delete;
    kept_error_word &operator=(const kept_error_word &) = delete;

private:
    int32_t *word_;
    int32_t value_;
};

} // namespace

constinit const numeric_rec plain_numeric = {
    .wide_decimal_point = point,
    .wide_thousands_sep = empty,
    .wide_positive_sign = plus,
    .wide_negative_sign = minus,
};

constinit const monetary_rec no_monetary = {
    .int_frac_digits = gl_money_unset,
    .frac_digits = gl_money_unset,
    .p_cs_precedes = gl_money_unset,
    .p_sep_by_space = gl_money_unset,
    .n_cs_precedes = gl_money_unset,
    .n_sep_by_space = gl_money_unset,
    .p_sign_posn = gl_money_unset,
    .n_sign_posn = gl_money_unset,
    .wide_int_curr_symbol = empty,
    .wide_currency_symbol = empty,
    .wide_mon_decimal_point = empty,
    .wide_mon_thousands_sep = empty,
    .wide_positive_sign = empty,
    .wide_negative_sign = empty,
};

int64_t columns_of(locale_rec *lc, wide_piece text) {
    const kept_error_word kept(lc);
    int64_t columns = 0;
    for (int32_t i = 0; i < text.length; ++i) {
        const int32_t width = gl_wcwidth(lc, text.elements[i]);
        columns += width < 0 ? 1 : width;
    }
    return columns;
}

bool has_class(locale_rec *lc, gl_wchar character, uint32_t mask) {
    const kept_error_word kept(lc);
    return _gl_im_iswctype(lc, character, mask) != 0;
}

int32_t library_number(char *dst, int32_t size, gl_wchar conversion, bool alternate,
                       int32_t precision, double value) {
    const auto room = static_cast<size_t>(size);
    const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr); // the library's own: no memory
    const locale_t before = uselocale(c_locale);
    int length = -1;
    // Each format is spelled out, so that the compiler has checked all that can come to be used.
    switch (conversion | (alternate ? 0x100 : 0)) {
    case 'e':
        length = snprintf(dst, room, "%.*e", precision, value);
        break;
    case 'E':
        length = snprintf(dst, room, "%.*E", precision, value);
        break;
    case 'f':
        length = snprintf(dst, room, "%.*f", precision, value);
        break;
    case 'g':
        length = snprintf(dst, room, "%.*g", precision, value);
        break;
    case 'G':
        length = snprintf(dst, room, "%.*G", precision, value);
        break;
    case 'e' | 0x100:
        length = snprintf(dst, room, "%#.*e", precision, value);
        break;
    case 'E' | 0x100:
        length = snprintf(dst, room, "%#.*E", precision, value);
        break;
    case 'f' | 0x100:
        length = snprintf(dst, room, "%#.*f", precision, value);
        break;
    case 'g' | 0x100:
        length = snprintf(dst, room, "%#.*g", precision, value);
        break;
    case 'G' | 0x100:
        length = snprintf(dst, room, "%#.*G", precision, value);
        break;
    default:
        break;
    }
    uselocale(before);
    return length;
}

} // namespace kestrion
