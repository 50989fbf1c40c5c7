// Groups of digits, separated from the right: sizes {3, 2, 0} make 1,23,45,678 of 12345678.

#pragma once

#include "gls/numbers/number_conventions.h"
#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

// The sizes of the groups from the right, one after the other. A size of 0 repeats the one before
// it for good; gl_group_end, the end of the list or a first size of 0 leaves the rest in one group.
class group_walk {
public:
    explicit group_walk(const group_rec &groups) : groups_(groups) {}

    // Size of the next group, gl_group_end for all digits that are left.
    uint32_t next() {
        if (at_ >= groups_.count || (at_ == 0 && groups_.sizes[0] == 0))
            return gl_group_end;
        if (groups_.sizes[at_] != 0)
            size_ = groups_.sizes[at_++];
        if (size_ == gl_group_end)
            at_ = groups_.count;
        return size_;
    }

private:
    const group_rec &groups_;
    int32_t at_ = 0;
    uint32_t size_ = gl_group_end;
};

// Separators that `digits` digits take.
inline int32_t get_grp_cnt(const group_rec &groups, int32_t digits) {
    group_walk walk(groups);
    int32_t count = 0;
    for (uint32_t size; (size = walk.next()) < static_cast<uint32_t>(digits); ++count)
        digits -= static_cast<int32_t>(size);
    return count;
}

// ASCII characters.
struct ascii_piece {
    const char *text;
    int32_t length;
};

// Writes digits with their separators so that they end at `end`. Returns the first element.
[[gnu::always_inline]] inline gl_wchar *
add_grp_sep(gl_wchar *end, ascii_piece digits, const group_rec &groups, const gl_wchar *separator) {
    const wide_piece between = piece_of(separator);
    const char *digit = digits.text + digits.length;
    for (group_walk walk(groups);;) {
        const uint32_t size = walk.next();
        const auto left = static_cast<uint32_t>(digit - digits.text);
        for (const char *stop = size < left ? digit - size : digits.text; digit > stop;)
            *--end = static_cast<unsigned char>(*--digit);
        if (digit == digits.text)
            return end;
        for (int32_t i = between.length; i > 0;)
            *--end = between.elements[--i];
    }
}

} // namespace kestrion
