// Currency symbols and numeric conventions of an environment.

#pragma once

#include <kestrion/gls_env.h>

#ifdef __cplusplus
extern "C" {
#endif

extern int32_t _gnorminit; // 1 once the money formats of the process were settled

// Fills a block with the neutral conventions: point ".", minus "-", no grouping.
void init_dflt_lconv_int(lconv_rec *block);

// Fills a block with the numeric conventions of the current environment's locale; without one they
// are the neutral ones. An empty point becomes "." and an empty minus "-": an amount below zero
// must show. Texts are cut at 31 bytes, between characters.
void init_local_lconv(lconv_rec *block);

// Sets mon_front, mon_back and the radix of amounts of the current environment and marks them
// ready. DBMONEY decides where it is set: the text before its first "." or "," precedes an
// amount, the text after it follows the amount, and that character is the radix. Otherwise the
// locale's currency symbol stands on the side that the locale says, and the radix is its
// mon_decimal_point; "." where there is none.
void rmoninit(void);

#ifdef __cplusplus
}
#endif
