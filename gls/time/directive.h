// A directive of a time format: modifiers, "E" or "O", a conversion.

#pragma once

#include "gls/time/conversions.h"
#include "gls/time/number_shape.h"
#include "gls/time/text_cursor.h"
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>

#include <algorithm>
#include <stdint.h>

namespace kestrion {

// How a directive is to be written.
struct directive {
    number_shape shape;
    bool own_digits = false; // of the locale
    int32_t fraction_digits = default_fraction_digits;
};

inline constexpr directive usual_directive;

// A fraction's precision is the digits that it is cut to, whatever a modifier asks for: fewer
// digits would be another fraction.
inline number_shape fraction_shape(const directive &d) {
    number_shape shape = d.shape;
    shape.precision = std::max(shape.precision, d.fraction_digits);
    return shape;
}

// What a locale has of its own besides names and formats.
struct own_forms {
    bool eras;
    bool digits;
};

constexpr bool is_modifier(gl_wchar c) {
    return (c >= '0' && c <= '9') || c == '\'' || c == '-' || c == '+' || c == ' ' || c == '#' ||
           c == '.';
}

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
int32_t read_directive(locale_rec *lc, own_forms has, text_cursor<unit> &format, directive &out,
                       const time_conversion *&conversion) {
    int32_t error = GLS_OK;
    if (is_modifier(format.character()))
        error = read_modifiers(lc, format, out.shape);
    const conversion_index *table = &plain_conversions;
    if (format.character() == 'E') {
        format.advance();
        table = has.eras ? &era_conversions : table;
    } else if (format.character() == 'O') {
        format.advance();
        out.own_digits = has.digits;
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

} // namespace kestrion
