// Readers of the small fields that all object files are made of.
//
// They read through the table of external functions, classify in the "C" locale whatever the host
// has set, and never fail by themselves: a character that does not fit counts as 0 or goes back to
// the file, and the caller checks ranges and line ends. End of file counts as a digit 0.

#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Consumes white space and gives the next character back; returns it, or -1 at end of file.
int _gl_skip_whitespace(FILE *file);

// Consumes one blank if there is one: 0x20 only, and only one.
void _gl_skip_space_if_needed(FILE *file);

// Consumes a newline and returns 1; any other character goes back and 0 is returned.
int _gl_skip_nl(FILE *file);

// One hexadecimal digit in either case; any other character is consumed and counts as 0.
uint32_t _gl_get_hex_digit(FILE *file);
// Two digits.
uint32_t _gl_get_hex_byte(FILE *file);
// `count` digits, at most 8. Eight digits are a wide character.
uint32_t _gl_get_hex(FILE *file, int count);

// A decimal number after at most one blank: a first character of any kind and up to 39 digits are
// converted, further digits are consumed and dropped, the first non-digit goes back. Saturated at
// the ends of 64 bits; the caller checks the range of its field.
// Example "-12x" -> -12, "x12" -> 0 (all consumed), newline and "12" -> 12, end of file -> 0.
int64_t _gl_get_int(FILE *file);

// A floating number of up to 80 of the characters 0-9 + - . e E; the first other character goes
// back. Any other text gives 0.
double _gl_get_dbl(FILE *file);

// A word: characters up to white space, end of file or size - 1 characters, terminated. The white
// space goes back. Returns 0 when white space ended the word (also directly after a full buffer),
// else -1.
int _gl_get_str(char *buffer, size_t size, FILE *file);

#ifdef __cplusplus
}
#endif
