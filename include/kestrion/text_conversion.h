// Text between the operating system's code set and the program's.

#pragma once

typedef struct cv_rec cv_rec; // <kestrion/conversion.h>

#ifdef __cplusplus
extern "C" {
#endif

// Converts a terminated text. Returns a new block of malloc, terminated, that belongs to the
// caller; null with the locale error err_locale_no_memory stored when there is no memory or the
// text does not convert; null for a null conversion or text.
char *gcv_malloc(cv_rec *cv, const char *text);

// The same into a block that is made if *out is null and replaced if not. Returns 0 or
// err_locale_no_memory.
int gcvargs(cv_rec *cv, const char *text, char **out);

#ifdef __cplusplus
}
#endif
