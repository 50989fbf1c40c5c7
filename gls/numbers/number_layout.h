// One formatted number, by its parts: padding, sign, prefix, digits with their groups, point and
// fraction. The parts say how long it is; then it is written where it belongs, with no copy.

#pragma once

#include "gls/numbers/grouping.h"
#include "gls/numbers/number_conventions.h"
#include <kestrion/format_modifiers.h>

#include <stdint.h>
#include <string.h>

namespace kestrion {

inline constexpr int32_t number_limit = 255; // elements of one formatted number

struct number_parts {
    const char *prefix;   // between sign and digits, terminated
    int32_t zeros;        // before the digits, not grouped; below 1 for none
    ascii_piece digits;   // before the point, or a word instead of a number
    bool grouped;         // the digits
    bool point;           // a decimal point follows
    ascii_piece fraction; // what comes after the point
    bool negative;
};

[[gnu::always_inline]] inline int64_t at_least_none(int64_t count) { return count > 0 ? count : 0; }

[[gnu::always_inline]] inline gl_wchar *put_all(gl_wchar *at, gl_wchar element, int64_t count) {
    for (; count > 0; --count)
        *at++ = element;
    return at;
}

[[gnu::always_inline]] inline gl_wchar *put_all(gl_wchar *at, ascii_piece text) {
    for (int32_t i = 0; i < text.length; ++i)
        *at++ = static_cast<unsigned char>(text.text[i]);
    return at;
}

[[gnu::always_inline]] inline gl_wchar *put_all(gl_wchar *at, wide_piece text) {
    for (int32_t i = 0; i < text.length; ++i)
        *at++ = text.elements[i];
    return at;
}

inline int64_t columns_of(locale_rec *lc, ascii_piece text) {
    int64_t columns = 0;
    for (int32_t i = 0; i < text.length; ++i) {
        const gl_wchar element = static_cast<unsigned char>(text.text[i]);
        columns += columns_of(lc, wide_piece{&element, 1});
    }
    return columns;
}

inline ascii_piece terminated(const char *text) {
    return {text, static_cast<int32_t>(strlen(text))};
}

class number_layout {
public:
    // width    columns or gl_modifier_unset.
    // flags    gl_number_flags.
    number_layout(locale_rec *lc, const number_parts &parts, int32_t width, uint32_t flags);

    // Elements; above number_limit it must not be written.
    int64_t length() const { return length_; }
    // Writes all elements and returns the one after them.
    gl_wchar *write(gl_wchar *at) const;

private:
    void add_sign(locale_rec *lc, bool padded, uint32_t flags);
    int64_t columns(locale_rec *lc) const;

    const number_parts &parts_;
    const numeric_rec &own_;
    wide_piece sign_ = {};
    int32_t sign_blanks_ = 0; // instead of the sign
    int64_t sign_columns_ = 0;
    int64_t blanks_before_ = 0;
    int64_t zeros_ = 0; // of the padding and of the parts
    int64_t blanks_after_ = 0;
    int64_t grouped_digits_ = 0; // elements of the digits with their separators
    int64_t length_ = 0;
};

[[gnu::always_inline]] inline number_layout::number_layout(locale_rec *lc,
                                                           const number_parts &parts, int32_t width,
                                                           uint32_t flags)
    : parts_(parts), own_(numeric_of(lc)), zeros_(at_least_none(parts.zeros)) {
    const bool padded = width > 0;
    add_sign(lc, padded, flags);
    grouped_digits_ = parts.digits.length;
    if (parts.grouped)
        grouped_digits_ += static_cast<int64_t>(get_grp_cnt(own_.grouping, parts.digits.length)) *
                           piece_of(own_.wide_thousands_sep).length;
    if (padded) {
        const int64_t padding = at_least_none(width - columns(lc));
        const bool left = (flags & gl_flag_left) != 0;
        const bool zeros = !left && (flags & gl_flag_zero) != 0;
        (left ? blanks_after_ : zeros ? zeros_ : blanks_before_) += padding;
    }
    length_ = blanks_before_ + sign_.length + sign_blanks_ + terminated(parts.prefix).length +
              zeros_ + grouped_digits_ + parts.fraction.length + blanks_after_;
    if (parts.point)
        length_ += piece_of(own_.wide_decimal_point).length;
}

[[gnu::always_inline]] inline void number_layout::add_sign(locale_rec *lc, bool padded,
                                                           uint32_t flags) {
    const bool blanks = (flags & gl_flag_plus) == 0;
    if (!parts_.negative && blanks && (flags & gl_flag_blank) == 0)
        return;
    sign_ = piece_of(parts_.negative ? own_.wide_negative_sign : own_.wide_positive_sign);
    // In a multibyte locale a positive sign is measured by the negative one. Only a locale whose
    // signs differ in width shows it; formatted data that lines up there relies on it.
    const bool multibyte = lc != nullptr && !lc->is_single_byte;
    if (padded)
        sign_columns_ = columns_of(lc, multibyte ? piece_of(own_.wide_negative_sign) : sign_);
    if (!parts_.negative && blanks) {
        sign_blanks_ = sign_.length;
        sign_ = {};
    }
}

inline int64_t number_layout::columns(locale_rec *lc) const {
    int64_t columns = sign_columns_ + columns_of(lc, terminated(parts_.prefix)) + zeros_ +
                      columns_of(lc, parts_.digits) + columns_of(lc, parts_.fraction);
    if (parts_.point)
        columns += columns_of(lc, piece_of(own_.wide_decimal_point));
    if (parts_.grouped)
        columns += get_grp_cnt(own_.grouping, parts_.digits.length) *
                   columns_of(lc, piece_of(own_.wide_thousands_sep));
    return columns;
}

[[gnu::always_inline]] inline gl_wchar *number_layout::write(gl_wchar *at) const {
    at = put_all(at, ' ', blanks_before_);
    at = put_all(at, sign_);
    at = put_all(at, ' ', sign_blanks_);
    at = put_all(at, terminated(parts_.prefix));
    at = put_all(at, '0', zeros_);
    if (parts_.grouped) {
        at += grouped_digits_;
        add_grp_sep(at, parts_.digits, own_.grouping, own_.wide_thousands_sep);
    } else {
        at = put_all(at, parts_.digits);
    }
    if (parts_.point)
        at = put_all(at, piece_of(own_.wide_decimal_point));
    at = put_all(at, parts_.fraction);
    return put_all(at, ' ', blanks_after_);
}

} // namespace kestrion
