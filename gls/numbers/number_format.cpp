#include <kestrion/number_format.h>

#include "gls/base/engine_error.h"
#include "gls/numbers/digits.h"
#include "gls/numbers/integer_format.h"
#include "gls/numbers/multibyte_twin.h"
#include "gls/numbers/number_directive.h"
#include "gls/numbers/text_source.h"
#include "gls/numbers/value_list.h"
#include <kestrion/char_convert.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>

#include <math.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int32_t float_width_limit = 99;
constexpr int32_t pointer_digits = 16;
constexpr int32_t default_float_precision = 6;

value_kind kind_of(const conversion &known, value_length length) {
    switch (known.kind) {
    case conversion_kind::floating:
        return value_kind::double_value;
    case conversion_kind::pointer:
    case conversion_kind::text:
        return value_kind::pointer;
    case conversion_kind::character:
        return value_kind::int_value;
    default:
        break;
    }
    return length == value_length::longs ? value_kind::long_value : value_kind::int_value;
}

// An argument cut to the size that the directive names.
uint64_t unsigned_value(int64_t value, value_length length) {
    switch (length) {
    case value_length::chars:
        return static_cast<unsigned char>(value);
    case value_length::shorts:
        return static_cast<unsigned short>(value);
    case value_length::normal:
        return static_cast<unsigned int>(value);
    case value_length::longs:
        break;
    }
    return static_cast<uint64_t>(value);
}

int64_t signed_value(int64_t value, value_length length) {
    switch (length) {
    case value_length::chars:
        return static_cast<signed char>(value);
    case value_length::shorts:
        return static_cast<short>(value);
    default:
        return value;
    }
}

// ---- Writing

class number_writer {
public:
    number_writer(locale_rec *lc, gl_wchar *dst, int32_t size, value_list &values)
        : lc_(lc), at_(dst), room_(size - 1), values_(values) {}

    // Writes the whole format; GLS_OK or the error.
    int32_t write(const gl_wchar *format);
    gl_wchar *at() const { return at_; }

private:
    int32_t announce_values(const gl_wchar *format);
    int32_t write_directive(const gl_wchar *&format);
    int32_t take_star(int32_t star, int32_t &count);
    int32_t write_value(const number_directive &d, const conversion &known, listed_value value);
    int32_t write_whole(const number_directive &d, const conversion &known, listed_value value);
    int32_t write_float(const number_directive &d, double value);
    int32_t write_character(const number_directive &d, listed_value value);
    template <class source> int32_t write_text(const number_directive &d, source text);
    int32_t write_text_of(const number_directive &d, const void *text);
    bool has_room(int64_t count) const { return count <= room_; }
    void put(gl_wchar element) {
        *at_++ = element;
        --room_;
    }

    locale_rec *lc_;
    gl_wchar *at_;
    int32_t room_; // elements left, the terminator's not among them
    bool numbered_ = false;
    value_list &values_;
};

int32_t number_writer::write(const gl_wchar *format) {
    while (*format != 0) {
        const bool directive = *format == '%' && format[1] != '%';
        if (directive) {
            ++format;
            if (const int32_t error = write_directive(format))
                return error;
            continue;
        }
        if (!has_room(1))
            return GLS_ERR_NO_ROOM;
        put(*format);
        format += *format == '%' ? 2 : 1;
    }
    *at_ = 0;
    return GLS_OK;
}

// Looks at all directives from the first numbered one on, at whose start `format` stands.
int32_t number_writer::announce_values(const gl_wchar *format) {
    for (;;) {
        number_directive d;
        if (const int32_t error = read_format_directive(lc_, format, d))
            return error;
        const conversion *known = conversion_of(d.conversion);
        if (known == nullptr || !values_.announce(d.value_index, kind_of(*known, d.length)))
            return GLS_ERR_FORMAT;
        const int32_t stars[] = {d.width_star, d.precision_star};
        for (const int32_t star : stars)
            if (star != no_star && !values_.announce(star, value_kind::int_value))
                return GLS_ERR_FORMAT;
        format = next_directive(format);
        if (format == nullptr)
            return values_.fetch() ? GLS_OK : GLS_ERR_FORMAT;
    }
}

int32_t number_writer::take_star(int32_t star, int32_t &count) {
    listed_value value;
    if (!values_.take(star, value_kind::int_value, value))
        return GLS_ERR_FORMAT;
    const int64_t limit = gl_modifier_limit;
    const int64_t capped = value.integer > limit    ? limit
                           : value.integer < -limit ? -limit
                                                    : value.integer;
    count = static_cast<int32_t>(capped);
    return GLS_OK;
}

