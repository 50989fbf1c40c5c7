// Numbers of times as modifiers want them.

#pragma once

#include "gls/time/conversions.h"
#include <kestrion/format_modifiers.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// How a directive wants its number written.
struct number_shape {
    bool as_usual = true; // no modifiers
    int32_t width = gl_modifier_unset;
    int32_t precision = gl_modifier_unset;
    uint32_t flags = 0;
};

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

// Takes the modifiers apart; `text` is terminated and goes on after them. `used` elements of it.
int32_t parse_modifiers(locale_rec *lc, const gl_wchar *text, number_shape &shape, int32_t &used);

} // namespace kestrion
