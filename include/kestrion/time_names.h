// The names that a locale's calendar uses, handed out as copies.

#pragma once

#include <kestrion/locale_rec.h>

#include <stddef.h>
#include <stdint.h>

// Kinds of names.
enum {
    GL_NAMES_DAY = 1,       // weekday names in full, from Sunday
    GL_NAMES_ABDAY = 2,     // abbreviated weekday names
    GL_NAMES_MON = 3,       // month names in full
    GL_NAMES_ABMON = 4,     // abbreviated month names
    GL_NAMES_ERA_FIRST = 5, // first name texts of the eras
    GL_NAMES_ERA_SECOND = 6 // second name texts of the eras
};

typedef void *(*gl_names_alloc)(size_t size);

#ifdef __cplusplus
extern "C" {
#endif

// Stores in *texts an array of *count new texts in the locale's code set: the first four kinds
// (gl_mbstimeinfo_ext), the era names (gl_mbstimeinfo).
// alloc   is called once, for a block that holds array and texts and belongs to the caller.
// Returns 0, with *texts null when the locale has no such names; -1 for another kind, a null locale
//         (nothing stored) or no memory.
int32_t gl_mbstimeinfo_ext(const locale_rec *lc, int32_t kind, gl_names_alloc alloc, char ***texts,
                           int32_t *count);
int32_t gl_mbstimeinfo(const locale_rec *lc, int32_t kind, gl_names_alloc alloc, char ***texts,
                       int32_t *count);

#ifdef __cplusplus
}
#endif