int32_t number_writer::write_directive(const gl_wchar *&format) {
    const gl_wchar *const start = format;
    number_directive d;
    int32_t error = read_format_directive(lc_, format, d);
    if (error == GLS_OK && d.value_index != 0 && !numbered_) {
        numbered_ = true;
        error = announce_values(start);
    }
    if (error == GLS_OK && d.width_star != no_star)
        error = take_star(d.width_star, d.width);
    if (error == GLS_OK && d.precision_star != no_star)
        error = take_star(d.precision_star, d.precision);
    if (error != GLS_OK)
        return error;
    if (d.width_star != no_star && d.width < 0) {
        d.flags |= gl_flag_left;
        d.width = -d.width;
    }
    if (d.precision < 0)
        d.precision = gl_modifier_unset;
    const conversion *known = conversion_of(d.conversion);
    if (known != nullptr && known->kind == conversion_kind::pointer &&
        d.width == gl_modifier_unset) {
        d.width = pointer_digits;
        d.flags |= gl_flag_zero;
    }
    listed_value value;
    if (known == nullptr || !values_.take(d.value_index, kind_of(*known, d.length), value))
        return GLS_ERR_FORMAT;
    return write_value(d, *known, value);
}

int32_t number_writer::write_value(const number_directive &d, const conversion &known,
                                   listed_value value) {
    switch (known.kind) {
    case conversion_kind::floating:
        return write_float(d, value.number);
    case conversion_kind::text:
        return write_text_of(d, value.pointer);
    case conversion_kind::character:
        return write_character(d, value);
    default:
        return write_whole(d, known, value);
    }
}

int32_t number_writer::write_whole(const number_directive &d, const conversion &known,
                                   listed_value value) {
    uint64_t magnitude = 0;
    bool negative = false;
    if (known.kind == conversion_kind::signed_integer) {
        const int64_t number = signed_value(value.integer, d.length);
        negative = number < 0;
        magnitude = negative ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number);
    } else if (known.kind == conversion_kind::pointer) {
        magnitude = reinterpret_cast<uintptr_t>(value.pointer);
    } else {
        magnitude = unsigned_value(value.integer, d.length);
    }
    const gl_wchar *const start = at_;
    const int32_t error = write_integer(lc_, at_, room_, magnitude, negative,
                                        {known.base, d.width, d.precision, d.flags | known.flags});
    room_ -= static_cast<int32_t>(at_ - start);
    return error;
}

// Digits and fraction of a magnitude by a directive.
ascii_piece float_text(char (&buffer)[float_text_limit], const number_directive &d, double value) {
    const bool alternate = (d.flags & gl_flag_alternate) != 0;
    const int32_t precision =
        d.precision == gl_modifier_unset ? default_float_precision : d.precision;
    if (d.conversion == 'f' && isfinite(value) && !(alternate && precision == 0))
        return fixed_digits(buffer, value, precision);
    return {buffer,
            library_number(buffer, float_text_limit, d.conversion, alternate, precision, value)};
}

int32_t number_writer::write_float(const number_directive &d, double value) {
    char buffer[float_text_limit];
    const ascii_piece text = float_text(buffer, d, fabs(value));
    if (d.width > float_width_limit || text.length < 0 || text.length > number_limit)
        return GLS_ERR_NO_ROOM;
    const auto *point =
        static_cast<const char *>(memchr(text.text, '.', static_cast<size_t>(text.length)));
    const char *const end = text.text + text.length;
    const char *const digits_end = point != nullptr ? point : end;
    const bool finite = isfinite(value);
    number_parts parts = {
        .prefix = "",
        .digits = {text.text, static_cast<int32_t>(digits_end - text.text)},
        .grouped = finite && d.conversion == 'f' && (d.flags & gl_flag_group) != 0,
        .point = point != nullptr,
        .negative = signbit(value),
    };
    if (point != nullptr)
        parts.fraction = {point + 1, static_cast<int32_t>(end - point) - 1};
    // Zeros before a word would not make a number.
    const uint32_t flags = finite ? d.flags : d.flags & ~static_cast<uint32_t>(gl_flag_zero);
    const number_layout number(lc_, parts, d.width, flags);
    if (number.length() > number_limit || !has_room(number.length()))
        return GLS_ERR_NO_ROOM;
    at_ = number.write(at_);
    room_ -= static_cast<int32_t>(number.length());
    return GLS_OK;
}

