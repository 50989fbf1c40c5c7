// Decimals: exact numbers of up to 32 digits, their arithmetic and their stored form.
//
// A decimal is a fraction in base 100 and a power of 100:
//
//     value = 0.d0 d1 d2 ...  x 100^exponent        d0 d1 ... are bytes 0..99, the first not 0
//
//     number    sign  exponent  ndigits  digits      stored in 4 bytes   dec2prec
//     0            1       -64        0  -           80 00 00 00         0x0000
//     1234         1         2        2  12 34       c2 0c 22 00         0x0400
//     -0.001       0        -1        1  10          40 5a 00 00         0x0103
//     -12.5        0         1        2  12 50       3e 57 32 00         0x0301
//     -100         0         2        1  1           3d 63 00 00         0x0300
//     1e-130       1       -64        1  1           80 01 00 00         0x0182
//     9.9e125      1        63        1  99          ff 63 00 00         0x7e00
//     NULL        -1         0        0  -           00 00 00 00         0x0000
//
// 16 digit bytes hold 32 decimal digits, or 31 when the first byte is below 10. The only zero is
// the form above: arithmetic never makes a negative one. Trailing zero bytes are dropped, except
// that a result which was rounded to 16 bytes keeps those that the rounding left.
//
// Conventions of this header
//   - Every operation of type int returns 0 or a negative error number, unless it says otherwise:
//     err_overflow (-1200), err_underflow (-1201), err_zero_divide (-1202), err_float_range
//     (-1223), and -1 for a record that decverify() refuses; the result record is then NULL.
//   - A NULL operand gives a NULL result and 0.
//   - A result may be the same record as an operand.
//   - After an overflow or underflow the result holds the digits, with the exponent cut to 63 or
//     -64; after a division by zero it is 0.
//   - Nothing allocates, and no digit byte past `ndigits` is read.
//   - Rounding is half up on the magnitude and looks at one digit byte only.
//
//     dec_value price, count, total;
//     deccvasc("19.90", 5, &price);
//     deccvint(3, &count);
//     decmul(&price, &count, &total);        // 59.7: exponent 1, digits 59 70
//     unsigned char column[5];               // DECIMAL(8,2): (8 + 0 + 3) >> 1 bytes
//     stdecimal(&total, column, 5);          // c1 3b 46 00 00

#pragma once

#include <assert.h>
#include <stdint.h>

enum {
    dec_digit_bytes = 16,
    dec_exponent_min = -64,
    dec_exponent_max = 63,
    dec_positive = 1,
    dec_negative = 0,
    dec_null_sign = -1,
    dec_stored_limit = 18, // more bytes of a stored form than these are not looked at
};

typedef struct dec_value {
    int16_t exponent;                      // power of 100, -64..63
    int16_t sign;                          // 1 positive, 0 negative, -1 NULL
    int16_t ndigits;                       // digit bytes in use, 0..16
    unsigned char digits[dec_digit_bytes]; // base 100, the most significant first
} dec_value;

static_assert(sizeof(dec_value) == 22, "stated size");

