#include <kestrion/time_format.h>

#include "gls/base/engine_error.h"
#include "gls/numbers/multibyte_twin.h"
#include "gls/time/destination.h"
#include "gls/time/era_lookup.h"
#include "gls/time/format_walk.h"
#include <kestrion/calendars.h>
#include <kestrion/era_lookup.h>

#include <stdint.h>

using namespace kestrion;

namespace {

template <class unit> class time_writer : public format_visit<unit> {
public:
    time_writer(locale_rec *locale, unit *dst, int32_t size, const gl_tm &time)
        : format_visit<unit>(locale), to_(locale, dst, size), time_(time) {}

    // Returns the count of units, or a negative error number.
    int32_t write(const unit *format) {
        if (!to_.has_room_for_terminator())
            return -GLS_ERR_NO_ROOM;
        const int32_t error = walk_format(*this, format);
        return error == GLS_OK ? to_.finish() : -error;
    }

    const unit *plain_part(const unit *format) {
        return to_.write_plain_part(ctype_of(visit::lc), format, time_, visit::gregorian);
    }
    int32_t text(const unit *start, const unit *end) { return to_.copy(start, end - start); }
    int32_t character(char c) { return to_.ascii(&c, 1); }
    int32_t number(const time_number &number, const directive &d);
    int32_t fraction(const directive &d);
    int32_t name(name_list list);
    int32_t half_day();
    int32_t era_name(const text_field<era_rec> &field);
    int32_t era_year(const directive &d);
    int32_t era_form();

private:
    using visit = format_visit<unit>;

    int32_t whole_text(const unit *text) {
        return text == nullptr ? GLS_OK : to_.copy(text, length_of(text));
    }
    int32_t usual_number(uint32_t number, int32_t precision, int32_t width);
    int32_t shaped(int32_t number, const number_shape &usual, const number_shape &wanted);
    int32_t put_alt_int(int32_t number, const number_shape &usual, const number_shape &wanted);
    int32_t find_era(const era_rec *&era);

    destination<unit> to_;
    const gl_tm &time_;
    const era_rec *era_ = nullptr; // that holds the time, once it was looked for
};

template <class unit>
int32_t time_writer<unit>::usual_number(uint32_t number, int32_t precision, int32_t width) {
    constexpr ptrdiff_t room = 12;
    char digits[room];
    ptrdiff_t at = room;
    do {
        digits[--at] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (--precision > 0 || number != 0);
    while (room - at < width)
        digits[--at] = ' ';
    return to_.ascii(digits + at, room - at);
}

template <class unit>
int32_t time_writer<unit>::shaped(int32_t number, const number_shape &usual,
                                  const number_shape &wanted) {
    if (wanted.as_usual && number >= 0)
        return usual_number(static_cast<uint32_t>(number), usual.precision, usual.width);
    shaped_number made;
    const int32_t error = shape_number(visit::lc, number, usual, wanted, made);
    return error == GLS_OK ? to_.characters(made.text, made.length) : error;
}

// In the locale's digits: the text of the number where there is one, else digit by digit where
// there are ten texts, else in ordinary digits.
template <class unit>
int32_t time_writer<unit>::put_alt_int(int32_t number, const number_shape &usual,
                                       const number_shape &wanted) {
    const auto own = own_digits_in(visit::data, visit::form);
    if (number < own.count)
        return whole_text(own.names[number]);
    if (own.count < 10)
        return shaped(number, usual, wanted);
    shaped_number made;
    int32_t error = shape_number(visit::lc, number, usual, wanted, made);
    for (int32_t i = 0; error == GLS_OK && i < made.length; ++i) {
        const gl_wchar c = made.text[i];
        error = c >= '0' && c <= '9' ? whole_text(own.names[c - '0']) : to_.characters(&c, 1);
    }
    return error;
}

template <class unit>
int32_t time_writer<unit>::number(const time_number &number, const directive &d) {
    const int32_t error = range_error(number, time_, visit::gregorian);
    if (error != GLS_OK)
        return error;
    const int32_t value = number_of_field(number, time_.*number.field);
    return d.own_digits ? put_alt_int(value, usual_shape(number), d.shape)
                        : shaped(value, usual_shape(number), d.shape);
}

template <class unit> int32_t time_writer<unit>::fraction(const directive &d) {
    constexpr int32_t units[] = {1000000, 100000, 10000, 1000, 100, 10};
    if (time_.fraction < 0 || time_.fraction > largest_fraction)
        return GLS_ERR_FRACTION;
    if (d.fraction_digits == 0)
        return GLS_OK;
    return shaped(static_cast<int32_t>(time_.fraction) / units[d.fraction_digits],
                  usual_shape(d.fraction_digits), fraction_shape(d));
}

template <class unit> int32_t time_writer<unit>::name(name_list list) {
    const auto names = names_in(visit::data, list, visit::form);
    const bool of_day = list == name_list::day || list == name_list::abday;
    const int32_t chosen = of_day ? time_.weekday : time_.month_name;
    if (chosen < 0 || chosen >= names.count)
        return of_day ? GLS_ERR_WEEKDAY : GLS_ERR_MONTH;
    return whole_text(names.names[chosen]);
}

template <class unit> int32_t time_writer<unit>::half_day() {
    if (time_.hour < 0 || time_.hour > 23)
        return GLS_ERR_HOUR;
    return whole_text(text_in(visit::data, time_.hour < 12 ? am_text : pm_text, visit::form));
}

// The era that holds the date, whose parts must be in range first.
template <class unit> int32_t time_writer<unit>::find_era(const era_rec *&era) {
    era = era_;
    if (era != nullptr)
        return GLS_OK;
    for (const time_number *number : era_date_numbers)
        if (const int32_t error = range_error(*number, time_, visit::gregorian); error != GLS_OK)
            return error;
    const int32_t found = current_era(visit::lc, &time_);
    if (found < 0)
        return GLS_ERR_ARGUMENT;
    era = era_ = &visit::data.eras[found];
    return GLS_OK;
}

template <class unit> int32_t time_writer<unit>::era_name(const text_field<era_rec> &field) {
    const era_rec *era = nullptr;
    const int32_t error = find_era(era);
    return error == GLS_OK ? whole_text(text_in(*era, field, visit::form)) : error;
}

template <class unit> int32_t time_writer<unit>::era_year(const directive &d) {
    const era_rec *era = nullptr;
    const int32_t error = find_era(era);
    return error == GLS_OK
               ? shaped(era_offset(era, &time_), usual_shape(era_year_precision), d.shape)
               : error;
}

template <class unit> int32_t time_writer<unit>::era_form() {
    const era_rec *era = nullptr;
    const int32_t error = find_era(era);
    return error == GLS_OK ? put_new_fmt(*this, text_in(*era, era_format, visit::form)) : error;
}

// ---- What the operations share

// An empty text is what a failed call leaves.
int32_t no_time_written(locale_rec *, gl_wchar *dst, int32_t size) {
    return no_result(dst, size, 0);
}
int32_t no_time_written(locale_rec *lc, char *dst, int32_t size) {
    return no_result(lc, dst, size, 0);
}

template <class unit>
int32_t format_time(locale_rec *lc, unit *dst, int32_t size, const unit *format,
                    const gl_tm *time) {
    if (dst == nullptr || format == nullptr || time == nullptr) {
        set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
        return dst == nullptr ? 0 : no_time_written(lc, dst, size);
    }
    gl_tm local;
    if (calendar_of(lc) != CALENDAR_GREGORIAN) {
        if (gl_cal_gregorian_to_local(lc, time, &local) != 0)
            return no_time_written(lc, dst, size);
        time = &local;
    }
    const int32_t count = time_writer<unit>(lc, dst, size, *time).write(format);
    if (count >= 0)
        return count;
    set_engine_error(lc, -count);
    return no_time_written(lc, dst, size);
}

template <class unit>
int32_t format_time(locale_rec *lc, unit *dst, int32_t size, const unit *format,
                    const gl_alt_tm *time) {
    gl_tm whole = {};
    if (time != nullptr)
        alt_tm_to_tm(time, &whole);
    return format_time(lc, dst, size, format, time == nullptr ? nullptr : &whole);
}

} // namespace

int32_t gl_wcsftime(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    const gl_alt_tm *time) {
    return format_time(lc, dst, size, format, time);
}

int32_t gl_wcsftime1(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                     const gl_tm *time) {
    return format_time(lc, dst, size, format, time);
}

int32_t gl_mbsftime(locale_rec *lc, char *dst, int32_t size, const char *format,
                    const gl_alt_tm *time) {
    return format_time(lc, dst, size, format, time);
}

int32_t gl_mbsftime1(locale_rec *lc, char *dst, int32_t size, const char *format,
                     const gl_tm *time) {
    return format_time(lc, dst, size, format, time);
}

int32_t gl_get_ltime_fmts(locale_rec *lc, char *out[3]) {
    if (lc == nullptr || out == nullptr)
        return fail(lc, GLS_ERR_NULL_ARGUMENT);
    out[0] = lc->time_cat.d_fmt;
    out[1] = lc->time_cat.t_fmt;
    out[2] = lc->time_cat.d_t_fmt;
    return 0;
}
