// The scanner of times: it visits a format and takes from a text what the format names.

#pragma once

#include "gls/time/format_walk.h"
#include "gls/time/scanned_time.h"
#include "gls/time/text_matching.h"
#include <kestrion/gls_errors.h>
#include <kestrion/locale_rec.h>

#include <algorithm>
#include <stdint.h>

namespace kestrion {

template <class unit> class time_scanner : public format_visit<unit> {
public:
    time_scanner(locale_rec *locale, const unit *text, scanned_time &scanned)
        : format_visit<unit>(locale), at_(locale, text), scanned_(scanned) {}

    const unit *at() const { return at_.at(); }

    const unit *plain_part(const unit *format);
    int32_t text(const unit *start, const unit *end);
    int32_t character(char c);
    int32_t number(const time_number &number, const directive &d);
    int32_t fraction(const directive &d);
    int32_t name(name_list list);
    int32_t half_day();
    int32_t era_name(const text_field<era_rec> &field);
    int32_t era_year(const directive &d);
    int32_t era_form();

private:
    using visit = format_visit<unit>;

    bool take_usual(int32_t most, const number_shape &shape, scanned_digits &out);
    bool take_own(int32_t most, const number_shape &shape, int64_t &value);
    bool take_shaped(int32_t most, const directive &d, int64_t &value);

    text_cursor<unit> at_;
    scanned_time &scanned_;
    int32_t own_form_ = not_read; // the era whose own format is being read
};

// Takes plain numbers with text between them as the walk does, at three times its speed: both
// texts stay in registers. Stops before anything else and where the text does not fit, which is then
// the walk's to say.
template <class unit> const unit *time_scanner<unit>::plain_part(const unit *format) {
    const ctype_rec &ct = ctype_of(visit::lc);
    const unit *text = at_.at();
    for (;; at_.move_to(text)) {
        if (is_plain_text(*format)) {
            if (*text != *format)
                return format;
            ++format;
            ++text;
        } else if (*format == ' ') {
            while (is_ascii_space(*text))
                ++text;
            if (!is_plain_text(*text)) // maybe another white space
                return format;
            ++format;
        } else if (const time_number *number = plain_number(format); number != nullptr) {
            const unit *at = text;
            const int32_t value = take_digits(at, number->digits);
            if (value < number->scan_low || value > number->scan_high)
                return format;
            store_number(scanned_, *number, value);
            format += 2;
            text = at;
        } else {
            const int32_t length = plain_length(ct, format);
            for (int32_t i = 0; i < length; ++i)
                if (text[i] != format[i]) // at the latest at a terminator
                    return format;
            if (length == 0)
                return format;
            format += length;
            text += length;
        }
    }
}

template <class unit> int32_t time_scanner<unit>::text(const unit *start, const unit *end) {
    text_cursor<unit> format(visit::lc, start);
    while (format.at() < end) {
        const character_found c = format.look();
        const unit *next = format.at() + c.length;
        if (is_space(visit::lc, c.wide))
            skip_spaces(visit::lc, at_);
        else if (!take_units(at_, format.at(), next))
            return GLS_ERR_FORMAT;
        format.move_to(next);
    }
    return GLS_OK;
}

template <class unit> int32_t time_scanner<unit>::character(char c) {
    if (c != '\n' && c != '\t')
        return take_character(at_, static_cast<unsigned char>(c)) ? GLS_OK : GLS_ERR_FORMAT;
    skip_spaces(visit::lc, at_);
    return GLS_OK;
}

// ---- Numbers

template <class unit>
bool time_scanner<unit>::take_usual(int32_t most, const number_shape &shape, scanned_digits &out) {
    return take_number(visit::lc, at_, most, shape, take_ordinary_digit<unit>, out);
}

// In the locale's digits: the text of a number, or digit by digit what has none; whichever is
// longer. Ordinary digits do as well.
template <class unit>
bool time_scanner<unit>::take_own(int32_t most, const number_shape &shape, int64_t &value) {
    constexpr int32_t ten = 10;
    const auto own = own_digits_in(visit::data, static_cast<const gl_wchar *>(nullptr));
    skip_spaces(visit::lc, at_);
    longest_match<unit> whole = {.start = at_};
    for (int32_t i = 0; i < own.count; ++i)
        whole.offer(visit::lc, own.names[i], i);
    const auto take_digit = [&](text_cursor<unit> &at, scanned_digits &digits) {
        longest_match<unit> digit = {.start = at};
        for (int32_t i = 0; i < ten; ++i)
            digit.offer(visit::lc, own.names[i], i);
        at = digit.end;
        if (digit.length > 0)
            digits.add(digit.chosen);
        return digit.length > 0;
    };
    scanned_digits by_digit;
    text_cursor<unit> end = at_;
    if (own.count >= ten && take_number(visit::lc, end, most, shape, take_digit, by_digit) &&
        by_digit.value >= own.count && end.at() > whole.end.at()) {
        at_ = end;
        value = by_digit.value;
        return true;
    }
    if (whole.length > 0) {
        at_ = whole.end;
        value = whole.chosen;
        return true;
    }
    scanned_digits usual;
    const bool taken = take_usual(most, shape, usual);
    value = usual.value;
    return taken;
}

template <class unit>
bool time_scanner<unit>::take_shaped(int32_t most, const directive &d, int64_t &value) {
    if (d.own_digits)
        return take_own(most, d.shape, value);
    scanned_digits digits;
    const bool taken = take_usual(most, d.shape, digits);
    value = digits.value;
    return taken;
}

template <class unit>
int32_t time_scanner<unit>::number(const time_number &number, const directive &d) {
    int64_t value;
    if (d.shape.as_usual && !d.own_digits) {
        skip_spaces(visit::lc, at_);
        value = at_.take_number(number.digits);
        if (value < 0)
            return GLS_ERR_FORMAT;
    } else if (!take_shaped(number.digits, d, value)) {
        return GLS_ERR_FORMAT;
    }
    const int32_t highest = number.scan_high + (visit::gregorian ? 0 : number.more_elsewhere);
    if (value < number.scan_low || value > highest)
        return number.error;
    store_number(scanned_, number, static_cast<int32_t>(value));
    return GLS_OK;
}

// Fewer digits than the directive writes are the first ones of a fraction all the same.
template <class unit> int32_t time_scanner<unit>::fraction(const directive &d) {
    scanned_digits digits;
    if (d.fraction_digits == 0)
        return GLS_OK;
    if (!take_usual(d.fraction_digits, d.shape, digits))
        return GLS_ERR_FORMAT;
    for (int32_t i = std::min(digits.count, d.fraction_digits); i < record_fraction_digits; ++i)
        digits.value *= 10;
    if (digits.value > largest_fraction)
        return GLS_ERR_FRACTION;
    scanned_.time.fraction = digits.value;
    return GLS_OK;
}

// ---- Names

template <class unit> int32_t time_scanner<unit>::name(name_list list) {
    const bool of_day = list == name_list::day || list == name_list::abday;
    longest_match<unit> match = {.start = at_};
    for (const name_list names_of :
         {of_day ? name_list::day : name_list::mon, of_day ? name_list::abday : name_list::abmon}) {
        const auto names = names_in(visit::data, names_of, static_cast<const gl_wchar *>(nullptr));
        for (int32_t i = 0; i < names.count; ++i)
            match.offer(visit::lc, names.names[i], i);
    }
    if (match.length < 1)
        return GLS_ERR_FORMAT;
    at_ = match.end;
    if (of_day) {
        scanned_.time.weekday = match.chosen;
    } else {
        scanned_.time.month_name = match.chosen;
        scanned_.month_by_name = scanned_.has_date = true;
    }
    return GLS_OK;
}

// A locale with neither text has nothing to say, and nothing changes.
template <class unit> int32_t time_scanner<unit>::half_day() {
    longest_match<unit> match = {.start = at_};
    match.offer(visit::lc, visit::data.wide_am, 0);
    match.offer(visit::lc, visit::data.wide_pm, 1);
    const bool has_texts = visit::data.wide_am != nullptr && visit::data.wide_pm != nullptr &&
                           (*visit::data.wide_am != 0 || *visit::data.wide_pm != 0);
    if (!has_texts)
        return GLS_OK;
    if (match.chosen == not_read)
        return GLS_ERR_FORMAT;
    at_ = match.end;
    scanned_.half_day = match.chosen;
    return GLS_OK;
}

// ---- Eras

// Within an era's own format only its own name will do: the first year of one era must not be read
// as that of another which also writes it without a number.
template <class unit> int32_t time_scanner<unit>::era_name(const text_field<era_rec> &field) {
    longest_match<unit> match = {.start = at_};
    for (int32_t i = 0; i < visit::data.era_count; ++i)
        if (own_form_ == not_read || own_form_ == i)
            match.offer(visit::lc, visit::data.eras[i].*field.wide, i);
    if (match.chosen == not_read)
        return GLS_ERR_FORMAT;
    at_ = match.end;
    scanned_.era = match.chosen;
    scanned_.era_text = &field;
    scanned_.has_date = true;
    return GLS_OK;
}

template <class unit> int32_t time_scanner<unit>::era_year(const directive &d) {
    scanned_digits digits;
    if (!take_usual(era_year_scan_digits, d.shape, digits))
        return GLS_ERR_FORMAT;
    scanned_.era_year = digits.value;
    scanned_.has_era_year = scanned_.has_date = true;
    return GLS_OK;
}

// The first era whose format fits. A format without a year is that of the era's first one.
template <class unit> int32_t time_scanner<unit>::era_form() {
    const text_cursor<unit> start = at_;
    const scanned_time before = scanned_;
    const int32_t outer_form = own_form_;
    int32_t error = GLS_ERR_FORMAT;
    for (int32_t i = 0; error != GLS_OK && i < visit::data.era_count; ++i) {
        at_ = start;
        scanned_ = before;
        scanned_.era = own_form_ = i;
        scanned_.era_text = nullptr;
        scanned_.has_era_year = false;
        scanned_.has_date = true;
        error = put_new_fmt(*this, text_in(visit::data.eras[i], era_format, visit::form));
    }
    own_form_ = outer_form;
    if (error == GLS_OK && !scanned_.has_era_year) {
        scanned_.era_itself = scanned_.has_era_year = true;
        scanned_.era_year = visit::data.eras[scanned_.era].offset;
    }
    return error;
}

} // namespace kestrion
