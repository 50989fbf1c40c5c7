// One formatted number: digits, then what stands before them, then padding. It is built from its
// right end, since the last digits and the groups are known first.

#pragma once

#include "gls/numbers/number_conventions.h"
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

inline constexpr int32_t number_limit = 255; // elements of one formatted number

class number_layout {
public:
    // Each adds on the left of what is there.
    void put(gl_wchar element);
    void put(wide_piece text);
    void put_ascii(const char *text, int32_t length);
    void put_ascii(const char *terminated);
    void put_grouped(const char *digits, int32_t count, const numeric_rec &conventions);
    void fill(gl_wchar element, int64_t count);

    // Adds the prefix, the sign and the padding that the flags ask for.
    // width    columns or gl_modifier_unset.
    void finish(locale_rec *lc, const char *prefix, bool negative, int32_t width, uint32_t flags);

    // False when more than number_limit elements were needed.
    bool fits() const { return fits_; }
    // Elements, padding included.
    int32_t length() const { return left_length() + blanks_after_; }
    // Writes them to dst[0..length()).
    void copy_to(gl_wchar *dst) const;

private:
    int32_t left_length() const { return number_limit - start_; }

    int32_t start_ = number_limit; // of what is there in elements_
    int32_t blanks_after_ = 0;
    bool fits_ = true;
    gl_wchar elements_[number_limit];
};

} // namespace kestrion
