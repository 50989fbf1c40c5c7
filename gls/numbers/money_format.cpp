#include <kestrion/money_format.h>

#include "gls/base/engine_error.h"
#include "gls/numbers/digits.h"
#include "gls/numbers/grouping.h"
#include "gls/numbers/growing_text.h"
#include "gls/numbers/money_layout.h"
#include "gls/numbers/multibyte_twin.h"
#include "gls/numbers/value_list.h"
#include "gls/text/char_walk.h"
#include <kestrion/ctype_masks.h>
#include <kestrion/format_modifiers.h>
#include <kestrion/gls_errors.h>

#include <math.h>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int32_t amount_limit = 255; // elements of one amount; what is beyond is cut
constexpr int32_t printed_digits = 6; // after the point; rounding looks at no more
constexpr int32_t default_digits = 2; // after the point, where the locale does not say
constexpr int32_t locale_digit_limit = 99;
constexpr int64_t no_columns = -1; // an amount that is not lined up

int64_t larger(int64_t a, int64_t b) { return a > b ? a : b; }

// ---- Digits of an amount

// The digits of a finite value, rounded half up to a precision.
struct amount_digits {
    char buffer[float_text_limit];
    ascii_piece integer;
    ascii_piece fraction; // at most printed_digits; zeros follow
};

// Adds one to the digits that end before `end`; the place before the first one takes the carry.
void add_one(char *end) {
    char *digit = end - 1;
    for (;; --digit) {
        if (*digit == '.')
            continue;
        if (*digit != '9')
            break;
        *digit = '0';
    }
    ++*digit;
}

void make_digits(amount_digits &out, double value, int32_t precision) {
    const ascii_piece printed = fixed_digits(out.buffer, value, printed_digits);
    char *start = out.buffer + (printed.text - out.buffer) - 1;
    char *const point = start + printed.length - printed_digits;
    *start = '0';
    const int32_t kept = precision < printed_digits ? precision : printed_digits;
    if (kept < printed_digits && point[1 + kept] >= '5')
        add_one(point + 1 + kept);
    start += *start == '0';
    out.integer = {start, static_cast<int32_t>(point - start)};
    out.fraction = {point + 1, kept};
}

// ---- The value

int32_t right_precision_of(const locale_rec *lc, const money_directive &d) {
    if (d.right_precision != gl_modifier_unset)
        return d.right_precision;
    const monetary_rec &own = monetary_of(lc);
    const int32_t digits = d.conversion == 'i' ? own.int_frac_digits : own.frac_digits;
    return digits >= 0 && digits <= locale_digit_limit ? digits : default_digits;
}

// The elements that the left precision makes room for.
int64_t left_room(const locale_rec *lc, const money_directive &d, bool has_point) {
    const monetary_rec &own = monetary_of(lc);
    int64_t room = d.left_precision;
    if ((d.flags & money_no_groups) == 0)
        room += static_cast<int64_t>(get_grp_cnt(own.mon_grouping, d.left_precision)) *
                piece_of(numeric_of(lc).wide_thousands_sep).length;
    return room + (has_point ? piece_of(own.wide_mon_decimal_point).length : 0);
}

// Puts the fill before the value's integer part of `length` elements.
void add_fill(const locale_rec *lc, const money_directive &d, int64_t length, bool has_point,
              growing_text &out) {
    if (d.left_precision != gl_modifier_unset)
        out.fill(d.fill, left_room(lc, d, has_point) - length);
}

void add_value(const locale_rec *lc, const money_directive &d, double value, growing_text &out) {
    if (!isfinite(value)) {
        const char *text = isnan(value) ? "nan" : "inf";
        add_fill(lc, d, 3, false, out);
        return out.add(ascii_piece{text, 3});
    }
    const int32_t precision = right_precision_of(lc, d);
    amount_digits digits;
    make_digits(digits, value, precision);
    const monetary_rec &own = monetary_of(lc);
    const wide_piece point = precision > 0 ? piece_of(own.wide_mon_decimal_point) : wide_piece{};
    // The separator is that of numbers, not of money: other programs read amounts that way.
    const gl_wchar *separator = numeric_of(lc).wide_thousands_sep;
    constexpr group_rec no_groups = {};
    const group_rec &groups = (d.flags & money_no_groups) != 0 ? no_groups : own.mon_grouping;
    const int64_t length =
        digits.integer.length + static_cast<int64_t>(get_grp_cnt(groups, digits.integer.length)) *
                                    piece_of(separator).length;
    add_fill(lc, d, length + point.length, precision > 0, out);
    if (gl_wchar *const place = out.add(length))
        add_grp_sep(place + length, digits.integer, groups, separator);
    out.add(point);
    out.add(digits.fraction);
    out.fill('0', precision - digits.fraction.length);
}

// ---- The layout

// Display columns of the tokens [from, to).
int64_t token_columns(locale_rec *lc, const money_layout &layout, int32_t from, int32_t to) {
    int64_t columns = 0;
    for (int32_t i = from; i < to; ++i)
        columns += columns_of(lc, token_text(layout, layout.tokens[i]));
    return columns;
}

struct token_range {
    int32_t value; // index of the value, or of the end
    int32_t end;
};

token_range range_of(const money_layout &layout) {
    token_range range = {};
    while (layout.tokens[range.end] != money_end)
        ++range.end;
    while (range.value < range.end && layout.tokens[range.value] != money_value)
        ++range.value;
    return range;
}

int64_t dsp_before_val(locale_rec *lc, const money_layout &layout) {
    return token_columns(lc, layout, 0, range_of(layout).value);
}

int64_t dsp_after_val(locale_rec *lc, const money_layout &layout) {
    const token_range range = range_of(layout);
    return token_columns(lc, layout, range.value, range.end);
}

