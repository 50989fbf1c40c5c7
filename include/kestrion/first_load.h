// The first load of the registry, in layers, each over the one before: the built-in defaults, the
// program's own variables, the system's and the user's configuration file, and, where DBNLS asks
// for it, the locale variables.
//
// ENVIGNORE in the process environment, names with ":" between them, keeps lines out of both files;
// it does not touch the environment's own variables. With raised privileges it does not count, the
// system's file is that of the built-in directory, and the user's file is not read.
//
// Results of type int are 0 or one of the err_env_ numbers of <kestrion/error_numbers.h>.

#pragma once

#include <stddef.h>
#include <stdint.h>

enum {
    home_path_size = 65 // 64 characters of a home directory and the terminator
};

#ifdef __cplusplus
extern "C" {
#endif

// Loads the registry, once: defaults, the program's own variables, both files, and, where DBNLS
// asks for it, the locale variables. What was loaded before a failure stays.
// Returns 0; err_env_no_memory without memory, home directory or control block; err_env_value_size
//         when the user's file ended at a value over its limit or with an unknown name on its last
//         line, and for a program's own row whose default is over its limit.
// Ends the process with status 1 when there is no memory for the built-in defaults.
int greadenv(void);

// Settles one locale variable when DBNLS is on.
// flags, bit  what the files gave, and this variable's bit in it.
// lang        the value of LANG, or null.
// Writes  `lang` or "en_US.819" into the registry, unless a file gave a value that is to be used. A
//         variable that is present but empty in the process environment gets the registry's value.
int gnlsenv(uint32_t flags, uint32_t bit, const char *name, const char *lang);

// Stores the first 64 characters of the user's home directory in `path`, which has home_path_size
// bytes. The user is the one who logged in, else the owner of the process: a root shell can belong
// to another account.
// Returns 0; err_env_no_user for a user without an account record, err_env_value_size for one whose
//         directory is empty; gerrno is set to the same.
int ggethomepath(char *path);

#ifdef __cplusplus
}
#endif
