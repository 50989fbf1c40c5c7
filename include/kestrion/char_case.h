// Upper and lower case of characters and texts.
//
// A character without a partner stays as it is. The partner may have another length than the
// character, so a destination for a text of n bytes needs gl_case_conv_outbuflen(lc, n) bytes and
// room for a terminator (<kestrion/char_length.h>: gl_mb_loc_min). Destination and source must not
// overlap. All operations take the locale first; null is single-byte ASCII.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the other case of a wide character; an invalid one is returned as it is with
// GLS_ERR_BAD_CHARACTER.
gl_wchar _gl_im_towupper(locale_rec *lc, gl_wchar wc);
gl_wchar _gl_im_towlower(locale_rec *lc, gl_wchar wc);

// Writes the other case of the first character of a terminated text.
// dst     at least gl_char_bytes.
// Returns (bytes read << 8) | bytes written. An invalid character sets GLS_ERR_BAD_CHARACTER; the
//         bytes looked at are copied, so that a caller can go on after them: "\xff" where FF begins
//         nothing -> 0x101.
int32_t _gl_im_tomupper(locale_rec *lc, char *dst, const char *src);
int32_t _gl_im_tomlower(locale_rec *lc, char *dst, const char *src);

// The same, reading at most `limit` bytes (-1: terminated). Returns 0 and writes nothing for a
// character that is invalid (GLS_ERR_BAD_CHARACTER) or cut off (GLS_ERR_SPECIFIER).
int32_t _qvt_gl_im_tomupper(locale_rec *lc, char *dst, const char *src, int32_t limit);
int32_t _qvt_gl_im_tomlower(locale_rec *lc, char *dst, const char *src, int32_t limit);

// Convert a terminated text and terminate the result. Return the bytes written without the
// terminator, or -1 with GLS_ERR_BAD_CHARACTER at an invalid character, and dst unterminated.
int32_t gl_tombsupper(locale_rec *lc, char *dst, const char *src);
int32_t gl_tombslower(locale_rec *lc, char *dst, const char *src);

// Convert at most `count` bytes, or up to the terminator, and terminate the result.
// A count that ends inside a character does not stop the work: it goes on to the terminator. The
// source must therefore be terminated, and dst sized for the whole of it. In a single-byte code set
// the count is exact.
int32_t _qvt_gl_tombsupper_len(locale_rec *lc, char *dst, const char *src, int32_t count);
int32_t _qvt_gl_tombslower_len(locale_rec *lc, char *dst, const char *src, int32_t count);

// Convert a zero-ended wide text, the zero included. Return 0, or -1 with GLS_ERR_BAD_CHARACTER at
// an invalid character, and dst unterminated.
int32_t gl_towcsupper(locale_rec *lc, gl_wchar *dst, const gl_wchar *src);
int32_t gl_towcslower(locale_rec *lc, gl_wchar *dst, const gl_wchar *src);

// Returns the bytes that a case conversion of `length` bytes may need, at most INT32_MAX: the
// growth factor rounded up, times the length. Factor 1.5 and 10 bytes -> 20.
int32_t gl_case_conv_outbuflen(locale_rec *lc, int32_t length);

#ifdef __cplusplus
}
#endif
