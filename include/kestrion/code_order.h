// Comparing texts by their codes, whatever the order of the locale.
//
// Results are as each operation says; where one gives a difference, it is held within 32 bits and
// only its sign is of use.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Compares wide texts: -1, 0 or 1.
int32_t gl_wcscmp(locale_rec *lc, const gl_wchar *a, const gl_wchar *b);

// Compares counted wide texts: -1 or 1 at the first difference, else the difference of the lengths.
// With a length below 1 the texts are not read.
int32_t _qvt_gl_wcfscmp(locale_rec *lc, const gl_wchar *a, int32_t a_length, const gl_wchar *b,
                        int32_t b_length);

// Compares at most `count` elements: the difference of the first two that differ. A count below 1
// gives 0.
int32_t gl_wcsncmp(locale_rec *lc, const gl_wchar *a, const gl_wchar *b, int32_t count);

// Compares terminated texts character by character: -1, 0 or 1. A longer character is greater than
// a shorter one whatever its bytes, and the end of a text is less than any; an invalid character,
// for which the error word is set, is less still.
int32_t gl_full_mbscmp(locale_rec *lc, const char *a, const char *b);

// Compares the first `count` characters by their bytes: -1, 0 or 1; of two equal stretches the
// longer is greater. An invalid character among them gives 0 with the error 1.
int32_t gl_full_mbsncmp(locale_rec *lc, const char *a, const char *b, int32_t count);

// Compares by bytes; texts that are equal up to the shorter one's length differ by their lengths.
int32_t _qvt_gl_mbscmp(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                       int32_t b_length);

// Says whether two texts differ: 0 when they are equal, else 1. Lengths are at least 1: the first
// bytes are read before the lengths are looked at. The locale is not read.
int32_t _qvt_gl_fast_mbscmp(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                            int32_t b_length);

#ifdef __cplusplus
}
#endif
