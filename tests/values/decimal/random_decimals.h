// Random decimals whose edges come up often: bytes of 0 and 99, one digit and sixteen, exponents
// close together, values that cancel, zero, NULL, and zero bytes that a rounding left.

#pragma once

#include <kestrion/decimal.h>

#include <ostream>
#include <random>
#include <string>

#include "support/random_cases.h"

inline std::ostream &operator<<(std::ostream &out, const dec_value &a) {
    out << "{sign " << a.sign << ", exponent " << a.exponent << ", digits";
    for (int i = 0; i < a.ndigits && i < 16; ++i)
        out << ' ' << int{a.digits[i]};
    return out << '}';
}

inline bool same(const dec_value &a, const dec_value &b) {
    return a.exponent == b.exponent && a.sign == b.sign && a.ndigits == b.ndigits &&
           (a.ndigits == 0 || memcmp(a.digits, b.digits, static_cast<size_t>(a.ndigits)) == 0);
}

class decimal_source {
public:
    explicit decimal_source(unsigned seed) : random_(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }

    dec_value any() {
        const unsigned kind = below(64);
        if (kind == 0)
            return {.sign = -1};
        if (kind == 1)
            return {.exponent = -64, .sign = 1};
        return number(static_cast<int>(below(kind < 8 ? 128 : 6)) - (kind < 8 ? 64 : 3));
    }

    // A value that shares digits and the exponent with `a`, or lies close by.
    dec_value near(const dec_value &a) {
        if (a.ndigits < 1 || below(2) == 0)
            return any();
        dec_value b = a;
        b.sign = static_cast<int16_t>(below(2));
        for (unsigned changes = below(3); changes > 0; --changes)
            b.digits[below(16)] = digit(below(4));
        if (b.digits[0] == 0)
            b.digits[0] = 1;
        b.ndigits = static_cast<int16_t>(1 + below(16));
        trim(b);
        if (below(4) == 0 && b.exponent < 60)
            b.exponent = static_cast<int16_t>(b.exponent + below(3));
        return b;
    }

private:
    unsigned char digit(unsigned shape) {
        return static_cast<unsigned char>(shape == 0 ? 0 : shape == 1 ? 99 : below(100));
    }

    dec_value number(int exponent) {
        dec_value a = {.exponent = static_cast<int16_t>(exponent),
                       .sign = static_cast<int16_t>(below(2)),
                       .ndigits =
                           static_cast<int16_t>(below(4) == 0 ? 1 + below(16) : 13 + below(4))};
        const unsigned shape = below(3); // mostly 0 and 99, some, or none
        for (unsigned char &d : a.digits)
            d = digit(shape == 0 ? below(3) : shape == 1 ? below(8) : 2);
        if (a.digits[0] == 0)
            a.digits[0] = static_cast<unsigned char>(1 + below(99));
        trim(a);
        return a;
    }

    // Sixteen bytes may end in zero bytes, fewer never do.
    void trim(dec_value &a) {
        if (a.ndigits == 16 && below(8) == 0)
            return;
        while (a.digits[a.ndigits - 1] == 0)
            --a.ndigits;
    }

    std::mt19937_64 random_;
};
