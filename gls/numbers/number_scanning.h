// Integers and floats in text, wide or multibyte: what the single operations, the number scanner
// and the money scanner share.

#pragma once

#include "gls/numbers/digits.h"
#include "gls/numbers/number_conventions.h"
#include "gls/numbers/text_source.h"
#include <kestrion/ctype_masks.h>

#include <stdint.h>

namespace kestrion {

// What may stand in a number besides digits.
struct number_marks {
    const gl_wchar *point;
    const gl_wchar *plus;
    const gl_wchar *minus;
    const gl_wchar *separators[2]; // the first one found counts; empty ones are never found
    bool exponent;
};

inline constexpr gl_wchar no_separator[] = {0};

// A separator that is also the point could never be the point: such a one is left out.
const gl_wchar *usable_separator(const gl_wchar *separator, const gl_wchar *point);

inline number_marks numeric_marks(const locale_rec *lc, bool group) {
    const numeric_rec &own = numeric_of(lc);
    return {.point = own.wide_decimal_point,
            .plus = own.wide_positive_sign,
            .minus = own.wide_negative_sign,
            .separators = {group ? usable_separator(own.wide_thousands_sep, own.wide_decimal_point)
                                 : no_separator,
                           no_separator},
            .exponent = true};
}
number_marks monetary_marks(const locale_rec *lc, bool group);

// Value of a digit or letter; 36 and more for anything else.
inline uint32_t digit_value(gl_wchar element) {
    if (is_digit(element))
        return element - '0';
    const gl_wchar letter = (element | 0x20) - 'a';
    return element < 0x80 && letter < 26 ? letter + 10 : UINT32_MAX;
}

// A digit or a sign ends white space without a look at the classes.
template <class source> [[gnu::always_inline]] inline void skip_white(source &text) {
    for (gl_wchar element; (element = text.peek()) != 0; text.next())
        if (is_digit(element) || element == '-' || element == no_character ||
            !has_class(text.locale(), element, CT_SPACE))
            return;
}

// Consumes a sign; true for a negative one.
template <class source>
[[gnu::always_inline]] inline bool takes_minus(source &text, const number_marks &marks) {
    const gl_wchar element = text.peek();
    if (is_digit(element))
        return false;
    if (takes(text, marks.minus))
        return true;
    if (takes(text, marks.plus))
        return false;
    if (element == '-' || element == '+')
        text.next();
    return element == '-';
}

// Consumes a separator that a digit of the base follows.
template <class source>
[[gnu::always_inline]] inline bool takes_separator(source &text, const number_marks &marks,
                                                   uint32_t base) {
    if (text.peek() == 0)
        return false;
    for (const gl_wchar *separator : marks.separators) {
        source ahead = text;
        if (!takes(ahead, separator))
            continue;
        if (digit_value(ahead.peek()) >= base)
            return false;
        text = ahead;
        return true;
    }
    return false;
}

// Consumes a run of decimal digits and hands out their values.
template <class source, class add>
[[gnu::always_inline]] inline void each_digit(source &text, add each) {
    if (const auto *const start = text.plain()) {
        const auto *at = start;
        for (; is_digit(*at); ++at)
            each(*at - uint32_t{'0'});
        text.skip(at - start);
    } else {
        for (gl_wchar element; is_digit(element = text.peek()); text.next())
            each(element - '0');
    }
}

// ---- Integers

struct scanned_integer {
    uint64_t magnitude;
    bool negative;
    bool overflow; // of 64 bits; the magnitude is the largest then
};

// Settles base 0 and consumes the prefix of base 16, which counts only before a digit.
template <class source>
[[gnu::always_inline]] inline uint32_t settled_base(source &text, uint32_t base) {
    if ((base != 0 && base != 16) || text.peek() != '0')
        return base == 0 ? 10 : base;
    source ahead = text;
    ahead.next();
    if ((ahead.peek() | 0x20) == 'x') {
        ahead.next();
        if (digit_value(ahead.peek()) < 16) {
            text = ahead;
            return 16;
        }
    }
    return base == 0 ? 8 : base;
}

inline constexpr uint64_t one_digit_more = UINT64_MAX / 36 - 1; // fits in every base

inline void add_digit(scanned_integer &out, uint32_t base, uint32_t digit) {
    if (out.magnitude > one_digit_more) {
        out.overflow |= __builtin_mul_overflow(out.magnitude, uint64_t{base}, &out.magnitude);
        out.overflow |= __builtin_add_overflow(out.magnitude, uint64_t{digit}, &out.magnitude);
    } else {
        out.magnitude = out.magnitude * base + digit;
    }
}

// Consumes a run of digits.
template <class source>
[[gnu::always_inline]] inline void take_digits(source &text, uint32_t base, scanned_integer &out) {
    scanned_integer sum = out;
    if (base == 10)
        each_digit(text, [&](uint32_t digit) { add_digit(sum, 10, digit); });
    else
        for (uint32_t digit; (digit = digit_value(text.peek())) < base; text.next())
            add_digit(sum, base, digit);
    out = sum;
}

// Consumes an integer; false when there is none, with the source where it was.
template <class source>
[[gnu::always_inline]] inline bool scan_integer(source &text, const number_marks &marks,
                                                uint32_t base, scanned_integer &out) {
    source ahead = text;
    out = {.negative = takes_minus(ahead, marks)};
    base = settled_base(ahead, base);
    if (digit_value(ahead.peek()) >= base)
        return false;
    do
        take_digits(ahead, base, out);
    while (takes_separator(ahead, marks, base));
    if (out.overflow)
        out.magnitude = UINT64_MAX;
    text = ahead;
    return true;
}

// The value with its sign; false when it does not fit [low, high], with the nearest limit.
inline bool signed_value_of(const scanned_integer &scanned, int64_t low, int64_t high,
                            int64_t &out) {
    const uint64_t limit =
        scanned.negative ? 0 - static_cast<uint64_t>(low) : static_cast<uint64_t>(high);
    const bool fits = !scanned.overflow && scanned.magnitude <= limit;
    const uint64_t magnitude = fits ? scanned.magnitude : limit;
    out = static_cast<int64_t>(scanned.negative ? 0 - magnitude : magnitude);
    return fits;
}

// ---- Floats

inline constexpr int32_t float_text_size = 256;  // of the collected text, terminator included
inline constexpr int32_t kept_digits = 19;       // digits that 64 bits hold for certain
inline constexpr int32_t exponent_limit = 99999; // larger exponents count as this

// A float as it is read: the text for the C library, and its digits as an integer, which are enough
// for floats of usual size.
class collected_float {
public:
    void add_sign(bool negative) {
        negative_ = negative;
        if (negative)
            add('-');
    }
    void add_digit(uint32_t digit) {
        add(static_cast<char>('0' + digit));
        count_ += count_ != 0 || digit != 0;
        if (count_ <= kept_digits)
            digits_ = digits_ * 10 + digit;
        exponent_ -= after_point_;
    }
    void add_point() {
        add('.');
        after_point_ = true;
    }
    void add_exponent(bool negative) {
        add('e');
        if (negative)
            add('-');
        negative_exponent_ = negative;
    }
    void add_exponent_digit(uint32_t digit) {
        add(static_cast<char>('0' + digit));
        written_exponent_ = written_exponent_ * 10 + static_cast<int32_t>(digit);
        if (written_exponent_ > exponent_limit)
            written_exponent_ = exponent_limit;
    }

