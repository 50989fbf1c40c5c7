// Lengths: of a character, of a text, and stepping through a text.
//
// All operations take the locale first; null is single-byte ASCII. GLS_ERR_BAD_CHARACTER is an
// invalid character, GLS_ERR_SPECIFIER one that the limit cuts off.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>
#include <stdio.h>

typedef struct multi_node multi_node; // <kestrion/multi.h>

// What a walk through a long text keeps, so that it need not look it up at each character.
typedef struct mbl_state {
    locale_rec *lc;
    const multi_node *root; // of the class table; null in a null locale
    int32_t plug_in;        // 1: the plug-in serves the category
    const multi_step *walk; // the class table, flattened; no characters when a terminator is wide
    int32_t ascii_bytes;    // 1: the bytes 01-7F are characters
} mbl_state;

#ifdef __cplusplus
extern "C" {
#endif

// Returns the bytes of the first character, 0 for the zero character or a null text, or -1 with
// GLS_ERR_SPECIFIER (limit below 1, character cut off) or GLS_ERR_BAD_CHARACTER.
int32_t gl_full_mblen(locale_rec *lc, const char *s, int32_t limit);

// The same; the zero character has its true length.
int32_t _qvt_gl_full_mblen(locale_rec *lc, const char *s, int32_t limit);

// Prepares a walk. Returns whether the plug-in is in use: 0.
int32_t _qvt_gl_getmbl(locale_rec *lc, mbl_state *state);

// Returns the bytes of the first character, 0 when all bytes read are zero, or -1 with
// GLS_ERR_BAD_CHARACTER. The text must be terminated.
int32_t _qvt_gl_fast_mblen(const mbl_state *state, const char *s);

// Returns the characters of a terminated text, or -1 with GLS_ERR_BAD_CHARACTER.
int32_t _gl_im_mbslen(locale_rec *lc, const char *s);

// Returns the characters in `length` bytes (-1: terminated), each zero character counted, or -1
// with GLS_ERR_BAD_CHARACTER, which is also the error of a last character that runs past the
// length.
int32_t _qvt_gl_im_mbfslen(locale_rec *lc, const char *s, int32_t length);

// Returns the bytes of a terminated text with its terminator; 0 for a null text, and 0 with
// GLS_ERR_BAD_CHARACTER for a text with an invalid character.
int32_t gl_mbsbytes(locale_rec *lc, const char *s);

// Longest and shortest character of the code set. An empty category says 0 and 4.
int32_t gl_mb_loc_max(locale_rec *lc);
int32_t gl_mb_loc_min(locale_rec *lc);

// Returns the text after the first character; null at the terminator, null with
// GLS_ERR_BAD_CHARACTER for an invalid character, null with GLS_ERR_NULL_ARGUMENT for a null text.
const char *gl_full_mbsnext(locale_rec *lc, const char *s);

// Returns the last character of the text from `start` that begins before `s`, or null. `s` must lie
// within the text.
const char *gl_full_mbsprev(locale_rec *lc, const char *start, const char *s);

// Reads one character from a file into `buffer`, which has gl_char_bytes.
// Returns its length, or -1 with GLS_ERR_END_OF_FILE, GLS_ERR_READ, or GLS_ERR_BAD_CHARACTER
//         (invalid or cut off; the bytes are consumed).
int32_t gl_full_fgetmb(locale_rec *lc, char *buffer, FILE *file);

// Returns the bytes of `text[0..length)` without its trailing blank characters. A break in the text
// ends the walk: what follows it does not count.
int32_t _qvt_gl_mbsntsbytes(locale_rec *lc, const char *text, int32_t length);

#ifdef __cplusplus
}
#endif
