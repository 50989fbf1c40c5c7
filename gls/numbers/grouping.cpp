#include "gls/numbers/grouping.h"

#include <string.h>

namespace kestrion {

int32_t get_grp_cnt(const group_rec &groups, int32_t digits) {
    group_walk walk(groups);
    int32_t count = 0;
    for (uint32_t size; (size = walk.next()) < static_cast<uint32_t>(digits); ++count)
        digits -= static_cast<int32_t>(size);
    return count;
}

gl_wchar *add_grp_sep(gl_wchar *end, int64_t room, const char *digits, int32_t count,
                      const group_rec &groups, const gl_wchar *separator) {
    const wide_piece between = piece_of(separator);
    const char *digit = digits + count;
    group_walk walk(groups);
    for (;;) {
        const uint32_t size = walk.next();
        const auto left = static_cast<uint32_t>(digit - digits);
        const uint32_t taken = size < left ? size : left;
        if (taken > room)
            return nullptr;
        for (uint32_t i = 0; i < taken; ++i)
            *--end = static_cast<unsigned char>(*--digit);
        if (taken == left)
            return end;
        room -= taken + static_cast<int64_t>(between.length);
        if (room < 0)
            return nullptr;
        end -= between.length;
        memcpy(end, between.elements, static_cast<size_t>(between.length) * sizeof *end);
    }
}

} // namespace kestrion
