#include "gls/time/conversions.h"

#include <kestrion/gls_errors.h>

#include <stddef.h>

namespace kestrion {
namespace {

// ---- Numbers

constexpr int32_t year_0 = -1900, year_9999 = 9999 - 1900; // as fields
constexpr int32_t any_least = INT32_MIN, any_most = INT32_MAX;

// By column: part, field, what is added to it, its range and what is added to the end of that in
// other calendars, the errors beyond and below it; digits of the largest number and of the smallest,
// width; range of the number when it is scanned.
// clang-format off
constexpr time_number
    century =      {time_part::century,         &gl_tm::year,        0,    year_0, year_9999,   0,  GLS_ERR_YEAR,        GLS_ERR_YEAR,              2, 2, 0, 0, 99},
    year =         {time_part::year,            &gl_tm::year,        1900, year_0, year_9999,   0,  GLS_ERR_YEAR,        GLS_ERR_YEAR_NOT_WRITABLE, 4, 1, 0, 0, 9999},
    long_year =    {time_part::year,            &gl_tm::year,        1900, year_0, year_9999,   0,  GLS_ERR_YEAR,        GLS_ERR_YEAR,              4, 4, 0, 0, 9999},
    short_year =   {time_part::year_in_century, &gl_tm::year,        0,    any_least, any_most, 0,  GLS_ERR_YEAR,        GLS_ERR_YEAR,              2, 2, 0, 0, 99},
    year_of_date = {time_part::year_in_century, &gl_tm::year,        0,    year_0, year_9999,   0,  GLS_ERR_YEAR,        GLS_ERR_YEAR,              2, 2, 0, 0, 99},
    month =        {time_part::month,           &gl_tm::month,       1,    0, 11,               1,  GLS_ERR_MONTH,       GLS_ERR_MONTH,             2, 2, 0, 1, 12},
    day =          {time_part::day,             &gl_tm::day,         0,    1, 99,               0,  GLS_ERR_DAY,         GLS_ERR_DAY,               2, 2, 0, 1, 31},
    blank_day =    {time_part::day,             &gl_tm::day,         0,    1, 99,               0,  GLS_ERR_DAY,         GLS_ERR_DAY,               2, 1, 2, 1, 31},
    hour =         {time_part::hour,            &gl_tm::hour,        0,    0, 23,               0,  GLS_ERR_HOUR,        GLS_ERR_HOUR,              2, 2, 0, 0, 23},
    clock_hour =   {time_part::hour_of_12,      &gl_tm::hour,        0,    0, 23,               0,  GLS_ERR_HOUR,        GLS_ERR_HOUR,              2, 2, 0, 1, 12},
    minute =       {time_part::other,           &gl_tm::minute,      0,    0, 59,               0,  GLS_ERR_MINUTE,      GLS_ERR_MINUTE,            2, 2, 0, 0, 59},
    second =       {time_part::other,           &gl_tm::second,      0,    0, 61,               0,  GLS_ERR_SECOND,      GLS_ERR_SECOND,            2, 2, 0, 0, 61},
    day_of_year =  {time_part::other,           &gl_tm::day_of_year, 1,    0, 365,              19, GLS_ERR_DAY_OF_YEAR, GLS_ERR_DAY_OF_YEAR,       3, 3, 0, 1, 366},
    weekday_1 =    {time_part::weekday_from_1,  &gl_tm::weekday,     0,    0, 6,                0,  GLS_ERR_WEEKDAY,     GLS_ERR_WEEKDAY,           1, 1, 0, 1, 7},
    weekday_0 =    {time_part::other,           &gl_tm::weekday,     0,    0, 6,                0,  GLS_ERR_WEEKDAY,     GLS_ERR_WEEKDAY,           1, 1, 0, 0, 6};
// clang-format on

// ---- Conversions

// The locale's formats.
constexpr text_field<time_rec> d_t_fmt = {&time_rec::d_t_fmt, &time_rec::wide_d_t_fmt},
                               d_fmt = {&time_rec::d_fmt, &time_rec::wide_d_fmt},
                               t_fmt = {&time_rec::t_fmt, &time_rec::wide_t_fmt},
                               t_fmt_ampm = {&time_rec::t_fmt_ampm, &time_rec::wide_t_fmt_ampm},
                               era_d_t_fmt = {&time_rec::era_d_t_fmt, &time_rec::wide_era_d_t_fmt},
                               era_d_fmt = {&time_rec::era_d_fmt, &time_rec::wide_era_d_fmt},
                               era_t_fmt = {&time_rec::era_t_fmt, &time_rec::wide_era_t_fmt};
constexpr text_field<era_rec> first_name = {&era_rec::name, &era_rec::wide_name},
                              second_name = {&era_rec::second_name, &era_rec::wide_second_name};

constexpr auto own = digits_form::allowed;

constexpr time_conversion literal(char letter, char character) {
    return {.letter = letter, .kind = conversion_kind::literal, .character = character};
}
constexpr time_conversion number(char letter, const time_number &one,
                                 digits_form digits = digits_form::refused) {
    return {.letter = letter, .kind = conversion_kind::number, .digits = digits, .numbers = {&one}};
}
constexpr time_conversion numbers(char letter, char separator, const time_number &a,
                                  const time_number &b, const time_number *c = nullptr) {
    return {.letter = letter,
            .kind = conversion_kind::numbers,
            .digits = own,
            .character = separator,
            .numbers = {&a, &b, c}};
}
constexpr time_conversion name(char letter, name_list names) {
    return {.letter = letter, .kind = conversion_kind::name, .names = names};
}
constexpr time_conversion format(char letter, const text_field<time_rec> &text) {
    return {.letter = letter, .kind = conversion_kind::format, .format = &text};
}
constexpr time_conversion era_name(char letter, const text_field<era_rec> &text) {
    return {.letter = letter, .kind = conversion_kind::era_name, .era_text = &text};
}
constexpr time_conversion other(char letter, conversion_kind kind) {
    return {.letter = letter, .kind = kind};
}

// Sorted by letter, upper case first.
constexpr time_conversion plain_rows[] = {
    literal('%', '%'),
    name('A', name_list::day),
    name('B', name_list::mon),
    number('C', century, own),
    numbers('D', '/', month, day, &year_of_date),
    other('F', conversion_kind::fraction),
    number('H', hour, own),
    number('I', clock_hour, own),
    number('M', minute, own),
    numbers('R', ':', hour, minute),
    number('S', second, own),
    numbers('T', ':', hour, minute, &second),
    format('X', t_fmt),
    number('Y', year),
    name('a', name_list::abday),
    name('b', name_list::abmon),
    format('c', d_t_fmt),
    number('d', day, own),
    number('e', blank_day, own),
    number('g', century),
    name('h', name_list::abmon),
    other('i', conversion_kind::prefix),
    number('j', day_of_year, own),
    number('m', month, own),
    literal('n', '\n'),
    other('p', conversion_kind::half_day),
    format('r', t_fmt_ampm),
    literal('t', '\t'),
    number('u', weekday_1, own),
    number('w', weekday_0, own),
    format('x', d_fmt),
    number('y', short_year, own),
};
constexpr time_conversion rows_after_i[] = {
    other('F', conversion_kind::fraction),
    number('Y', long_year),
    number('y', short_year),
};
constexpr time_conversion era_rows[] = {
    era_name('C', first_name),
    format('X', era_t_fmt),
    other('Y', conversion_kind::era_form),
    format('c', era_d_t_fmt),
    era_name('g', second_name),
    format('x', era_d_fmt),
    other('y', conversion_kind::era_year),
};

template <size_t count> constexpr conversion_index index_of(const time_conversion (&rows)[count]) {
    conversion_index index = {};
    for (const time_conversion &row : rows)
        index.rows[static_cast<unsigned char>(row.letter)] = &row;
    return index;
}

} // namespace

constinit const conversion_index plain_conversions = index_of(plain_rows);
constinit const conversion_index conversions_after_i = index_of(rows_after_i);
constinit const conversion_index era_conversions = index_of(era_rows);

constinit const time_number *const era_date_numbers[3] = {&year_of_date, &month, &day};

} // namespace kestrion
