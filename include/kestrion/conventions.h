// Currency symbols and numeric conventions of an environment.

#pragma once

#include <kestrion/gls_env.h>

#ifdef __cplusplus
extern "C" {
#endif

extern int32_t _gnorminit; // 1 once the money formats of the process were settled

// Fills a block with the neutral conventions: point ".", minus "-", no grouping.
void init_dflt_lconv_int(lconv_rec *block);

// Sets mon_front and mon_back of the current environment and marks them ready. DBMONEY decides
// where it is set: the text before its first "." or "," precedes an amount, the text after
// it follows the amount. Otherwise it is the locale's currency symbol, on the side that the locale
// says.
void rmoninit(void);

#ifdef __cplusplus
}
#endif
