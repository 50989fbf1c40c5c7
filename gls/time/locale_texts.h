// The texts of a locale's TIME category in the form that is asked for, wide or multibyte.
//
// A null pointer chooses the form: text_in(data, field, static_cast<const char *>(nullptr)).

#pragma once

#include "gls/objects/category_data.h"
#include "gls/time/conversions.h"
#include <kestrion/locale_rec.h>

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace kestrion {

// What a null locale has: no names and no formats.
extern const time_rec no_time;

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

} // namespace kestrion
