// Text primitives. The source comes before the destination, and comparisons return exactly -1, 0
// or 1.
//
// Texts are terminated bytes. Lengths and limits are in bytes; one below zero counts as zero unless
// its operation says otherwise.

#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

char *stcat(const char *source, char *destination);  // appends; returns destination
char *stcopy(const char *source, char *destination); // returns destination

// Copies at most size - 1 bytes and terminates. Does nothing when `size` is below 1.
void stncopy(const char *source, char *destination, ptrdiff_t size);

int stcmpr(const char *a, const char *b);  // by unsigned bytes
int stcmpri(const char *a, const char *b); // each byte through _ix2lowmap

ptrdiff_t stleng(const char *text);
ptrdiff_t stnleng(const char *text, ptrdiff_t limit); // length up to the limit; reads no further

// First byte that, taken as signed, equals `character`; else null. So 233 never finds byte 0xE9,
// and -23 does. A search for 0 finds nothing, since the terminator ends the search first.
char *stchr(const char *text, int character);

// Compares the first words, at most `limit` bytes: 0 when they are equal, otherwise -1, never 1. A
// blank or the terminator ends a word. Two null texts are equal, a null and a text are not.
// Example "ab cd", "ab" -> 0; "ab", "abc" -> -1.
int cmprstr(const char *a, const char *b, ptrdiff_t limit);

// Cuts trailing blanks in place; writes the terminator only when the text got shorter.
// length  below zero for the text's own length.
// Returns the new length.
ptrdiff_t _sttrmrt(char *text, ptrdiff_t length);

// Returns the next token of `text`, or null. The first call gives the text, the following ones
// null; `*save` keeps the place, so that walks through several texts do not disturb each other.
// Runs of separators count as one.
char *qvt_strtok(char *text, const char *separators, char **save);

#ifdef __cplusplus
}
#endif
