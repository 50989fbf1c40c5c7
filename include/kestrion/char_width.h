// Screen columns of characters and texts.
//
// A printable character takes two columns when the locale has a class "full_width" and the
// character is in it, else one. All operations take the locale first; null is single-byte ASCII. A
// null text is -1 with GLS_ERR_NULL_ARGUMENT.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the columns of a wide character, 0 for the zero character, or -1 with GLS_ERR_SPECIFIER
// for one that is not printable.
int32_t gl_wcwidth(locale_rec *lc, gl_wchar wc);

// Returns the columns of the first character of a text. Unlike its wide twin it gives 1 to a
// one-byte character that is not printable.
int32_t gl_mbwidth(locale_rec *lc, const char *s);

// Returns the columns of the first character of `s` by the site's map of private characters,
// $KESTRIONDIR/gls/etc/pua.map: characters that are not printable, each followed by blanks and one
// digit. 1 when no digit follows; -1 when the character or the map is missing.
int32_t gl_mbwidth_PUA(locale_rec *lc, const char *s);

// Return the columns of the first `count` characters, or up to the terminator; -1 with
// GLS_ERR_COUNT for a negative count, GLS_ERR_SPECIFIER for a character that is not printable, be
// it an invalid one.
int32_t gl_wcswidth(locale_rec *lc, const gl_wchar *s, int32_t count);
int32_t gl_mbswidth(locale_rec *lc, const char *s, int32_t count);

// The same up to `end`; GLS_ERR_END_BEFORE_START when `end` lies before `s`. The multibyte form
// clears the error word on entry, and keeps the GLS_ERR_BAD_CHARACTER of an invalid character.
int32_t gl_wcspwidth(locale_rec *lc, const gl_wchar *s, const gl_wchar *end);
int32_t gl_mbspwidth(locale_rec *lc, const char *s, const char *end);

#ifdef __cplusplus
}
#endif
