#include <kestrion/readers.h>

#include "base/ascii_class.h"
#include "gls/base/c_locale_number.h"
#include <kestrion/ext_funcs.h>

#include <limits>
#include <locale.h>
#include <stdlib.h>

using namespace kestrion;

namespace {

constexpr int max_kept_digits = 39;  // after the first character of an integer
constexpr int max_float_length = 80; // characters of a floating number
constexpr int max_hex_digits = 8;

struct hex_values {
    unsigned char of[256];
};

constexpr hex_values make_hex_values() {
    hex_values values = {};
    for (int c = 0; c < 256; ++c)
        values.of[c] = static_cast<unsigned char>(ascii_hex_value(c) < 0 ? 0 : ascii_hex_value(c));
    return values;
}

constexpr hex_values hex = make_hex_values();

constexpr bool is_float_part(int c) {
    return is_ascii_digit(c) || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E';
}

void put_back(int c, FILE *file) {
    if (c != EOF)
        _gl_ext_ungetc(c, file);
}

// Appends a digit to a magnitude that stops at `limit`.
uint64_t append_digit(uint64_t magnitude, unsigned digit, uint64_t limit) {
    return magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
}

} // namespace

double kestrion::c_locale_number(const char *text, const char **end) {
    locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr); // the C library's own: no memory
    char *rest = nullptr;
    const double value = strtod_l(text, &rest, c_locale);
    *end = rest;
    return value;
}

int _gl_skip_whitespace(FILE *file) {
    int c;
    do
        c = _gl_ext_fgetc(file);
    while (is_ascii_white(c));
    put_back(c, file);
    return c;
}

void _gl_skip_space_if_needed(FILE *file) {
    const int c = _gl_ext_fgetc(file);
    if (c != ' ')
        put_back(c, file);
}

int _gl_skip_nl(FILE *file) {
    const int c = _gl_ext_fgetc(file);
    if (c == '\n')
        return 1;
    put_back(c, file);
    return 0;
}

uint32_t _gl_get_hex_digit(FILE *file) {
    const int c = _gl_ext_fgetc(file);
    return c == EOF ? 0 : hex.of[static_cast<unsigned char>(c)];
}

uint32_t _gl_get_hex_byte(FILE *file) { return _gl_get_hex(file, 2); }

uint32_t _gl_get_hex(FILE *file, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count && i < max_hex_digits; ++i)
        value = value << 4 | _gl_get_hex_digit(file);
    return value;
}

int64_t _gl_get_int(FILE *file) {
    int first = _gl_ext_getc(file);
    if (first == ' ')
        first = _gl_ext_getc(file);
    if (first == EOF)
        return 0;
    const bool negative = first == '-';
    const bool converts =
        is_ascii_digit(first) || negative || first == '+' || is_ascii_white(first);
    const uint64_t limit =
        static_cast<uint64_t>(std::numeric_limits<int64_t>::max()) + (negative ? 1 : 0);
    uint64_t magnitude = is_ascii_digit(first) ? static_cast<unsigned>(first - '0') : 0;
    int c = _gl_ext_getc(file);
    for (int kept = 0; is_ascii_digit(c); c = _gl_ext_getc(file), ++kept) {
        if (kept < max_kept_digits)
            magnitude = append_digit(magnitude, static_cast<unsigned>(c - '0'), limit);
    }
    put_back(c, file);
    if (!converts)
        return 0;
    return static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
}

double _gl_get_dbl(FILE *file) {
    char text[max_float_length + 1];
    size_t length = 0;
    while (length < max_float_length) {
        const int c = _gl_ext_getc(file);
        if (!is_float_part(c)) {
            put_back(c, file);
            break;
        }
        text[length++] = static_cast<char>(c);
    }
    text[length] = '\0';
    const char *end = nullptr;
    return c_locale_number(text, &end);
}

int _gl_get_str(char *buffer, size_t size, FILE *file) {
    size_t length = 0;
    for (;;) {
        const int c = _gl_ext_getc(file);
        const bool room = length + 1 < size;
        if (c != EOF && !is_ascii_white(c) && room) {
            buffer[length++] = static_cast<char>(c);
            continue;
        }
        put_back(c, file);
        buffer[length] = '\0';
        return is_ascii_white(c) ? 0 : -1;
    }
}
