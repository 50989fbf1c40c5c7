#include <kestrion/number_text.h>

#include "gls/base/engine_error.h"
#include "gls/numbers/number_scanning.h"
#include <kestrion/ext_funcs.h>
#include <kestrion/format_modifiers.h>
#include <kestrion/gls_errors.h>

using namespace kestrion;

namespace {

bool is_base(int32_t base) { return base == 0 || (base >= 2 && base <= gl_base_limit); }

// The arguments of every operation; false with the error word set.
template <class source>
[[gnu::always_inline]] inline bool begins(source &text, typename source::pointer *end) {
    if (end != nullptr)
        *end = text.at();
    if (text.at() == nullptr)
        set_engine_error(text.locale(), GLS_ERR_NULL_ARGUMENT);
    else
        skip_white(text);
    return text.at() != nullptr;
}

// Scans an integer after white space and stores where it ends; false when there is none.
template <class source>
[[gnu::always_inline]] inline bool scan_whole(source text, typename source::pointer *end,
                                              int32_t base, int32_t group, scanned_integer &out) {
    if (!begins(text, end))
        return false;
    if (!is_base(base)) {
        set_engine_error(text.locale(), GLS_ERR_ARGUMENT);
        return false;
    }
    if (!scan_integer(text, numeric_marks(text.locale(), group != 0), static_cast<uint32_t>(base),
                      out))
        return false;
    if (end != nullptr)
        *end = text.at();
    return true;
}

template <class source>
[[gnu::always_inline]] inline int64_t signed_integer(source text, typename source::pointer *end,
                                                     int32_t base, int32_t group) {
    scanned_integer scanned;
    int64_t value = 0;
    if (scan_whole(text, end, base, group, scanned) &&
        !signed_value_of(scanned, INT64_MIN, INT64_MAX, value))
        set_engine_error(text.locale(), GLS_ERR_RANGE);
    return value;
}

template <class source>
[[gnu::always_inline]] inline uint64_t unsigned_integer(source text, typename source::pointer *end,
                                                        int32_t base, int32_t group) {
    scanned_integer scanned;
    if (!scan_whole(text, end, base, group, scanned))
        return 0;
    if (scanned.overflow)
        set_engine_error(text.locale(), GLS_ERR_RANGE);
    return scanned.negative && !scanned.overflow ? 0 - scanned.magnitude : scanned.magnitude;
}

template <class source>
[[gnu::always_inline]] inline double floating(source text, typename source::pointer *end,
                                              const number_marks &marks) {
    collected_float collected;
    if (!begins(text, end) || !scan_float(text, marks, collected))
        return 0;
    int32_t error = GLS_OK;
    const double value = collected.value(error);
    if (error != GLS_OK)
        set_engine_error(text.locale(), error);
    if (end != nullptr && error != GLS_ERR_NO_ROOM)
        *end = text.at();
    return value;
}

// Scans at `text` itself; the elements used.
int32_t scan_decimal(locale_rec *lc, const gl_wchar *text, int32_t width, int32_t base,
                     uint32_t flags, int32_t *negative, scanned_integer &out) {
    *negative = 0;
    if (!is_base(base)) {
        set_engine_error(lc, GLS_ERR_ARGUMENT);
        return 0;
    }
    wide_source source(lc, text);
    if (width >= 0)
        source.limit(width);
    const number_marks marks = numeric_marks(lc, (flags & gl_flag_group) != 0);
    if (!scan_integer(source, marks, static_cast<uint32_t>(base), out))
        return 0;
    *negative = out.negative;
    return static_cast<int32_t>(source.at() - text);
}

} // namespace

int64_t gl_wcstol(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t base,
                  int32_t group) {
    return signed_integer(wide_source(lc, text), end, base, group);
}

uint64_t gl_wcstoul(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t base,
                    int32_t group) {
    return unsigned_integer(wide_source(lc, text), end, base, group);
}

uint64_t gl_wcstoull(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t base,
                     int32_t group) {
    return unsigned_integer(wide_source(lc, text), end, base, group);
}

int64_t gl_mbstol(locale_rec *lc, const char *text, const char **end, int32_t base, int32_t group) {
    return signed_integer(multibyte_source(lc, text), end, base, group);
}

uint64_t gl_mbstoul(locale_rec *lc, const char *text, const char **end, int32_t base,
                    int32_t group) {
    return unsigned_integer(multibyte_source(lc, text), end, base, group);
}

int32_t _gl_scan_decimal(locale_rec *lc, const gl_wchar *text, int32_t width, int32_t base,
                         uint32_t flags, int32_t *negative, int64_t *value) {
    scanned_integer scanned;
    *value = 0;
    const int32_t used = scan_decimal(lc, text, width, base, flags, negative, scanned);
    if (used > 0 && !signed_value_of(scanned, INT64_MIN, INT64_MAX, *value))
        set_engine_error(lc, GLS_ERR_RANGE);
    return used;
}

int32_t _gl_scan_decimalull(locale_rec *lc, const gl_wchar *text, int32_t width, int32_t base,
                            uint32_t flags, int32_t *negative, uint64_t *value) {
    scanned_integer scanned = {};
    const int32_t used = scan_decimal(lc, text, width, base, flags, negative, scanned);
    *value = used > 0 ? scanned.magnitude : 0;
    if (used > 0 && scanned.overflow)
        set_engine_error(lc, GLS_ERR_RANGE);
    return used;
}

double gl_wcstod(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t group) {
    return floating(wide_source(lc, text), end, numeric_marks(lc, group != 0));
}

double gl_mbstod(locale_rec *lc, const char *text, const char **end, int32_t group) {
    return floating(multibyte_source(lc, text), end, numeric_marks(lc, group != 0));
}

double gl_wcstod_num_mon(locale_rec *lc, const gl_wchar *text, const gl_wchar **end, int32_t group,
                         int32_t monetary) {
    const bool grouped = group != 0;
    return floating(wide_source(lc, text), end,
                    monetary != 0 ? monetary_marks(lc, grouped) : numeric_marks(lc, grouped));
}

int32_t gl_iswcexponent(locale_rec *, const gl_wchar *text) {
    if (text[0] != 'e' && text[0] != 'E')
        return 0;
    return text[1] == '-' || text[1] == '+' ? 2 : 1;
}

int32_t gl_iswgrpsymb(locale_rec *lc, const gl_wchar *text, int32_t direction, int32_t monetary) {
    const wide_piece separators[] = {
        piece_of(monetary_of(lc).wide_mon_thousands_sep),
        piece_of(numeric_of(lc).wide_thousands_sep),
    };
    for (int32_t i = monetary != 0 ? 0 : 1; i < 2; ++i) {
        const auto [elements, length] = separators[i];
        const gl_wchar *start = direction < 0 ? text - length : text;
        int32_t same = 0;
        while (same < length && start[same] == elements[same])
            ++same;
        if (same == length && length > 0)
            return length;
    }
    return 0;
}
