#include <kestrion/double_text.h>

#include <kestrion/error_numbers.h>
#include <kestrion/startup.h>

#include "gls/base/c_locale_number.h"
#include "values/decimal/c_locale_scope.h"
#include "values/decimal/conventions_in_use.h"
#include "values/decimal/text_range.h"

#include <stdio.h>

using namespace kestrion;

namespace {

constexpr int gnftoasc_size = 81;
// No double lies so close to the middle of two others that more digits than these decide; of what
// follows only whether it is all 0 counts.
constexpr int deciding_digits = 780;

// The digits of a number without the zeros at its start, as the C library reads them.
struct double_digits {
    char text[deciding_digits + 16];
    int count = 0;
    int64_t exponent = 0; // power of ten that the digits stand for, as an integer
    bool any = false;     // a digit was read

    void take(char digit, bool after_radix) {
        any = true;
        exponent -= after_radix;
        if (count == 0 && digit == '0')
            return;
        if (count < deciding_digits) {
            text[count++] = digit;
            return;
        }
        ++exponent;
        if (digit != '0' && text[deciding_digits - 1] == '0')
            text[deciding_digits - 1] = '1';
    }

    double value() {
        if (count == 0)
            return 0.0;
        constexpr int64_t far = 100000; // an exponent that no digits bring back
        exponent = exponent < -far ? -far : exponent > far ? far : exponent;
        snprintf(text + count, sizeof text - static_cast<size_t>(count), "e%d",
                 static_cast<int>(exponent));
        const char *end;
        return c_locale_number(text, &end);
    }
};

// A sign text of the locale, "+" or "-": here the locale's positive sign does not replace "+".
bool take_any_sign(text_range &text, const lconv_rec *conventions) {
    const char *before = text.at;
    const bool negative = text.take_sign(conventions);
    if (text.at == before && text.at_char('+'))
        ++text.at;
    return negative;
}

bool take_double(text_range text, const lconv_rec *conventions, double *out) {
    const size_t radix_length = strlen(conventions->radix);
    text.skip_blanks();
    const bool negative = take_any_sign(text, conventions);
    double_digits digits;
    for (bool after_radix = false;;) {
        if (text.at_digit()) {
            digits.take(*text.at++, after_radix);
        } else if (!after_radix && text.at_text(conventions->radix, radix_length)) {
            after_radix = true;
            text.at += radix_length;
        } else {
            break;
        }
    }
    if (!digits.any)
        return false;
    if (text.at_char('e') || text.at_char('E')) {
        ++text.at;
        digits.exponent += text.take_integer();
    }
    if (!text.ends())
        return false;
    *out = negative ? -digits.value() : digits.value();
    return true;
}

} // namespace

int qvt_gl_convert_double(double *out, const char *text, const char * /*format*/) {
    *out = 0.0;
    if (const int failure = chkglsinit(); failure != 0)
        return failure;
    return take_double({text, text + strlen(text)}, local_conventions(), out) ? 0
                                                                              : err_not_a_number;
}

int rstod(const char *text, double *out) { return qvt_gl_convert_double(out, text, "%e"); }

int rdecstr(char *text, int size) {
    char *point = strchr(text, '.');
    const char *radix = local_conventions()->radix;
    const size_t radix_length = strlen(radix);
    if (point == nullptr)
        return 0;
    const size_t rest = strlen(point + 1) + 1;
    if (size < 0 ||
        static_cast<size_t>(point - text) + radix_length + rest > static_cast<size_t>(size))
        return err_display_width;
    memmove(point + radix_length, point + 1, rest);
    memcpy(point, radix, radix_length);
    return 0;
}

int _gnftoasc(double value, char *text) {
    {
        const c_locale_scope plain;
        snprintf(text, gnftoasc_size, "%.17g", value);
    }
    if (const int failure = chkglsinit(); failure != 0)
        return failure;
    return rdecstr(text, gnftoasc_size);
}
