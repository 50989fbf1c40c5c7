#include <kestrion/startup.h>

#include "base/default_locale.h"
#include "base/owned_text.h"
#include "env/language_setting.h"
#include "locale_env/release.h"
#include <kestrion/categories.h>
#include <kestrion/char_length.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/conventions.h>
#include <kestrion/date_format.h>
#include <kestrion/env_registry.h>
#include <kestrion/environments.h>
#include <kestrion/error_numbers.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/ext_hooks.h>
#include <kestrion/gentcb.h>
#include <kestrion/gls_errors.h>
#include <kestrion/locale_conversions.h>
#include <kestrion/locale_rec.h>
#include <kestrion/locale_specifiers.h>
#include <kestrion/plug_in.h>
#include <kestrion/strings.h>

#include <stdlib.h>
#include <string.h>
#include <utility>

namespace {

struct hook_row {
    uint32_t slot;
    gl_function function;
};

// In the order of registration.
const hook_row client_hooks[] = {
    {GL_SLOT_ERRNO, reinterpret_cast<gl_function>(cl_ext_errno)},
    {GL_SLOT_GETENV, reinterpret_cast<gl_function>(cl_ext_getenv)},
    {GL_SLOT_MALLOC, reinterpret_cast<gl_function>(cl_ext_malloc)},
    {GL_SLOT_CALLOC, reinterpret_cast<gl_function>(cl_ext_calloc)},
    {GL_SLOT_REALLOC, reinterpret_cast<gl_function>(cl_ext_realloc)},
    {GL_SLOT_FREE, reinterpret_cast<gl_function>(cl_ext_free)},
    {GL_SLOT_FOPEN, reinterpret_cast<gl_function>(cl_ext_fopen)},
    {GL_SLOT_FCLOSE, reinterpret_cast<gl_function>(cl_ext_fclose)},
    {GL_SLOT_FGETC, reinterpret_cast<gl_function>(cl_ext_fgetc)},
    {GL_SLOT_GETC, reinterpret_cast<gl_function>(cl_ext_getc)},
    {GL_SLOT_UNGETC, reinterpret_cast<gl_function>(cl_ext_ungetc)},
    {GL_SLOT_FGETS, reinterpret_cast<gl_function>(cl_ext_fgets)},
    {GL_SLOT_FWRITE, reinterpret_cast<gl_function>(cl_ext_fwrite)},
    {GL_SLOT_FEOF, reinterpret_cast<gl_function>(cl_ext_feof)},
    {GL_SLOT_FERROR, reinterpret_cast<gl_function>(cl_ext_ferror)},
    {GL_SLOT_CURRTIME, reinterpret_cast<gl_function>(cl_ext_currtime)},
    {GL_SLOT_CURRDATE, reinterpret_cast<gl_function>(cl_ext_currdate)},
    {GL_SLOT_PUTENV, reinterpret_cast<gl_function>(cl_ext_putenv)},
    {GL_SLOT_FSEEK, reinterpret_cast<gl_function>(cl_ext_fseek)},
    {GL_SLOT_FTELL, reinterpret_cast<gl_function>(cl_ext_ftell)},
};

// The stored words that have one public number; all others stay as they are.
struct folded_row {
    int stored;
    int becomes;
};
constexpr folded_row folded_errors[] = {
    {-8, err_locale_environment}, {-7, err_locale_environment}, {-6, err_locale_environment},
    {-5, err_locale_environment}, {-4, err_locale_environment}, {-3, err_locale_environment},
    {-1, err_locale_environment}, {-2, err_locale_no_memory},   {3, err_locale_no_memory},
    {8, err_locale_load},         {9, err_locale_load},         {11, err_locale_load},
    {21, err_locale_load},        {12, err_locale_code_sets},   {58, err_locale_code_sets},
};

// One start in progress.
struct start {
    GlsEnv *env;
    new_gls_env_rec &state;
    bool client_given = false; // a client specifier was given
    int32_t dbnls = 0;
    int32_t is_gls[GLS_SLOTS] = {};
};

// Without a registry file the built-in table serves. Without memory for the file it must not: the
// names that only the file has would be unknown, and the conversions that they ask for left out.
int cache_code_sets() {
    int32_t &word = *_gl_ext_errno(nullptr);
    word = GLS_OK;
    gl_cache_registry(nullptr, nullptr);
    return word == GLS_ERR_NO_MEMORY ? -1 : 0;
}

// Puts the normal form of `text` into `spec` and makes it the setting, unless that is the same
// already. A text that is not the setting's own was given: no earlier start derived it.
int normalise_setting(start &s, gls_setting which, const char *text, char *spec) {
    togensp(text, spec);
    const char *now = s.state.settings[which];
    const bool given = text != now;
    if ((now == nullptr || stcmpr(now, spec) != 0) && gls_set_setting(&s.state, which, spec) != 0)
        return err_env_no_memory;
    if (given)
        s.state.defaulted &= ~(1 << which);
    return 0;
}

// All six slots take `spec`, which is cut to a slot's room.
void fill_slots(start &s, const char *spec) {
    char copy[gls_spec_work_size];
    stncopy(spec, copy, sizeof copy);
    lcspec2longsp(copy, s.state.lc_spec);
}

int load_given_locale(start &s, const char *client) {
    char spec[gls_spec_work_size] = {};
    if (normalise_setting(s, GLS_CLIENT_LOCALE, client, spec) != 0)
        return err_env_no_memory;
    if (get_locale(&s.env->cur_lc, spec, s.is_gls) != 0)
        return -1;
    fill_slots(s, spec);
    s.client_given = true;
    return 0;
}

// The locale that the variables of the operating system's own locale name, category by category.
int load_nls_locale(start &s) {
    int missing = 0;
    get_nlscat("LC_COLLATE", GLS_SLOT_COLLATE, 1, &missing, nullptr);
    get_nlscat("LC_CTYPE", GLS_SLOT_CTYPE, 1, &missing, nullptr);
    get_nlscat("LC_NUMERIC", GLS_SLOT_NUMERIC, 1, &missing, nullptr);
    get_nlscat("LC_MONETARY", GLS_SLOT_MONETARY, 1, &missing, nullptr);
    get_nlscat("LC_TIME", GLS_SLOT_TIME, 1, &missing, nullptr);
    char(&slots)[GLS_SLOTS][gls_spec_size] = s.state.lc_spec;
    if (slots[GLS_SLOT_CTYPE][0] == gls_missing_mark) {
        slots[GLS_SLOT_MESSAGES][0] = gls_missing_mark;
        ++missing;
    } else {
        memcpy(slots[GLS_SLOT_MESSAGES], slots[GLS_SLOT_CTYPE], gls_spec_size);
    }
    if (missing != 0) {
        set_glserror(err_locale_category);
        return -1;
    }
    char composite[gls_composite_size] = {};
    for (int slot = 0; slot < GLS_SLOTS; ++slot)
        mk1loccat(nullptr, slot, composite, 0, "", 0);
    return get_locale(&s.env->cur_lc, composite, s.is_gls) == 0 ? 0 : -1;
}

// The text recorded is the one that users write; the one loaded names the code set by its number.
int load_default_locale(start &s) {
    if (get_locale(&s.env->cur_lc, kestrion::default_locale_by_number, s.is_gls) != 0)
        return -1;
    fill_slots(s, kestrion::default_locale_by_number);
    if (gls_set_setting(&s.state, GLS_CLIENT_LOCALE, kestrion::default_locale) != 0)
        return err_env_no_memory;
    s.state.defaulted |= 1 << GLS_CLIENT_LOCALE;
    return 0;
}

int load_client_locale(start &s) {
    const char *client = s.state.settings[GLS_CLIENT_LOCALE];
    if (client == nullptr)
        client = ggetenv("CLIENT_LOCALE");
    if (client != nullptr)
        return load_given_locale(s, client);
    return s.dbnls != 0 ? load_nls_locale(s) : load_default_locale(s);
}

// Statement text, formats and file names hold ASCII letters, so A must be one byte and lead to B.
int check_portable_characters(locale_rec *lc) {
    if (lc->is_single_byte)
        return 0;
    const char *after_a = gl_full_mbsnext(lc, "ABCDE");
    if (after_a != nullptr && *after_a == 'B')
        return 0;
    set_glserror(err_locale_portable);
    return -1;
}

void settle_slots(start &s) {
    for (int slot = 0; slot < GLS_SLOTS; ++slot) {
        s.state.lc_is_gls[slot] = s.is_gls[slot];
        if (!s.is_gls[slot])
            continue;
        char copy[gls_spec_size];
        memcpy(copy, s.state.lc_spec[slot], sizeof copy);
        togensp(copy, s.state.lc_spec[slot]);
    }
}

// The five variables follow the categories that were loaded; a failure is reported after all have
// been tried.
int record_categories(start &s) {
    int result = 0;
    for (int i = 0; i < GLS_SLOT_MESSAGES; ++i) {
        const auto setting = static_cast<gls_setting>(GLS_LC_CTYPE + i);
        if (gls_set_setting(&s.state, setting, s.state.lc_spec[i]) != 0)
            result = err_env_no_memory;
        s.state.defaulted |= 1 << setting;
    }
    return result;
}

int settle_database_specifier(start &s, char *spec) {
    const char *given = ggetenv("DB_LOCALE");
    if (given != nullptr)
        return normalise_setting(s, GLS_DB_LOCALE, given, spec);
    stncopy(s.state.lc_spec[GLS_SLOT_CTYPE], spec, gls_spec_size);
    if (!s.client_given || s.dbnls != 0)
        return 0;
    if (gls_set_setting(&s.state, GLS_DB_LOCALE, spec) != 0)
        return err_env_no_memory;
    s.state.defaulted |= 1 << GLS_DB_LOCALE;
    return 0;
}

// The database's locale is loaded only where its text differs from the client's.
int load_database_locale(start &s, const char *database) {
    s.state.db_lc = s.env->cur_lc;
    if (s.state.cv_clienttodb == nullptr)
        return 0;
    int32_t ignored[GLS_SLOTS];
    s.state.db_lc = nullptr;
    return get_locale(&s.state.db_lc, database, ignored) == 0 ? 0 : -1;
}

// What a start that fails puts back: the next one derives the settings again, from what the variables
// say then.
class settings_before {
public:
    explicit settings_before(const new_gls_env_rec &state) : defaulted_(state.defaulted) {
        for (size_t i = 0; i < GLS_SETTINGS; ++i) {
            if (state.settings[i] == nullptr)
                continue;
            texts_[i] = kestrion::joined_text(state.settings[i]);
            complete_ = complete_ && texts_[i] != nullptr;
        }
    }
    settings_before(const settings_before &) = delete;
    settings_before &operator=(const settings_before &) = delete;
    ~settings_before() {
        for (char *text : texts_)
            free(text);
    }

