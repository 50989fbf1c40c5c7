// Eight-byte integers: int8_value, a sign and a magnitude, and bigint, an int64_t.
//
// Both hold -(2^63 - 1) .. 2^63 - 1. The NULL of an int8_value has sign 0; that of a bigint is
// INT64_MIN. A NULL operand gives a NULL result and 0.
//
//     value  sign  data, low word first  stored as int8                 stored as bigint
//     -5       -1                  5, 0  ff ff 00 00 00 00 00 00 00 05  ff ff ff ff ff ff ff fb
//     2^32      1                  0, 1  00 01 00 00 00 01 00 00 00 00  00 00 00 01 00 00 00 00
//     NULL      0                  0, 0  all zero                       80 00 00 00 00 00 00 00
//
// Operations name their sources first and return 0 or an error: err_not_a_number (-1213) for a text
// that is not a number; err_integer_range (-1215) for a text out of range, err_overflow (-1200) for
// any other source or result out of range; err_zero_divide (-1202); -1 for a record whose sign is
// not 1, 0 or -1 or whose magnitude is above 2^63 - 1. After an error the result is NULL. Fractions
// are dropped, and quotients are cut towards zero. A result may be the same record as an operand.

#pragma once

#include <assert.h>
#include <stdint.h>

#include <kestrion/decimal.h>

enum {
    int8_stored_bytes = 10,
    bigint_stored_bytes = 8,
};

typedef struct int8_value {
    uint32_t data[2]; // magnitude: low word, high word
    int16_t sign;     // 1 positive or zero, -1 negative, 0 NULL
} int8_value;

static_assert(sizeof(int8_value) == 12, "stated size");

#ifdef __cplusplus
extern "C" {
#endif

// -- Texts ---------------------------------------------------------------------------------------

// Reads what deccvasc reads and drops the fraction; blanks alone are NULL.
// Example "-1.9" -> -1.
int qvt_int8cvasc(const char *text, int length, int8_value *out);
int bigintcvasc(const char *text, int length, int64_t *out);

// Writes "-" and digits, blank padded to `length` and not terminated; NULL is blanks. What does not
// fit is "*" all over and err_display_width (-1207). 20 bytes hold every value.
int qvt_int8tostr(const int8_value *value, char *buffer, int length);
int qvt_bigint_to_text(int64_t value, char *buffer, int length);

// -- Conversions ---------------------------------------------------------------------------------

int qvt_int8_from_bigint(int64_t value, int8_value *out);
int qvt_int8_to_bigint(const int8_value *value, int64_t *out);

// 32-bit integers, whose NULL is INT32_MIN. Example 2147483648 -> err_overflow.
int qvt_int8_from_long(int32_t value, int8_value *out);
int qvt_int8tolong(const int8_value *value, int32_t *out);

int qvt_int8_from_decimal(const dec_value *dec, int8_value *out);
int qvt_int8_to_decimal(const int8_value *value, dec_value *dec);
int qvt_bigint_from_decimal(const dec_value *dec, int64_t *out);
int qvt_bigint_to_decimal(int64_t value, dec_value *dec);

// The double with all bits set is NULL; not a number and infinities are err_overflow.
int qvt_int8_from_double(double value, int8_value *out);
int qvt_int8_to_double(const int8_value *value, double *out);
int qvt_bigint_from_double(double value, int64_t *out);
int qvt_bigint_to_double(int64_t value, double *out);

// -- Arithmetic ----------------------------------------------------------------------------------

int qvt_int8_add(const int8_value *a, const int8_value *b, int8_value *result);
int qvt_int8_sub(const int8_value *a, const int8_value *b, int8_value *result);
int qvt_int8_mul(const int8_value *a, const int8_value *b, int8_value *result);
int qvt_int8_div(const int8_value *a, const int8_value *b, int8_value *result);
int qvt_bigint_add(int64_t a, int64_t b, int64_t *result);
int qvt_bigint_sub(int64_t a, int64_t b, int64_t *result);
int qvt_bigint_mul(int64_t a, int64_t b, int64_t *result);
int qvt_bigint_div(int64_t a, int64_t b, int64_t *result);

// Returns -1, 0 or 1; -2 when either is NULL or malformed.
int qvt_int8_cmp(const int8_value *a, const int8_value *b);
int qvt_bigint_cmp(int64_t a, int64_t b);

// -- Stored forms --------------------------------------------------------------------------------

// The sign, then the magnitude; the most significant byte first in both. A bigint is its eight
// bytes in that order. A malformed record is stored as NULL, and a malformed stored form is -1 and
// NULL.
void stint8(const int8_value *value, void *bytes);
int ldint8(const void *bytes, int8_value *out);
void stbigint(int64_t value, void *bytes);
int64_t ldbigint(const void *bytes);

#ifdef __cplusplus
}
#endif
