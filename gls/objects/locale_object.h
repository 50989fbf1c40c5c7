// The locale object file: the words and limits of its format, which docs/formats/locale-object.md
// describes.

#pragma once

#include <kestrion/locale_rec.h>

#include <stdint.h>

namespace kestrion {

inline constexpr char lco_file_type[] = "FILE_TYPE=locale_object\n";
inline constexpr char lco_version[] = "COMPILER_VERSION=11\n";
inline constexpr char lco_directory[] = "lc";         // word for the path search
inline constexpr char lco_directory_version[] = "11"; // tried after the word first
inline constexpr char lco_default_name[] = "default.lco";

inline constexpr int32_t lco_head_lines = 3;     // lines before the skipped ones
inline constexpr int32_t lco_line_limit = 127;   // characters of a head, marker or name line
inline constexpr int32_t lco_cs_name_limit = 19; // characters of the code-set line
inline constexpr int32_t lco_text_limit = 65535; // bytes of one text
inline constexpr int32_t lco_pair_limit = 65535; // case pairs
inline constexpr int32_t lco_list_limit = 1000;  // months, eras, alternative digits

inline constexpr double lco_growth_default = 4.0; // an empty line for the growth factor
inline constexpr double lco_growth_limit = 16.0;

// Lines that begin the sections, in the order of the categories.
inline constexpr const char *category_markers[gl_category_count] = {
    "### LC_CTYPE\n",    "### LC_COLLATE\n", "### LC_NUMERIC\n",
    "### LC_MONETARY\n", "### LC_TIME\n",    "### LC_MESSAGES\n",
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

} // namespace kestrion
