#include "base/locale_hooks.h"

#include <kestrion/character_tables.h>
#include <kestrion/gls_env.h>
#include <kestrion/startup.h>
#include <kestrion/strings.h>
#include <kestrion/text_conversion.h>

#include <stddef.h>

namespace {

int start() { return chkglsinit(); }

unsigned char lower(char byte) { return _ix2lowmap[static_cast<unsigned char>(byte)]; }

char *setting(const char *name) {
    for (size_t i = 0; i < GLS_SETTINGS; ++i) {
        const char *own = gls_setting_names[i];
        // LANG has a setting, but a lookup never takes it from there.
        if (i != GLS_LANG && lower(*name) == lower(*own) && stcmpri(name, own) == 0)
            return CheckGlsEnv()->state->settings[i];
    }
    return nullptr;
}

bool has_high_byte(const char *text) {
    for (; *text != '\0'; ++text) {
        if (static_cast<unsigned char>(*text) >= 0x80)
            return true;
    }
    return false;
}

char *text_from_system(const char *text) {
    cv_rec *from_system = CheckGlsEnv()->state->cv_os2app;
    return from_system != nullptr && has_high_byte(text) ? gcv_malloc(from_system, text) : nullptr;
}

} // namespace

namespace kestrion {

constinit const locale_hook_table locale_hooks = {
    .start = start, .setting = setting, .text_from_system = text_from_system};

} // namespace kestrion
