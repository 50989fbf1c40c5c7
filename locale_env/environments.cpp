#include <kestrion/environments.h>

#include "base/default_locale.h"
#include "base/owned_text.h"
#include "locale_env/datetime_formats.h"
#include "locale_env/release.h"
#include <kestrion/cached_names.h>
#include <kestrion/categories.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/conventions.h>
#include <kestrion/conversion.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/locale_specifiers.h>
#include <kestrion/startup.h>
#include <kestrion/strings.h>

#include <initializer_list>
#include <stdlib.h>
#include <string.h>

namespace {

struct created_env {
    gls_env_node node;
    GlsEnv env;
};

bool is_locale_specifier(size_t setting) {
    return setting == GLS_CLIENT_LOCALE || setting == GLS_DB_LOCALE;
}

// A new block of 37 bytes with the normal form of `spec`, or null.
char *normalised_specifier(const char *spec) {
    auto *text = static_cast<char *>(calloc(1, gls_spec_size));
    if (text != nullptr)
        togensp(spec, text);
    return text;
}

// A request with the normal forms of its specifiers, each made when it is first needed: one request
// is held against many environments.
struct wanted {
    const GlsEnvLocale *request;
    bool known[GLS_SETTINGS] = {};
    char normal[GLS_SETTINGS][gls_spec_size] = {};

    const char *normal_form(size_t setting) {
        if (!known[setting])
            togensp(request->settings[setting], normal[setting]);
        known[setting] = true;
        return normal[setting];
    }
};

int compare_setting(const GlsEnv *env, const GlsEnvLocale *request, size_t setting) {
    const new_gls_env_rec &state = *env->state;
    return CompareLocaleField(state.settings[setting], state.defaulted >> setting & 1,
                              request->settings[setting]);
}

// A specifier matches as it is written or in its normal form.
int compare_specifier(const GlsEnv *env, wanted &want, size_t setting) {
    if (compare_setting(env, want.request, setting) == 0)
        return 0;
    if (want.request->settings[setting] == nullptr)
        return -1;
    const new_gls_env_rec &state = *env->state;
    return CompareLocaleField(state.settings[setting], state.defaulted >> setting & 1,
                              want.normal_form(setting));
}

int compare_environment(const GlsEnv *env, wanted &want) {
    const GlsEnvLocale *request = want.request;
    if (request == nullptr)
        return 0;
    if (env == nullptr || env->state == nullptr)
        return -1;
    const auto differs = [&](size_t setting) {
        return compare_setting(env, request, setting) != 0;
    };
    if (compare_specifier(env, want, GLS_CLIENT_LOCALE) != 0 ||
        compare_specifier(env, want, GLS_DB_LOCALE) != 0 || differs(GLS_DBNLS))
        return -1;
    const char *const *have = env->state->settings;
    if (have[GLS_DBNLS] != nullptr && request->settings[GLS_DBNLS] != nullptr) {
        if (differs(GLS_DBLANG) || differs(GLS_LANG))
            return -1;
        // A start stores the categories in their normal form.
        for (size_t i = GLS_LC_CTYPE; i <= GLS_LC_TIME; ++i)
            if (compare_specifier(env, want, i) != 0)
                return -1;
    }
    if (differs(GLS_DBMONEY) || differs(GLS_DBTIME) || differs(GLS_DBDATE))
        return -1;
    // GL_DATE counts only where neither side has a DBDATE.
    if (have[GLS_DBDATE] == nullptr && request->settings[GLS_DBDATE] == nullptr &&
        differs(GLS_GL_DATE))
        return -1;
    return compare_setting(env, request, GLS_GL_DATETIME);
}

// Fills the fifteen settings of a new state from the request, else from the variables.
int fill_settings(new_gls_env_rec *state, const GlsEnvLocale *request) {
    for (size_t i = 0; i < GLS_SETTINGS; ++i) {
        const char *value = request != nullptr ? request->settings[i] : nullptr;
        if (value == nullptr)
            value = ggetenv2(gls_setting_names[i]);
        if (value == nullptr)
            continue;
        state->settings[i] =
            is_locale_specifier(i) ? normalised_specifier(value) : kestrion::joined_text(value);
        if (state->settings[i] == nullptr)
            return err_no_block;
    }
    return 0;
}

void free_blocks(created_env *created, new_gls_env_rec *state) {
    if (state != nullptr) {
        free(state->lconv);
        free(state->net_lconv);
    }
    free(state);
    free(created);
}

void free_settings(new_gls_env_rec *state) {
    for (char *&text : state->settings) {
        free(text);
        text = nullptr;
    }
}

void unload_conversion(cv_rec *&cv) {
    if (cv != nullptr)
        gl_cv_unload(cv);
    cv = nullptr;
}

void append(gls_env_node *node) {
    gls_env_node *last = GlsEnv_List;
    while (last->next != nullptr)
        last = last->next;
    last->next = node;
}

} // namespace

