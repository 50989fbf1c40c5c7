#include "gls/numbers/number_directive.h"

#include "gls/numbers/format_modifiers.h"
#include "gls/numbers/number_conventions.h"
#include <kestrion/ctype_masks.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/format_modifiers.h>
#include <kestrion/gls_errors.h>

namespace kestrion {

namespace {

constexpr conversion conversions[] = {
    {'d', conversion_kind::signed_integer, 10, 0},
    {'i', conversion_kind::signed_integer, 10, 0},
    {'b', conversion_kind::signed_integer, 2, 0},
    {'u', conversion_kind::unsigned_integer, 10, 0},
    {'o', conversion_kind::unsigned_integer, 8, 0},
    {'q', conversion_kind::unsigned_integer, 4, 0},
    {'x', conversion_kind::unsigned_integer, 16, 0},
    {'X', conversion_kind::unsigned_integer, 16, gl_flag_upper_case},
    {'p', conversion_kind::pointer, 16, gl_flag_upper_case},
    {'f', conversion_kind::floating, 0, 0},
    {'e', conversion_kind::floating, 0, 0},
    {'E', conversion_kind::floating, 0, 0},
    {'g', conversion_kind::floating, 0, 0},
    {'G', conversion_kind::floating, 0, 0},
    {'s', conversion_kind::text, 0, 0},
    {'c', conversion_kind::character, 0, 0},
};

// "N$": false for a number out of range. Without a "$" nothing is read and the index is 0.
bool read_value_index(const gl_wchar *&at, int32_t &index) {
    index = 0;
    if (!is_digit(*at))
        return true;
    const gl_wchar *ahead = at;
    const int32_t number = read_count(ahead);
    if (*ahead != '$')
        return true;
    index = number;
    at = ahead + 1;
    return number >= 1 && number <= value_index_limit;
}

// "*" or "*N$" at `at`, if there is one; false for a number out of range.
bool read_star(const gl_wchar *&at, int32_t &star) {
    star = no_star;
    return *at != '*' || read_value_index(++at, star);
}

value_length read_length(const gl_wchar *&at) {
    if (*at == 'h') {
        if (*++at != 'h')
            return value_length::shorts;
        ++at;
        return value_length::chars;
    }
    if (*at != 'l' && *at != 'L')
        return value_length::normal;
    if (*++at == 'l') // a long long is a long here
        ++at;
    return value_length::longs;
}

int32_t read_conversion(const gl_wchar *&at, number_directive &out) {
    out.length = read_length(at);
    out.conversion = *at;
    if (out.conversion == 0)
        return GLS_ERR_NO_REGISTRY;
    ++at;
    return GLS_OK;
}

} // namespace

const conversion *conversion_of(gl_wchar letter) {
    for (const conversion &known : conversions)
        if (static_cast<unsigned char>(known.letter) == letter)
            return &known;
    return nullptr;
}

int32_t read_format_directive(locale_rec *lc, const gl_wchar *&at, number_directive &out) {
    if (!read_value_index(at, out.value_index))
        return GLS_ERR_FORMAT;
    out.flags = read_flags(at);
    if (!read_star(at, out.width_star))
        return GLS_ERR_FORMAT;
    if (is_digit(*at))
        out.width = read_count(at);
    if (*at == '.') {
        const bool star = at[1] == '*';
        if (star && !read_star(++at, out.precision_star))
            return GLS_ERR_FORMAT;
        if (!star && !read_precision(lc, at, out.precision))
            return GLS_ERR_PRECISION;
    }
    return read_conversion(at, out);
}

int32_t read_scan_directive(locale_rec *lc, const gl_wchar *&at, number_directive &out) {
    if (!read_value_index(at, out.value_index))
        return GLS_ERR_FORMAT;
    out.suppressed = *at == '*';
    if (out.suppressed)
        ++at;
    out.flags = read_flags(at);
    if (is_digit(*at))
        out.width = read_count(at);
    if (*at == '.' && !read_precision(lc, at, out.precision))
        return GLS_ERR_PRECISION;
    return read_conversion(at, out);
}

const gl_wchar *next_directive(const gl_wchar *at) {
    for (; *at != 0; ++at)
        if (*at == '%' && *++at != '%')
            return at;
    return nullptr;
}

} // namespace kestrion
