// Single items of a locale by number.

#pragma once

#include "gls/locale_rec.h"

#include <stdint.h>

inline constexpr int32_t GL_ITEM_DATE_FORMAT = 61;
inline constexpr int32_t GL_ITEM_CALENDAR = 73;

extern "C" {

// Returns the text of an item, owned by the locale: the date format, or the calendar's name
// ("gregorian"). Null for an empty text, any other item, and a null locale.
const char *gl_nl_langinfo(const locale_rec *lc, int32_t item);
}
