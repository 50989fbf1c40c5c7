#include <kestrion/parked_locale.h>

#include <kestrion/conventions.h>
#include <kestrion/locale_specifiers.h>
#include <kestrion/startup.h>

namespace {

// Makes `lc` the locale, and derives its conventions.
void take_locale(GlsEnv *env, locale_rec *lc) {
    env->cur_lc = lc;
    init_local_lconv(env->state->lconv);
}

// What was derived from the locale before must be derived anew.
void forget_money(new_gls_env_rec &state) {
    state.mon_ready = 0;
    _gnorminit = 0;
}

} // namespace

int restoreploc(void) {
    GlsEnv *env = CheckGlsEnv();
    new_gls_env_rec &state = *env->state;
    state.dbnls = DBNLSset() == 1 ? 1 : 2;
    if (state.saved_lc == nullptr)
        return 0;
    take_locale(env, state.saved_lc);
    state.saved_lc = nullptr;
    if (const int result = restorelocsp(env->cur_lc); result != 0)
        return result;
    state.cv_app2os = state.saved_cv_app2os;
    state.cv_os2app = state.saved_cv_os2app;
    state.saved_cv_app2os = state.saved_cv_os2app = nullptr;
    forget_money(state);
    return 0;
}

int restorelang(int32_t dbnls, locale_rec *lc, locale_rec *saved_lc, cv_rec *app2os,
                cv_rec *saved_app2os, cv_rec *os2app, cv_rec *saved_os2app) {
    GlsEnv *env = CheckGlsEnv();
    new_gls_env_rec &state = *env->state;
    state.dbnls = dbnls;
    take_locale(env, lc);
    state.saved_lc = saved_lc;
    state.cv_app2os = app2os;
    state.saved_cv_app2os = saved_app2os;
    state.cv_os2app = os2app;
    state.saved_cv_os2app = saved_os2app;
    if (const int result = restorelocsp(lc); result != 0)
        return result;
    forget_money(state);
    return 0;
}
