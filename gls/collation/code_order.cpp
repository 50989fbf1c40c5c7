#include <kestrion/code_order.h>

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_length.h>
#include <kestrion/ext_funcs.h>

#include <string.h>

using namespace kestrion;

namespace {

int32_t sign(int64_t number) { return number < 0 ? -1 : number > 0; }

// A difference of two numbers of 32 bits, as far as 32 bits can hold it.
int32_t difference(int64_t a, int64_t b) {
    const int64_t exact = a - b;
    return exact < INT32_MIN   ? INT32_MIN
           : exact > INT32_MAX ? INT32_MAX
                               : static_cast<int32_t>(exact);
}

int compare_bytes(const char *a, const char *b, int32_t length) {
    return length > 0 ? memcmp(a, b, static_cast<size_t>(length)) : 0;
}

// Bytes of the next character of a terminated text; 0 at its end, -1 with the error word set.
int32_t next_length(locale_rec *lc, const char *s) {
    const ctype_rec &ct = ctype_of(lc);
    if (locale_or_ascii(lc).is_single_byte)
        return *s != 0;
    const decoded_char c = decode_text(ct, ct.class_walk, s);
    if (!is_char(c))
        return fail(lc, GLS_ERR_BAD_CHARACTER);
    return c.wide == 0 ? 0 : c.length;
}

// Bytes of the first `count` characters; -1 with the error word set.
int32_t bytes_of_first(locale_rec *lc, const char *s, int32_t count) {
    int32_t bytes = 0;
    for (; count > 0; --count) {
        const int32_t length = next_length(lc, s + bytes);
        if (length < 1)
            return length < 0 ? -1 : bytes;
        bytes += length;
    }
    return bytes;
}

} // namespace

int32_t gl_wcscmp(locale_rec *, const gl_wchar *a, const gl_wchar *b) {
    while (*a == *b && *a != 0) {
        ++a;
        ++b;
    }
    return *a < *b ? -1 : *a > *b;
}

int32_t _qvt_gl_wcfscmp(locale_rec *, const gl_wchar *a, int32_t a_length, const gl_wchar *b,
                        int32_t b_length) {
    const int32_t least = a_length < b_length ? a_length : b_length;
    for (int32_t i = 0; i < least; ++i)
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    return difference(a_length, b_length);
}

int32_t gl_wcsncmp(locale_rec *, const gl_wchar *a, const gl_wchar *b, int32_t count) {
    for (int32_t i = 0; i < count; ++i)
        if (a[i] != b[i] || a[i] == 0)
            return difference(a[i], b[i]);
    return 0;
}

int32_t gl_full_mbscmp(locale_rec *lc, const char *a, const char *b) {
    for (;;) {
        const int32_t length = next_length(lc, a);
        const int32_t other = next_length(lc, b);
        if (length != other)
            return length < other ? -1 : 1;
        // Two invalid characters can't be told apart, nor what follows them.
        if (length < 1)
            return 0;
        if (const int order = compare_bytes(a, b, length); order != 0)
            return sign(order);
        a += length;
        b += length;
    }
}

int32_t gl_full_mbsncmp(locale_rec *lc, const char *a, const char *b, int32_t count) {
    const int32_t length = bytes_of_first(lc, a, count);
    const int32_t other = bytes_of_first(lc, b, count);
    if (length < 0 || other < 0)
        return 0;
    const int order = compare_bytes(a, b, length < other ? length : other);
    return order != 0 ? sign(order) : sign(int64_t{length} - other);
}

int32_t _qvt_gl_mbscmp(locale_rec *, const char *a, int32_t a_length, const char *b,
                       int32_t b_length) {
    const int order = compare_bytes(a, b, a_length < b_length ? a_length : b_length);
    return order != 0 ? order : difference(a_length, b_length);
}

int32_t _qvt_gl_fast_mbscmp(locale_rec *, const char *a, int32_t a_length, const char *b,
                            int32_t b_length) {
    return *a != *b || a_length != b_length || compare_bytes(a, b, a_length) != 0;
}
