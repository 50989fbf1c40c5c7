// Whole locales: the empty record, loading by specifier, and release.

#include <kestrion/categories.h>

#include "gls/base/engine_error.h"
#include "gls/objects/category_data.h"
#include "gls/text/char_walk.h"
#include <kestrion/gls_log.h>
#include <kestrion/plug_in.h>
#include <kestrion/specifiers.h>

#include <stdio.h>
#include <string.h>

using namespace kestrion;

namespace {

void free_record(locale_rec *lc) {
    for (int32_t i = 0; i < gl_category_count; ++i)
        gl_free_category(lc, gl_first_category + i);
    free_byte_tables(lc);
    _gl_ext_free(lc);
}

bool make_all_empty(locale_rec *lc) {
    for (int32_t i = 0; i < gl_category_count; ++i)
        if (gl_make_null_category(lc, gl_first_category + i) != 0)
            return false;
    return set_function_pointers(lc) == 0;
}

// Sets all categories of a new record. The record is handed out also when that fails: its error
// word says why.
int32_t load_all(locale_rec **out, const char *setting, const char *dir) {
    char *names = set_categories(*out, GL_CAT_ALL, setting, dir);
    bool loaded = names != nullptr;
    gl_destroystring(names);
    return loaded && *_gl_ext_errno(*out) == GLS_OK ? 0 : -1;
}

} // namespace

constinit locale_rec loc_nomem = {.err = GLS_ERR_NO_MEMORY, .ctype_cat = no_ctype};
constinit locale_rec loc_filer = {.err = GLS_ERR_FILE, .ctype_cat = no_ctype};

int32_t gl_create_null_locale_4(locale_rec **out) {
    auto *lc = static_cast<locale_rec *>(_gl_ext_calloc(1, sizeof(locale_rec)));
    if (lc != nullptr && make_all_empty(lc)) {
        *out = lc;
        return 0;
    }
    if (lc != nullptr)
        free_record(lc);
    *out = &loc_nomem;
    loc_nomem.err = GLS_ERR_NO_MEMORY; // whatever an earlier user left there
    return -1;
}

int32_t gl_lc_load(locale_rec **out, const char *spec, const char *regfile, const char *dir) {
    char name[gl_composite_spec_size];
    if (gl_create_null_locale_4(out) != 0 || gl_init_glu(*out) != 0)
        return -1;
    if (spec == nullptr)
        return fail(*out, GLS_ERR_ARGUMENT);
    const char *setting = name;
    if (gl_lc_spec2lc_fname(*out, spec, name, regfile, nullptr) != 0)
        setting = spec;
    set_engine_error(*out, GLS_OK); // any other text is a file name
    return load_all(out, setting, dir);
}

void gl_lc_unload(locale_rec *lc) {
    if (lc == nullptr || lc == &loc_nomem || lc == &loc_filer)
        return;
    char line[40];
    snprintf(line, sizeof line, "freeing locale 0x%x\n",
             static_cast<unsigned>(reinterpret_cast<uintptr_t>(lc)));
    gl_message(line);
    free_record(lc);
}

void gl_free_nonshared_loc(locale_rec *lc) {
    if (lc != nullptr && lc != &loc_nomem && lc != &loc_filer)
        free_record(lc);
}

int32_t gl_createlocale_4(locale_rec **out) { return gl_createlocale2_4(out, nullptr); }

int32_t gl_createlocale2_4(locale_rec **out, const char *dir) {
    return gl_create_null_locale_4(out) == 0 ? load_all(out, "native", dir) : -1;
}
