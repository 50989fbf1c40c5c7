#include <kestrion/gls_env.h>

#include "base/owned_text.h"
#include <kestrion/error_numbers.h>

#include <stdlib.h>
#include <string.h>

namespace {

constinit lconv_rec g_lconv_default = {.radix = ".", .negative_sign = "-"};
constinit lconv_rec g_net_lconv_default = {.radix = ".", .negative_sign = "-"};

} // namespace

constinit const char *const gls_setting_names[GLS_SETTINGS] = {
    "CLIENT_LOCALE", // GLS_CLIENT_LOCALE
    "DB_LOCALE",     // GLS_DB_LOCALE
    "DBNLS",         // GLS_DBNLS
    "DBLANG",        // GLS_DBLANG
    "LANG",          // GLS_LANG
    "LC_CTYPE",      // GLS_LC_CTYPE
    "LC_COLLATE",    // GLS_LC_COLLATE
    "LC_NUMERIC",    // GLS_LC_NUMERIC
    "LC_MONETARY",   // GLS_LC_MONETARY
    "LC_TIME",       // GLS_LC_TIME
    "DBTIME",        // GLS_DBTIME
    "DBMONEY",       // GLS_DBMONEY
    "DBDATE",        // GLS_DBDATE
    "GL_DATE",       // GLS_GL_DATE
    "GL_DATETIME",   // GLS_GL_DATETIME
};

constinit new_gls_env_rec new_gls_env = {
    .mode = 1, .lconv = &g_lconv_default, .net_lconv = &g_net_lconv_default};
constinit GlsEnv gls_env = {.is_default = 1, .state = &new_gls_env};
constinit GlsEnv *gls_env_global = nullptr;
constinit int32_t glsenv_count = 0;
constinit int32_t _8bitfsys = 1;
constinit gls_env_node defGlsEnv = {nullptr, &gls_env};
constinit gls_env_node *GlsEnv_List = &defGlsEnv;
constinit GlsEnvLocale glsenv_savearea_global = {};
constinit GlsEnvLocale *glsenv_savearea = &glsenv_savearea_global;

GlsEnv *CheckGlsEnv(void) {
    if (gls_env_global == nullptr) {
        gls_env_global = &gls_env;
        if (glsenv_count == 0)
            glsenv_count = 1;
    }
    return gls_env_global;
}

GlsEnv *qvt_get_glsenv_thread(void) { return CheckGlsEnv(); }

locale_rec *qvt_get_gl_locale_thread(void) { return qvt_get_glsenv_thread()->cur_lc; }

void SetGlsEnv(GlsEnv *env) {
    const bool is_first_call = gls_env_global == nullptr;
    CheckGlsEnv(); // counts the default environment
    if (!is_first_call && glsenv_count == 1 && env == &gls_env)
        return;
    gls_env_global = env;
}

int gls_set_setting(new_gls_env_rec *state, gls_setting which, const char *text) {
    char *copy = nullptr;
    if (text != nullptr) {
        copy = kestrion::joined_text(text);
        if (copy == nullptr)
            return err_env_no_memory;
    } else {
        state->defaulted &= ~(1 << which); // what is not there was not derived
    }
    free(state->settings[which]);
    state->settings[which] = copy;
    return 0;
}
