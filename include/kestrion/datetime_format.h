// The format of datetimes in a locale environment: GL_DATETIME, and its parts by qualifier.
//
// GL_DATETIME holds a whole format (<kestrion/time_format.h>); without it the default is
// "%iY-%m-%d %H:%M:%S.%F5". A value of fewer fields takes the part that it has:
//
//     qualtofmt(HOUR TO FRACTION(3))  of the default   ->  "%H:%M:%S.%F3"
//     qualtofmt(MONTH TO DAY)  of "%d.%m.%iY %H:%M"    ->  "%d.%m"
//
// GL_DATETIME shapes what is written; where USE_DTENV is "1" it also governs what is read, and an
// environment keeps the format of each qualifier.

#pragma once

#include <stdint.h>

#include <kestrion/datetime_units.h>

enum { datetime_format_size = 256 }; // bytes of any format of a qualifier, terminator included

#ifdef __cplusplus
extern "C" {
#endif

// 1 when USE_DTENV is exactly "1", else 0; read once.
int get_usedtenv(void);

// The whole format of the current environment: GL_DATETIME, else the default.
const char *getdatetimefmt(void);

// Writes into out[0..size) the part of `format` that values of `qualifier` have, terminated: the
// directives whose units lie between its start and its end, with the text between two of them; text
// before the first and after the last is left out. A directive that stands for several pieces
// (%T, %x) is kept when all of these are there. A fraction with more digits than the qualifier has
// is cut to these.
// Returns the length, or -1 with an empty text when it doesn't fit or the format ends inside a
// directive.
int32_t qualtofmt(int qualifier, const char *format, char *out, int32_t size);

#ifdef __cplusplus
}
#endif
