// The Unicode plug-in, which could serve whole categories of a locale. This build has none: the
// operations answer so, and the engine's own tables serve every category.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

extern int32_t glu_capable; // 1 when a plug-in was found; always 0

// Whether the plug-in may serve: 0. Reads nothing.
int32_t gl_useglu(int32_t wanted);

// Prepares a record for the plug-in. Returns 0: nothing to prepare is a success.
int32_t gl_init_glu(locale_rec *lc);

// Binds a category to the plug-in by the name of its locale. Returns 0: not bound.
int32_t set_categories_glu(locale_rec *lc, int32_t category, const char *name);

// Takes the binding back.
void set_categories_glu_null(locale_rec *lc, int32_t category);

#ifdef __cplusplus
}
#endif
