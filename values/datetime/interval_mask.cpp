#include <kestrion/interval_mask.h>

#include "values/datetime/field_text.h"
#include <kestrion/interval_text.h>

using namespace kestrion;

namespace {

constexpr int literal_text = -1;
constexpr int no_directive = -2;

// The unit of a directive that an interval of this qualifier has.
int unit_of(char letter, const field_layout &q) {
    static constexpr char letters[] = "YmdHMSF";
    if (letter == '%')
        return literal_text;
    const char *found = letter != '\0' ? strchr(letters, letter) : nullptr;
    if (found == nullptr)
        return no_directive;
    const int unit = static_cast<int>(found - letters) * 2;
    const bool has = unit == unit_fraction ? q.end > unit_second : q.has(unit);
    return has ? unit : no_directive;
}

// -- Writing -----------------------------------------------------------------------------------

// The digits of one field: all of the first without its leading zeros, two of others, those of the
// qualifier of a fraction. Returns the end.
char *put_field(char *to, const unsigned char *bytes, const field_layout &q, int unit) {
    if (unit == unit_fraction)
        return put_fraction_digits(to, bytes + q.offset(unit_fraction), q.fraction_digits());
    if (unit > q.start)
        return put_two_digits(to, bytes[q.offset(unit)]);
    char *end = put_leading_field(to, bytes, q.leading_digits());
    const char *first = to;
    while (*first == '0' && first < end - 1)
        ++first;
    memmove(to, first, static_cast<size_t>(end - first));
    return end - (first - to);
}

// A text that grows in a buffer.
struct bounded_text {
    char *at;
    const char *end; // of the buffer
    bool fits = true;

    void put(const char *text, size_t length) {
        fits = fits && length < static_cast<size_t>(end - at);
        if (fits) {
            memcpy(at, text, length);
            at += length;
        }
    }
};

int write(const dec_value &value, const field_layout &q, const char *mask, bounded_text *out) {
    unsigned char bytes[datetime_field_bytes];
    unpack_fields(value, q, bytes);
    bool minus = value.sign == dec_negative;
    for (; *mask != '\0'; ++mask) {
        const int unit = *mask == '%' ? unit_of(*++mask, q) : literal_text;
        if (unit == no_directive)
            return err_dt_qualifier;
        if (unit == literal_text) {
            out->put(mask, 1);
            continue;
        }
        char digits[rinvstr_size] = "-"; // of the whole value, before its first digit
        const char *end = put_field(digits + 1, bytes, q, unit);
        out->put(digits + (minus ? 0 : 1), static_cast<size_t>(end - digits) - (minus ? 0 : 1));
        minus = false;
    }
    return 0;
}

// -- Reading -----------------------------------------------------------------------------------

void add_digit(unsigned char *byte, int digit, bool tens) {
    *byte = static_cast<unsigned char>(*byte + (tens ? digit * 10 : digit));
}

int read_field(const char **text, const field_layout &q, int unit, unsigned char *bytes) {
    const char *at = *text;
    const bool fraction = unit == unit_fraction;
    const bool first = unit == q.start && !fraction;
    const int most = fraction ? q.fraction_digits() : first ? q.leading_digits() : 2;
    int count = 0;
    while (is_digit(at[count]) && (first || count < most))
        ++count;
    *text += count;
    if (count == 0)
        return err_dt_character;
    if (count > most)
        return err_dt_first_field;
    unsigned char *last = bytes + q.offset(unit);
    memset(last - (first ? q.leading_bytes() - 1 : 0), 0,
           static_cast<size_t>(first || fraction ? (most + 1) / 2 : 1));
    // Digits fill a fraction from the left, anything else from the right.
    for (int i = 0; i < count; ++i) {
        const int right = count - 1 - i;
        if (fraction) {
            add_digit(last + i / 2, at[i] - '0', i % 2 == 0);
        } else {
            add_digit(last - right / 2, at[i] - '0', right % 2 != 0);
        }
    }
    return 0;
}

int read(const char *text, const field_layout &q, const char *mask, dec_value *value) {
    unsigned char bytes[datetime_field_bytes] = {};
    bool negative = false;
    for (; *mask != '\0'; ++mask) {
        const int unit = *mask == '%' ? unit_of(*++mask, q) : literal_text;
        if (unit == no_directive)
            return err_dt_qualifier;
        if (unit == literal_text) {
            if (*text++ != *mask)
                return err_dt_character;
            continue;
        }
        if (*text == '-' && !negative) {
            negative = true;
            ++text;
        }
        if (const int code = read_field(&text, q, unit, bytes); code != 0)
            return code;
    }
    if (*skip_blanks(text) != '\0')
        return err_dt_extra;
    pack_fields(value, q, bytes, negative ? dec_negative : dec_positive);
    return interval_in_range(load_word(bytes), q) ? 0 : +err_dt_field_range;
}

} // namespace

int intofmtasc(const intv_value *value, char *text, int32_t size, const char *mask) {
    if (size > 0)
        *text = '\0';
    if (!is_interval_qualifier(value->qualifier))
        return answer(err_dt_qualifier);
    if (decverify(&value->value) != 0)
        return answer(-1);
    if (size < 1)
        return answer(err_result_size);
    if (is_null(value->value))
        return answer(0);
    bounded_text out = {.at = text, .end = text + size};
    int code = 0;
    if (mask != nullptr) {
        code = write(value->value, field_layout(value->qualifier), mask, &out);
    } else {
        char usual[rinvstr_size];
        intoasc(value, usual);
        out.put(usual, strlen(usual));
    }
    *(code == 0 && out.fits ? out.at : text) = '\0';
    return answer(code != 0 || out.fits ? code : +err_result_size);
}

int incvfmtasc(const char *text, const char *mask, intv_value *value) {
    if (mask == nullptr)
        return incvasc(text, value);
    value->value = null_decimal;
    if (!is_interval_qualifier(value->qualifier))
        return answer(err_dt_qualifier);
    text = skip_blanks(text);
    if (*text == '\0')
        return answer(0);
    return finish(read(text, field_layout(value->qualifier), mask, &value->value), &value->value);
}
