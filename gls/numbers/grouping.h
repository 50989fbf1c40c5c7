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
int32_t get_grp_cnt(const group_rec &groups, int32_t digits);

// Writes ASCII digits with their separators so that they end at `end`.
// room     elements before `end`.
// Returns  the first element, or null when they take more room.
gl_wchar *add_grp_sep(gl_wchar *end, int64_t room, const char *digits, int32_t count,
                      const group_rec &groups, const gl_wchar *separator);

} // namespace kestrion
