// Texts of doubles with the locale's radix.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Reads blanks, one of the locale's sign texts or "+" or "-", digits with the locale's radix, an
// exponent; blanks and a line end may follow. The result is the nearest double; too great is an
// infinity, too small a denormal or 0.
// format  null or "%e", which mean the same.
// Returns 0, or err_not_a_number (-1213) with 0.0.
// Example "-1,5e3" in de_de -> -1500.
int qvt_gl_convert_double(double *out, const char *text, const char *format);

// qvt_gl_convert_double with "%e".
int rstod(const char *text, double *out);

// Puts the locale's radix in the place of the first "." of a terminated text in text[0..size).
// Returns 0, or err_display_width (-1207) with the text as it was when a longer radix does not fit.
int rdecstr(char *text, int size);

// Writes `value` with 17 significant digits ("%.17g") and the locale's radix; `text` has 81 bytes.
// Returns 0 or what rdecstr returns.
int _gnftoasc(double value, char *text);

#ifdef __cplusplus
}
#endif
