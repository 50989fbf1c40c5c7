#include <kestrion/int8.h>

#include <kestrion/decimal_text.h>
#include <kestrion/error_numbers.h>

#include "values/decimal/operand.h"

#include <stddef.h>

using namespace kestrion;

namespace {

constexpr int64_t bigint_null = INT64_MIN;
constexpr uint64_t magnitude_limit = INT64_MAX;
constexpr int32_t long_null = INT32_MIN;
constexpr double two_to_63 = 9223372036854775808.0;
constexpr int bigint_digit_bytes = 10; // of the 19 digits of a magnitude

uint64_t magnitude_of(const int8_value &value) {
    return uint64_t{value.data[1]} << 32 | value.data[0];
}
uint64_t magnitude_of(int64_t value) {
    return value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
}

// Stores a number that may be too great, or NULL beside an error.
int store(__int128 number, int64_t *out, int error = err_overflow) {
    const bool fits = number <= INT64_MAX && number > bigint_null;
    *out = fits ? static_cast<int64_t>(number) : bigint_null;
    return fits ? 0 : error;
}

int store_null(int result, int64_t *out) {
    *out = bigint_null;
    return result;
}

int store_null(int result, int8_value *out) {
    *out = {};
    return result;
}

// What an operation on two bigints gives, NULL when one is.
template <typename Work> int on_pair(int64_t a, int64_t b, int64_t *result, Work work) {
    if (a == bigint_null || b == bigint_null)
        return store_null(0, result);
    return work(__int128{a}, __int128{b});
}

// The same operation on the other form.
using bigint_operation = int(int64_t a, int64_t b, int64_t *result);

int by_bigint(bigint_operation *operation, const int8_value *a, const int8_value *b,
              int8_value *result) {
    int64_t x, y, z;
    const int of_x = qvt_int8_to_bigint(a, &x), of_y = qvt_int8_to_bigint(b, &y);
    if (of_x != 0 || of_y != 0)
        return store_null(-1, result);
    const int answer = operation(x, y, &z);
    qvt_int8_from_bigint(z, result);
    return answer;
}

// A result of a bigint operation goes over into the other form.
int as_int8(int answer, int64_t value, int8_value *out) {
    qvt_int8_from_bigint(value, out);
    return answer;
}

} // namespace

// -- Texts ---------------------------------------------------------------------------------------

int bigintcvasc(const char *text, int length, int64_t *out) {
    dec_value dec;
    const int answer = deccvasc(text, length, &dec);
    if (answer == err_overflow || answer == err_underflow || answer == err_not_a_number)
        return store_null(err_not_a_number, out);
    if (answer != 0)
        return store_null(answer, out);
    return qvt_bigint_from_decimal(&dec, out) == 0 ? 0 : err_integer_range;
}

int qvt_int8cvasc(const char *text, int length, int8_value *out) {
    int64_t value;
    const int answer = bigintcvasc(text, length, &value);
    return as_int8(answer, value, out);
}

int qvt_bigint_to_text(int64_t value, char *buffer, int length) {
    char text[20], *at = text + sizeof text;
    if (value != bigint_null) {
        uint64_t magnitude = magnitude_of(value);
        do
            *--at = static_cast<char>('0' + magnitude % 10);
        while ((magnitude /= 10) != 0);
        if (value < 0)
            *--at = '-';
    }
    const ptrdiff_t written = text + sizeof text - at;
    const bool fits = written <= length;
    if (length > 0)
        memset(buffer, fits ? ' ' : '*', static_cast<size_t>(length));
    if (fits && written > 0)
        memcpy(buffer, at, static_cast<size_t>(written));
    return fits ? 0 : err_display_width;
}

int qvt_int8tostr(const int8_value *value, char *buffer, int length) {
    int64_t number;
    if (qvt_int8_to_bigint(value, &number) != 0)
        return -1;
    return qvt_bigint_to_text(number, buffer, length);
}

// -- Conversions ---------------------------------------------------------------------------------

int qvt_int8_from_bigint(int64_t value, int8_value *out) {
    if (value == bigint_null)
        return store_null(0, out);
    const uint64_t magnitude = magnitude_of(value);
    *out = {.data = {static_cast<uint32_t>(magnitude), static_cast<uint32_t>(magnitude >> 32)},
            .sign = static_cast<int16_t>(value < 0 ? -1 : 1)};
    return 0;
}

int qvt_int8_to_bigint(const int8_value *value, int64_t *out) {
    if (value == nullptr || value->sign < -1 || value->sign > 1)
        return store_null(-1, out);
    if (value->sign == 0)
        return store_null(0, out);
    const uint64_t magnitude = magnitude_of(*value);
    if (magnitude > magnitude_limit)
        return store_null(-1, out);
    *out = value->sign < 0 ? -static_cast<int64_t>(magnitude) : static_cast<int64_t>(magnitude);
    return 0;
}

int qvt_int8_from_long(int32_t value, int8_value *out) {
    return qvt_int8_from_bigint(value == long_null ? bigint_null : value, out);
}

int qvt_int8tolong(const int8_value *value, int32_t *out) {
    int64_t number;
    const int answer = qvt_int8_to_bigint(value, &number);
    const bool fits = number <= INT32_MAX && number > INT32_MIN;
    *out = fits ? static_cast<int32_t>(number) : long_null;
    return answer != 0 || number == bigint_null || fits ? answer : err_overflow;
}