int32_t number_writer::write_character(const number_directive &d, listed_value value) {
    const auto element = static_cast<gl_wchar>(value.integer);
    const bool wide = d.length == value_length::longs;
    const gl_wchar text[] = {wide ? element : element & 0xff};
    char scratch[gl_char_bytes];
    if (!wide && gl_full_wctomb(lc_, scratch, text[0]) < 0)
        return GLS_ERR_BAD_CHARACTER;
    const int64_t padding = d.width > 0 ? d.width - columns_of(lc_, {text, 1}) : 0;
    const bool left = (d.flags & gl_flag_left) != 0;
    if (!has_room(1 + (padding > 0 ? padding : 0)))
        return GLS_ERR_NO_ROOM;
    for (int64_t i = 0; !left && i < padding; ++i)
        put(' ');
    put(text[0]);
    for (int64_t i = 0; left && i < padding; ++i)
        put(' ');
    return GLS_OK;
}

template <class source> int32_t number_writer::write_text(const number_directive &d, source text) {
    if (d.precision != gl_modifier_unset)
        text.limit(d.precision);
    const bool left = (d.flags & gl_flag_left) != 0;
    gl_wchar *const start = at_;
    for (gl_wchar element; (element = text.peek()) != 0; text.next()) {
        if (element == no_character)
            return GLS_ERR_BAD_CHARACTER;
        if (!has_room(1))
            return GLS_ERR_NO_ROOM;
        put(element);
    }
    const auto length = static_cast<int32_t>(at_ - start);
    const int64_t padding = d.width > 0 ? d.width - columns_of(lc_, {start, length}) : 0;
    if (padding <= 0)
        return GLS_OK;
    if (!has_room(padding))
        return GLS_ERR_NO_ROOM;
    if (!left)
        memmove(start + padding, start, static_cast<size_t>(length) * sizeof *start);
    for (int64_t i = 0; i < padding; ++i)
        (left ? at_ : start)[i] = ' ';
    at_ += padding;
    room_ -= static_cast<int32_t>(padding);
    return GLS_OK;
}

int32_t number_writer::write_text_of(const number_directive &d, const void *text) {
    if (text == nullptr)
        return GLS_ERR_NULL_ARGUMENT;
    if (d.length == value_length::longs)
        return write_text(d, wide_source(lc_, static_cast<const gl_wchar *>(text)));
    return write_text(d, multibyte_source(lc_, static_cast<const char *>(text)));
}

int32_t format_wide(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    value_list &values) {
    if (dst == nullptr || format == nullptr || size < 1)
        return no_result(dst, size, fail(lc, size < 1 ? GLS_ERR_NO_ROOM : GLS_ERR_NULL_ARGUMENT));
    number_writer writer(lc, dst, size, values);
    const int32_t error = writer.write(format);
    if (error != GLS_OK)
        return no_result(dst, size, fail(lc, error));
    return static_cast<int32_t>(writer.at() - dst);
}

int32_t format_multibyte(locale_rec *lc, char *dst, int32_t size, const char *format,
                         value_list &values) {
    const wide_copy wide_format(lc, format);
    const wide_area area(lc, size);
    if (wide_format.text() == nullptr || area.elements() == nullptr)
        return no_result(lc, dst, size, -1);
    const int32_t count = format_wide(lc, area.elements(), area.size(), wide_format.text(), values);
    return _gl_get_mbstring(lc, dst, size, area.elements(), count);
}

} // namespace

int32_t gl_wcsfnum1(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    va_list list) {
    value_list values;
    va_copy(values.list, list);
    const int32_t count = format_wide(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_wcsprintf(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format, ...) {
    value_list values;
    va_start(values.list, format);
    const int32_t count = format_wide(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_wcsfnum(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format, ...) {
    value_list values;
    va_start(values.list, format);
    const int32_t count = format_wide(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_mbsprintf1(locale_rec *lc, char *dst, int32_t size, const char *format, va_list list) {
    value_list values;
    va_copy(values.list, list);
    const int32_t count = format_multibyte(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_mbsprintf(locale_rec *lc, char *dst, int32_t size, const char *format, ...) {
    value_list values;
    va_start(values.list, format);
    const int32_t count = format_multibyte(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_mbsfnum(locale_rec *lc, char *dst, int32_t size, const char *format, ...) {
    value_list values;
    va_start(values.list, format);
    const int32_t count = format_multibyte(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t CheckForInfinity(double value) { return isinf(value) ? (value > 0 ? 2 : 1) : 0; }

int32_t CheckForNaN(double value) { return isnan(value) ? 2 : 0; }
