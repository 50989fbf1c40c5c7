// The routines of a conversion record.
//
// Each converts character by character, by the rules of gl_cv_mconv. Those for a plain pair start
// with derived tables, which cover the inside of a text; the first character that is near an end,
// inexact in a way that matters, or not convertible is done by the routine itself, so that every
// result is the routine's own.

#pragma once

#include <kestrion/conversion.h>

#ifdef __cplusplus
extern "C" {
#endif

// Chooses the routine by the lengths on both sides and makes what it works with. First match:
// fixed-width source, fixed-width target, single bytes on both sides, everything else.
void set_iconv_fps(cv_rec *cv);

int32_t sb_miconv(cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy);
int32_t mb_miconv(cv_rec *cv, const char **source, int32_t *source_length, char **target,
                  int32_t *room, int32_t *lossy);

// Target of units of 2 or 4 bytes, least significant byte first. Oddity that callers rely on: 2
// bytes of room admit a character of 4; the bytes that fit are stored, the room ends at -2, the
// next character fails.
int32_t little_endian_unicode_target_miconv(cv_rec *cv, const char **source, int32_t *source_length,
                                            char **target, int32_t *room, int32_t *lossy);
int32_t little_endian_unicode_source_miconv(cv_rec *cv, const char **source, int32_t *source_length,
                                            char **target, int32_t *room, int32_t *lossy);

// Datum of a little-endian code unit, walked from its highest byte: 4 bytes wide when both source
// lengths of the conversion are 4, else 2. A limit below the width is GLS_ERR_SPECIFIER.
const void *_gl_retrieve_little_endian_unicode_limit(const char *text, const multi_arr *table,
                                                     int32_t limit, cv_rec *cv);

// The stateful form.
int32_t mb_smiconv(cv_rec *cv, cv_state *state, const char **source, int32_t *source_length,
                   char **target, int32_t *room, int32_t *lossy);

#ifdef __cplusplus
}
#endif
