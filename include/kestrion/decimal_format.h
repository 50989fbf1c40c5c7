// Decimals by printf-like formats of numbers: those of kestrion/number_format.h with one directive
// and without lengths, "*" and "N$".
//
// Operations return 0, or -1 with the locale's error word (get_glserror) GLS_ERR_ARGUMENT, or
// GLS_ERR_FORMAT for a format of another kind.

#pragma once

#include <kestrion/decimal.h>

#ifdef __cplusplus
extern "C" {
#endif

enum number_format_kind {
    number_format_repeated = -1, // a second directive follows
    number_format_other = 0,     // another conversion, or no directive
    number_format_float = 1,     // E G e f g
    number_format_integer = 2,   // X b d i o q u x
};

// The kind of a format by its first directive: flags blank # ' + -, width, precision, conversion.
int get_num_fmt_type(const char *format);

// A text to decimal, by the whole of a format or, when that is null, as deccvasc does.
// Floats are doubles and give 17 digits; integers have 32 bits and are those of deccvint, so that
// -32768 is NULL. A format of more than 254 bytes is of another kind.
// Example "1.234,5" with "%'f" in de_de -> 1234.5.
int qvt_gl_convert_number(dec_value *dec, const char *text, const char *format);

// A decimal to text in buffer[0..size), terminated: by a format, integer ones for values in
// -32767..32767 alone, or, when that is null, as dectoasc with all decimals and without blanks.
// NULL is the empty text and has no other form: with a format it is refused.
// Example 1234.5 with "%'.2f" in en_us -> "1,234.50".
int qvt_gl_format_number(char *buffer, int size, const dec_value *dec, const char *format);

#ifdef __cplusplus
}
#endif
