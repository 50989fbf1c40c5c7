// Doubles and floats to decimals and back, by way of text: what is read and printed is nearest.

#include <kestrion/decimal.h>
#include <kestrion/decimal_text.h>

#include <kestrion/env_registry.h>
#include <kestrion/gentcb.h>

#include "gls/base/c_locale_number.h"
#include "values/decimal/c_locale_scope.h"
#include "values/decimal/conventions_in_use.h"
#include "values/decimal/operand.h"

#include <algorithm>
#include <float.h>
#include <limits>
#include <math.h>
#include <stdio.h>

using namespace kestrion;

namespace {

constexpr int double_digits = 17, float_digits = 9;
constexpr int most_digits = 17;
constexpr uint64_t null_double = ~UINT64_C(0);
constexpr uint64_t null_float_widened = UINT64_C(0xFFFFFFFFE0000000);
constexpr int longest_printed = 33;     // "%.16e" takes 24
constexpr int32_t err_locale_value = 9; // a value that cannot be read

// The digits as an integer and the exponent that they then have.
double nearest_double(const dec_value *dec) {
    char text[2 * dec_digit_bytes + 16];
    char *at = text;
    if (dec->sign == dec_negative)
        *at++ = '-';
    *at++ = '0'; // of zero
    at = dec1to2(dec->digits, dec->ndigits, at);
    snprintf(at, sizeof text - static_cast<size_t>(at - text), "e%d",
             2 * (dec->exponent - dec->ndigits));
    const char *end;
    return c_locale_number(text, &end);
}

} // namespace

int dectodbl(const dec_value *dec, double *out) {
    const int answer = decverify(dec);
    if (answer != 0 || dec->sign == dec_null_sign)
        *out = std::bit_cast<double>(null_double);
    else
        *out = nearest_double(dec);
    return answer;
}

void dectoflt(const dec_value *dec, float *out) {
    double value;
    if (dectodbl(dec, &value) != 0 || dec->sign == dec_null_sign)
        *out = std::bit_cast<float>(~UINT32_C(0));
    else if (fabs(value) > FLT_MAX)
        *out = copysignf(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
    else
        *out = static_cast<float>(value);
}

int deccvdbl(dec_value *dec, double value) {
    return deccvfd(dec, double_digits - (get_useprec16() != 0), value);
}

int deccvflt(dec_value *dec, double value) {
    return deccvfd(dec, float_digits - (get_useprec16() != 0), value);
}

int deccvfd(dec_value *dec, int digits, double value) {
    digits = std::clamp(digits, 1, most_digits);
    if (std::bit_cast<uint64_t>(value) ==
        (digits <= float_digits ? null_float_widened : null_double)) {
        set_null(dec);
        return 0;
    }
    set_zero(dec);
    if (!isfinite(value))
        return err_float_range;
    if (value == 0.0)
        return 0;
    char text[longest_printed];
    {
        const c_locale_scope plain;
        snprintf(text, sizeof text, "%.*e", digits - 1, value);
    }
    if (deccvasc_int(text, longest_printed, dec, neutral_conventions()) == 0)
        return 0;
    set_glserror(err_locale_value);
    return err_float_range;
}

int get_useprec16(void) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return 0;
    if ((block->gen_flags & GEN_PREC16_KNOWN) == 0) {
        const char *given = ggetenv("QVT_USE_PREC_16");
        const bool in_force = given != nullptr && strcmp(given, "1") == 0;
        block->gen_flags |= GEN_PREC16_KNOWN | (in_force ? GEN_PREC16 : 0);
    }
    return (block->gen_flags & GEN_PREC16) != 0;
}
