// Says what a program with raised privileges makes of its environment; without them it ends with 77.

#include <kestrion/env_registry.h>
#include <kestrion/gls_log.h>
#include <kestrion/isi_api.h>

#include <stdio.h>
#include <sys/auxv.h>

int main() {
    if (getauxval(AT_SECURE) == 0)
        return 77;
    gl_message("into the current folder");
    ggetenv("KESTRIONDIR"); // loads the registry, and starts a locale that may not be there
    isi_init();
    printf("%s\n%s", ggetenv("KESTRIONDIR"), isi_get_err('\n'));
}
