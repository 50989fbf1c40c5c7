// The locale object file: the readers of its parts.
//
// The format is described in docs/formats/locale-object.md. A file is text: a head of a few lines,
// then sections, each after a marker line. Sections may come in any order; every category is read
// by opening the file anew and going to its marker.
//
// Readers return 0, or not 0 with the error word of the record set:
//     GLS_ERR_NO_MEMORY  an allocation failed
//     GLS_ERR_COUNT      too many group sizes
//     GLS_ERR_FILE       a text without its line feed
//     GLS_ERR_MALFORMED  a malformed field
//     GLS_ERR_CALENDAR   unknown calendar
// or the err of a table. What a failed section reader had read belongs to the category and goes
// with gl_free_category.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Reads the head.
// cs_name  gl_cs_name_size bytes.
// Returns  1, or 0 with *error GLS_ERR_MALFORMED or GLS_ERR_OBJECT_VERSION.
int32_t read_file_header(FILE *file, char *cs_name, int32_t *error);

// Reads the section of a category, from the head on, and prepares it for use. On failure the
// category is left empty.
int32_t read_one_category(locale_rec *lc, int32_t category, FILE *file);

// Section readers; the file is read from after the marker. Rows of collation that are read clear
// the error word.
int32_t read_ctype(locale_rec *lc, FILE *file);
int32_t read_collate(locale_rec *lc, FILE *file);
int32_t read_numeric(locale_rec *lc, FILE *file);
int32_t read_monetary(locale_rec *lc, FILE *file);
int32_t read_time(locale_rec *lc, FILE *file);
int32_t read_messages(locale_rec *lc, FILE *file);

// Make the wide forms of what was read (and the eras); GLS_ERR_BAD_CHARACTER for a text that the
// locale's characters cannot spell. CTYPE must be there.
int32_t init_numeric_info(locale_rec *lc);
int32_t init_monetary_info(locale_rec *lc);
int32_t init_time_info(locale_rec *lc);
int32_t init_message_info(locale_rec *lc);

// Reads a text into a new block, with zero bytes after it that end it in any code set.
int32_t str_readallc(locale_rec *lc, FILE *file, char **out);

// Reads a list of group sizes.
int32_t read_group(locale_rec *lc, FILE *file, group_rec *out);

// Reads a wide character of eight hexadecimal digits.
gl_wchar _gl_read_gl_wchar(FILE *file);

#ifdef __cplusplus
}
#endif
