// Case shifting of text in the current locale. With no locale loaded the process's tables
// _ix2upmap and _ix2lowmap serve.
//
// The shifted text never grows past the source's length: where an upper-case form is longer and no
// room is left, the text ends before it.

#pragma once

#include <stddef.h>

enum case_operation { CASE_UPPER = 41, CASE_LOWER = 42 };

#ifdef __cplusplus
extern "C" {
#endif

// Shifts source[0..length) into destination[0..length): CASE_UPPER to upper case, any other value
// to lower case. What the text leaves over is filled with zero bytes. The two may be the same
// block. Returns 0, or err_bad_character for an invalid or cut-off character.
int sqlcaseshift(int operation, const char *source, char *destination, ptrdiff_t length);

// Gives each word an initial capital and then lower case; a word is a run of letters. As
// sqlcaseshift otherwise.
int sqlinitcap(const char *source, char *destination, ptrdiff_t length);

// Shift a text in place, keeping its length. Nothing happens without a locale environment, without
// memory, or to a null text.
void rcaseshift(int operation, char *text);
void rupshift(char *text);
void rdownshift(char *text);

#ifdef __cplusplus
}
#endif