// Lays the value out among the tokens, so that it has at least so many columns before and after it.
void format_money(locale_rec *lc, const money_layout &layout, wide_piece value, int64_t before,
                  int64_t after, growing_text &out) {
    const token_range range = range_of(layout);
    int32_t last_before = range.value;
    // A value that begins with a blank needs no space before it.
    if (last_before > 0 && layout.tokens[last_before - 1] == money_space && value.length > 0 &&
        has_class(lc, value.elements[0], CT_BLANK))
        --last_before;
    if (before != no_columns)
        out.fill(' ', before - token_columns(lc, layout, 0, last_before));
    for (int32_t i = 0; i < last_before; ++i)
        out.add(token_text(layout, layout.tokens[i]));
    if (range.value < range.end)
        out.add(value);
    for (int32_t i = range.value; i < range.end; ++i)
        out.add(token_text(layout, layout.tokens[i]));
    if (after != no_columns)
        out.fill(' ', after - token_columns(lc, layout, range.value, range.end));
}

// ---- The whole

// The layout for a value of one sign. Positive amounts show their sign only when asked to.
money_layout written_layout(const locale_rec *lc, const money_directive &d, bool negative) {
    money_layout layout = layout_of(lc, d, negative);
    if (!negative && (d.flags & money_plus) == 0)
        layout.sign = {};
    return layout;
}

// One amount, padded to its width; false when memory ran out.
bool add_amount(locale_rec *lc, const money_directive &d, double value, growing_text &out) {
    growing_text digits;
    add_value(lc, d, fabs(value), digits);
    const bool negative = value < 0;
    const money_layout layout = written_layout(lc, d, negative);
    int64_t before = no_columns, after = no_columns;
    if (d.left_precision != gl_modifier_unset) { // amounts line up, whatever their sign
        const money_layout other = written_layout(lc, d, !negative);
        before = larger(dsp_before_val(lc, layout), dsp_before_val(lc, other));
        after = larger(dsp_after_val(lc, layout), dsp_after_val(lc, other));
    }
    format_money(lc, layout, digits.piece(), before, after, out);
    const int64_t padding = d.width > 0 ? d.width - columns_of(lc, out.piece()) : 0;
    if ((d.flags & money_left) != 0)
        out.fill(' ', padding);
    else
        out.fill_front(' ', padding);
    return !digits.failed() && !out.failed();
}

class amount_writer {
public:
    amount_writer(locale_rec *lc, gl_wchar *dst, int32_t size, value_list &values)
        : lc_(lc), at_(dst), room_(size - 1), values_(values) {}

    // Writes the whole format; GLS_OK or the error.
    int32_t write(const gl_wchar *format);
    gl_wchar *at() const { return at_; }

private:
    int32_t write_directive(const gl_wchar *&format);
    int32_t put(wide_piece text) {
        if (text.length > room_)
            return GLS_ERR_NO_ROOM;
        memcpy(at_, text.elements, static_cast<size_t>(text.length) * sizeof *at_);
        at_ += text.length;
        room_ -= text.length;
        return GLS_OK;
    }

    locale_rec *lc_;
    gl_wchar *at_;
    int32_t room_; // elements left, the terminator's not among them
    value_list &values_;
};

int32_t amount_writer::write(const gl_wchar *format) {
    while (*format != 0) {
        int32_t error = GLS_OK;
        if (*format == '%' && format[1] != '%') {
            ++format;
            error = write_directive(format);
        } else {
            error = put({format, 1});
            format += *format == '%' ? 2 : 1;
        }
        if (error != GLS_OK)
            return error;
    }
    *at_ = 0;
    return GLS_OK;
}

int32_t amount_writer::write_directive(const gl_wchar *&format) {
    const money_directive d = read_money_directive(format);
    if (d.conversion == 0)
        return GLS_ERR_NO_REGISTRY;
    if (d.conversion != 'i' && d.conversion != 'n')
        return GLS_ERR_MONEY_FORMAT;
    listed_value value;
    values_.take(0, value_kind::double_value, value);
    growing_text amount;
    if (!add_amount(lc_, d, value.number, amount))
        return GLS_ERR_NO_MEMORY;
    const wide_piece text = amount.piece();
    return put({text.elements, text.length < amount_limit ? text.length : amount_limit});
}

int32_t format_wide(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    value_list &values) {
    if (dst == nullptr || format == nullptr || size < 1)
        return no_result(dst, size, fail(lc, size < 1 ? GLS_ERR_NO_ROOM : GLS_ERR_NULL_ARGUMENT));
    amount_writer writer(lc, dst, size, values);
    const int32_t error = writer.write(format);
    if (error != GLS_OK)
        return no_result(dst, size, fail(lc, error));
    return static_cast<int32_t>(writer.at() - dst);
}

} // namespace

int32_t gl_wcsfmon1(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format,
                    va_list list) {
    value_list values;
    va_copy(values.list, list);
    const int32_t count = format_wide(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_wcsfmon(locale_rec *lc, gl_wchar *dst, int32_t size, const gl_wchar *format, ...) {
    value_list values;
    va_start(values.list, format);
    const int32_t count = format_wide(lc, dst, size, format, values);
    va_end(values.list);
    return count;
}

int32_t gl_mbsfmon(locale_rec *lc, char *dst, int32_t size, const char *format, ...) {
    const wide_copy wide_format(lc, format);
    const wide_area area(lc, size);
    if (wide_format.text() == nullptr || area.elements() == nullptr)
        return no_result(lc, dst, size, -1);
    value_list values;
    va_start(values.list, format);
    const int32_t count = format_wide(lc, area.elements(), area.size(), wide_format.text(), values);
    va_end(values.list);
    return _gl_get_mbstring(lc, dst, size, area.elements(), count);
}
