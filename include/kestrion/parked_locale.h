// Putting back a locale that connection-level code parked while another one was in use.

#pragma once

#include <kestrion/gls_env.h>

#ifdef __cplusplus
extern "C" {
#endif

// Makes the parked locale and conversions of the current environment current again; without a
// parked locale only `dbnls` is settled again (1, else 2). Returns 0, or the error of restorelocsp.
int restoreploc(void);

// Sets locale, parked locale and both pairs of operating-system conversions as given and rebuilds
// the specifiers from the locale. Returns 0, or the error of restorelocsp.
int restorelang(int32_t dbnls, locale_rec *lc, locale_rec *saved_lc, cv_rec *app2os,
                cv_rec *saved_app2os, cv_rec *os2app, cv_rec *saved_os2app);

#ifdef __cplusplus
}
#endif
