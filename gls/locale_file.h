// The locale object file: constants of its format and the readers of its parts.
//
// The format is described in docs/formats/locale-object.md. A file is text: a head of a few lines,
// then sections, each behind a marker line. Sections may come in any order; every category is read
// by opening the file anew and going to its marker.
//
// Readers return 0, or not 0 with the error word of the record set: 3 no memory, 4 too many group
// sizes, 8 a text without its line feed, 11 a malformed field, 50 unknown calendar; the err of a
// table. What a failed section reader had read belongs to the category and goes with
// gl_free_category.

#pragma once

#include "gls/locale_rec.h"

#include <stdint.h>
#include <stdio.h>

inline constexpr char lco_file_type[] = "FILE_TYPE=locale_object\n";
inline constexpr char lco_version[] = "COMPILER_VERSION=11\n";
inline constexpr char lco_directory[] = "lc";         // word for the path search
inline constexpr char lco_directory_version[] = "11"; // tried behind the word first
inline constexpr char lco_default_name[] = "default.lco";
inline constexpr int32_t lco_head_lines = 3;      // lines in front of the skipped ones
inline constexpr int32_t lco_line_limit = 127;    // characters of a head, marker or name line
inline constexpr int32_t lco_cs_name_limit = 19;  // characters of the code-set line
inline constexpr int32_t lco_max_char = 4;        // bytes of the longest character
inline constexpr int32_t lco_text_limit = 65535;  // bytes of one text
inline constexpr int32_t lco_pair_limit = 65535;  // case pairs
inline constexpr int32_t lco_list_limit = 1000;   // months, eras, alternative digits
inline constexpr double lco_growth_default = 4.0; // an empty line for the growth factor
inline constexpr double lco_growth_limit = 16.0;

// Collation weights.
inline constexpr uint16_t coll_ignored = 1;          // no weight at this level
inline constexpr uint16_t coll_expands = 0x4000;     // the low bits index the expansions
inline constexpr uint16_t coll_tie_on_char = 0x8000; // equal weights: compare the characters
inline constexpr uint16_t coll_value_bits = 0x3fff;

// Lines that begin the sections, in the order of the categories.
inline constexpr const char *category_markers[gl_category_count] = {
    "### LC_CTYPE\n",    "### LC_COLLATE\n", "### LC_NUMERIC\n",
    "### LC_MONETARY\n", "### LC_TIME\n",    "### LC_MESSAGES\n",
};

// Keywords of the categories in composite names; also environment variables.
inline constexpr const char *category_params[gl_category_count] = {
    "GL_CTYPE", "GL_COLLATE", "GL_NUMERIC", "GL_MONETARY", "GL_TIME", "GL_MESSAGES",
};

// Calendars by the line that names them.
struct canned_calendar {
    const char *name;   // line feed included
    const void *tables; // none of the calendars needs any: null
    int32_t number;     // enum calendar_number
};
inline constexpr canned_calendar gls_canned_calendars[] = {
    {"gregorian\n", nullptr, CALENDAR_GREGORIAN},
    {"hebrew\n", nullptr, CALENDAR_HEBREW},
    {"islamic\n", nullptr, CALENDAR_ISLAMIC},
    {"arabic\n", nullptr, CALENDAR_ARABIC},
};

extern "C" {

// Reads the head.
// cs_name  gl_cs_name_size bytes.
// Returns  1, or 0 with *error 11 (malformed) or 51 (another version).
int32_t read_file_header(FILE *file, char *cs_name, int32_t *error);

// Reads the section of a category, from the head on, and prepares it for use. On failure the
// category is left empty.
int32_t read_one_category(locale_rec *lc, int32_t category, FILE *file);

// Section readers; the file stands behind the marker. Rows of collation that are read clear the
// error word.
int32_t read_ctype(locale_rec *lc, FILE *file);
int32_t read_collate(locale_rec *lc, FILE *file);
int32_t read_numeric(locale_rec *lc, FILE *file);
int32_t read_monetary(locale_rec *lc, FILE *file);
int32_t read_time(locale_rec *lc, FILE *file);
int32_t read_messages(locale_rec *lc, FILE *file);

// Make the wide forms of what was read (and the eras); error 1 for a text that the locale's
// characters cannot spell. CTYPE must be there.
int32_t init_numeric_info(locale_rec *lc);
int32_t init_monetary_info(locale_rec *lc);
int32_t init_time_info(locale_rec *lc);
int32_t init_message_info(locale_rec *lc);

// Reads a text into a new block, with zero bytes behind it that end it in any code set.
int32_t str_readallc(locale_rec *lc, FILE *file, char **out);

// Reads a list of group sizes.
int32_t read_group(locale_rec *lc, FILE *file, group_rec *out);

// Reads a wide character of eight hexadecimal digits.
gl_wchar _gl_read_gl_wchar(FILE *file);
}
