#include <kestrion/char_convert.h>

#include "gls/base/engine_error.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_length.h>
#include <kestrion/ctype_masks.h>

#include <string.h>

using namespace kestrion;

namespace {

// The limit for an operation that got one below 1, of which -1 means a terminated text; 0 when
// there is nothing to decode, with the error word set.
[[gnu::cold]] int32_t settled_limit(locale_rec *lc, const char *s, int32_t limit) {
    if (limit == -1) {
        int32_t bytes = gl_mbsbytes(lc, s);
        if (bytes < 1)
            return 0;
        limit = bytes - ctype_of(lc).mb_loc_min;
    }
    if (limit < 1)
        set_engine_error(lc, GLS_ERR_SPECIFIER);
    return limit < 1 ? 0 : limit;
}

// Decodes one character; the limit is at least 1.
inline int32_t decode_one(locale_rec *lc, gl_wchar *out, const char *text, int32_t limit) {
    decoded_char c = decode_limited(ctype_of(lc).class_walk, text, limit);
    if (!is_char(c))
        return fail(lc, decode_error(c));
    *out = c.wide;
    return c.wide == 0 ? 0 : c.length;
}

// What the common way leaves over: odd arguments, the zero character, single bytes above ASCII, the
// end of the text, characters of four bytes, invalid ones.
[[gnu::noinline]] int32_t rare_mbtowc(locale_rec *lc, gl_wchar *out, const char *s, int32_t limit) {
    if (s == nullptr)
        return 0;
    if (limit < 1)
        limit = settled_limit(lc, s, limit);
    return limit > 0 ? decode_one(lc, out, s, limit) : -1;
}

} // namespace

int32_t gl_full_mbtowc(locale_rec *lc, gl_wchar *out, const char *s, int32_t limit) {
    if (s == nullptr)
        return 0;
    return limit >= 1 ? decode_one(lc, out, s, limit) : fail(lc, GLS_ERR_SPECIFIER);
}

// Long text is walked by this. A processor mispredicts where text turns from ASCII to other
// characters. Testing the byte itself finds that out a load earlier than its step, and the
// alignment keeps the way of ASCII, call to return, in one line of instructions. The load between
// the tests of the arguments keeps them apart: joined, they cost more than they are.
[[gnu::aligned(64)]] int32_t _qvt_gl_full_mbtowc(locale_rec *lc, gl_wchar *out, const char *text,
                                                 int32_t limit) {
    if (lc == nullptr || limit < 1) [[unlikely]]
        return rare_mbtowc(lc, out, text, limit);
    const ctype_rec &ct = lc->ctype_cat;
    const multi_step *walk = ct.byte_walk;
    if (text == nullptr) [[unlikely]]
        return 0;
    const auto *s = reinterpret_cast<const unsigned char *>(text);
    if (is_ascii_above_zero(s[0]) && ct.ascii_bytes) [[likely]] {
        *out = s[0];
        return 1;
    }
    multi_step step = walk[s[0]];
    if (step.next < multi_first_state || limit < 3) [[unlikely]]
        return rare_mbtowc(lc, out, text, limit);
    const gl_wchar two = static_cast<gl_wchar>(s[0] << 8 | s[1]);
    step = next_step(walk, step, s[1]);
    if (step.next >= multi_first_state) [[likely]] {
        step = next_step(walk, step, s[2]);
        if (step.next == multi_end) [[likely]] {
            *out = two << 8 | s[2];
            return 3;
        }
    } else if (step.next == multi_end) [[likely]] {
        *out = two;
        return 2;
    }
    return rare_mbtowc(lc, out, text, limit);
}

int32_t _qvt_gl_full_mbdescribe(locale_rec *lc, gl_wchar *out, const char *s, uint32_t *mask_out,
                                uint32_t mask, int32_t limit) {
    *mask_out = 0;
    if (s == nullptr)
        return 0;
    if (limit < 1)
        limit = settled_limit(lc, s, limit);
    if (limit < 1)
        return -1;
    decoded_char c = decode_limited(ctype_of(lc).class_walk, s, limit);
    if (!is_char(c))
        return fail(lc, decode_error(c));
    *mask_out = c.step.datum & mask;
    *out = c.wide;
    return c.wide == 0 ? 0 : c.length;
}

int32_t gl_full_wctomb(locale_rec *lc, char *dst, gl_wchar wc) {
    int32_t length = encode_wide(ctype_of(lc), reinterpret_cast<unsigned char *>(dst), wc);
    return length > 0 ? length : fail(lc, GLS_ERR_BAD_CHARACTER);
}

