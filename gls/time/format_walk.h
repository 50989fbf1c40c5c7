// The walk through a time format, for those who write, measure or scan by it.
//
// The walk reads directives and takes formats that stand for other formats apart; a visitor does
// the rest. All of it exists for wide and for multibyte text. Results are error numbers, GLS_OK
// among them.
//
//     class visitor : public format_visit<unit> {
//         const unit *plain_part(const unit *format);            // what it can do faster itself
//         int32_t text(const unit *start, const unit *end);      // what stands for itself
//         int32_t character(char c);                             // %%, %n, %t, separators
//         int32_t number(const time_number &, const directive &);
//         int32_t fraction(const directive &);
//         int32_t name(name_list);
//         int32_t half_day();
//         int32_t era_name(const text_field<era_rec> &);
//         int32_t era_year(const directive &);
//         int32_t era_form();
//     };
//     walk_format(visitor, format);

#pragma once

#include "gls/time/calendars.h"
#include "gls/time/conversions.h"
#include "gls/time/text_cursor.h"
#include <kestrion/ctype_masks.h>
#include <kestrion/format_modifiers.h>
#include <kestrion/gls_errors.h>
#include <kestrion/integer_format.h>
#include <kestrion/locale_rec.h>

#include <algorithm>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace kestrion {

// Formats may stand for each other. Names of formats that lead back to themselves end at the depth,
// those that fan out at the count.
inline constexpr int32_t deepest_format = 8;
inline constexpr int32_t most_nested_formats = 10000;

// How a directive wants its number shaped.
struct number_shape {
    bool as_usual = true; // no modifiers
    int32_t width = gl_modifier_unset;
    int32_t precision = gl_modifier_unset;
    uint32_t flags = 0;
};

// How a directive is to be written.
struct directive {
    number_shape shape;
    bool own_digits = false; // of the locale
    int32_t fraction_digits = default_fraction_digits;
};

inline constexpr directive usual_directive;

// What a null locale has: no names and no formats.
extern const time_rec no_time;

inline bool has_ascii_units(const locale_rec *, const gl_wchar *) { return true; }
inline bool has_ascii_units(const locale_rec *lc, const char *) {
    return ctype_of(lc).ascii_bytes != 0;
}

// The state of a walk.
template <class unit> struct format_visit {
    explicit format_visit(locale_rec *locale)
        : lc(locale), data(locale == nullptr ? no_time : locale->time_cat),
          gregorian(calendar_of(locale) == CALENDAR_GREGORIAN),
          has_ascii(has_ascii_units(locale, form)),
          has_eras(data.eras != nullptr && data.era_count > 0),
          has_digits(data.alt_digits != nullptr && data.alt_digit_count > 0) {}

    static constexpr const unit *form = nullptr; // chooses among the locale's texts
    locale_rec *lc;
    const time_rec &data;
    bool gregorian;
    bool has_ascii; // the units below 80 that begin a character are ASCII
    bool has_eras;
    bool has_digits;
    int32_t depth = 0;
    int32_t nested_formats = 0;
};

// ---- The two forms of the locale's texts

template <class record>
const char *text_in(const record &r, const text_field<record> &field, const char *) {
    return r.*field.text;
}
template <class record>
const gl_wchar *text_in(const record &r, const text_field<record> &field, const gl_wchar *) {
    return r.*field.wide;
}

inline ptrdiff_t length_of(const char *text) { return static_cast<ptrdiff_t>(strlen(text)); }
inline ptrdiff_t length_of(const gl_wchar *text) {
    const gl_wchar *end = text;
    while (*end != 0)
        ++end;
    return end - text;
}

template <class unit> struct name_table {
    const unit *const *names;
    int32_t count;
};

name_table<char> names_in(const time_rec &data, name_list list, const char *);
name_table<gl_wchar> names_in(const time_rec &data, name_list list, const gl_wchar *);

// The texts of numbers from 0 in the locale's own digits.
name_table<char> own_digits_in(const time_rec &data, const char *);
name_table<gl_wchar> own_digits_in(const time_rec &data, const gl_wchar *);

inline constexpr text_field<era_rec> era_format = {&era_rec::format, &era_rec::wide_format};
inline constexpr text_field<time_rec> am_text = {&time_rec::am, &time_rec::wide_am};
inline constexpr text_field<time_rec> pm_text = {&time_rec::pm, &time_rec::wide_pm};

// ---- Numbers that modifiers shape

inline constexpr int32_t most_number_elements = 255;

