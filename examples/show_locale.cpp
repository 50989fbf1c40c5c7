// Starts the runtime's locale and tells what the environment variables made of it.
//
//     CLIENT_LOCALE=de_DE.8859-1 show_locale

#include <kestrion/gls_env.h>
#include <kestrion/messages.h>
#include <kestrion/startup.h>

#include <stdio.h>

int main() {
    if (const int error = chkglsinit(); error != 0) {
        char text[256];
        int32_t length = 0;
        rgetlmsg(error, text, sizeof text, &length);
        fprintf(stderr, "show_locale: the locale does not start (%d): %s\n", error, text);
        return 1;
    }
    const new_gls_env_rec &state = *CheckGlsEnv()->state;
    // The English names come first in a list; the locale's own are its last block.
    const gls_name_list *months = state.mon_names;
    while (months != nullptr && months->next != nullptr)
        months = months->next;
    printf("client locale %-14s date format %-12s month %s\n", state.settings[GLS_CLIENT_LOCALE],
           state.date_fmt, months != nullptr ? months->names[2] : "-");
    return 0;
}
