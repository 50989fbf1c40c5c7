// Between multibyte and wide characters, one at a time and by the text.
//
// All operations take the locale first; null is single-byte ASCII. Names with _gl_is_ serve
// single-byte code sets, with _gl_im_ multibyte ones, with gl_full_ both. A name with _qvt_ takes a
// source length, -1 for a terminated source. Sizes of wide texts are in elements, of multibyte
// texts in bytes.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Decodes the first character of `s`, reading at most `limit` bytes.
// Returns its bytes, 0 for the zero character, 0 for a null text (nothing stored), or -1 with
//         GLS_ERR_SPECIFIER (limit below 1, character cut off) or GLS_ERR_BAD_CHARACTER (invalid).
int32_t gl_full_mbtowc(locale_rec *lc, gl_wchar *out, const char *s, int32_t limit);

// The same; a limit of -1 means the text's length without its terminator, so that an empty text is
// GLS_ERR_SPECIFIER. A text with an invalid character gives -1 then, with the error that its walk
// left.
int32_t _qvt_gl_full_mbtowc(locale_rec *lc, gl_wchar *out, const char *s, int32_t limit);

// The same, and *mask_out is the character's class mask ANDed with `mask`; 0 on failure.
int32_t _qvt_gl_full_mbdescribe(locale_rec *lc, gl_wchar *out, const char *s, uint32_t *mask_out,
                                uint32_t mask, int32_t limit);

// Writes the bytes of a wide character.
// dst     at least gl_char_bytes; undefined on error.
// Returns the bytes written, or -1 with GLS_ERR_BAD_CHARACTER.
int32_t gl_full_wctomb(locale_rec *lc, char *dst, gl_wchar wc);

// Writes the terminator of a text. Returns its length.
int32_t gl_mbsterm(locale_rec *lc, char *dst);

// Returns the length of the terminator when `s` begins with one, else 0.
int32_t gl_ismbsterm(locale_rec *lc, const char *s);

// Convert a terminated text. The zero is stored when there is room, and not counted.
// Return the elements stored, or -1 with GLS_ERR_BAD_CHARACTER (the multibyte form alone).
int32_t _gl_is_mbstowcs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t size);
int32_t _gl_im_mbstowcs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t size);

// Converts `length` bytes, zero bytes included; with a length nothing terminates the result.
int32_t _qvt_gl_is_mbfstowcfs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t length,
                              int32_t size);

// The same for multibyte code sets. With a length the result is the elements stored, but size + 1
// when the destination filled first, and 1 when the size is below 1: callers see that text is left.
// Example ten one-byte characters, length 10, size 3 -> 3 elements and the result 4.
int32_t _qvt_gl_im_mbfstowcfs(locale_rec *lc, gl_wchar *dst, const char *src, int32_t length,
                              int32_t size);

// Convert a wide text. A terminator is written for a zero-ended source when there is room; it is
// not counted. The single-byte form refuses a value above 255; the full form stores the low byte in
// a single-byte code set, and leaves off the character that does not fit.
// length  elements; -1 for a zero-ended source; 0 converts one element all the same.
// Return  the bytes written, or -1 with GLS_ERR_BAD_CHARACTER.
int32_t _gl_is_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size);
int32_t _qvt_gl_is_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t length,
                            int32_t size);
int32_t gl_full_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size);
int32_t _qvt_gl_full_wcstombs(locale_rec *lc, char *dst, const gl_wchar *src, int32_t length,
                              int32_t size);

// Returns the elements before the zero.
int32_t gl_wcslen(locale_rec *lc, const gl_wchar *s);

// Returns the bytes that a wide text takes, its zero included.
int32_t gl_wcsbytes(locale_rec *lc, const gl_wchar *s);

// Returns the bytes of a wide character: 1 in a single-byte code set, else as gl_full_wctomb.
int32_t gl_wclen(locale_rec *lc, gl_wchar wc);

#ifdef __cplusplus
}
#endif
