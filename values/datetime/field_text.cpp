#include "values/datetime/field_text.h"

#include "values/date/calendar.h"
#include "values/datetime/centuries.h"
#include "values/datetime/datetime_row.h"
#include "values/datetime/field_triples.h"
#include <kestrion/character_tables.h>
#include <kestrion/date.h>
#include <kestrion/datetime_now.h>
#include <kestrion/dbcentury.h>

namespace kestrion {

const char *skip_blanks(const char *text) {
    while ((_ixctype[static_cast<unsigned char>(*text) + 1] & CHARACTER_SPACE) != 0)
        ++text;
    return text;
}

namespace {

[[gnu::always_inline]] inline char *put_all_fields(char *to, const unsigned char *bytes,
                                                   const field_layout q) {
    if (q.start != unit_fraction) {
        to = put_leading_field(to, bytes, q.leading_digits());
        bytes += q.leading_bytes();
        const char *delimiter = dtdelim + q.start / 2;
        int left = (q.last_field() - q.start) / 2;
        for (; left >= 3; left -= 3, to += 9, bytes += 3, delimiter += 3) {
            *to = *delimiter;
            put_triple(to + 1, bytes, delimiter + 1);
        }
        for (; left > 0; --left) {
            *to = *delimiter++;
            to = put_two_digits(to + 1, *bytes++);
        }
    }
    if (q.end <= unit_second)
        return to;
    *to++ = dtdelim[unit_second / 2];
    return put_fraction_digits(to, bytes, q.fraction_digits());
}

} // namespace

char *put_fields(char *to, const unsigned char *bytes, const field_layout &q) {
    return put_all_fields(to, bytes, q);
}

namespace {

[[gnu::always_inline]] inline char *put_row(char *to, const operand &x, const field_layout q) {
    unsigned char bytes[word_bytes];
    store_word(row_of(x, q), bytes);
    return put_all_fields(to, bytes + row_begin(q), q);
}

} // namespace

// For the qualifiers of nearly all columns the compiler works the layout out.
char *put_datetime(char *to, const operand &x, int qualifier) {
    switch (qualifier) {
    case qualifier_year_to_second:
        return put_row(to, x, field_layout(qualifier_year_to_second));
    case qualifier_year_to_day:
        return put_row(to, x, field_layout(qualifier_year_to_day));
    default:
        return put_row(to, x, field_layout(qualifier));
    }
}

namespace {

// A text on its way into the bytes of a value.
struct field_reader {
    const char *at;
    const field_layout &q;
    bool is_datetime;
    unsigned char bytes[datetime_field_bytes] = {};
    bool century_open = false; // a datetime's year has one or two digits

    // All of the first field but its last two digits, right justified in their bytes.
    int leading_digits() {
        int count = 0;
        while (is_digit(at[count])) {
            if (++count > q.leading_digits())
                return err_dt_first_field;
        }
        century_open = is_datetime && q.start == unit_year && count < 3;
        unsigned char *to = bytes + q.leading_bytes() - (count + 1) / 2;
        if ((count & 1) != 0 && count > 2)
            *to++ = static_cast<unsigned char>(*at++ - '0');
        for (count &= ~1; count > 2; count -= 2)
            *to++ = two_digits();
        return 0;
    }

    unsigned char two_digits() {
        const int number = (at[0] - '0') * 10 + at[1] - '0';
        at += 2;
        return static_cast<unsigned char>(number);
    }

    int field(int unit) {
        at = skip_blanks(at);
        if (!is_digit(*at))
            return err_dt_character;
        bytes[q.offset(unit)] =
            is_digit(at[1]) ? two_digits() : static_cast<unsigned char>(*at++ - '0');
        return 0;
    }

    // From the first field to the seconds at most.
    int fields() {
        for (int unit = q.start; unit <= q.last_field(); unit += 2) {
            if (const int code = field(unit); code != 0)
                return code;
            if (*at == dtdelim[unit / 2]) {
                ++at;
            } else if (unit != q.end && !(unit == unit_second && *at == '\0')) {
                return is_digit(*at) ? err_dt_field_range : err_dt_character;
            }
        }
        return 0;
    }

    // What stands before the digits of a value that is nothing but a fraction.
    int fraction_point() {
        while (*at == '0')
            ++at;
        if (*at != '.')
            return is_digit(*at) ? err_dt_field_range : err_dt_fraction;
        ++at;
        return 0;
    }

    void fraction() {
        unsigned char *to = bytes + q.offset(unit_fraction);
        for (int i = 0; i < q.fraction_digits() && is_digit(*at); ++i, ++at) {
            const int digit = *at - '0';
            to[i / 2] = static_cast<unsigned char>(to[i / 2] + (i % 2 == 0 ? digit * 10 : digit));
        }
    }

