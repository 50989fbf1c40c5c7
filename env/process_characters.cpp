#include <kestrion/process_characters.h>

#include "env/language_setting.h"
#include "env/resets.h"
#include <kestrion/character_tables.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>

#include <locale.h>

namespace {

constinit bool set_up = false; // rldctype has run

} // namespace

namespace kestrion {

void reset_process_characters() { set_up = false; }

} // namespace kestrion

int rldnlsctype(const char *locale_name) {
    if (setlocale(LC_CTYPE, locale_name) == nullptr)
        return err_process_locale;
    return ldctypearr() == 0 ? 0 : err_no_block;
}

int rldctype(void) {
    if (set_up)
        return 0;
    set_up = true;
    if (kestrion::language_mode(ggetenv("DBNLS")) == 0)
        return rld8bitarr();
    return rldnlsctype("") == 0 ? 0 : -1;
}
