// The registry of variables: where all of the runtime reads its settings instead of calling getenv.
//
// A lookup answers from the first of three layers that has a value:
//   1. the process environment, which always wins; a value over its limit counts as not set, and so
//      does, in a program with raised privileges (set-user-id and the like), the value of a
//      variable that names a file, a folder or a program
//   2. the settings of the current locale environment (14 names; after start-up these hold what was
//      derived from the others, and so shadow a later ginsenv of the same names)
//   3. the live entry: ~/.kestrion, else $KESTRIONDIR/etc/kestrion.rc, else the built-in default
// A name that is not in the table is answered from the process environment alone. With raised
// privileges etc/kestrion.rc is that of the built-in directory, and ~/.kestrion is not read.
//
// Example: KESTRIONDIR has the default "/usr/kestrion" and a limit of 256 characters. With 256 in
// the environment ggetenv("KESTRIONDIR") returns them; with 257 it returns what a configuration
// file says, else "/usr/kestrion", and gerrno is err_env_value_size.
//
// The first lookup loads the registry (greadenv in <kestrion/first_load.h>). When that load fails
// the lookup returns null; the entries made so far stay, so that later lookups are answered.
//
// Texts that come out belong to the registry or to the environment: they are not freed by the
// caller and are valid until the value changes. An index is the position in Kes_DVals
// (env/variable_table.h), or -1 to search by name. An index that is given decides by itself, the
// name beside it is not compared.
//
// Results of type int, and gerrno, are 0 or one of the err_env_ numbers of
// <kestrion/error_numbers.h>. Nothing here locks: one thread, or all loading done before threads
// start.

#pragma once

#include <kestrion/variable_table.h>

#include <stdint.h>

// One live entry.
typedef struct env_entry {
    char *name;         // owned copy of the row's name
    char *value;        // owned text, EnvEmptyVal for set and empty, null for not set
    int32_t index;      // row of Kes_DVals, -1 for a variable that the program added
    int32_t max_length; // the row's limit
} env_entry;

#ifdef __cplusplus
extern "C" {
#endif

extern env_entry *Kes_EVars; // the live registry; null: not loaded
extern int32_t Num_EVars;    // its entries: the rows of Kes_DVals in order, then the program's own
extern const env_variable *Kes_UDVars; // the program's own list, ended by a null name, or null
extern char *const EnvEmptyVal;        // the shared empty text; never freed
extern int32_t gerrno;                 // why the last lookup failed, or what it passed over

// ---- Lookups ----

// Returns the variable's value, or null.
// gerrno  0; err_env_value_size, with a value or null, when the environment's value is over its
//         limit; err_env_unknown_name for an unknown name without a value; err_env_null_name; the
//         reason when the load failed.
char *idx_ggetenv(const char *name, int32_t index);
char *ggetenv(const char *name);       // idx_ggetenv by name
char *getsesenv(const char *name);     // the same
char *ggetenv_oledb(const char *name); // the same

// The same without the settings of the locale environment.
char *idx_ggetenv2(const char *name, int32_t index);
char *ggetenv2(const char *name);

// The first layer alone; does not load the registry. A value with bytes above 127 is converted when
// the current locale environment converts texts of the operating system; such a copy is never
// freed.
// Returns null with gerrno 0 (not set), err_env_value_size or err_env_null_name.
char *idx_getenv(const char *name, int32_t index);

// The second layer alone. `name` in any mix of cases. Does not touch gerrno.
char *ggetglsenv(const char *name);

// The third layer alone. Returns null when the registry is not loaded, when the entry has no value,
// or, with gerrno err_env_unknown_name, when there is no such entry.
char *idx_getdefault(const char *name, int32_t index);

// Stores the built-in default of a variable, null if it has none, in *text. Returns 0, or -1 for a
// variable that is not in Kes_DVals.
int gdefenv(const char *name, const char **text);

// Returns the entry of that name, the first if there are several, in a table of `count` entries; a
// null name ends the table early. Null if there is none.
env_entry *search_evar(const char *name, env_entry *table, int32_t count);

// The same with an index tried first: the entry at that position is returned if it records the same
// index, whatever its name. An index outside the table gives null.
env_entry *search_evar_enum(int32_t index, const char *name, env_entry *table, int32_t count);

// The timeout of a lookup: -1, lookups wait for nothing.
int32_t idx_get_timeout_value(void);

// ---- Changes ----

// Stores a value in the registry; the only writer of values. `entry` skips the search.
// value   null makes the entry unset, but one that is set and empty stays so; the empty text makes
//         it set and empty.
// Returns 0; err_env_no_memory: the old value stays, but an entry that was set and empty becomes
//         unset; err_env_value_size: the old value stays; err_env_unknown_name; err_env_null_name.
// Writes  an equal value keeps the stored pointer; any other invalidates it.
int ginsenv(const char *name, const char *value, env_entry *entry);

// Puts a value into the process environment; null is the empty text. The new text stays with the
// environment. Returns 0, err_env_no_memory or err_env_null_name.
int gfeputenv(const char *name, const char *value);
int gputenv(const char *name, const char *value); // the same

// Names the program's own variables, before the first lookup. The list is read when the registry is
// loaded and must live until then.
void gsetudenv(const env_variable *list);

// Frees the registry; the next lookup loads it again.
void gFreeEVars(void);

#ifdef __cplusplus
}
#endif
