// What the comparers of multibyte texts share: their arguments, and how they decode.

#pragma once

#include "gls/base/engine_error.h"
#include "gls/collation/order_tables.h"
#include "gls/text/char_walk.h"
#include <kestrion/char_length.h>
#include <kestrion/ext_funcs.h>

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace kestrion {

struct text_range {
    const char *begin;
    const char *end;

    ptrdiff_t bytes() const { return end - begin; }
};

// The end of a terminated text; null with the error word set.
inline const char *end_of_text(locale_rec *lc, const char *text) {
    if (lc->is_single_byte || lc->ctype_cat.mb_loc_min == 1)
        return text + strlen(text);
    const int32_t bytes = gl_mbsbytes(lc, text);
    return bytes > 0 ? text + bytes - lc->ctype_cat.mb_loc_min : nullptr;
}

// Checks the lengths of two texts.
inline bool lengths_agree(locale_rec *lc, int32_t a_length, int32_t b_length) {
    if ((a_length == -1) == (b_length == -1))
        return true;
    set_engine_error(lc, GLS_ERR_ONE_LENGTH);
    return false;
}

inline bool all_given(locale_rec *lc, const void *a, const void *b) {
    if (lc != nullptr && a != nullptr && b != nullptr)
        return true;
    set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
    return false;
}

// Checks the arguments of a comparer and finds the ends of the texts. Returns false with the error
// word set. A length below -1 counts as 0.
inline bool settle_texts(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                         int32_t b_length, text_range &first, text_range &second) {
    if (!all_given(lc, a, b) || !lengths_agree(lc, a_length, b_length))
        return false;
    if (a_length == -1) {
        first = {a, end_of_text(lc, a)};
        second = {b, end_of_text(lc, b)};
        return first.end != nullptr && second.end != nullptr;
    }
    first = {a, a + (a_length > 0 ? a_length : 0)};
    second = {b, b + (b_length > 0 ? b_length : 0)};
    return true;
}

// Decodes the character at `at`. In a single-byte code set every byte is one. Returns a length of 0
// for an invalid character and one that the end cuts off.
inline decoded_char decode_char(const locale_rec &lc, const multi_step *walk, const char *at,
                                const char *end) {
    if (lc.is_single_byte)
        return {{0, multi_end}, 1, static_cast<unsigned char>(*at)};
    const ptrdiff_t left = end - at;
    decoded_char c = decode_limited(
        walk, at, left < gl_char_bytes ? static_cast<int32_t>(left) : int32_t{gl_char_bytes});
    if (!is_char(c))
        c.length = 0;
    return c;
}

// Decodes a character with its row. Returns its bytes, 0 as decode_char.
inline int32_t decode_unit(const locale_rec &lc, const char *at, const char *end, coll_unit &unit) {
    const bool one_walk = lc.order_walk != nullptr && !lc.is_single_byte;
    const decoded_char c =
        decode_char(lc, one_walk ? lc.order_walk : lc.ctype_cat.class_walk, at, end);
    unit = one_walk ? coll_unit{c.wide, c.step.datum, 1} : unit_of(lc.collate_cat, c.wide);
    return c.length;
}

// Whether eight bytes are ASCII without a zero.
inline bool are_ascii_above_zero(uint64_t bytes) {
    constexpr uint64_t ones = UINT64_C(0x0101010101010101);
    constexpr uint64_t tops = UINT64_C(0x8080808080808080);
    return ((bytes | (bytes - ones)) & tops) == 0;
}

inline uint64_t eight_bytes(const char *text) {
    uint64_t bytes;
    memcpy(&bytes, text, sizeof bytes);
    return bytes;
}

// Whether a range holds nothing but characters.
bool is_valid_text(const locale_rec &lc, const char *at, const char *end);

// Drops the characters that two texts have in common. Returns false, with the texts anywhere, when
// one of those is invalid or has no row.
bool drop_common_front(const locale_rec &lc, text_range &a, text_range &b);

// Where before `at` a walk must start so that it meets all contractions of the text.
const char *start_of_contractions(const locale_rec &lc, const char *begin, const char *at);

} // namespace kestrion