#ifdef __cplusplus
extern "C" {
#endif

// -- Records -------------------------------------------------------------------------------------

// Returns 0 for a well-formed record, NULL included, and -1 for a null pointer, a sign other than
// 1, 0 and -1, an exponent outside -64..63, a count outside 0..16, no digits with an exponent other
// than -64, or a digit byte in use above 99.
int decverify(const dec_value *dec);

// 1 for zero, else 0; NULL is not zero.
int dec_is_zero(const dec_value *dec);

void deccopy(const dec_value *source, dec_value *target);

// Makes a record of digit bytes 0..99 in the normal form: zero bytes at both ends are dropped, and
// of more than 16 bytes the first 16 are kept, rounded up when the next one is 50 or more. The
// array is left as it is. A sign of -1 gives NULL.
// Returns 0, err_overflow or err_underflow.
// Example 1, 1, {99 x 16, 50}, 17 -> exponent 2, 16 digits: 1 and fifteen zero bytes.
int decload(dec_value *dec, int sign, int exponent, const unsigned char *digits, int count);

// -- Arithmetic ----------------------------------------------------------------------------------

// Sums line the smaller operand up under the larger and keep 17 digit bytes of it; what lies
// further right is dropped before the rounding. So a sum of equal signs is the exact sum rounded
// once, while a difference may be one unit of its last byte too great: 1 - 1e-34 is 1.
int decadd(const dec_value *a, const dec_value *b, dec_value *result);
int decsub(const dec_value *a, const dec_value *b, dec_value *result);

// The exact product, rounded once.
int decmul(const dec_value *a, const dec_value *b, dec_value *result);

// The exact quotient, rounded once. NULL divided by zero is NULL.
// Returns also err_zero_divide.
int decdiv(const dec_value *a, const dec_value *b, dec_value *result);

// The worker of sums: |larger| + |smaller|, or the difference when `subtract` is not 0, with the
// sign of `larger`. The caller knows that the magnitudes are in this order.
// Returns also -1, with the result untouched, when the exponents are not.
int decadsb(const dec_value *larger, const dec_value *smaller, dec_value *result, int subtract);

// Returns -1, 0 or 1 for a below, equal to or above b; -2 when either is NULL or malformed.
// Digits are compared as they are held: a value that keeps trailing zero bytes of a rounding is
// above the same number without them.
int deccmp(const dec_value *a, const dec_value *b);

// -- Rounding ------------------------------------------------------------------------------------

// Rounds half away from zero, or cuts, to `right` decimal digits right of the point, in place; a
// negative `right` counts digits left of it. NULL and malformed records stay.
// Example decround -0.5 to 0 -> -1; dectrunc 1234 to -2 -> 1200.
void decround(dec_value *dec, int right);
void dectrunc(dec_value *dec, int right);

// -- Stored form ---------------------------------------------------------------------------------

// A decimal of precision p and scale s (255: floating) takes (p + (s & 1) + 3) >> 1 bytes. Byte 0
// is exponent + 64 with the top bit set, then come the digit bytes, zero filled; of a negative
// number all bits of byte 0 are inverted and the digits are complemented to 100. So the bytes of
// two values of one length compare, as unsigned bytes, like the numbers, and NULL, all zero, lies
// below them.
//
// Digits that do not fit are rounded half up by the first one left out. A carry out of the first
// digit byte raises byte 0 without a check of its range: 99.99e124 in 2 bytes is 80 01, which reads
// as 1e-130. A length below 1 does nothing; in 1 byte nothing is rounded. A malformed record is
// stored as NULL.
void stdecimal(const dec_value *dec, unsigned char *bytes, int length);

// Reads a stored form; of more than 18 bytes the first 18.
// Returns what decload does, or -1 with NULL when a digit byte is above 99. Two leading zero bytes
// are enough for NULL: a negative number with exponent 63, a first byte of 99 and more digits
// (-9.9999e125: 00 00 00 0a) reads back as NULL.
int lddecimal(const unsigned char *bytes, int length, dec_value *dec);

// The 100's complement of `count` digit bytes in place, its own inverse: trailing zero bytes stay,
// the last other byte becomes 100 minus itself, those before it 99 minus themselves.
void deccomplement(unsigned char *digits, int count);

// The precision word that the digits ask for: precision in the high byte, scale in the low byte;
// 0 for zero, NULL and malformed records. 100 is 0x0300. Of a small fraction the precision may be
// below the scale (0.001: 0x0103); decprec() raises it to the scale (0x0303).
int dec2prec(const dec_value *dec);
int decprec(const dec_value *dec);

// -- Integers ------------------------------------------------------------------------------------

// Integers are 32 bits wide, and their NULLs are -2147483648 for a long and -32768 for an int; both
// go over into NULL both ways. The fraction is dropped, except that the range of a ten-digit number
// is tested with it: 2147483647.5 is err_overflow. After an error *out is as it was.
int dectolong(const dec_value *dec, int32_t *out); // -2147483647..2147483647
int dectoint(const dec_value *dec, int32_t *out);  // -32767..32767
int deccvlong(int32_t value, dec_value *dec);
int deccvint(int32_t value, dec_value *dec); // 40000 passes

// -- Floating point ------------------------------------------------------------------------------

// The double or float nearest to the decimal; NULL gives the one with all bits set. A value beyond
// the floats is an infinity of its sign.
int dectodbl(const dec_value *dec, double *out);
void dectoflt(const dec_value *dec, float *out);

// The decimal that has the first 17 significant digits of a double, or 9 of a float, which comes
// widened; 16 and 8 when get_useprec16() says so. deccvfd takes the count, cut to 1..17.
// Returns 0, or err_float_range, with 0 in the record, for what is not finite or is outside
// 1e-130..9.9..e125. The double with all bits set (the widened float, for 9 digits and less) is
// NULL.
// Example 0.1 -> 0.10000000000000001 with 17 digits, 0.1 with 16.
int deccvdbl(dec_value *dec, double value);
int deccvflt(dec_value *dec, double value);
int deccvfd(dec_value *dec, int digits, double value);

// Not 0 when QVT_USE_PREC_16 is "1", which is asked for once in the process; 0 without a control
// block.
int get_useprec16(void);

#ifdef __cplusplus
}
#endif
