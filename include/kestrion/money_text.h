// Texts of money: a decimal between two currency texts.
//
// The texts before and after the amount and its radix come from DBMONEY ("$." is "$" before and the
// radix "."; ",EUR" is the radix "," and "EUR" after), else from the locale's currency symbol and
// mon_decimal_point.
//
//     DBMONEY     1234.5 in 12 bytes, 2 decimals
//     "$."        "$1234.50    "
//     ",EUR"      "1234,50EUR  "
//     "$."        -0.5: "$-0.50      "

#pragma once

#include <kestrion/decimal.h>

#ifdef __cplusplus
extern "C" {
#endif

// Writes the text before, then the amount as dectoasc writes it, then the text after; blank padded
// to `length` and not terminated. NULL is blanks.
// Returns 0; -1 for a malformed record or a negative length, with nothing written; the number of a
//         failed locale start; err_display_width (-1207) with "*" all over when it does not fit.
int rdecmon(const dec_value *dec, char *buffer, int length, int right);

// Reads an amount: drops blanks at both ends and the two texts where they stand (or the locale's
// currency symbol at either end), each once, and reads the rest as deccvasc does, with the radix of
// amounts. Returns what deccvasc returns.
int rmondec(const char *text, int length, dec_value *dec);

// Bytes of the text before an amount and of the one after it.
int rfrontlen(void);
int rbacklen(void);

// Decimals of an amount in the locale: 0..99; 2 where the locale does not say.
int genlcscale(void);

#ifdef __cplusplus
}
#endif