    // The value; `error` is GLS_OK, GLS_ERR_NO_ROOM for a text too long, GLS_ERR_FLOAT_RANGE.
    double value(int32_t &error);

private:
    void add(char c) {
        if (length_ < float_text_size)
            text_[length_] = c;
        ++length_;
    }

    uint64_t digits_ = 0;
    int32_t count_ = 0;    // significant digits; above kept_digits the rest is in the text alone
    int32_t exponent_ = 0; // of the last digit
    int32_t written_exponent_ = 0;
    int32_t length_ = 0;
    bool negative_ = false;
    bool negative_exponent_ = false;
    bool after_point_ = false;
    char text_[float_text_size];
};

template <class source>
[[gnu::always_inline]] inline bool takes_digits(source &text, collected_float &out) {
    bool any = false;
    each_digit(text, [&](uint32_t digit) {
        out.add_digit(digit);
        any = true;
    });
    return any;
}

// Consumes "e" with an optional sign, if a digit follows.
template <class source>
[[gnu::always_inline]] inline void take_exponent(source &text, collected_float &out) {
    source ahead = text;
    if ((ahead.peek() | 0x20) != 'e')
        return;
    ahead.next();
    const gl_wchar sign = ahead.peek();
    if (sign == '-' || sign == '+')
        ahead.next();
    if (!is_digit(ahead.peek()))
        return;
    out.add_exponent(sign == '-');
    each_digit(ahead, [&](uint32_t digit) { out.add_exponent_digit(digit); });
    text = ahead;
}

// Consumes a float; false when there is none, with the source where it was.
template <class source>
[[gnu::always_inline]] inline bool scan_float(source &text, const number_marks &marks,
                                              collected_float &out) {
    source ahead = text;
    out.add_sign(takes_minus(ahead, marks));
    bool any = takes_digits(ahead, out);
    while (any && takes_separator(ahead, marks, 10))
        takes_digits(ahead, out);
    source after_point = ahead;
    if (takes(after_point, marks.point)) {
        out.add_point();
        any |= takes_digits(after_point, out);
        ahead = after_point;
    }
    if (!any)
        return false;
    if (marks.exponent)
        take_exponent(ahead, out);
    text = ahead;
    return true;
}

} // namespace kestrion
