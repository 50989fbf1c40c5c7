#include "gls/numbers/number_layout.h"

#include "gls/numbers/grouping.h"
#include <kestrion/format_modifiers.h>

#include <string.h>

namespace kestrion {

namespace {

struct sign_text {
    wide_piece text;
    int64_t blanks; // instead of the text
    int64_t columns;
};

sign_text sign_of(locale_rec *lc, bool negative, uint32_t flags, bool wants_columns) {
    const numeric_rec &own = numeric_of(lc);
    const wide_piece minus = piece_of(own.wide_negative_sign);
    if (negative)
        return {minus, 0, wants_columns ? columns_of(lc, minus) : 0};
    const wide_piece plus = piece_of(own.wide_positive_sign);
    const bool shown = (flags & gl_flag_plus) != 0;
    if (!shown && (flags & gl_flag_blank) == 0)
        return {};
    // In a multibyte locale a positive sign is measured by the negative one. Only a locale whose
    // signs differ in width shows it; formatted data that lines up there relies on it.
    const wide_piece measured = lc != nullptr && !lc->is_single_byte ? minus : plus;
    return {shown ? plus : wide_piece{}, shown ? 0 : plus.length,
            wants_columns ? columns_of(lc, measured) : 0};
}

} // namespace

void number_layout::put(gl_wchar element) { put({&element, 1}); }

void number_layout::put(wide_piece text) {
    fits_ = fits_ && text.length <= start_;
    if (!fits_)
        return;
    start_ -= text.length;
    for (int32_t i = 0; i < text.length; ++i)
        elements_[start_ + i] = text.elements[i];
}

void number_layout::put_ascii(const char *text, int32_t length) {
    fits_ = fits_ && length <= start_;
    if (!fits_)
        return;
    start_ -= length;
    for (int32_t i = 0; i < length; ++i)
        elements_[start_ + i] = static_cast<unsigned char>(text[i]);
}

void number_layout::put_ascii(const char *terminated) {
    put_ascii(terminated, static_cast<int32_t>(strlen(terminated)));
}

void number_layout::put_grouped(const char *digits, int32_t count, const numeric_rec &conventions) {
    const gl_wchar *start = add_grp_sep(elements_ + start_, start_, digits, count,
                                        conventions.grouping, conventions.wide_thousands_sep);
    fits_ = fits_ && start != nullptr;
    if (fits_)
        start_ = static_cast<int32_t>(start - elements_);
}

void number_layout::fill(gl_wchar element, int64_t count) {
    fits_ = fits_ && count <= start_;
    for (; fits_ && count > 0; --count)
        elements_[--start_] = element;
}

void number_layout::finish(locale_rec *lc, const char *prefix, bool negative, int32_t width,
                           uint32_t flags) {
    const bool padded = width > 0;
    const sign_text sign = sign_of(lc, negative, flags, padded);
    int64_t padding = 0;
    if (padded)
        padding = width - sign.columns - static_cast<int64_t>(strlen(prefix)) -
                  columns_of(lc, {elements_ + start_, left_length()});
    const bool left = (flags & gl_flag_left) != 0;
    const bool zeros = !left && (flags & gl_flag_zero) != 0;
    if (zeros)
        fill('0', padding);
    put_ascii(prefix);
    put(sign.text);
    fill(' ', sign.blanks);
    if (!left && !zeros)
        fill(' ', padding);
    if (left && padding > 0) {
        fits_ = fits_ && padding <= start_;
        blanks_after_ = fits_ ? static_cast<int32_t>(padding) : 0;
    }
}

void number_layout::copy_to(gl_wchar *dst) const {
    memcpy(dst, elements_ + start_, static_cast<size_t>(left_length()) * sizeof *dst);
    for (int32_t i = 0; i < blanks_after_; ++i)
        dst[left_length() + i] = ' ';
}

} // namespace kestrion
