// From the text of a locale setting to a loaded locale.
//
// A specifier is language, "_", territory, ".", code set and perhaps "@" and a modifier
// ("en_US.819"); a composite names each category by itself: keyword, " = ", specifier, " ; ".
// Beside a locale of the engine a category can name one of the operating system: "os/" and a name.

#pragma once

#include <kestrion/gls_env.h>

#include <stddef.h>
#include <stdint.h>

enum {
    gls_spec_limit = 286,     // a specifier is shorter than this
    gls_spec_work_size = 286, // room for one, terminator included
    gls_composite_size = 768  // six keywords with the longest file names
};
enum { gls_missing_mark = '0' }; // first character of a slot whose category is missing

#ifdef __cplusplus
extern "C" {
#endif

// Writes "os/" and `name` into out[0..290).
void prependos(const char *name, char *out);

// Cuts `spec`, in place, to 36 characters and copies it to all six slots.
void lcspec2longsp(char *spec, char (*slots)[gls_spec_size]);

// Splits a specifier: `lang` language and territory, `cs` the code-set number as decimal text, both
// and `modifier` of at least 8 bytes. Returns 0 or -1.
int spec2pieces(const char *spec, char *lang, char *cs, char *modifier);

// Appends one category to the composite text out[0..gls_composite_size); slot 0 starts it.
// value   the text to write, or null: the category's slot of the current environment.
// convert with no value: rewrite the slot with the code set `cs` first.
// keep    non-zero: copy the value to the slot as well.
void mk1loccat(const char *value, int slot, char *out, int convert, const char *cs, int keep);

// Takes one category from the variable `name` into its slot, cut to 36 characters.
// strict  non-zero: a missing variable marks the slot and adds 1 to *missing.
// old     ignored.
void get_nlscat(const char *name, int slot, int strict, int *missing, const char *old);

// Loads the locale that `spec` names; is_gls[slot] says whether a file of the engine served (1) or
// a name of the operating system (0). A specifier whose file is not usable gets one more try as a
// name of the operating system. Returns 0, or a negative value with the locale error word set.
int get_locale(locale_rec **out, const char *spec, int32_t *is_gls);

// Returns the locale for an old code-set name, or null. The letters' case counts.
const char *getalsloc(const char *name);

// Writes the normal form of `spec`, at most 36 characters, into out[0..37).
void togensp(const char *spec, char *out);

// Writes the specifier of an object's file name into out[0..37); *is_gls is 0 where the name is the
// operating system's, which then follows its first slash.
void chglcfile2sp(const char *fname, char *out, int32_t *is_gls);

// Rebuilds the slots and their flags from a loaded locale. Returns 0 or the folded error.
int restorelocsp(locale_rec *lc);

// Makes the specifier for a client that works on a database whose categories are `spec0` (CTYPE)
// and `spec1` (COLLATE), in out[0..gls_composite_size).
// flag_a, flag_b  with bit 1 of lc_flags or an equal client locale: take `spec0` alone.
// keep            non-zero: the slots of CTYPE and COLLATE, and all six where `spec0` is taken
//                 alone, follow the database. The last four of a composite always follow.
void mklocspec(const char *spec0, const char *spec1, char *out, int flag_a, int flag_b, int keep);

#ifdef __cplusplus
}
#endif
