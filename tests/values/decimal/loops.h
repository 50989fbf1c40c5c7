// The arithmetic of decimals digit by digit: plain loops over base-100 bytes, without any of the
// library's code, as what its packed words must answer like. Records are well formed here.

#pragma once

#include <kestrion/decimal.h>

#include <string.h>

#include <algorithm>

namespace loops {

inline dec_value zero() { return {.exponent = -64, .sign = 1}; }
inline dec_value null() { return {.sign = -1}; }
inline bool is_null(const dec_value &a) { return a.sign == -1; }

// `digits` has a byte ahead of it for a carry.
inline int load(dec_value &out, int sign, int exponent, unsigned char *digits, int count) {
    while (count > 0 && digits[count - 1] == 0)
        --count;
    out = zero();
    if (count == 0)
        return 0;
    for (; digits[0] == 0; ++digits, --count)
        --exponent;
    digits[-1] = 0;
    if (count > 16) {
        count = 16;
        if (digits[16] >= 50) {
            int i = 15;
            for (++digits[i]; digits[i] > 99; ++digits[i]) {
                digits[i] = 0;
                --i;
            }
            if (i < 0) {
                --digits;
                ++exponent;
            }
        }
    }
    out.sign = static_cast<int16_t>(sign);
    out.ndigits = static_cast<int16_t>(count);
    out.exponent = static_cast<int16_t>(std::clamp(exponent, -64, 63));
    memcpy(out.digits, digits, static_cast<size_t>(count));
    return exponent < -64 ? -1201 : exponent > 63 ? -1200 : 0;
}

inline int compare(const dec_value &a, const dec_value &b) {
    if (is_null(a) || is_null(b))
        return -2;
    if (a.sign != b.sign)
        return a.sign != 0 ? 1 : -1;
    int order = 0;
    if (a.ndigits == 0)
        order = b.ndigits == 0 ? 0 : -1;
    else if (b.ndigits == 0)
        order = 1;
    else if (a.exponent != b.exponent)
        order = a.exponent < b.exponent ? -1 : 1;
    for (int i = 0; order == 0 && i < std::min(a.ndigits, b.ndigits); ++i)
        order = (a.digits[i] > b.digits[i]) - (a.digits[i] < b.digits[i]);
    if (order == 0)
        order = (a.ndigits > b.ndigits) - (a.ndigits < b.ndigits);
    return a.sign != 0 ? order : -order;
}

inline int add_magnitudes(const dec_value &larger, const dec_value &smaller, dec_value &out,
                          bool subtract) {
    const int shift = larger.exponent - smaller.exponent;
    const int width = std::min(std::max(smaller.ndigits + shift, int{larger.ndigits}), 17) + 1;
    unsigned char bytes[20] = {}, *sum = bytes + 1;
    memcpy(sum + 1, larger.digits, static_cast<size_t>(larger.ndigits));
    const int taken = std::min(width - shift - 1, int{smaller.ndigits});
    int carry = 0, at = shift + taken;
    for (int i = taken - 1; i >= 0; --i, --at) {
        int digit = subtract ? sum[at] - smaller.digits[i] : sum[at] + smaller.digits[i];
        digit += carry;
        for (carry = 0; digit > 99; ++carry)
            digit -= 100;
        for (; digit < 0; --carry)
            digit += 100;
        sum[at] = static_cast<unsigned char>(digit);
    }
    for (; carry > 0 && at >= 0; --at) {
        carry = sum[at] == 99;
        sum[at] = static_cast<unsigned char>(carry ? 0 : sum[at] + 1);
    }
    for (; carry < 0 && at >= 0; --at) {
        carry = sum[at] == 0 ? -1 : 0;
        sum[at] = static_cast<unsigned char>(carry ? 99 : sum[at] - 1);
    }
    return load(out, larger.sign, larger.exponent + 1, sum, width);
}

inline int add(const dec_value &a, const dec_value &b, dec_value &out) {
    if (is_null(a) || is_null(b)) {
        out = null();
        return 0;
    }
    dec_value x = a, y = b;
    x.sign = y.sign = 1;
    const bool subtract = a.sign != b.sign;
    return compare(x, y) >= 0 ? add_magnitudes(a, b, out, subtract)
                              : add_magnitudes(b, a, out, subtract);
}

inline int subtract(const dec_value &a, const dec_value &b, dec_value &out) {
    dec_value other = b;
    if (!is_null(b))
        other.sign = static_cast<int16_t>(!b.sign);
    return add(a, other, out);
}

inline int multiply(const dec_value &a, const dec_value &b, dec_value &out) {
    if (is_null(a) || is_null(b)) {
        out = null();
        return 0;
    }
    unsigned char bytes[33] = {}, *product = bytes + 1;
    for (int i = a.ndigits - 1; i >= 0; --i)
        for (int j = b.ndigits - 1; j >= 0; --j) {
            int rest = a.digits[i] * b.digits[j];
            for (int at = i + j + 1; rest != 0; --at) {
                rest += product[at];
                product[at] = static_cast<unsigned char>(rest % 100);
                rest /= 100;
            }
        }
    return load(out, a.sign == b.sign, a.exponent + b.exponent, product, a.ndigits + b.ndigits);
}

inline int divide(const dec_value &a, const dec_value &b, dec_value &out) {
    if (is_null(a) || is_null(b)) {
        out = null();
        return 0;
    }
    if (b.ndigits == 0) {
        out = zero();
        return -1202;
    }
    int r[36] = {}, d[17] = {};
    for (int i = 0; i < a.ndigits; ++i)
        r[i + 1] = a.digits[i];
    for (int i = 0; i < b.ndigits; ++i)
        d[i + 1] = b.digits[i];
    const int estimate = b.digits[0] * 100 + (b.ndigits > 1 ? b.digits[1] : 0);
    unsigned char bytes[19] = {}, *quotient = bytes + 1;
    for (int i = 0; i < 18; ++i) {
        int trial = (r[i] * 10000 + r[i + 1] * 100 + r[i + 2]) / estimate;
        int carry = 0;
        for (int j = b.ndigits; trial != 0 && j >= 0; --j) {
            const int digit = r[i + j] + 10000 - d[j] * trial + carry;
            r[i + j] = digit % 100;
            carry = digit / 100 - 100;
        }
        if (carry < 0) {
            --trial;
            carry = 0;
            for (int j = b.ndigits; j >= 0; --j) {
                const int digit = r[i + j] + d[j] + carry;
                r[i + j] = digit % 100;
                carry = digit / 100;
            }
        }
        quotient[i] = static_cast<unsigned char>(trial);
    }
    return load(out, a.sign == b.sign, a.exponent - b.exponent + 1, quotient, 18);
}

inline void truncate(dec_value &a, int n) {
    if (is_null(a))
        return;
    int keep = ((n + 1) >> 1) + a.exponent;
    if (keep > a.ndigits)
        return;
    if (keep > 0 && n % 2 != 0) {
        unsigned char &last = a.digits[keep - 1];
        last = static_cast<unsigned char>(last / 10 * 10);
    }
    while (keep > 0 && a.digits[keep - 1] == 0)
        --keep;
    if (keep <= 0)
        a = zero();
    else
        a.ndigits = static_cast<int16_t>(keep);
}

inline void round(dec_value &a, int n) {
    if (is_null(a) || (a.ndigits - a.exponent) * 2 <= n)
        return;
    dec_value half = {.exponent = static_cast<int16_t>(-(n >> 1)), .sign = a.sign, .ndigits = 1};
    half.digits[0] = n % 2 != 0 ? 5 : 50;
    dec_value sum;
    add(a, half, sum);
    a = sum;
    truncate(a, n);
}

inline void complement(unsigned char *digits, int count) {
    int i = count - 1;
    while (i >= 0 && digits[i] == 0)
        --i;
    for (int from = 100; i >= 0; --i, from = 99)
        digits[i] = static_cast<unsigned char>(from - digits[i]);
}

inline void store(const dec_value &a, unsigned char *bytes, int length) {
    memset(bytes, 0, static_cast<size_t>(length));
    if (is_null(a))
        return;
    bytes[0] = static_cast<unsigned char>((a.exponent + 64) & 0x7F);
    const int room = length - 1;
    memcpy(bytes + 1, a.digits, static_cast<size_t>(std::min(room, int{a.ndigits})));
    if (room > 0 && a.ndigits > room && a.digits[room] >= 50) {
        int i = room;
        while (i > 0 && bytes[i] == 99)
            bytes[i--] = 0;
        ++bytes[i];
        if (i == 0)
            bytes[1] = 1;
    }
    if (a.sign != 0 || a.ndigits == 0) {
        bytes[0] |= 0x80;
        return;
    }
    complement(bytes + 1, room);
    bytes[0] ^= 0x7F;
}

} // namespace loops
