// The order of Thai text in a single-byte code set.
//
// Thai writes some vowels before the consonant that they follow in speech, and a dictionary orders by
// speech: such a vowel changes places with its consonant. Tone marks only count where all else is
// equal, and blanks at the end never do. Bytes D0 to EF are told apart by two tables:
//
//     E0-E4   vowels written first          E7-EE   tones and marks
//
//     a1 d2 < a1 e8 d2 < a1 e9 d2 < e0 a1 a7 < a2 d2
//
// Locales of this method have no weights. Lengths, -1 and errors are those of <kestrion/collation.h>;
// a result other than 0 may have any magnitude.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int32_t _gl_thaismocoll(locale_rec *lc, const char *a, const char *b);
int32_t _qvt_gl_thaismoncoll(locale_rec *lc, const char *a, int32_t a_length, const char *b,
                             int32_t b_length);

// Makes a sort key: the consonants with their vowels after them, then each mark after the position that
// it belongs to. At most 256 bytes of it are stored, and a zero byte if size and limit leave room.
// The arguments are not those of the other keys: the source is the first text and the destination
// the second. Whoever calls `lc->mbsxfrm_fn` of a locale of this method passes them so.
// Returns the length of the whole key; a key holds zero bytes when a position is a multiple of 256.
// Example a1 e8 d2 -> a1 d2 02 8f
int32_t _gl_thaismoxfrm(locale_rec *lc, char *first, const char *second, int32_t size);

#ifdef __cplusplus
}
#endif
