// The length of a text in the current locale.

#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Length in bytes without trailing blanks, by the characters of the current locale. In a
// single-byte locale, and with none loaded, it is that of qvt_byleng.
ptrdiff_t byleng(const void *block, ptrdiff_t length);

#ifdef __cplusplus
}
#endif