namespace kestrion {

void release_loaded(GlsEnv *env) {
    new_gls_env_rec &state = *env->state;
    for (gls_name_list **list :
         {&state.abmon_names, &state.mon_names, &state.era_names_a, &state.era_names_b})
        free_locale_string(list);
    free(state.owned_date_fmt);
    state.owned_date_fmt = state.date_fmt = nullptr;
    release_datetime_formats(env);
    if (state.saved_lc == state.db_lc || state.saved_lc == env->cur_lc)
        state.saved_lc = nullptr; // goes with the object
    if (state.db_lc != nullptr && state.db_lc != env->cur_lc)
        gl_lc_unload(state.db_lc);
    state.db_lc = nullptr;
    if (env->cur_lc != nullptr)
        gl_lc_unload(env->cur_lc);
    env->cur_lc = nullptr;
    state.client_lc = nullptr; // was the same object
    init_dflt_lconv_int(state.lconv);
    state.mon_ready = 0;
    unload_conversion(state.cv_clienttodb);
    unload_conversion(state.cv_dbtoclient);
    unload_conversion(state.cv_app2os);
    unload_conversion(state.cv_os2app);
}

} // namespace kestrion

GlsEnvLocale *CreateGlsEnvLocale(void) {
    auto *request = static_cast<GlsEnvLocale *>(calloc(1, sizeof(GlsEnvLocale)));
    if (request == nullptr)
        return nullptr;
    for (size_t i = 0; i < GLS_SETTINGS; ++i) {
        const char *value = ggetenv2(gls_setting_names[i]);
        if (value != nullptr)
            request->settings[i] = is_locale_specifier(i) ? normalised_specifier(value) : value;
    }
    return request;
}

void freeGlsEnvLocale(GlsEnvLocale *request) {
    if (request == nullptr)
        return;
    free(const_cast<char *>(request->settings[GLS_CLIENT_LOCALE]));
    free(const_cast<char *>(request->settings[GLS_DB_LOCALE]));
    free(request);
}

int CompareLocaleField(const char *value, int defaulted, const char *wanted) {
    if (wanted == nullptr)
        return value == nullptr || defaulted ? 0 : -1;
    if (value == nullptr)
        return -1;
    return stcmpri(value, wanted) == 0 ? 0 : -1;
}

int CompareLocale(const GlsEnv *env, const GlsEnvLocale *request) {
    wanted want{.request = request};
    return compare_environment(env, want);
}

int CheckExistingGlsEnv(const GlsEnvLocale *request, GlsEnv **out) {
    *out = nullptr;
    wanted want{.request = request};
    for (const gls_env_node *node = GlsEnv_List; node != nullptr; node = node->next) {
        if (compare_environment(node->env, want) == 0) {
            *out = node->env;
            return 0;
        }
    }
    return -1;
}