int qvt_bigint_from_decimal(const dec_value *dec, int64_t *out) {
    if (decverify(dec) != 0)
        return store_null(-1, out);
    if (dec->sign == dec_null_sign)
        return store_null(0, out);
    if (dec->exponent > bigint_digit_bytes)
        return store_null(err_overflow, out);
    __int128 number = 0;
    for (int i = 0; i < dec->exponent; ++i)
        number = number * 100 + (i < dec->ndigits ? dec->digits[i] : 0);
    return store(dec->sign == dec_negative ? -number : number, out);
}

int qvt_bigint_to_decimal(int64_t value, dec_value *dec) {
    if (value == bigint_null) {
        set_null(dec);
        return 0;
    }
    unsigned char digits[bigint_digit_bytes];
    uint64_t magnitude = magnitude_of(value);
    for (int i = bigint_digit_bytes - 1; i >= 0; --i, magnitude /= 100)
        digits[i] = static_cast<unsigned char>(magnitude % 100);
    return decload(dec, value < 0 ? dec_negative : dec_positive, bigint_digit_bytes, digits,
                   bigint_digit_bytes);
}

int qvt_int8_from_decimal(const dec_value *dec, int8_value *out) {
    int64_t value;
    const int answer = qvt_bigint_from_decimal(dec, &value);
    return as_int8(answer, value, out);
}

int qvt_int8_to_decimal(const int8_value *value, dec_value *dec) {
    int64_t number;
    const int answer = qvt_int8_to_bigint(value, &number);
    qvt_bigint_to_decimal(number, dec);
    return answer;
}

int qvt_bigint_from_double(double value, int64_t *out) {
    if (std::bit_cast<uint64_t>(value) == ~UINT64_C(0))
        return store_null(0, out);
    if (!(value > -two_to_63 && value < two_to_63)) // not a number, too
        return store_null(err_overflow, out);
    *out = static_cast<int64_t>(value);
    return 0;
}

int qvt_bigint_to_double(int64_t value, double *out) {
    *out = value == bigint_null ? std::bit_cast<double>(~UINT64_C(0)) : static_cast<double>(value);
    return 0;
}

int qvt_int8_from_double(double value, int8_value *out) {
    int64_t number;
    const int answer = qvt_bigint_from_double(value, &number);
    return as_int8(answer, number, out);
}

int qvt_int8_to_double(const int8_value *value, double *out) {
    int64_t number;
    const int answer = qvt_int8_to_bigint(value, &number);
    qvt_bigint_to_double(number, out);
    return answer;
}

// -- Arithmetic ----------------------------------------------------------------------------------

int qvt_bigint_add(int64_t a, int64_t b, int64_t *result) {
    return on_pair(a, b, result, [&](__int128 x, __int128 y) { return store(x + y, result); });
}

int qvt_bigint_sub(int64_t a, int64_t b, int64_t *result) {
    return on_pair(a, b, result, [&](__int128 x, __int128 y) { return store(x - y, result); });
}

int qvt_bigint_mul(int64_t a, int64_t b, int64_t *result) {
    return on_pair(a, b, result, [&](__int128 x, __int128 y) { return store(x * y, result); });
}

int qvt_bigint_div(int64_t a, int64_t b, int64_t *result) {
    return on_pair(a, b, result, [&](__int128 x, __int128 y) {
        return y == 0 ? store_null(err_zero_divide, result) : store(x / y, result);
    });
}

int qvt_bigint_cmp(int64_t a, int64_t b) {
    return a == bigint_null || b == bigint_null ? -2 : (a > b) - (a < b);
}

int qvt_int8_add(const int8_value *a, const int8_value *b, int8_value *result) {
    return by_bigint(qvt_bigint_add, a, b, result);
}

int qvt_int8_sub(const int8_value *a, const int8_value *b, int8_value *result) {
    return by_bigint(qvt_bigint_sub, a, b, result);
}

int qvt_int8_mul(const int8_value *a, const int8_value *b, int8_value *result) {
    return by_bigint(qvt_bigint_mul, a, b, result);
}

int qvt_int8_div(const int8_value *a, const int8_value *b, int8_value *result) {
    return by_bigint(qvt_bigint_div, a, b, result);
}

int qvt_int8_cmp(const int8_value *a, const int8_value *b) {
    int64_t x, y;
    qvt_int8_to_bigint(a, &x);
    qvt_int8_to_bigint(b, &y);
    return qvt_bigint_cmp(x, y);
}

// -- Stored forms --------------------------------------------------------------------------------

void stbigint(int64_t value, void *bytes) {
    store_big_endian(static_cast<uint64_t>(value), static_cast<unsigned char *>(bytes));
}

int64_t ldbigint(const void *bytes) {
    return static_cast<int64_t>(
        load_big_endian<uint64_t>(static_cast<const unsigned char *>(bytes)));
}

void stint8(const int8_value *value, void *bytes) {
    auto *at = static_cast<unsigned char *>(bytes);
    int64_t number;
    qvt_int8_to_bigint(value, &number);
    const bool null = number == bigint_null;
    store_big_endian(static_cast<uint16_t>(null ? 0 : number < 0 ? -1 : 1), at);
    store_big_endian(null ? 0 : magnitude_of(number), at + 2);
}

int ldint8(const void *bytes, int8_value *out) {
    const auto *at = static_cast<const unsigned char *>(bytes);
    const auto magnitude = load_big_endian<uint64_t>(at + 2);
    const int8_value read = {
        .data = {static_cast<uint32_t>(magnitude), static_cast<uint32_t>(magnitude >> 32)},
        .sign = static_cast<int16_t>(load_big_endian<uint16_t>(at))};
    int64_t number;
    const int answer = qvt_int8_to_bigint(&read, &number);
    return as_int8(answer, number, out);
}
