#include <kestrion/money_scan.h>

#include "gls/base/engine_error.h"
#include "gls/numbers/money_layout.h"
#include "gls/numbers/multibyte_twin.h"
#include "gls/numbers/number_scanning.h"
#include "gls/numbers/value_list.h"
#include <kestrion/char_width.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_errors.h>

using namespace kestrion;

namespace {

// What older programs store for "no amount"; a scan that gives it has found none.
constexpr double no_amount = 2147483647.0;

template <class source> bool takes_piece(source &text, wide_piece wanted) {
    source ahead = text;
    for (int32_t i = 0; i < wanted.length; ++i, ahead.next())
        if (ahead.peek() != wanted.elements[i])
            return false;
    text = ahead;
    return true;
}

template <class source> bool takes_value(source &text, const number_marks &marks, double &value) {
    skip_white(text);
    collected_float collected;
    int32_t error = GLS_OK;
    if (!scan_float(text, marks, collected))
        return false;
    value = collected.value(error);
    return error == GLS_OK && value != no_amount;
}

// What one layout found in the source.
template <class source> struct amount_match {
    bool found;
    double value;
    source text; // after what was used
};

// Where an amount begins.
template <class source> struct amount_start {
    source text;
    bool after_white; // white space before it was skipped
};

// Walks a layout along the source. A missing symbol does no harm; the end of the source ends the
// walk. A layout whose first text is a space, since there is no symbol, finds it in the white space
// that was skipped.
template <class source>
amount_match<source> mon_maskmatch(const amount_start<source> &start, const money_layout &layout,
                                   const number_marks &marks) {
    amount_match<source> match = {false, 0, start.text};
    for (const int32_t *token = layout.tokens; *token != money_end; ++token) {
        if (match.text.peek() == 0)
            break;
        bool stands = true;
        switch (*token) {
        case money_value:
            stands = match.found = takes_value(match.text, marks, match.value);
            break;
        case money_symbol:
            takes_piece(match.text, layout.symbol);
            break;
        case money_space:
            if (has_class(match.text.locale(), match.text.peek(), CT_SPACE))
                match.text.next();
            else
                stands = start.after_white && match.text.at() == start.text.at();
            break;
        default:
            stands = takes_piece(match.text, token_text(layout, *token));
            break;
        }
        if (!stands)
            return {false, 0, start.text};
    }
    match.found = match.found && match.value >= 0;
    return match;
}

// The better of the two layouts: the one that uses more of the source, at equal length the
// positive. A positive amount may also go without its sign.
template <class source>
amount_match<source> best_match(const amount_start<source> &start, money_layout positive,
                                const money_layout &negative) {
    const number_marks marks = monetary_marks(start.text.locale(), true);
    const amount_match<source> plus = mon_maskmatch(start, positive, marks);
    amount_match<source> minus = mon_maskmatch(start, negative, marks);
    minus.value = -minus.value;
    if (minus.found && (!plus.found || minus.text.at() > plus.text.at()))
        return minus;
    if (plus.found)
        return plus;
    positive.sign = {};
    return mon_maskmatch(start, positive, marks);
}

// Ends the source after so many display columns.
template <class source> void limit_columns(source &text, int32_t columns) {
    source ahead = text;
    int32_t characters = 0;
    for (gl_wchar element; (element = ahead.peek()) != 0; ahead.next(), ++characters) {
        columns -= static_cast<int32_t>(columns_of(text.locale(), {&element, 1}));
        if (columns < 0)
            break;
    }
    text.limit(characters);
}

// Scans one amount; GLS_OK or the error.
template <class source> int32_t scan_amount(source &text, const money_directive &d, double &value) {
    if (d.conversion != 'i' && d.conversion != 'n')
        return GLS_ERR_FORMAT;
    const auto before = text.at();
    if ((d.flags & (money_left | money_zero)) == 0)
        skip_white(text);
    const bool after_white = text.at() != before;
    if (d.width > 0)
        limit_columns(text, d.width);
    const money_layout positive = layout_of(text.locale(), d, false);
    const money_layout negative = layout_of(text.locale(), d, true);
    if (positive.tokens[0] == money_end || negative.tokens[0] == money_end)
        return GLS_ERR_ARGUMENT;
    const amount_match<source> match = best_match<source>({text, after_white}, positive, negative);
    if (!match.found)
        return GLS_ERR_ARGUMENT;
    value = match.value;
    text = match.text;
    return GLS_OK;
}

template <class source> typename source::pointer stopped(source &text, int32_t error) {
    const bool invalid = error == GLS_ERR_FORMAT && text.peek() == no_character;
    set_engine_error(text.locale(), invalid ? GLS_ERR_BAD_CHARACTER : error);
    return nullptr;
}

template <class source>
typename source::pointer scan(locale_rec *lc, typename source::pointer start,
                              const gl_wchar *format, va_list pointers) {
    source text(lc, start);
    if (start == nullptr || format == nullptr) {
        set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
        return nullptr;
    }
    while (*format != 0) {
        if (*format == '%' && format[1] != '%') {
            ++format;
            double value = 0;
            const int32_t error = scan_amount(text, read_money_directive(format), value);
            if (error != GLS_OK)
                return stopped(text, error);
            // An amount ends the scan, whatever the format has after it.
            *va_arg(pointers, double *) = value;
            return text.at();
        }
        if (has_class(lc, *format, CT_SPACE)) {
            skip_white(text);
            ++format;
            continue;
        }
        const bool any = *format == '%';
        const gl_wchar element = text.peek();
        if (element == 0 || element == no_character || (!any && element != *format))
            return stopped(text, GLS_ERR_FORMAT);
        text.next();
        format += any ? 2 : 1;
    }
    return text.at();
}

} // namespace

const gl_wchar *gl_wcspmon1(locale_rec *lc, const gl_wchar *source, const gl_wchar *format,
                            va_list pointers) {
    return scan<wide_source>(lc, source, format, pointers);
}

const gl_wchar *gl_wcspmon(locale_rec *lc, const gl_wchar *source, const gl_wchar *format, ...) {
    va_list pointers;
    va_start(pointers, format);
    const gl_wchar *end = gl_wcspmon1(lc, source, format, pointers);
    va_end(pointers);
    return end;
}

const char *gl_mbspmon(locale_rec *lc, const char *source, const char *format, ...) {
    const wide_copy wide_format(lc, format);
    if (wide_format.text() == nullptr)
        return nullptr;
    va_list pointers;
    va_start(pointers, format);
    const char *end = scan<multibyte_source>(lc, source, wide_format.text(), pointers);
    va_end(pointers);
    return end;
}