struct shaped_number {
    gl_wchar text[most_number_elements];
    int32_t length;
};

// Writes a number as the number formatter does. What `wanted` leaves open, width and precision,
// comes from `usual`. GLS_ERR_NO_ROOM when it is too long.
int32_t shape_number(locale_rec *lc, int64_t number, const number_shape &usual,
                     const number_shape &wanted, shaped_number &out);

// The shape that a number has by itself.
constexpr number_shape usual_shape(int32_t precision, int32_t width = gl_modifier_unset) {
    return {.width = width, .precision = precision};
}
constexpr number_shape usual_shape(const time_number &number) {
    return usual_shape(number.precision, number.width);
}

// A fraction's precision is the digits that it is cut to, whatever a modifier asks for: fewer
// digits would be another fraction.
inline number_shape fraction_shape(const directive &d) {
    number_shape shape = d.shape;
    shape.precision = std::max(shape.precision, d.fraction_digits);
    return shape;
}

// ---- Directives

constexpr bool is_modifier(gl_wchar c) {
    return (c >= '0' && c <= '9') || c == '\'' || c == '-' || c == '+' || c == ' ' || c == '#' ||
           c == '.';
}

// Takes the modifiers apart; `text` is terminated and goes on behind them. `used` elements of it.
int32_t parse_modifiers(locale_rec *lc, const gl_wchar *text, number_shape &shape, int32_t &used);

// Reads modifiers through a copy: they are ASCII in either form of a format, and few.
template <class unit>
int32_t read_modifiers(locale_rec *lc, text_cursor<unit> &format, number_shape &shape) {
    constexpr int32_t most_modifiers = 60;
    gl_wchar copy[most_modifiers + 2];
    int32_t count = 0;
    text_cursor<unit> ahead = format;
    for (; is_modifier(ahead.character()); ahead.advance()) {
        if (count == most_modifiers)
            return GLS_ERR_FORMAT;
        copy[count++] = ahead.character();
    }
    copy[count] = ahead.character();
    copy[count + 1] = 0;
    const int32_t error = parse_modifiers(lc, copy, shape, count);
    for (; error == GLS_OK && count > 0; --count)
        format.advance();
    return error;
}

template <class unit> int32_t end_of_directive(const text_cursor<unit> &format) {
    return format.is_broken() ? GLS_ERR_BAD_CHARACTER : GLS_ERR_NO_REGISTRY; // 15: ended too early
}

template <class unit>
int32_t take_conversion(text_cursor<unit> &format, const conversion_index &table,
                        const time_conversion *&row) {
    if (format.character() == 0)
        return end_of_directive(format);
    row = find_conversion(table, format.character());
    format.advance();
    return row == nullptr ? GLS_ERR_FORMAT : GLS_OK;
}

inline bool is_one_letter(const time_conversion &conversion) {
    return conversion.kind != conversion_kind::prefix &&
           conversion.kind != conversion_kind::fraction;
}

// Reads what follows "%". Without eras an "E", without digits of the locale's own an "O" is passed
// over.
template <class unit>
int32_t read_directive(const format_visit<unit> &visit, text_cursor<unit> &format, directive &out,
                       const time_conversion *&conversion) {
    int32_t error = GLS_OK;
    if (is_modifier(format.character()))
        error = read_modifiers(visit.lc, format, out.shape);
    const conversion_index *table = &plain_conversions;
    if (format.character() == 'E') {
        format.advance();
        table = visit.has_eras ? &era_conversions : table;
    } else if (format.character() == 'O') {
        format.advance();
        out.own_digits = visit.has_digits;
    }
    if (error == GLS_OK)
        error = take_conversion(format, *table, conversion);
    if (error == GLS_OK && out.own_digits && conversion->digits == digits_form::refused)
        return GLS_ERR_FORMAT;
    if (error == GLS_OK && conversion->kind == conversion_kind::prefix)
        error = take_conversion(format, conversions_after_i, conversion);
    if (error == GLS_OK && conversion->kind == conversion_kind::fraction &&
        format.character() >= '0' && format.character() <= '0' + most_fraction_digits) {
        out.fraction_digits = static_cast<int32_t>(format.character() - '0');
        format.advance();
    }
    return error;
}

// ---- What most formats are made of: plain numbers, and text that stands for itself
//
// `plain_part` takes what it likes of this from the front of a format and returns where it stopped.

template <class unit> constexpr bool is_plain_text(unit c) {
    return c > ' ' && c < 0x7f && c != '%';
}

