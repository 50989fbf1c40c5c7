// Steps through statement text, in the characters of the current locale.
//
// Texts are terminated, and no step passes the terminator. With no locale loaded a character is a byte
// and has the class of ASCII. An invalid character counts as one byte of no class.

#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the first position that is not white space.
const char *skipwhite(const char *position);

// Returns the closing quote of the quoted text at `position`, or the end of the text. A doubled quote
// closes one text and opens the next.
const char *skipquote(const char *position);

// Returns the position after one word, quoted text or single character. A word begins with a letter, a
// digit or "_" and goes on with these and "$".
const char *skipword(const char *position);

// Moves the position past white space and past comments: {...} and -- to the end of the line.
// Returns 0, or 1 for a comment that is not closed, with the position unchanged.
int32_t skipcomments(const char **position);

// Compares the first `count` characters of `text`, in lower case, with those of the lower-case
// `pattern`. At most 256 characters are looked at, and a longer comparison never matches.
// Returns 0 when they match, else 1, also for an invalid character.
int32_t cbncmpr(const char *pattern, const char *text, int32_t count);

// Compares the first `count` characters, at most 256, of two texts; letters without regard to case,
// by their lower-case forms. A text that ends first is the lesser. Texts with an invalid character are
// compared by bytes.
// Returns -1, 0 or 1.
int32_t bycbcmpr(const char *a, const char *b, int32_t count);

// Moves the bytes first[0] to *last up by `distance`, from the end. Does nothing for a null pointer, a
// `last` before `first` or a distance below 1.
void rightshift(char *first, char *last, ptrdiff_t distance);

#ifdef __cplusplus
}
#endif
