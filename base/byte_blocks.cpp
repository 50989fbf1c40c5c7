#include <kestrion/byte_blocks.h>

#include "base/sign.h"

#include <algorithm>
#include <string.h>

namespace {

// Where a block goes whose first byte beyond the shorter block's blanks is `byte`. The comparison
// is by signed bytes, so that the high half sorts with the control characters.
int order_of_tail(unsigned char byte) { return static_cast<signed char>(byte) >= ' ' ? 1 : -1; }

int compare_tail(const unsigned char *tail, ptrdiff_t length) {
    for (ptrdiff_t i = 0; i < length; ++i)
        if (tail[i] != ' ')
            return order_of_tail(tail[i]);
    return 0;
}

} // namespace

ptrdiff_t qvt_byleng(const void *block, ptrdiff_t length) {
    const unsigned char *bytes = static_cast<const unsigned char *>(block);
    while (length > 0 && bytes[length - 1] == ' ')
        --length;
    return std::max<ptrdiff_t>(length, 0);
}

void bycopy(const void *source, void *destination, ptrdiff_t count) {
    if (count > 0)
        memmove(destination, source, static_cast<size_t>(count));
}

void bylcopy(const void *source, void *destination, ptrdiff_t count) {
    bycopy(source, destination, count);
}

void byfill(void *block, ptrdiff_t count, int byte) {
    if (count > 0)
        memset(block, byte, static_cast<size_t>(count));
}

int bycmpr(const void *a, const void *b, ptrdiff_t count) {
    return count > 0 ? kestrion::sign(memcmp(a, b, static_cast<size_t>(count))) : 0;
}

int charcmp(const void *a, ptrdiff_t a_length, const void *b, ptrdiff_t b_length) {
    a_length = std::max<ptrdiff_t>(a_length, 0);
    b_length = std::max<ptrdiff_t>(b_length, 0);
    const ptrdiff_t both = std::min(a_length, b_length);
    const int order = bycmpr(a, b, both);
    if (order != 0 || a_length == b_length)
        return order;
    if (a_length > b_length)
        return compare_tail(static_cast<const unsigned char *>(a) + both, a_length - both);
    return -compare_tail(static_cast<const unsigned char *>(b) + both, b_length - both);
}

int _gIsRangeFilled(const void *block, ptrdiff_t count, int byte) {
    const unsigned char *bytes = static_cast<const unsigned char *>(block);
    for (ptrdiff_t i = 0; i < count; ++i)
        if (bytes[i] != static_cast<unsigned char>(byte))
            return 0;
    return 1;
}
