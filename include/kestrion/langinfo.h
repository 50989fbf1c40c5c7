// Single items of a locale by number.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

enum { GL_ITEM_DATE_FORMAT = 61, GL_ITEM_CALENDAR = 73 };

#ifdef __cplusplus
extern "C" {
#endif

// Returns the text of an item, owned by the locale: the date format, or the calendar's name
// ("gregorian"). Null for an empty text, any other item, and a null locale.
const char *gl_nl_langinfo(const locale_rec *lc, int32_t item);

#ifdef __cplusplus
}
#endif