// The units of a character beyond ASCII that stands for itself and is not white space; else 0.
inline int32_t plain_length(const ctype_rec &ct, const char *at) {
    if (static_cast<signed char>(*at) >= 0)
        return 0;
    const decoded_char c = decode_limited(ct.class_walk, at, longest_character);
    return is_char(c) && (c.step.datum & CT_SPACE) == 0 ? c.length : 0;
}
inline int32_t plain_length(const ctype_rec &ct, const gl_wchar *at) {
    if (*at < 0x80)
        return 0;
    const multi_step step = wide_step(ct, ct.class_walk, ct.class_prefixes, *at);
    return step.next == multi_end && (step.datum & CT_SPACE) == 0 ? 1 : 0;
}

// The number of a directive of two units; null for another one.
template <class unit> const time_number *plain_number(const unit *format) {
    if (*format != '%')
        return nullptr;
    const auto letter = static_cast<gl_wchar>(format[1]);
    const time_conversion *row = find_conversion(plain_conversions, letter);
    return row == nullptr || row->kind != conversion_kind::number ? nullptr : row->numbers[0];
}

// ---- The walk

template <class unit, class visitor> int32_t walk_format(visitor &visit, const unit *format);

// Walks a format that stands for a directive.
template <class unit, class visitor> int32_t put_new_fmt(visitor &visit, const unit *format) {
    if (format == nullptr)
        return GLS_OK;
    if (visit.depth == deepest_format || visit.nested_formats == most_nested_formats)
        return GLS_ERR_FORMAT;
    ++visit.nested_formats;
    ++visit.depth;
    const int32_t error = walk_format(visit, format);
    --visit.depth;
    return error;
}

// Several numbers have no width together: modifiers are ignored.
template <class visitor>
int32_t visit_numbers(visitor &visit, const time_conversion &conversion, const directive &d) {
    const directive each = {.own_digits = d.own_digits};
    int32_t error = GLS_OK;
    for (const time_number *number : conversion.numbers) {
        if (error != GLS_OK || number == nullptr)
            break;
        if (number != conversion.numbers[0])
            error = visit.character(conversion.character);
        if (error == GLS_OK)
            error = visit.number(*number, each);
    }
    return error;
}

template <class unit, class visitor>
int32_t visit_directive(visitor &visit, const time_conversion &conversion, const directive &d) {
    switch (conversion.kind) {
    case conversion_kind::number:
        return visit.number(*conversion.numbers[0], d);
    case conversion_kind::numbers:
        return visit_numbers(visit, conversion, d);
    case conversion_kind::fraction:
        return visit.fraction(d);
    case conversion_kind::name:
        return visit.name(conversion.names);
    case conversion_kind::half_day:
        return visit.half_day();
    case conversion_kind::format:
        return put_new_fmt(visit, text_in(visit.data, *conversion.format, visit.form));
    case conversion_kind::era_name:
        return visit.era_name(*conversion.era_text);
    case conversion_kind::era_year:
        return visit.era_year(d);
    case conversion_kind::era_form:
        return visit.era_form();
    default:
        return visit.character(conversion.character);
    }
}

template <class unit, class visitor> int32_t walk_format(visitor &visit, const unit *format) {
    text_cursor<unit> at(visit.lc, format);
    for (;;) {
        if (visit.has_ascii)
            at.move_to(visit.plain_part(at.at()));
        const unit *start = at.at();
        character_found c = at.look();
        for (; c.wide != '%' && c.length > 0; c = at.look())
            at.move_to(at.at() + c.length);
        int32_t error = start == at.at() ? GLS_OK : visit.text(start, at.at());
        if (error != GLS_OK || c.length <= 0)
            return c.length < 0 ? GLS_ERR_BAD_CHARACTER : error;
        at.move_to(at.at() + c.length);
        const time_conversion *conversion = find_conversion(plain_conversions, at.character());
        if (conversion != nullptr && is_one_letter(*conversion)) { // as nearly all directives are
            at.advance();
            error = conversion->kind == conversion_kind::number
                        ? visit.number(*conversion->numbers[0], usual_directive)
                        : visit_directive<unit>(visit, *conversion, usual_directive);
        } else {
            directive d;
            error = read_directive<unit>(visit, at, d, conversion);
            if (error == GLS_OK)
                error = visit_directive<unit>(visit, *conversion, d);
        }
        if (error != GLS_OK)
            return error;
    }
}

} // namespace kestrion
