// 32-bit integers to decimals and back.

#include <kestrion/decimal.h>

#include "values/decimal/operand.h"

using namespace kestrion;

namespace {

constexpr int32_t long_null = INT32_MIN;
constexpr int32_t long_max = INT32_MAX; // also the magnitude of the least long
constexpr int32_t int_null = -32768;
constexpr int32_t int_max = 32767;
constexpr int long_bytes = 5; // digit bytes of ten decimal digits

} // namespace

int dectolong(const dec_value *dec, int32_t *out) {
    if (decverify(dec) != 0)
        return -1;
    if (dec->sign == dec_null_sign) {
        *out = long_null;
        return 0;
    }
    if (dec->exponent > long_bytes)
        return err_overflow;
    int64_t magnitude = 0;
    for (int i = 0; i < dec->exponent; ++i)
        magnitude = magnitude * 100 + (i < dec->ndigits ? dec->digits[i] : 0);
    // A number of ten digits is held against the limit with its fraction, zero bytes included.
    if (magnitude > long_max || (magnitude == long_max && dec->ndigits > long_bytes))
        return err_overflow;
    *out = static_cast<int32_t>(dec->sign != dec_negative ? magnitude : -magnitude);
    return 0;
}

int dectoint(const dec_value *dec, int32_t *out) {
    int32_t value;
    const int result = dectolong(dec, &value);
    if (result != 0)
        return result;
    if (value == long_null)
        value = int_null;
    else if (value > int_max || value < -int_max)
        return err_overflow;
    *out = value;
    return 0;
}

int deccvlong(int32_t value, dec_value *dec) {
    if (value == long_null) {
        set_null(dec);
        return 0;
    }
    unsigned char digits[long_bytes];
    uint32_t magnitude = static_cast<uint32_t>(value < 0 ? -value : value);
    for (int i = long_bytes - 1; i >= 0; --i, magnitude /= 100)
        digits[i] = static_cast<unsigned char>(magnitude % 100);
    return decload(dec, value >= 0, long_bytes, digits, long_bytes);
}

int deccvint(int32_t value, dec_value *dec) {
    return deccvlong(value == int_null ? long_null : value, dec);
}
