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

#include "gls/text/char_walk.h"
#include "gls/time/calendars.h"
#include "gls/time/conversions.h"
#include "gls/time/directive.h"
#include "gls/time/locale_texts.h"
#include "gls/time/text_cursor.h"
#include <kestrion/ctype_masks.h>
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// Formats may stand for each other. Names of formats that lead back to themselves end at the depth,
// those that fan out at the count.
inline constexpr int32_t deepest_format = 8;
inline constexpr int32_t most_nested_formats = 10000;

inline bool has_ascii_units(const locale_rec *, const gl_wchar *) { return true; }
inline bool has_ascii_units(const locale_rec *lc, const char *) {
    return ctype_of(lc).ascii_bytes != 0;
}

// The state of a walk.
template <class unit> struct format_visit {
    explicit format_visit(locale_rec *locale)
        : lc(locale), data(locale == nullptr ? no_time : locale->time_cat),
          gregorian(calendar_of(locale) == CALENDAR_GREGORIAN),
          has_ascii(has_ascii_units(locale, form)), has{.eras = data.eras != nullptr &&
                                                                data.era_count > 0,
                                                        .digits = data.alt_digits != nullptr &&
                                                                  data.alt_digit_count > 0} {}

    static constexpr const unit *form = nullptr; // chooses among the locale's texts
    locale_rec *lc;
    const time_rec &data;
    bool gregorian;
    bool has_ascii; // the units below 80 that begin a character are ASCII
    own_forms has;
    int32_t depth = 0;
    int32_t nested_formats = 0;
};

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
    const decoded_char c = decode_limited(ct.class_walk, at, gl_char_bytes);
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
            error = read_directive(visit.lc, visit.has, at, d, conversion);
            if (error == GLS_OK)
                error = visit_directive<unit>(visit, *conversion, d);
        }
        if (error != GLS_OK)
            return error;
    }
}

} // namespace kestrion
