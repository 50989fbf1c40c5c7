#include "base/installation.h"

#include <stdlib.h>
#include <sys/auxv.h>

namespace kestrion {

bool has_raised_privileges() { return getauxval(AT_SECURE) != 0; }

char *place_from_environment(const char *name) {
    return has_raised_privileges() ? nullptr : getenv(name);
}

const char *directory_from_environment() {
    return has_raised_privileges() ? built_in_directory : getenv("KESTRIONDIR");
}

} // namespace kestrion
