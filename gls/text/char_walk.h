// How the operations on characters decode: one walk for text that a limit ends, one for text that
// its terminator ends.
//
// Both take the flat table to walk: that of the classes says what is a character, that of the case
// index finds partners. A finished walk's last step says what the character is: `next` is multi_end
// for a character, multi_stop where no sequence goes on, a state where the text ended too early.

#pragma once

#include "gls/multi/multi_tree.h"
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>
#include <kestrion/multi.h>

#include <stdint.h>

namespace kestrion {

// What serves for a null locale: every byte is a character, those below 80 with the classes and
// the case of ASCII.
extern const locale_rec ascii_locale;

// The flat table of an empty category: no byte begins a character.
extern const multi_step no_characters[256];

// What serves for an empty category.
inline constexpr ctype_rec no_ctype = {.mb_loc_min = 4,
                                       .class_walk = no_characters,
                                       .byte_walk = no_characters,
                                       .case_walk = no_characters};

inline const locale_rec &locale_or_ascii(const locale_rec *lc) {
    return lc != nullptr ? *lc : ascii_locale;
}

inline const ctype_rec &ctype_of(const locale_rec *lc) { return locale_or_ascii(lc).ctype_cat; }

struct decoded_char {
    multi_step step; // the last step of the walk
    int32_t length;  // bytes looked at
    gl_wchar wide;   // these bytes, packed
};

inline bool is_char(const decoded_char &c) { return c.step.next == multi_end; }

inline bool is_ascii_above_zero(unsigned char byte) { return static_cast<signed char>(byte) > 0; }

// The error that a walk without a character means.
inline int32_t decode_error(const decoded_char &c) {
    return c.step.next == multi_stop ? GLS_ERR_BAD_CHARACTER : GLS_ERR_SPECIFIER;
}

// The step for a byte after a step that goes on.
inline multi_step next_step(const multi_step *walk, multi_step step, unsigned char byte) {
    return walk[static_cast<size_t>(step.next) << 8 | byte];
}

// Decodes within `limit` bytes, at least 1. Written out byte by byte: the branches follow the
// lengths of characters, which a processor predicts, so that several characters are under way at
// once.
inline decoded_char decode_limited(const multi_step *walk, const char *text, int32_t limit) {
    const auto *s = reinterpret_cast<const unsigned char *>(text);
    gl_wchar wide = s[0];
    multi_step step = walk[s[0]];
    if (step.next < multi_first_state || limit < 2)
        return {step, 1, wide};
    wide = wide << 8 | s[1];
    step = next_step(walk, step, s[1]);
    if (step.next < multi_first_state || limit < 3)
        return {step, 2, wide};
    wide = wide << 8 | s[2];
    step = next_step(walk, step, s[2]);
    if (step.next < multi_first_state || limit < 4)
        return {step, 3, wide};
    return {next_step(walk, step, s[3]), 4, wide << 8 | s[3]};
}

// Decodes terminated text of a code set whose shortest character has several bytes: a character
// that is still open before a terminator is not a character.
decoded_char decode_wide_unit_text(const multi_step *walk, const char *text, int32_t min_len);

// Decodes terminated text. No byte after the terminator is read: with a shortest character of one
// byte, the tables hold no sequence with a zero byte after the first.
inline decoded_char decode_text(const ctype_rec &ct, const multi_step *walk, const char *text) {
    if (ct.mb_loc_min != 1)
        return decode_wide_unit_text(walk, text, ct.mb_loc_min);
    return decode_limited(walk, text, gl_char_bytes);
}

// Bytes of a wide character by its value: as many as it needs, and no fewer than `min_len`.
inline int32_t wide_length(gl_wchar wc, int32_t min_len) {
    const int32_t needed = significant_bytes(wc);
    return needed > min_len ? needed : min_len;
}

// Walks the bytes of a wide character, highest first. Returns the last step, whose `next` is
// multi_end for a character.
multi_step walk_wide(const multi_step *walk, gl_wchar wc, int32_t min_len);

// Whether a wide character's step is found by its prefix, in two loads: those of one to three
// bytes, unless every character has more bytes than one.
inline bool has_prefix(const ctype_rec &ct, gl_wchar wc) { return wc >> 8 < ct.prefix_count; }

inline multi_step step_by_prefix(const multi_step *walk, const uint16_t *prefixes, gl_wchar wc) {
    return walk[static_cast<size_t>(prefixes[wc >> 8]) << 8 | (wc & 0xff)];
}

// The same for any wide character.
inline multi_step wide_step(const ctype_rec &ct, const multi_step *walk, const uint16_t *prefixes,
                            gl_wchar wc) {
    return has_prefix(ct, wc) ? step_by_prefix(walk, prefixes, wc)
                              : walk_wide(walk, wc, ct.mb_loc_min);
}

// Writes the bytes of a wide character to dst[0..gl_char_bytes). Returns their count, or 0 for
// what is not a character; what was written up to the byte that does not fit stays.
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
