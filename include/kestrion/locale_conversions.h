// The code-set conversions of an environment.

#pragma once

#include <kestrion/gls_env.h>

#ifdef __cplusplus
extern "C" {
#endif

// Loads the conversion to the code set of `to` from that of `from` (specifiers; the target comes
// first). Returns below 0 on error, with a record in *out that holds the error word; 0 when the
// code sets are one; above 0 when *out converts.
int get_csc_desc(cv_rec **out, const char *to, const char *from);

// Fills the four conversions of the current environment. The pair (a, b) is database and client,
// the pair (c, d) the application and the operating system; a pair whose code set is unknown is
// left out. Returns 0, or the locale error that it stored, with all four null.
int initcscdesc(const char *a, const char *b, const char *c, const char *d);

#ifdef __cplusplus
}
#endif
