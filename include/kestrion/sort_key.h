// Sort keys: texts of bytes that order as the texts they were made from.
//
// A key is worth its making when a text is compared many times. It is the weights of the first
// level, a byte 01, those of the second level and so on. A weight has the same number of digits in
// the whole locale, base 254, each stored as 2 to 255, so that keys of the same locale compare by
// memcmp, and hold no zero byte.
//
// Two levels, largest weight 200: weights 5 and 7 give the key 05 01 07.
// Largest weight 300, so two digits: the weight 300 is 03 2e.
//
// A key is only good for the order that made it: keep the order's version with stored keys.
//
// All operations write at most `size` bytes, and a zero byte after the key if there is room.
// They return the length of the whole key, which may be more than the size: ask with a size of 0,
// with a null destination if you like, and allocate that and one. A failure gives -1 with the error
// word 1 (a text that is not valid in the code set) or 3 (no memory; not below 128 characters). A
// null locale gives 0 with the error 2.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Makes the key of a terminated multibyte text. The key of an empty text is empty.
int32_t gl_full_mbsxfrm(locale_rec *lc, char *dst, const char *src, int32_t size);

// Makes the key of a terminated wide text. The key of an empty text is the separators of the levels
// alone. Where a locale orders by codes the key is the multibyte text.
int32_t gl_wcsxfrm(locale_rec *lc, char *dst, const gl_wchar *src, int32_t size);

// The Unicode plug-in's keys: it is not there, so the key is empty.
int32_t _glu_mbsxfrm(locale_rec *lc, char *dst, const char *src, int32_t size);

#ifdef __cplusplus
}
#endif
