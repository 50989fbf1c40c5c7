// Moments of the locale engine, as values have them.

#pragma once

#include <kestrion/broken_down_time.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// The current environment's locale, started if need be. Null without one: the engine then writes and
// reads numbers.
locale_rec *started_locale();

// The moment of the ten bytes of YEAR TO FRACTION(5).
gl_alt_tm moment_of(const unsigned char *bytes);

// Writes a moment under a format into text[0..size), terminated. Returns 0 or the engine's error.
int32_t write_moment(locale_rec *lc, char *text, int32_t size, const char *format,
                     const gl_alt_tm &moment);

// Reads a text under a format, with the century by `century` ('\0': as DBCENTURY says). Fields that the format lacks are those
// of the present above the ones it has, and the least below them. *rest is the first character that
// was not read.
// Returns 0, the engine's error, or the error number of a failed choice of the century.
int32_t read_moment(locale_rec *lc, const char *text, const char *format, char century,
                    gl_alt_tm *moment, const char **rest);

} // namespace kestrion
