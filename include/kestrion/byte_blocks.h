// Counted blocks of bytes. The source comes before the destination, and comparisons return exactly
// -1, 0 or 1. A count below zero counts as zero.

#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Length without trailing blanks, byte by byte; byleng of <kestrion/text_length.h> goes by the
// characters of the current locale.
ptrdiff_t qvt_byleng(const void *block, ptrdiff_t length);

void bycopy(const void *source, void *destination, ptrdiff_t count); // blocks may overlap
void bylcopy(const void *source, void *destination, ptrdiff_t count);
void byfill(void *block, ptrdiff_t count, int byte);
int bycmpr(const void *a, const void *b, ptrdiff_t count); // by unsigned bytes

// Compares as if the shorter block were padded with blanks, with an unusual rule for the longer
// block's tail: its first byte that is not a blank decides, taken as signed. At 32 or more the
// longer block sorts after; below 32, which takes in the bytes over 127, it sorts before.
// Example "ab", "ab  " -> 0; "ab", "ab\t" -> 1; "ab", "ab\xE9" -> 1.
int charcmp(const void *a, ptrdiff_t a_length, const void *b, ptrdiff_t b_length);

// 1 if all bytes are `byte` or the count is below 1, else 0.
int _gIsRangeFilled(const void *block, ptrdiff_t count, int byte);

#ifdef __cplusplus
}
#endif
