// The directives of number formats, read piece by piece: the formatter, the scanner and the formats
// of times put the pieces together in their own ways.

#pragma once

#include <kestrion/format_modifiers.h>
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

inline constexpr int32_t value_index_limit = 32; // of "N$"

// Where a width or precision of "*" comes from, instead of a number.
inline constexpr int32_t no_star = -1;  // it is a number, or missing
inline constexpr int32_t next_star = 0; // the next value; else the value of that number

enum class value_length { normal, chars, shorts, longs };

struct number_directive {
    uint32_t flags = 0; // gl_number_flags
    int32_t width = gl_modifier_unset;
    int32_t precision = gl_modifier_unset;
    int32_t width_star = no_star;     // where the width comes from
    int32_t precision_star = no_star; // where the precision comes from
    int32_t value_index = 0;          // 1 to value_index_limit; 0 the next value
    bool suppressed = false;          // the scanner's "*": scanned, not stored
    value_length length = value_length::normal;
    gl_wchar conversion = 0;
};

enum class conversion_kind : uint8_t {
    signed_integer,
    unsigned_integer,
    pointer,
    floating,
    character,
    text,
};

struct conversion {
    char letter;
    conversion_kind kind;
    int32_t base;   // of an integer
    uint32_t flags; // that the letter stands for
};

// Null for a letter that is not a conversion.
const conversion *conversion_of(gl_wchar letter);

// Read a whole directive from the element after "%" into one as it is made, and leave `at` after
// the conversion. Return
// GLS_OK or the error: GLS_ERR_NO_REGISTRY when the format ends inside it, GLS_ERR_FORMAT for a bad
// number before "$", GLS_ERR_PRECISION. Whether the conversion exists is left to the caller.
int32_t read_format_directive(locale_rec *lc, const gl_wchar *&at, number_directive &out);
int32_t read_scan_directive(locale_rec *lc, const gl_wchar *&at, number_directive &out);

// The element after the "%" of the next directive from `at` on; null when there is none.
const gl_wchar *next_directive(const gl_wchar *at);

} // namespace kestrion
