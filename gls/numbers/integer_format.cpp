#include <kestrion/integer_format.h>

#include "gls/numbers/integer_format.h"

#include "gls/base/engine_error.h"
#include "gls/numbers/digits.h"
#include "gls/numbers/multibyte_twin.h"
#include "gls/text/char_walk.h"
#include <kestrion/format_modifiers.h>
#include <kestrion/gls_errors.h>

using namespace kestrion;

namespace {

struct magnitude {
    uint64_t value;
    bool negative;
};

magnitude magnitude_of(int64_t value) {
    const auto bits = static_cast<uint64_t>(value);
    return value < 0 ? magnitude{0 - bits, true} : magnitude{bits, false};
}

// "#" before the digits. It marks 0 as well, unlike in C.
const char *prefix_of(int32_t base, uint32_t flags) {
    if ((flags & gl_flag_alternate) == 0)
        return "";
    if (base == 16)
        return (flags & gl_flag_upper_case) != 0 ? "0X" : "0x";
    return base == 8 ? "0" : "";
}

int32_t wide_integer_text(locale_rec *lc, magnitude number, gl_wchar *dst, int32_t size,
                          int32_t base, int32_t group) {
    gl_wchar *at = dst;
    const integer_directive directive = {base, gl_modifier_unset, gl_modifier_unset,
                                         group != 0 ? static_cast<uint32_t>(gl_flag_group) : 0};
    const int32_t error = write_integer(lc, at, size - 1, number.value, number.negative, directive);
    if (error != GLS_OK)
        return no_result(dst, size, fail(lc, error));
    *at = 0;
    return static_cast<int32_t>(at - dst);
}

int32_t multibyte_integer_text(locale_rec *lc, magnitude number, char *dst, int32_t size,
                               int32_t base, int32_t group) {
    gl_wchar wide[number_limit + 1];
    const int32_t count = wide_integer_text(lc, number, wide, number_limit + 1, base, group);
    return _gl_get_mbstring(lc, dst, size, wide, count);
}

} // namespace

int32_t kestrion::write_integer(locale_rec *lc, gl_wchar *&at, int32_t room, uint64_t value,
                                bool negative, const integer_directive &directive) {
    if (directive.base < 2 || directive.base > gl_base_limit)
        return GLS_ERR_ARGUMENT;
    char buffer[integer_digit_limit];
    char *const end = buffer + integer_digit_limit;
    const char *first = integer_digits(end, value, static_cast<uint32_t>(directive.base),
                                       (directive.flags & gl_flag_upper_case) != 0);
    const auto count = static_cast<int32_t>(end - first);
    const number_parts parts = {
        .prefix = prefix_of(directive.base, directive.flags),
        .zeros = directive.precision - count, // the precision counts digits
        .digits = {first, count},
        .grouped = (directive.flags & gl_flag_group) != 0,
        .negative = negative,
    };
    const number_layout number(lc, parts, directive.width, directive.flags);
    if (number.length() > number_limit || number.length() > room)
        return GLS_ERR_NO_ROOM;
    at = number.write(at);
    return GLS_OK;
}

int32_t _gl_format_decimal(locale_rec *lc, uint64_t value, int32_t negative, int32_t base,
                           int32_t *room, gl_wchar *start, gl_wchar **end, int32_t width,
                           int32_t precision, uint32_t flags) {
    gl_wchar *at = start;
    const int32_t error =
        write_integer(lc, at, *room, value, negative != 0, {base, width, precision, flags});
    if (error != GLS_OK)
        return fail(lc, error);
    *end = at;
    *room = static_cast<int32_t>(at - start);
    return 0;
}

int32_t _gl_format_decimalull(locale_rec *lc, uint64_t value, int32_t negative, int32_t base,
                              int32_t *room, gl_wchar *start, gl_wchar **end, int32_t width,
                              int32_t precision, uint32_t flags) {
    return _gl_format_decimal(lc, value, negative, base, room, start, end, width, precision, flags);
}

int32_t gl_ltowcs(locale_rec *lc, int64_t value, gl_wchar *dst, int32_t size, int32_t base,
                  int32_t group) {
    return wide_integer_text(lc, magnitude_of(value), dst, size, base, group);
}

int32_t gl_ultowcs(locale_rec *lc, uint64_t value, gl_wchar *dst, int32_t size, int32_t base,
                   int32_t group) {
    return wide_integer_text(lc, {value, false}, dst, size, base, group);
}

int32_t gl_ltombs(locale_rec *lc, int64_t value, char *dst, int32_t size, int32_t base,
                  int32_t group) {
    return multibyte_integer_text(lc, magnitude_of(value), dst, size, base, group);
}

int32_t gl_ultombs(locale_rec *lc, uint64_t value, char *dst, int32_t size, int32_t base,
                   int32_t group) {
    return multibyte_integer_text(lc, {value, false}, dst, size, base, group);
}
