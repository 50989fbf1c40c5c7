// Text to decimal. The text is read where it is, within its bounds.

#include <kestrion/decimal_text.h>

#include <kestrion/env_registry.h>
#include <kestrion/startup.h>

#include "base/ascii_class.h"
#include "values/decimal/conventions_in_use.h"
#include "values/decimal/operand.h"
#include "values/decimal/text_range.h"

#include <algorithm>

using namespace kestrion;

namespace {

constexpr int digit_limit = 32;     // digits that a text can give
constexpr int greatest_point = 126; // the limits of digits left of the point, with an "e"
constexpr int least_point = -130;
constexpr int group_limit = 3; // sizes of groups that the check of separators looks at

// The conventions as the scan needs them.
struct scan_conventions {
    const char *radix, *separator;
    size_t radix_length, separator_length;
    const lconv_rec *record;

    explicit scan_conventions(const lconv_rec *from)
        : radix(from->radix), separator(from->thousands_sep), radix_length(length_of(radix)),
          separator_length(length_of(separator)), record(from) {}
    bool separator_is_blank() const { return separator_length == 1 && *separator == ' '; }
};

// -- Hexadecimal integers ------------------------------------------------------------------------

bool take_hexadecimal(text_range text, uint32_t *out) {
    uint32_t value = 0;
    for (; !text.empty(); ++text.at) {
        const int digit = ascii_hex_value(static_cast<unsigned char>(*text.at));
        if (digit < 0)
            break;
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    *out = value;
    return text.ends();
}

// -- Separators ----------------------------------------------------------------------------------

// The integer part of a number, walked from its end. A separator counts as one character, and so
// does each byte that is not part of one.
struct backward_walk {
    const char *start, *at;
    const scan_conventions &conventions;

    bool at_separator() const {
        const auto length = static_cast<ptrdiff_t>(conventions.separator_length);
        return at - start >= length &&
               memcmp(at - length, conventions.separator, conventions.separator_length) == 0;
    }
    void step() { at -= at_separator() ? static_cast<ptrdiff_t>(conventions.separator_length) : 1; }
    bool steps(int64_t count) { // false when fewer are left
        for (; count > 0 && at != start; --count)
            step();
        return count == 0;
    }
    bool has_separator() const {
        for (backward_walk rest = *this; rest.at != start; rest.step())
            if (rest.at_separator())
                return true;
        return false;
    }
    // Whether `size` characters and more are left, a separator left of them, which is passed.
    // *more says whether there are more than `size`.
    bool passes_group(int64_t size, bool *more) {
        backward_walk rest = *this;
        *more = rest.steps(size) && rest.at != start;
        if (!*more || !rest.at_separator())
            return false;
        rest.step();
        at = rest.at;
        return true;
    }
};

// Holds the separators of an integer part against the sizes of the groups. A separator counts as a
// character of a group, so that "1,2,3" passes; and where a size other than the first ends the
// number, no separator may have come: both are what programs of the installation accept and refuse.
bool groups_are_valid(const scan_conventions &conventions, text_range number) {
    const char *end = number.at;
    for (text_range rest = number; !rest.empty(); ++rest.at, ++end)
        if (rest.at_text(conventions.radix, conventions.radix_length))
            break;
    backward_walk walk{number.at, end, conventions};
    const bool any = walk.has_separator();
    int64_t last = 0;
    for (int i = 0; i < group_limit; ++i) {
        const int32_t size =
            i < conventions.record->group_count ? conventions.record->groups[i] : -1;
        if (size == -1)
            return i != 0 && !walk.has_separator();
        bool more = false;
        if (size == 0) {
            while (last != 0 && walk.passes_group(last, &more)) {
            }
            return last != 0 && !more;
        }
        last = static_cast<uint32_t>(size);
        if (!walk.passes_group(last, &more))
            return !more && !any;
    }
    return true;
}

bool separators_are_checked() {
    const char *loose = ggetenv("QVT_NOT_STRICT_THOUS_SEP");
    return loose == nullptr || strcmp(loose, "1") != 0;
}

// -- Digits --------------------------------------------------------------------------------------

// The digits of a number as they are met, and where its point is.
struct digit_reader {
    const char *begin; // of the number
    int64_t point = 0; // digits left of the radix; below 0 for zeros right of it
    int count = 0;
    bool after_radix = false;
    bool separated = false;
    // One cell comes first, so that a number with an odd count of digits before its point begins in
    // the low half of a byte; at the end is room for eight that are taken at once.
    unsigned char cells[1 + digit_limit + 8] = {};

    // Reads a run of digits, eight characters at once as long as there is room for them.
    void take(text_range &text) {
        for (; count == 0 && text.at_char('0'); ++text.at)
            point -= after_radix;
        const char *start = text.at;
        for (int taken = 8; taken == 8 && count < digit_limit; count += taken) {
            taken = take_eight(text, cells + 1 + count);
            text.at += taken;
        }
        while (text.at_digit())
            ++text.at;
        if (!after_radix)
            point += text.at - start;
    }

    // Two cells a byte.
    digit_word word() const {
        const unsigned char *from = cells + ((point & 1) == 0);
        digit_word digits = 0;
        for (int i = 0; i < digit_limit; i += 8)
            digits = digits << 32 | joined(load_big_endian<uint64_t>(from + i));
        return digits;
    }

private:
    static constexpr uint64_t each_byte = UINT64_C(0x0101010101010101);

    // Up to eight characters, the first in the most significant byte, and zero bytes after the end.
    // The end of a text is read together with what comes before it.
    uint64_t next_eight(const text_range &text) const {
        const ptrdiff_t left = text.end - text.at;
        const auto *at = reinterpret_cast<const unsigned char *>(text.at);
        if (left >= 8)
            return load_big_endian<uint64_t>(at);
        if (left == 0)
            return 0;
        if (text.end - begin >= 8)
            return load_big_endian<uint64_t>(at + left - 8) << 8 * (8 - left);
        return load_big_endian<uint64_t>(at, static_cast<size_t>(left)) << 8 * (8 - left);
    }

    // Stores the values of the digits at `text` and zeros after them. Returns how many there are. A
    // byte that is not a digit has its top bit set, or gets it when 118 is added to the others.
    int take_eight(const text_range &text, unsigned char *values) const {
        uint64_t eight = next_eight(text) ^ each_byte * '0';
        const uint64_t others =
            (eight | ((eight & each_byte * 0x7F) + each_byte * (128 - 10))) & each_byte * 0x80;
        const int digits = std::countl_zero(others) / 8;
        if (digits < 8)
            eight &= ~(~uint64_t{0} >> 8 * digits);
        store_big_endian(eight, values);
        return digits;
    }

    static uint32_t joined(uint64_t eight) {
        constexpr uint64_t pairs = UINT64_C(0x00FF00FF00FF00FF);
        uint64_t bytes = (eight >> 8 & pairs) * 10 + (eight & pairs);
        bytes = (bytes | bytes >> 8) & UINT64_C(0x0000FFFF0000FFFF);
        return static_cast<uint32_t>(bytes | bytes >> 16);
    }
};

// Reads digits, the radix and separators. Returns 0 or err_not_a_number.
int take_digits(text_range &text, const scan_conventions &conventions, digit_reader &reader) {
    const text_range number = text;
    for (;;) {
        reader.take(text);
        if (text.at_text(conventions.radix, conventions.radix_length)) {
            if (reader.after_radix)
                return err_not_a_number;
            reader.after_radix = true;
            text.at += conventions.radix_length;
        } else if (text.at_text(conventions.separator, conventions.separator_length)) {
            if (reader.after_radix && !conventions.separator_is_blank())
                return err_not_a_number;
            if (!reader.separated && separators_are_checked() &&
                !groups_are_valid(conventions, number))
                return err_not_a_number;
            reader.separated = true;
            text.at += conventions.separator_length;
        } else {
            return 0;
        }
    }
}

// "e" and a number, which is held against the range at once: "0e500" is refused though it is 0.
int take_exponent(text_range &text, digit_reader &reader) {
    if (!text.at_char('e') && !text.at_char('E'))
        return 0;
    ++text.at;
    reader.point += text.take_integer();
    return reader.point < least_point      ? err_underflow
           : reader.point > greatest_point ? err_overflow
                                           : 0;
}

int take_number(text_range text, bool negative, const lconv_rec *record, dec_value *dec) {
    const scan_conventions conventions(record);
    if (!text.at_digit() && !text.at_text(conventions.radix, conventions.radix_length))
        return err_not_a_number;
    if (text.at_text("0x", 2) || text.at_text("0X", 2)) {
        uint32_t value;
        text.at += 2;
        if (!take_hexadecimal(text, &value))
            return err_not_a_number;
        return deccvlong(static_cast<int32_t>(negative ? 0 - value : value), dec);
    }
    digit_reader reader = {.begin = text.at};
    if (const int result = take_digits(text, conventions, reader); result != 0)
        return result;
    if (const int result = take_exponent(text, reader); result != 0)
        return result;
    if (!text.ends())
        return err_not_a_number;
    if (reader.count == 0)
        return set_zero(dec);
    const int64_t exponent = (reader.point + 1) >> 1;
    return store_stripped(dec, negative ? dec_negative : dec_positive,
                          static_cast<int>(std::clamp<int64_t>(exponent, -1000, 1000)),
                          reader.word());
}

} // namespace

int deccvasc_int(const char *text, int length, dec_value *dec, const lconv_rec *conventions) {
    text_range rest = text_range::of(text, length);
    rest.skip_blanks();
    if (rest.empty()) {
        set_null(dec);
        return 0;
    }
    rest.cut_blanks();
    set_zero(dec);
    if (const int failure = chkglsinit(); failure != 0)
        return failure;
    if (conventions == nullptr)
        conventions = neutral_conventions();
    const bool negative = rest.take_sign(conventions);
    const int result = take_number(rest, negative, conventions, dec);
    if (result != 0)
        set_zero(dec);
    return result;
}

int deccvasc(const char *text, int length, dec_value *dec) {
    return deccvasc_int(text, length, dec, local_conventions());
}

int deccvasc_net(const char *text, int length, dec_value *dec) {
    return deccvasc_int(text, length, dec, neutral_conventions());
}

const char *decstoi(const char *text, int32_t *out) {
    text_range rest = {text, text + strlen(text)};
    *out = rest.take_integer();
    return rest.at;
}

int decxtoi(const char *text, uint32_t *out) {
    return take_hexadecimal({text, text + strlen(text)}, out) ? 0 : -1;
}
