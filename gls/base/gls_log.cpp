#include <kestrion/gls_log.h>

#include "base/installation.h"
#include "gls/base/log_with_name.h"
#include "gls/base/real_identity.h"
#include <kestrion/ext_funcs.h>

#include <stdio.h>
#include <stdlib.h>
#include <time.h>

namespace {

constexpr char log_name[] = "gls.log";

// True for a value that starts with the letter o in any case and a second letter in `accepted`.
bool starts_with_on(const char *value, char accepted, char accepted_too) {
    return value != nullptr && (value[0] == 'o' || value[0] == 'O') &&
           (value[1] == accepted || value[1] == accepted_too);
}

void write_head() {
    FILE *const log = openlogfile(log_name, "a");
    if (log == nullptr)
        return;
    const time_t now = time(nullptr);
    char text[32]; // ctime_r wants 26
    const char *const started = ctime_r(&now, text) != nullptr ? text : "\n";
    fprintf(log, "----\nGLS log started %s----\n", started);
    fclose(log);
}

} // namespace

constinit int32_t gls_debug_initialized = 0;
constinit int32_t gls_logging = 0;
constinit int32_t gls_popups = 0;

void gl_init_debug(void) {
    // Set first: the host's getenv may itself come to log something.
    gls_debug_initialized = 1;
    if (starts_with_on(_gl_ext_getenv("GLSLOG"), 'n', 'N')) {
        gls_logging = 1;
        write_head();
    }
    // The second letter must be small here, unlike above; GLSDEBUG=ON has never printed.
    if (starts_with_on(_gl_ext_getenv("GLSDEBUG"), 'n', 'n'))
        gls_popups = 1;
}

void gl_message(const char *text) { kestrion::log_with_name("", text); }

FILE *openlogfile(const char *name, const char *mode) {
    kestrion::real_identity identity;
    // The current folder of a raised program is its caller's choice, also where a configuration file
    // asks for the log.
    if (kestrion::has_raised_privileges() || !identity.take())
        return nullptr;
    FILE *const log = fopen(name, mode);
    identity.give_back();
    return log;
}

void gl_assert_failed(const char *file, long line) {
    fprintf(stderr, "Assert in %s at line %ld failed.\n", file, line);
    exit(1);
}

void _gl_exit_utilities(void) {}

namespace kestrion {

void log_with_name(const char *start, const char *name) {
    if (gls_debug_initialized == 0)
        gl_init_debug();
    if (gls_logging != 0) {
        if (FILE *const log = openlogfile(log_name, "a")) {
            fprintf(log, "%s%s\n", start, name);
            fclose(log);
        }
    }
    if (gls_popups != 0)
        printf("GLS: %s%s\n", start, name);
}

} // namespace kestrion