    bool complete() const { return complete_; }

    void put_back(new_gls_env_rec &state) {
        for (size_t i = 0; i < GLS_SETTINGS; ++i)
            std::swap(state.settings[i], texts_[i]);
        state.defaulted = defaulted_;
    }

private:
    char *texts_[GLS_SETTINGS] = {};
    int32_t defaulted_;
    bool complete_ = true;
};

int init_client() {
    set_glserror(0);
    const int result = init_fe();
    // -1 says that the failing step stored its error; any other result is the error itself.
    if (result != 0 && (result != -1 || get_glserror() == 0))
        set_glserror(result);
    return result;
}

void settle_file_names() {
    const char *value = ggetenv("GLS8BITFSYS");
    if (value == nullptr)
        return;
    if (strcmp(value, "1") == 0)
        _8bitfsys = 1;
    else if (strcmp(value, "0") == 0)
        _8bitfsys = 0;
}

} // namespace

int chkglsinit(void) {
    const new_gls_env_rec *state = CheckGlsEnv()->state;
    if (state != nullptr && (state->init_flags > 0 || state->initialising > 0))
        return 0;
    return initgls(state != nullptr ? state->mode : int16_t{GLS_MODE_CLIENT});
}

int initgls(int16_t mode) {
    if (setup_glext_funcs(mode) != 0)
        return -1;
    gl_useglu(2);
    GlsEnv *env = CheckGlsEnv();
    new_gls_env_rec &state = *env->state;
    if ((state.init_flags & mode) != 0)
        return 0;
    settings_before before(state);
    if (!before.complete())
        return set_glserror(err_locale_no_memory);
    state.initialising = 1;
    if (init_client() != 0) {
        kestrion::release_loaded(env);
        before.put_back(state);
        state.initialising = 0;
        return getiniterr();
    }
    state.mode = mode;
    init_local_lconv(state.lconv);
    settle_file_names();
    state.init_flags = static_cast<int16_t>(state.init_flags | mode);
    state.initialising = 0;
    set_glserror(0);
    return 0;
}

