#include <kestrion/char_width.h>

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_class.h>
#include <kestrion/char_convert.h>
#include <kestrion/char_length.h>
#include <kestrion/ctype_masks.h>

#include <algorithm>
#include <stdio.h>
#include <string.h>

using namespace kestrion;

namespace {

// The class mask of a wide character, 0 for an invalid one.
uint32_t wide_mask(locale_rec *lc, gl_wchar wc) {
    const locale_rec &l = locale_or_ascii(lc);
    if (l.sb_class != nullptr)
        return wc <= 0xff ? l.sb_class[wc] : 0;
    return _gl_im_iswctype(lc, wc, 0xffff);
}

// Columns by the class mask, or -1 for what is not printable.
int32_t columns(uint32_t mask, uint32_t full_width) {
    return !(mask & CT_PRINT) ? -1 : mask & full_width ? 2 : 1;
}

// Adds up columns; a sum never passes the largest int.
int32_t add_columns(int32_t sum, int32_t width) {
    return sum > INT32_MAX - width ? INT32_MAX : sum + width;
}

// Sums the columns of s[0..count), or up to the zero element.
int32_t wide_columns(locale_rec *lc, const gl_wchar *s, int64_t count) {
    uint32_t full_width = gl_ctype(lc, ct_full_width);
    int32_t sum = 0;
    for (int64_t i = 0; i < count && s[i] != 0; ++i) {
        int32_t width = columns(wide_mask(lc, s[i]), full_width);
        if (width < 0)
            return fail(lc, GLS_ERR_SPECIFIER);
        sum = add_columns(sum, width);
    }
    return sum;
}

bool same_character(const char *a, const char *b, int32_t length) {
    return memcmp(a, b, static_cast<size_t>(length)) == 0;
}

// Finds the wanted character in the map; what follows it is read next.
bool find_in_map(locale_rec *lc, FILE *map, const char *wanted, int32_t wanted_length) {
    char found[gl_char_bytes];
    for (;;) {
        int32_t length = gl_full_fgetmb(lc, found, map);
        if (length < 0)
            return false;
        if (length == wanted_length && same_character(found, wanted, length) &&
            !_qvt_gl_im_ismctype(lc, found, length, CT_PRINT))
            return true;
    }
}

// Reads the digit after a character of the map.
int32_t map_columns(locale_rec *lc, FILE *map) {
    char found[gl_char_bytes];
    int32_t length;
    do
        length = gl_full_fgetmb(lc, found, map);
    while (length > 0 && _qvt_gl_im_ismctype(lc, found, length, CT_SPACE));
    if (length < 1 || !_qvt_gl_im_ismctype(lc, found, length, CT_DIGIT))
        return 1;
    int32_t digit = found[length - 1] - '0';
    return digit >= 0 && digit <= 9 ? digit : 1;
}

} // namespace

int32_t gl_wcwidth(locale_rec *lc, gl_wchar wc) {
    if (wc == 0)
        return 0;
    uint32_t mask = wide_mask(lc, wc);
    if (!(mask & CT_PRINT))
        return fail(lc, GLS_ERR_SPECIFIER);
    return columns(mask, gl_ctype(lc, ct_full_width));
}

int32_t gl_mbwidth(locale_rec *lc, const char *s) {
    if (s == nullptr)
        return fail(lc, GLS_ERR_NULL_ARGUMENT);
    if (gl_ismbsterm(lc, s))
        return 0;
    const ctype_rec &ct = ctype_of(lc);
    decoded_char c = decode_text(ct, ct.class_walk, s);
    if (is_char(c) && c.step.datum & CT_PRINT)
        return columns(c.step.datum, gl_ctype(lc, ct_full_width));
    return is_char(c) && c.length == 1 ? 1 : fail(lc, GLS_ERR_SPECIFIER);
}

int32_t gl_mbwidth_PUA(locale_rec *lc, const char *s) {
    char path[1024];
    const char *base = _gl_ext_getenv("KESTRIONDIR");
    if (base == nullptr ||
        snprintf(path, sizeof path, "%s/gls/etc/pua.map", base) >= static_cast<int>(sizeof path))
        return -1;
    int32_t length = 0;
    if (const char *next = gl_full_mbsnext(lc, s))
        length = static_cast<int32_t>(next - s);
    FILE *map = length > 0 ? _gl_ext_fopen(path, "r") : nullptr;
    if (map == nullptr)
        return -1;
    int32_t width = find_in_map(lc, map, s, length) ? map_columns(lc, map) : -1;
    _gl_ext_fclose(map);
    return width;
}

int32_t gl_wcswidth(locale_rec *lc, const gl_wchar *s, int32_t count) {
    if (s == nullptr)
        return fail(lc, GLS_ERR_NULL_ARGUMENT);
    return count < 0 ? fail(lc, GLS_ERR_COUNT) : wide_columns(lc, s, count);
}

int32_t gl_wcspwidth(locale_rec *lc, const gl_wchar *s, const gl_wchar *end) {
    if (s == nullptr || end == nullptr)
        return fail(lc, GLS_ERR_NULL_ARGUMENT);
    return end < s ? fail(lc, GLS_ERR_END_BEFORE_START) : wide_columns(lc, s, end - s);
}

int32_t gl_mbswidth(locale_rec *lc, const char *s, int32_t count) {
    if (s == nullptr)
        return fail(lc, GLS_ERR_NULL_ARGUMENT);
    if (count < 0)
        return fail(lc, GLS_ERR_COUNT);
    uint32_t full_width = gl_ctype(lc, ct_full_width);
    const ctype_rec &ct = ctype_of(lc);
    int32_t sum = 0;
    for (; count > 0 && !gl_ismbsterm(lc, s); --count) {
        decoded_char c = decode_text(ct, ct.class_walk, s);
        int32_t width = is_char(c) ? columns(c.step.datum, full_width) : -1;
        if (width < 0)
            return fail(lc, GLS_ERR_SPECIFIER);
        sum = add_columns(sum, width);
        s += c.length;
    }
    return sum;
}

int32_t gl_mbspwidth(locale_rec *lc, const char *s, const char *end) {
    set_engine_error(lc, GLS_OK);
    if (s == nullptr || end == nullptr)
        return fail(lc, GLS_ERR_NULL_ARGUMENT);
    if (end < s)
        return fail(lc, GLS_ERR_END_BEFORE_START);
    uint32_t full_width = gl_ctype(lc, ct_full_width);
    const ctype_rec &ct = ctype_of(lc);
    int32_t sum = 0;
    while (s < end && !(end - s >= ct.mb_loc_min && gl_ismbsterm(lc, s))) {
        const auto left = std::min<int64_t>(end - s, gl_char_bytes);
        decoded_char c = decode_limited(ct.class_walk, s, static_cast<int32_t>(left));
        if (!is_char(c))
            return fail(lc, decode_error(c));
        int32_t width = columns(c.step.datum, full_width);
        if (width < 0)
            return fail(lc, GLS_ERR_SPECIFIER);
        sum = add_columns(sum, width);
        s += c.length;
    }
    return sum;
}
