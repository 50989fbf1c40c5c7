// Making, filling and releasing locale records.
//
// A record starts empty; each category is then read from an object file (docs/formats/
// locale-object.md), found by name below the installation's gls directory. All categories of a
// record have one code set.
//
// Operations that return an int give 0 or a negative value and leave the cause in the record's
// error word:
//     GLS_ERR_NO_MEMORY        an allocation failed
//     GLS_ERR_FILE             a file can't be opened
//     GLS_ERR_ARGUMENT         bad argument
//     GLS_ERR_MALFORMED        a file breaks its grammar
//     GLS_ERR_MIXED_CODE_SETS  the categories have different code sets
//     GLS_ERR_CALENDAR         unknown calendar
//     GLS_ERR_OBJECT_VERSION   an object of another version
//     GLS_ERR_CATEGORY         a category failed without a word of its own
//     GLS_ERR_OTHER_CODE_SET   the code set differs from that of the other categories
//
//     locale_rec *lc;
//     if (gl_lc_load(&lc, "en_US.8859-1", nullptr, nullptr) == 0) ...
//     gl_lc_unload(lc);

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Records that an operation hands out when it could make none. gl_lc_unload ignores them.
extern locale_rec loc_nomem; // no memory
extern locale_rec loc_filer; // file error

// Longest text that a category may be set by.
enum { gl_setting_limit = 311 };

// ---- Whole locales

// Loads the locale of a specifier; any other text is the file name of an object, and a null one is
// GLS_ERR_ARGUMENT.
// out      the record, also after a failure: its error word says why; loc_nomem without memory.
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
//          word. GLS_ERR_MIXED_CODE_SETS comes with a text: the category is loaded, the others have
//          another code set.
// Example  gl_setlocale_4(lc, GL_CAT_TIME, nullptr) -> "en_us/0333.lco"
char *gl_setlocale_4(locale_rec *lc, int32_t category, const char *text);

// The same, reading from `dir` when it is not null.
char *set_categories(locale_rec *lc, int32_t category, const char *text, const char *dir);

// Loads one category and writes the file name that it used to out[0..gl_file_name_size). The old
// data are gone even when the new file can't be read. Returns 0; not 0 on failure.
int32_t load_category(locale_rec *lc, int32_t category, const char *text, char *out,
                      const char *dir);

// Settles what depends on several categories, after any of them changed: the flags, the routines
// and the agreement of the code sets. Returns 0, or -1 with GLS_ERR_NO_MEMORY or
// GLS_ERR_MIXED_CODE_SETS.
int32_t update_locale(locale_rec *lc);

// Chooses the routines by is_single_byte and makes the byte tables. Returns 0, or -1 with
// GLS_ERR_NO_MEMORY.
int32_t set_function_pointers(locale_rec *lc);

// Writes the file name of a category; for GL_CAT_ALL all six, "GL_CTYPE = name ; " each.
// out      gl_file_name_size bytes; 320 for GL_CAT_ALL.
void query_locname(const locale_rec *lc, int32_t category, char *out);

// Fills the wide forms of the code-set and file names.
void init_locale_info(locale_rec *lc);

// Gives a category its empty form. Returns 0, or -1 with GLS_ERR_NO_MEMORY.
int32_t gl_make_null_category(locale_rec *lc, int32_t category);

// Frees what a category holds; data lent by another record are only forgotten.
void gl_free_category(locale_rec *lc, int32_t category);

// ---- Sharing

// Makes `dest` use a category of `source`, which must live longer. Frees what dest had.
void copy_category(locale_rec *dest, const locale_rec *source, int32_t category);

// The same, then settles the record. Returns 0, or -1 with GLS_ERR_ARGUMENT (bad category),
// GLS_ERR_NO_MEMORY, or GLS_ERR_MIXED_CODE_SETS when the code sets now differ.
int32_t gl_copy_cat(locale_rec *dest, const locale_rec *source, int32_t category);

// Frees a record whose categories may belong to others.
void gl_free_nonshared_loc(locale_rec *lc);

#ifdef __cplusplus
}
#endif