int init_fe(void) {
    GlsEnv *env = CheckGlsEnv();
    start s{env, *env->state};
    if (cache_code_sets() != 0)
        return err_env_no_memory;
    s.dbnls = DBNLSset();
    if (const int result = load_client_locale(s); result != 0)
        return result;
    if (check_portable_characters(env->cur_lc) != 0)
        return -1;
    settle_slots(s);
    if (s.client_given && s.dbnls != 0)
        if (const int result = record_categories(s); result != 0)
            return result;
    char database[gls_spec_work_size] = {};
    if (const int result = settle_database_specifier(s, database); result != 0)
        return result;
    s.state.client_lc = env->cur_lc;
    s.state.dbnls = s.dbnls;
    const char *ctype = s.state.lc_spec[GLS_SLOT_CTYPE];
    if (initcscdesc(database, ctype, ctype, ctype) != 0 || load_database_locale(s, database) != 0)
        return -1;
    return initdatetime() == 0 ? 0 : -1;
}

int thr_initgls(int16_t mode) {
    const int result = initgls(mode);
    if (result == 0)
        rmoninit();
    return result;
}

int setup_glext_funcs(int16_t mode) {
    if (mode != GLS_MODE_CLIENT)
        return -1;
    for (const hook_row &row : client_hooks)
        if (gl_setextfunc(nullptr, row.slot, row.function) != 0)
            return -1;
    return 0;
}

int qvt_gl_init(void) {
    if (chkglsinit() == 0)
        return 0;
    int32_t *word = _gl_ext_errno(CheckGlsEnv()->cur_lc);
    if (*word == GLS_ERR_SPECIFIER || *word == GLS_ERR_MALFORMED)
        *word = GLS_ERR_ARGUMENT;
    return -1;
}

int getiniterr(void) {
    const int stored = get_glserror();
    for (const folded_row &row : folded_errors)
        if (row.stored == stored)
            return set_glserror(row.becomes);
    return stored;
}

int DBNLSset(void) { return kestrion::language_mode(ggetenv("DBNLS")); }
