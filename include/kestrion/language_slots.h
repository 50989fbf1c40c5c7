// The language settings of the current database: three text slots beside the registry, which a
// connection sets to what the database was made with and resets to the client's own settings.
//
// A value that does not fit its slot is refused with err_env_value_size and the slot keeps what it
// held. A null value and a variable without a value are the empty text. Results of type int are 0
// or one of the numbers of <kestrion/error_numbers.h>.

#pragma once

#include <stdint.h>

typedef struct database_language {
    char lc_ctype[65];
    char lc_collate[65];
    char dbnls[6];
} database_language;

#ifdef __cplusplus
extern "C" {
#endif

extern database_language Kes_DBVars;

// Sets the slot "LC_COLLATE", "LC_CTYPE" or "DBNLS". The first applies the value to the process's
// collation before it stores it and stores nothing when that fails; the second stores it and then
// loads the character tables. Other names do nothing and return 0.
int OS_setlang(const char *name, const char *value);

// Returns the slot of that name, or null.
char *OS_getlangvar(const char *name);

// Returns 1 when the LC_CTYPE slot is not empty, else 0.
int OS_IsDbEnvSet(void);

// Loads the slots from the registry: DBNLS, "0" if it has no value, then LC_CTYPE and LC_COLLATE.
// apply   not 0: only a value that differs from its slot is loaded, and it is put into force.
// Returns 0 or the first error, which ends it.
int OS_resetlang(int apply);

// Sets the collation of the process's own locale. Returns 0, or err_process_locale when the system
// refuses the name.
int _osetcollate(const char *locale_name);

#ifdef __cplusplus
}
#endif