int32_t gl_mbsterm(locale_rec *lc, char *dst) {
    int32_t length = ctype_of(lc).mb_loc_min;
    memset(dst, 0, static_cast<size_t>(length));
    return length;
}

int32_t gl_ismbsterm(locale_rec *lc, const char *s) {
    int32_t length = ctype_of(lc).mb_loc_min;
    for (int32_t i = 0; i < length; ++i)
        if (s[i] != 0)
            return 0;
    return length;
}

int32_t _gl_is_mbstowcs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t size) {
    return _qvt_gl_is_mbfstowcfs(lc, dst, src, -1, size);
}

int32_t _gl_im_mbstowcs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t size) {
    return _qvt_gl_im_mbfstowcfs(lc, dst, src, -1, size);
}

int32_t _qvt_gl_is_mbfstowcfs(locale_rec *, gl_wchar *dst, const char *src, int32_t length,
                              int32_t size) {
    int32_t count = 0;
    int32_t end = length >= 0 && length < size ? length : size;
    for (; count < end; ++count) {
        dst[count] = static_cast<unsigned char>(src[count]);
        if (length < 0 && src[count] == 0)
            break;
    }
    return count;
}

int32_t _qvt_gl_im_mbfstowcfs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t length,
                              int32_t size) {
    const ctype_rec &ct = ctype_of(lc);
    bool counted = length >= 0;
    if (length == 0)
        return size < 1 ? 1 : 0;
    // Characters finished before the stop: the one at which the source ends is not among them, so
    // that a counted source gives one more than this.
    int32_t finished = 0;
    int64_t position = 0;
    while (finished < size) {
        const char *s = src + position;
        decoded_char c =
            counted ? decode_limited(ct.class_walk, s, static_cast<int32_t>(length - position))
                    : decode_text(ct, ct.class_walk, s);
        if (!is_char(c))
            return fail(lc, GLS_ERR_BAD_CHARACTER);
        dst[finished] = c.wide;
        position += c.length;
        if (counted ? position == length : c.wide == 0)
            break;
        ++finished;
    }
    return counted ? finished + 1 : finished;
}

int32_t _gl_is_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size) {
    return _qvt_gl_is_wcstombs(lc, dst, src, -1, size);
}

int32_t _qvt_gl_is_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t length,
                            int32_t size) {
    // The end of a counted source is looked for after each element, so that one is always
    // converted.
    for (int32_t i = 0; i < size; ++i) {
        if (length < 0 && src[i] == 0) {
            if (ctype_of(lc).mb_loc_min <= size - i)
                gl_mbsterm(lc, dst + i);
            return i;
        }
        if (src[i] > 0xff)
            return fail(lc, GLS_ERR_BAD_CHARACTER);
        dst[i] = static_cast<char>(src[i]);
        if (length >= 0 && i + 1 >= length)
            return i + 1;
    }
    return size < 1 ? 0 : size;
}

int32_t gl_full_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size) {
    return _qvt_gl_full_wcstombs(lc, dst, src, -1, size);
}

int32_t _qvt_gl_full_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t length,
                              int32_t size) {
    const locale_rec &l = locale_or_ascii(lc);
    const ctype_rec &ct = l.ctype_cat;
    auto *out = reinterpret_cast<unsigned char *>(dst);
    int32_t bytes = 0;
    for (int32_t i = 0;; ++i) {
        int32_t needed = l.is_single_byte ? 1 : wide_length(src[i], ct.mb_loc_min);
        if (needed > size - bytes)
            return bytes;
        if (length < 0 && src[i] == 0) {
            gl_mbsterm(lc, dst + bytes);
            return bytes;
        }
        if (l.is_single_byte)
            out[bytes] = static_cast<unsigned char>(src[i]);
        else if (encode_wide(ct, out + bytes, src[i]) == 0)
            return fail(lc, GLS_ERR_BAD_CHARACTER);
        bytes += needed;
        if (length >= 0 && i + 1 >= length)
            return bytes;
    }
}

int32_t gl_wcslen(locale_rec *, const gl_wchar *s) {
    int32_t length = 0;
    while (s[length] != 0)
        ++length;
    return length;
}

int32_t gl_wcsbytes(locale_rec *lc, const gl_wchar *s) {
    return static_cast<int32_t>(sizeof(gl_wchar)) * (gl_wcslen(lc, s) + 1);
}

int32_t gl_wclen(locale_rec *lc, gl_wchar wc) {
    char scratch[gl_char_bytes];
    return locale_or_ascii(lc).is_single_byte ? 1 : gl_full_wctomb(lc, scratch, wc);
}
