// Texts of decimals under the locale's conventions.
//
// The conventions (lconv_rec) say what stands for the radix, the thousands separator, the sizes of
// groups and the two signs; dectoasc writes no separators, deccvasc reads them. Operations ending
// in _net use the neutral ones: "." as radix, "-" and "+", no separator. Before a locale is loaded
// the local conventions are the neutral ones.
//
//     dec_value total;
//     deccvasc("1,234.50", 8, &total);            // in en_us; 1234.5
//     char cell[10];
//     dectoasc(&total, cell, 10, 2);              // "1234.50   ": blank padded, not terminated
//     dectoasc(&total, cell, 6, 2);               // "1234.5": fewer decimals rather than none
//
// A text of a given length also ends at a zero byte. Operations return 0 or a negative error
// number: err_not_a_number (-1213), err_overflow (-1200), err_underflow (-1201), err_result_size
// (-1273), err_no_block (-406), the number of a failed locale start, and -1 for a malformed record
// or a negative length.

#pragma once

#include <stdint.h>

#include <kestrion/decimal.h>

typedef struct lconv_rec lconv_rec; // conventions of one environment
typedef struct gentcb gentcb;       // the general control block; holds the digit text

#ifdef __cplusplus
extern "C" {
#endif

// How many digits the text of a float and of a smallfloat asks for: 16, and -1 in dbsmfltprec for
// the same as dbfltprec.
extern int32_t dbfltprec;
extern int32_t dbsmfltprec;

// -- Text to decimal -----------------------------------------------------------------------------

// Reads blanks, a sign, digits with a radix and separators, an exponent, blanks; what follows a
// line end is not looked at. Digits past the 32nd (the 31st when an odd number of digits stands
// before the radix) are lost without rounding. Blanks alone are NULL. On failure *dec is 0.
//
//     ".5" 0.5    "1e3" 1000    "1e" 1    "-" and "- 5" and "1 2" err_not_a_number
//     "0x10" 16: a hexadecimal integer, wrapping at 32 bits, where 80000000 is NULL
//     "1E126" err_overflow    "1E-131" err_underflow
//
// Separators are checked against the groups, unless QVT_NOT_STRICT_THOUS_SEP is "1": "1,2345"
// fails. A non-empty positive sign of the locale takes the place of "+".
int deccvasc(const char *text, int length, dec_value *dec);
int deccvasc_net(const char *text, int length, dec_value *dec);
int deccvasc_int(const char *text, int length, dec_value *dec, const lconv_rec *conventions);

// -- Decimal to text -----------------------------------------------------------------------------

// Writes buffer[0..length), left justified and blank padded, with `right` digits right of the
// point; a negative `right` asks for those that the value has, at least 1. What is too long loses
// decimals, rounded half up, then takes exponent notation, and at last is "*" all over with -1.
// NULL is blanks. No negative zero is written: -0.001 with 2 is "0.00".
// Example 1234.56 with 2 -> "1234.56", in 6 bytes "1234.6", in 4 "1235", in 3 "***";
//         1e-8 with -1 -> in 10 bytes "0.00000001", in 6 "1e-08 ".
int dectoasc(const dec_value *dec, char *buffer, int length, int right);
int dectoasc_net(const dec_value *dec, char *buffer, int length, int right);
int dectoasc_int(const dec_value *dec, char *buffer, int length, int right, gentcb *block,
                 const lconv_rec *conventions);

// The same for floats: trailing zeros of a value below 1 are cut ("0.1", and "0.00" for 0), and the
// sign is the locale's whole negative sign.
int dbltoasc(const dec_value *dec, char *buffer, int length, int right);

// Exponent notation "-1.25e-03" without padding: a sign, a digit, the radix and further digits if
// any, "e", "-" if need be, two or three digits.
// position, negative  as deccvt gave them.
// Returns 0, or 1 with the buffer untouched when it cannot fit.
int dectoexp_int(const dec_value *dec, char *buffer, int length, int position, int negative,
                 gentcb *block, const lconv_rec *conventions);

// -- Digit texts ---------------------------------------------------------------------------------

enum deccvt_mode {
    deccvt_significant = 0, // ndigit significant digits
    deccvt_fraction = 1,    // ndigit digits right of the point
    deccvt_text = 2,        // the same, but at least "0": what dectoasc asks for
};

// The digits of a value, rounded half up, without sign and point.
// position  where the point stands, counted from the first digit; may be negative. 0 for zero.
// negative  1 for a negative value, else 0. Both stay as they were for NULL, which gives blanks.
// Returns a terminated text in the control block, valid until the next call; null without a block
//         or memory, for a malformed record, and in modes 1 and 2 when the last digit asked for
//         lies left of the first.
// Example 99.95 by dececvt 3 -> "100" at 3; by decfcvt 1 -> "1000" at 3.
char *deccvt(const dec_value *dec, int ndigit, int *position, int *negative, int mode);
char *dececvt(const dec_value *dec, int ndigit, int *position, int *negative);
char *decfcvt(const dec_value *dec, int ndigit, int *position, int *negative);
char *deccvt_int(const dec_value *dec, int ndigit, int *position, int *negative, int mode,
                 gentcb *block);

// The same, modes 0 and 1 alone, copied to buffer[0..size) and terminated. An fcvt whose digits
// would all lie left of the first gives an empty text.
// Returns 0, -1, err_no_block or err_result_size.
int qvt_deccvt(const dec_value *dec, int ndigit, int *position, int *negative, int mode,
               char *buffer, int size);
int qvt_dececvt(const dec_value *dec, int ndigit, int *position, int *negative, char *buffer,
                int size);
int qvt_decfcvt(const dec_value *dec, int ndigit, int *position, int *negative, char *buffer,
                int size);

// Writes two characters a digit byte and a terminator. Returns the address of the terminator.
char *dec1to2(const unsigned char *digits, int count, char *text);

// Reads "+" or "-" and decimal digits; values beyond +-1000000 are held there; no digits are 0.
// Returns the first character not read.
const char *decstoi(const char *text, int32_t *out);

// Reads hexadecimal digits, wrapping at 32 bits, then blanks, then a line end or the end of the
// text; no digits are 0. Returns 0 or -1.
int decxtoi(const char *text, uint32_t *out);

#ifdef __cplusplus
}
#endif
