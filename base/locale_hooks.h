// What the lower floors ask of the locale environment, which lies above them.
//
// The control block brings the locale up, and a lookup of a variable asks the current environment
// for its settings and its conversions. The locale environment defines the table, so that it is in
// place before the first call and no floor includes the one above it.

#pragma once

namespace kestrion {

struct locale_hook_table {
    // Brings the locale of the process up. Returns 0, or a number below 0.
    int (*start)();

    // The current environment's value of the setting `name`, in any mix of cases. Null for a name
    // that is not a setting of an environment, and for a setting without a value.
    char *(*setting)(const char *name);

    // A copy of `text`, which came from the operating system, in the code set of the program. Null
    // where nothing has to be converted, and where the conversion fails. The caller frees it.
    char *(*text_from_system)(const char *text);
};

extern const locale_hook_table locale_hooks; // locale_env/locale_hooks.cpp

} // namespace kestrion