    // What the text doesn't say of the date comes from today.
    int complete_century(char letter) {
        int16_t today[3];
        mdy_of_today(today);
        const int yy = bytes[1];
        const int month = q.has(unit_month) ? bytes[q.offset(unit_month)] : today[0];
        int day = today[1];
        if (q.has(unit_day)) {
            day = bytes[q.offset(unit_day)];
        } else if (const int last = month_length(month, rleapyear(today[2] / 100 * 100 + yy) != 0);
                   last > 0 && day > last) {
            day = last;
        }
        const int century =
            letter != '\0' ? century_by_letter(month, day, yy, letter) : getcentury(month, day, yy);
        if (century < 0)
            return century;
        bytes[0] = static_cast<unsigned char>(century);
        return 0;
    }

    int date(char letter) {
        if (is_datetime && q.has(unit_month) && bytes[q.offset(unit_month)] > 12)
            return err_dt_field_range;
        return century_open ? complete_century(letter) : 0;
    }

    int read(char letter) {
        int code = q.start == unit_fraction ? fraction_point() : leading_digits();
        if (code == 0 && q.start != unit_fraction)
            code = fields();
        if (code != 0)
            return code;
        if (q.end > unit_second)
            fraction();
        code = date(letter);
        if (code != 0)
            return code;
        at = skip_blanks(at);
        return *at == '\0' ? 0 : err_dt_extra;
    }
};

// The characters of a usual text, which has every field in its full width.
size_t usual_length(const field_layout &q) {
    const int delimited = (q.last_field() - q.start) / 2;
    const int fraction = q.end > unit_second ? 1 + q.fraction_digits() : 0;
    const int length = q.leading_digits() + 3 * delimited + fraction;
    return static_cast<size_t>(length);
}

char delimiter_after(int field) { return dtdelim[field & 7]; }

// The number of two digits; above 99 when they are not.
unsigned two_digits_of(const char *text) {
    const unsigned tens = static_cast<unsigned char>(text[0]) - unsigned{'0'};
    const unsigned units = static_cast<unsigned char>(text[1]) - unsigned{'0'};
    return tens > 9 || units > 9 ? 100 : tens * 10 + units;
}

bool take_usual_field(const char *text, uint64_t *fields) {
    const unsigned number = two_digits_of(text);
    *fields = *fields << 8 | number;
    return number < 100;
}

bool take_usual_fraction(const char *text, int digits, digit_word *row) {
    if (*text++ != '.')
        return false;
    for (; digits > 0; digits -= 2, text += 2) {
        const char pair[] = {text[0], digits > 1 ? text[1] : '0'};
        const unsigned number = two_digits_of(pair);
        *row = *row << 8 | number;
        if (number > 99)
            return false;
    }
    return true;
}

[[gnu::always_inline]] inline bool parse_usual(const char *text, const field_layout q,
                                               dec_value *value) {
    const size_t length = usual_length(q);
    if (q.start == unit_fraction || strnlen(text, length + 1) != length)
        return false;
    uint64_t fields = 0;
    if (q.start == unit_year) {
        if (!take_usual_field(text, &fields))
            return false;
        text += 2;
    }
    int field = q.start / 2;
    int left = q.last_field() / 2 - field + 1;
    for (; left >= 3; left -= 3, text += 9, field += 3) {
        if (!take_triple(text, dtdelim + field, &fields) ||
            (left > 3 && text[8] != delimiter_after(field + 2)))
            return false;
    }
    for (; left > 0; --left, text += 3, ++field) {
        if (!take_usual_field(text, &fields) || (left > 1 && text[2] != delimiter_after(field)))
            return false;
    }
    digit_word row = fields;
    if (q.end > unit_second && !take_usual_fraction(text - 1, q.fraction_digits(), &row))
        return false;
    row <<= 8 * (word_bytes - row_end(q));
    return row_in_range(row, q) && pack_whole_row(value, row, dec_positive) == 0;
}

} // namespace

// For the qualifiers of nearly all columns the compiler works the layout out.
bool parse_usual_text(const char *text, int qualifier, dec_value *value) {
    switch (qualifier) {
    case qualifier_year_to_second:
        return parse_usual(text, field_layout(qualifier_year_to_second), value);
    case qualifier_year_to_day:
        return parse_usual(text, field_layout(qualifier_year_to_day), value);
    default:
        return is_datetime_qualifier(qualifier) &&
               parse_usual(text, field_layout(qualifier), value);
    }
}

int parse_fields(const char *text, const field_layout &q, bool is_datetime, char century,
                 dec_value *value) {
    *value = null_decimal;
    field_reader reader{.at = skip_blanks(text), .q = q, .is_datetime = is_datetime};
    if (*reader.at == '\0')
        return 0;
    if (const int code = reader.read(century); code != 0)
        return code;
    const digit_word word = load_word(reader.bytes);
    pack_word(value, q, word, dec_positive);
    const bool good = is_datetime ? row_in_range(row_of(*value, q), q) : interval_in_range(word, q);
    return good ? 0 : +err_dt_field_range;
}

} // namespace kestrion
