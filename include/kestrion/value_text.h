// Values as text, and texts of integers.
//
//     value        width  left   text
//     123          5      0      "  123"
//     123456       5      0      "*****" and err_display_width
//     "abc"        2      1      "ab": texts are cut
//     NULL         3      0      "   "
//     true         2      1      "t "
//     1.5 (5,2)    3      1      "1.5": fewer decimals rather than none
//     1.5e200      10     1      "1.50e+200 "
//
// A width of 0 asks for a terminated text of its own length: up to 81 bytes, of texts text_length + 1.
// Any other width is written in full, blank padded and without a terminator; below 0 nothing is
// written. Texts are always left justified.
//
// Operations return 0 or a negative error number, which is also the conversion error. A failing one
// leaves "*" for err_display_width (-1207), else blanks.

#pragma once

#include <stdint.h>

#include <kestrion/value.h>

#ifdef __cplusplus
extern "C" {
#endif

// Writes a value by the conventions of the locale. Of a date, text_length gets the length of its
// text. Varying texts are followed by one zero byte instead of blanks where QVT_PAD_VARCHAR begins
// with "0". Without a control block nothing is written and the result is 0.
// Returns also err_float_range (-1223) for a float that is not a number, err_no_conversion (-1260)
//         for a type that has no text, and the errors of dates and datetimes.
int rvalstr(value_rec *value, char *buffer, int width, int left);

// The same with 17 significant digits of a float.
int rvalstr_16prec(value_rec *value, char *buffer, int width, int left);

// Loads a column (rdataval) and writes it left justified.
int rdatastr(const void *stored, int column_type, int column_length, char *buffer, int width);

// The columns that a type's values need as text, whatever the value; 0 for a host type and where
// the locale does not start.
// Example decimal(5,2) -> 7; datetime year to fraction(3) -> 23.
int rtypwidth(int type, int length_word);

// Read blanks, one sign, digits; a blank, a line end or the end of the text must follow. Blanks
// alone are NULL: -32768 and -2147483648.
// Return 0; err_not_a_number (-1213); err_smallint_range (-1214) outside -32767..32767;
//        err_integer_range (-1215) outside -2147483647..2147483647. Then *out is as it was.
// Example "12 abc" -> 12
int rstoi(const char *text, int32_t *out);
int rstol(const char *text, int64_t *out);

#ifdef __cplusplus
}
#endif
