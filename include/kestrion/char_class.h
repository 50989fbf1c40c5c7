// Classes of characters: is it a letter, a digit, a blank?
//
// A class is a bit of a 16-bit mask (<kestrion/ctype_masks.h>). All operations take the locale
// first; null is single-byte ASCII. An invalid character has no class; it sets
// GLS_ERR_BAD_CHARACTER, or GLS_ERR_SPECIFIER when it is cut off.
//
// Example in a Shift_JIS locale: _gl_im_ismctype(lc, "\x82\x60", gl_ctype(lc, "upper")) -> 1.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the mask of the class `name`: a standard name, else a named class of the locale; 0 for
// any other. A name that begins with "f" is looked for among the named classes alone.
uint32_t gl_ctype(locale_rec *lc, const char *name);

// Returns the mask of a wide character ANDed with `mask`, 0 for an invalid one.
uint32_t _gl_im_iswctype(locale_rec *lc, gl_wchar wc, uint32_t mask);

// The same for the first character of a terminated text.
uint32_t _gl_im_ismctype(locale_rec *lc, const char *s, uint32_t mask);

// The same, reading at most `limit` bytes; -1 when the text is terminated.
uint32_t _qvt_gl_im_ismctype(locale_rec *lc, const char *s, int32_t limit, uint32_t mask);

#ifdef __cplusplus
}
#endif
