// How the operations on characters decode: one walk for text that a limit ends, one for text that
// its terminator ends.
//
// Both take the flat table to walk: that of the classes says what is a character, that of the case
// index finds partners. A finished walk's last step says what the character is: `next` is multi_end
// for a character, multi_stop where no sequence goes on, a state where the text ended too early.

#pragma once

#include "gls/gls_errors.h"
#include "gls/locale_rec.h"
#include "gls/multi.h"

#include <stdint.h>

namespace kestrion {

// What stands in for a null locale: every byte is a character, those below 80 with the classes and
// the case of ASCII.
extern const locale_rec ascii_locale;

// The flat table of an empty category: no byte begins a character.
extern const multi_step no_characters[256];

inline const locale_rec &locale_or_ascii(const locale_rec *lc) { return lc ? *lc : ascii_locale; }

inline const ctype_rec &ctype_of(const locale_rec *lc) { return locale_or_ascii(lc).ctype_cat; }

struct decoded_char {
    multi_step step; // the last step of the walk
    int32_t length;  // bytes looked at
    gl_wchar wide;   // these bytes, packed
};

inline bool is_char(const decoded_char &c) { return c.step.next == multi_end; }

// Stores an error and gives the result of an operation that failed.
inline int32_t failed(locale_rec *lc, int32_t error) {
    set_engine_error(lc, error);
    return -1;
}

// The error that a walk without a character means.
inline int32_t decode_error(const decoded_char &c) {
    return c.step.next == multi_stop ? GLS_ERR_BAD_CHARACTER : GLS_ERR_SPECIFIER;
}

// Decodes within `limit` bytes, at least 1.
inline decoded_char decode_limited(const multi_step *walk, const char *text, int32_t limit) {
    const auto *s = reinterpret_cast<const unsigned char *>(text);
    decoded_char c = {walk[s[0]], 1, s[0]};
    while (c.step.next >= multi_first_state && c.length < limit) {
        c.wide = c.wide << 8 | s[c.length];
        c.step = walk[static_cast<size_t>(c.step.next) << 8 | s[c.length]];
        ++c.length;
    }
    return c;
}

// Decodes terminated text of a code set whose shortest character has several bytes: a character
// that is still open in front of a terminator is none.
decoded_char decode_wide_unit_text(const multi_step *walk, const char *text, int32_t min_len);

// Decodes terminated text. No byte behind the terminator is read: with a shortest character of one
// byte, the tables hold no sequence with a zero byte behind the first.
inline decoded_char decode_text(const ctype_rec &ct, const multi_step *walk, const char *text) {
    if (ct.mb_loc_min != 1)
        return decode_wide_unit_text(walk, text, ct.mb_loc_min);
    return decode_limited(walk, text, 4);
}

// Bytes of a wide character by its value: as many as it needs, and no fewer than `min_len`.
inline int32_t wide_length(gl_wchar wc, int32_t min_len) {
    int32_t needed = wc <= 0xff ? 1 : wc <= 0xffff ? 2 : wc <= 0xffffff ? 3 : 4;
    return needed > min_len ? needed : min_len;
}

// Walks the bytes of a wide character, highest first. Returns the last step; one whose `next` is
// not multi_end means that there is no such character.
inline multi_step walk_wide(const multi_step *walk, gl_wchar wc, int32_t min_len) {
    int32_t left = wide_length(wc, min_len);
    uint32_t state = 0;
    for (;;) {
        --left;
        multi_step step = walk[static_cast<size_t>(state) << 8 | (wc >> (8 * left) & 0xff)];
        if (left == 0)
            return step.next >= multi_first_state ? multi_step{0, multi_stop} : step;
        if (step.next < multi_first_state)
            return {0, multi_stop};
        state = step.next;
    }
}

// Writes the bytes of a wide character to dst[0..4). Returns their count, 0 when there is no such
// character; what was written up to the byte that does not fit stays.
inline int32_t encode_wide(const ctype_rec &ct, unsigned char *dst, gl_wchar wc) {
    int32_t length = wide_length(wc, ct.mb_loc_min);
    uint32_t state = 0;
    for (int32_t i = 0; i < length; ++i) {
        unsigned char byte = static_cast<unsigned char>(wc >> (8 * (length - 1 - i)));
        multi_step step = ct.class_walk[static_cast<size_t>(state) << 8 | byte];
        bool last = i == length - 1;
        if (last ? step.next != multi_end : step.next < multi_first_state)
            return 0;
        dst[i] = byte;
        state = step.next;
    }
    return length;
}

// The case that an operation converts to.
enum class letter_case { upper, lower };

} // namespace kestrion