int CreateGlsEnv(const GlsEnvLocale *request, GlsEnv **out, int init) {
    auto *created = static_cast<created_env *>(calloc(1, sizeof(created_env)));
    auto *state = static_cast<new_gls_env_rec *>(calloc(1, sizeof(new_gls_env_rec)));
    if (state != nullptr) {
        state->lconv = static_cast<lconv_rec *>(calloc(1, sizeof(lconv_rec)));
        state->net_lconv = static_cast<lconv_rec *>(calloc(1, sizeof(lconv_rec)));
    }
    if (created == nullptr || state == nullptr || state->lconv == nullptr ||
        state->net_lconv == nullptr) {
        free_blocks(created, state);
        return err_no_block;
    }
    if (fill_settings(state, request) != 0) {
        free_settings(state);
        free_blocks(created, state);
        return err_no_block;
    }

    CheckGlsEnv(); // the default environment is counted before any other
    created->node.env = &created->env;
    created->env.state = state;
    state->mode = GLS_MODE_CLIENT;
    init_dflt_lconv_int(state->lconv);
    init_dflt_lconv_int(state->net_lconv);
    ++glsenv_count;
    if (init) {
        // Callers look at 16 bits. The texts of the settings stay allocated and the count stays
        // raised.
        const auto result = static_cast<int16_t>(InitGlsEnv(&created->env));
        if (result != 0) {
            free_blocks(created, state);
            return result;
        }
    }
    append(&created->node);
    *out = &created->env;
    return 0;
}

int InitGlsEnv(GlsEnv *env) {
    GlsEnv *noted = CheckGlsEnv();
    gls_env_global = env;
    const int result = initgls(env->state->mode);
    if (result == 0) {
        rmoninit();
        return 0;
    }
    gls_env_global = noted;
    new_gls_env_rec *state = noted->state;
    if (state->settings[GLS_CLIENT_LOCALE] == nullptr) {
        state->settings[GLS_CLIENT_LOCALE] = normalised_specifier(kestrion::default_locale);
        if (state->settings[GLS_CLIENT_LOCALE] == nullptr)
            return err_env_no_memory;
        state->defaulted |= 1 << GLS_CLIENT_LOCALE;
    }
    return result;
}

int cdrInitGlsEnv(void) {
    GlsEnvLocale *request = CreateGlsEnvLocale();
    if (request == nullptr)
        return -1;
    GlsEnv *env = nullptr;
    int result = 0;
    if (CheckExistingGlsEnv(request, &env) == 0)
        SetGlsEnv(env);
    else
        result = CreateGlsEnv(request, &env, 1);
    freeGlsEnvLocale(request);
    return result;
}

void freegls(void) {
    GlsEnv *env = CheckGlsEnv();
    kestrion::release_loaded(env);
    gl_free_registry_cache();
    env->state->init_flags = 0;
}

int FreeAllGlsEnv(void) {
    gls_env_node *node = GlsEnv_List->next;
    GlsEnv_List->next = nullptr;
    while (node != nullptr) {
        gls_env_node *next = node->next;
        gls_env_global = node->env;
        freegls();
        free_settings(node->env->state);
        free_blocks(reinterpret_cast<created_env *>(node), node->env->state);
        node = next;
    }
    gls_env_global = &gls_env;
    if (new_gls_env.init_flags == 0)
        return 0;
    freegls();
    for (gls_setting setting :
         {GLS_CLIENT_LOCALE, GLS_DB_LOCALE, GLS_LC_CTYPE, GLS_LC_COLLATE, GLS_LC_NUMERIC,
          GLS_LC_MONETARY, GLS_LC_TIME, GLS_DBMONEY, GLS_DBTIME})
        gls_set_setting(&new_gls_env, setting, nullptr);
    new_gls_env.init_flags = 0;
    new_gls_env.initialising = 0;
    return 0;
}

void AllDestructor(void) {}

void FreeAllTcbs(void) { AllDestructor(); }
