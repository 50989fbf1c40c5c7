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

int32_t format_decimal(locale_rec *lc, uint64_t value, bool negative, int32_t base, int32_t *room,
                       gl_wchar *start, gl_wchar **end, int32_t width, int32_t precision,
                       uint32_t flags) {
    number_layout number;
    int32_t error = lay_out_integer(lc, number, value, negative, base, width, precision, flags);
    if (error == GLS_OK && number.length() > *room)
        error = GLS_ERR_NO_ROOM;
    if (error != GLS_OK)
        return fail(lc, error);
    number.copy_to(start);
    *room = number.length();
    *end = start + *room;
    return 0;
}

int32_t wide_integer_text(locale_rec *lc, magnitude number, gl_wchar *dst, int32_t size,
                          int32_t base, int32_t group) {
    int32_t count = size - 1;
    gl_wchar *end = nullptr;
    if (size < 1)
        return fail(lc, GLS_ERR_NO_ROOM);
    if (format_decimal(lc, number.value, number.negative, base, &count, dst, &end,
                       gl_modifier_unset, gl_modifier_unset, group != 0 ? gl_flag_group : 0) != 0)
        return no_result(dst, size, -1);
    *end = 0;
    return count;
}

int32_t multibyte_integer_text(locale_rec *lc, magnitude number, char *dst, int32_t size,
                               int32_t base, int32_t group) {
    gl_wchar wide[number_limit + 1];
    const int32_t count = wide_integer_text(lc, number, wide, number_limit + 1, base, group);
    return _gl_get_mbstring(lc, dst, size, wide, count);
}

} // namespace

int32_t kestrion::lay_out_integer(locale_rec *lc, number_layout &out, uint64_t value, bool negative,
                                  int32_t base, int32_t width, int32_t precision, uint32_t flags) {
    if (base < 2 || base > gl_base_limit)
        return GLS_ERR_ARGUMENT;
    char digits[integer_digit_limit];
    char *const end = digits + integer_digit_limit;
    const char *first =
        integer_digits(end, value, static_cast<uint32_t>(base), (flags & gl_flag_upper_case) != 0);
    const auto count = static_cast<int32_t>(end - first);
    if ((flags & gl_flag_group) != 0)
        out.put_grouped(first, count, numeric_of(lc));
    else
        out.put_ascii(first, count);
    // The precision counts digits; its zeros get no separators.
    out.fill('0', precision - count);
    out.finish(lc, prefix_of(base, flags), negative, width, flags);
    return out.fits() ? GLS_OK : GLS_ERR_NO_ROOM;
}

int32_t _gl_format_decimal(locale_rec *lc, uint64_t value, int32_t negative, int32_t base,
                           int32_t *room, gl_wchar *start, gl_wchar **end, int32_t width,
                           int32_t precision, uint32_t flags) {
    return format_decimal(lc, value, negative != 0, base, room, start, end, width, precision,
                          flags);
}

int32_t _gl_format_decimalull(locale_rec *lc, uint64_t value, int32_t negative, int32_t base,
                              int32_t *room, gl_wchar *start, gl_wchar **end, int32_t width,
                              int32_t precision, uint32_t flags) {
    return format_decimal(lc, value, negative != 0, base, room, start, end, width, precision,
                          flags);
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
