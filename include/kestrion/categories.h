// Making, filling and releasing locale records.
//
// A record starts empty; each category is then read from an object file (docs/formats/
// locale-object.md), found by name below the installation's gls directory. All categories of a
// record have one code set.
//
// Operations that return an int give 0 or a negative value and leave the cause in the record's
// error word: 3 no memory, 8 file can't be opened, 9 bad argument, 11 malformed file, 12 categories
// of different code sets, 50 unknown calendar, 51 object of another version, 55 a category failed
// without a word of its own, 58 code set differs from that of the other categories.
//
//     locale_rec *lc;
//     if (gl_lc_load(&lc, "en_US.8859-1", nullptr, nullptr) == 0) ...
//     gl_lc_unload(lc);

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

// Records that stand for failure where none could be made. gl_lc_unload ignores them.
#ifdef __cplusplus
extern "C" {
#endif

extern locale_rec loc_nomem; // no memory
extern locale_rec loc_filer; // file error

// Longest text that a category may be set by.
enum { gl_setting_limit = 311 };

// ---- Whole locales

// Loads the locale of a specifier; a text that is no specifier is taken as an object's file name.
// out      the record, also after a failure: its error word tells why; loc_nomem without memory.
// regfile  code-set registry to use instead of the installed one, or null.
// dir      directory to read objects from instead of the search, or null.
// Returns 0, or -1 when the error word is not 0.
int32_t gl_lc_load(locale_rec **out, const char *spec, const char *regfile, const char *dir);

// Frees a record and what it owns. Ignores null, loc_nomem and loc_filer.
void gl_lc_unload(locale_rec *lc);

// Make a record from the default object "default.lco"; the second reads it from `dir`.
int32_t gl_createlocale_4(locale_rec **out);
int32_t gl_createlocale2_4(locale_rec **out, const char *dir);

// Makes an empty record. Without memory *out is loc_nomem and the result -1.
int32_t gl_create_null_locale_4(locale_rec **out);

// ---- Categories

// Sets one category, or all with GL_CAT_ALL, and returns the names of what is then loaded; a null
// text only asks.
// text     "" for the environment's choice (GL_ALL, the category's own variable, GL_LANG); a file
//          name; or keywords and file names, "GL_CTYPE = en_us/0333.lco ; GL_TIME = ...". The name
//          "native" is the default object.
// Returns  a text that the caller frees with gl_destroystring, or null with the cause in the error
//          word. Word 12 comes with a text: the category is loaded, the others have another code
//          set.
// Example  gl_setlocale_4(lc, GL_CAT_TIME, nullptr) -> "en_us/0333.lco"
char *gl_setlocale_4(locale_rec *lc, int32_t category, const char *text);

// The same, reading from `dir` when it is not null.
char *set_categories(locale_rec *lc, int32_t category, const char *text, const char *dir);

// Loads one category and writes the file name that it used to out[0..gl_file_name_size). The old
// data are gone even when the new file can't be read. Returns 0; not 0 on failure.
int32_t load_category(locale_rec *lc, int32_t category, const char *text, char *out,
                      const char *dir);

// Settles what depends on several categories, after any of them changed: the flags, the routines
// and the agreement of the code sets. Returns 0; -1 with word 3 or 12.
int32_t update_locale(locale_rec *lc);

// Chooses the routines by is_single_byte and makes the byte tables. Returns 0; -1 with word 3.
int32_t set_function_pointers(locale_rec *lc);

// Writes the file name of a category; for GL_CAT_ALL all six, "GL_CTYPE = name ; " each.
// out      gl_file_name_size bytes; 320 for GL_CAT_ALL.
void query_locname(const locale_rec *lc, int32_t category, char *out);

// Fills the wide forms of the code-set and file names.
void init_locale_info(locale_rec *lc);

// Gives a category its empty form. Returns 0; -1 with word 3.
int32_t gl_make_null_category(locale_rec *lc, int32_t category);

// Frees what a category holds; data lent by another record are only forgotten.
void gl_free_category(locale_rec *lc, int32_t category);

// ---- Sharing

// Makes `dest` use a category of `source`, which must live longer. Frees what dest had.
void copy_category(locale_rec *dest, const locale_rec *source, int32_t category);

// The same, then settles the record. Returns 0; -1 with word 9 (bad category), 3, or 12 when the
// code sets now differ.
int32_t gl_copy_cat(locale_rec *dest, const locale_rec *source, int32_t category);

// Frees a record whose categories may belong to others.
void gl_free_nonshared_loc(locale_rec *lc);

#ifdef __cplusplus
}
#endif
