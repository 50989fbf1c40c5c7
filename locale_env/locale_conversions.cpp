#include <kestrion/locale_conversions.h>

#include <kestrion/code_set_registry.h>
#include <kestrion/conversion.h>
#include <kestrion/error_numbers.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_errors.h>
#include <kestrion/specifiers.h>

namespace {

bool known_code_set(const char *spec) {
    return gl_lc_spec2cs_num(nullptr, spec, nullptr) != gl_unknown_code_set;
}

// Both directions between two specifiers. Returns 0, or the engine's error word of the failure.
int32_t open_pair(cv_rec **forth, const char *to, const char *from, cv_rec **back) {
    cv_rec **failed = forth;
    if (get_csc_desc(forth, to, from) >= 0) {
        if (get_csc_desc(back, from, to) >= 0)
            return 0;
        failed = back;
    }
    // A failed open leaves a record of which only the error word is of use.
    const int32_t error = *_gl_ext_errno(*failed);
    return error != 0 ? error : GLS_ERR_FILE;
}

void close(cv_rec **cv) {
    if (*cv != nullptr)
        gl_cv_unload(*cv);
    *cv = nullptr;
}

int refuse(new_gls_env_rec &state, int32_t error) {
    close(&state.cv_clienttodb);
    close(&state.cv_dbtoclient);
    close(&state.cv_app2os);
    close(&state.cv_os2app);
    return error == GLS_ERR_NO_MEMORY ? err_locale_no_memory : err_locale_conversion;
}

} // namespace

int get_csc_desc(cv_rec **out, const char *to, const char *from) {
    return gl_cv_load(out, to, from, nullptr, nullptr);
}

int initcscdesc(const char *a, const char *b, const char *c, const char *d) {
    new_gls_env_rec &state = *CheckGlsEnv()->state;
    state.cv_clienttodb = state.cv_dbtoclient = state.cv_app2os = state.cv_os2app = nullptr;
    if (a != nullptr && known_code_set(a) && known_code_set(b))
        if (const int32_t error = open_pair(&state.cv_clienttodb, a, b, &state.cv_dbtoclient))
            return set_glserror(refuse(state, error));
    if (!known_code_set(c) || !known_code_set(d))
        return 0;
    const int32_t error = open_pair(&state.cv_app2os, c, d, &state.cv_os2app);
    if (error == 0)
        return 0;
    const int result = refuse(state, error);
    // Nobody asked for the first pair: a program that only hands texts to the system does without.
    return a == nullptr ? 0 : set_glserror(result);
}
