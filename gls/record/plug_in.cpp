#include <kestrion/plug_in.h>

constinit int32_t glu_capable = 0;

int32_t gl_useglu(int32_t) { return 0; }

int32_t gl_init_glu(locale_rec *) {
    glu_capable = 0;
    return 0;
}

int32_t set_categories_glu(locale_rec *, int32_t, const char *) { return 0; }

void set_categories_glu_null(locale_rec *lc, int32_t category) {
    lc->glu_in_use[category - gl_first_category] = 0;
    lc->glu_locale[category - gl_first_category] = nullptr;
}
