// Dates as text, by the date format of the locale environment and under masks.
//
// DBDATE, else GL_DATE, else the locale, makes the format. In en_us without either:
//
//     rdatestr(45350, text)                      -> "02/29/2024"
//     rstrdate("2/29/24", &date)                 -> 45350
//     rdefmtdate(&date, "dd mmm yyyy", "29 Feb 2024")
//
// Operations return 0 or a negative error number, and then set the date to NULL: err_date_year
// (-1204), err_date_month (-1205), err_date_day (-1206), err_date_range (-1210), err_date_text
// (-1218) for a text that is not a date, and the number of a failed locale start. Years of one or
// two digits are completed as DBCENTURY says (<kestrion/dbcentury.h>).

#pragma once

#include <stdint.h>

#include <kestrion/date.h>

enum { rdatestr_size = 81 }; // bytes of a date text, terminator included

#ifdef __cplusplus
extern "C" {
#endif

// Writes a date by the format into text[0..rdatestr_size), terminated; NULL gives an empty text.
// Returns also err_result_size (-1273).
int rdatestr(int32_t date, char *text);

// Reads a date. Blanks alone are NULL.
//
// Where the format comes from DBDATE or is the default, the fields stand in its order. A separator
// is any one character that is not a digit. A month may be a name, as the locale or English has it,
// in full or abbreviated, in any case. Without separators (DBDATE Y4MD0) each field has its full
// width. A year of three or four digits is complete. Fields that the format lacks are today's above
// those it has, and 1 below.
// Any other format is read as it stands.
int rstrdate(const char *text, int32_t *date);

// Reads a date by a mask. Runs of letters in the mask are fields:
//
//     m mm   month in one or two digits      mmm mmmm   its abbreviated or full name
//     d dd   day in one or two digits        ddd dddd   weekday, abbreviated or full; not checked
//     y yy   year in two digits              yyyy       in up to four
//
// Everything else stands for itself, and any run of other characters in the text matches it: the
// mask "yyyy/mm/dd" reads "2024-02-29" and "2024 2 29". Where fields touch in the mask, each has
// its full width in the text. Fields that the mask lacks are as in rstrdate.
int rdefmtdate(int32_t *date, const char *mask, const char *text);

#ifdef __cplusplus
}
#endif
