// The date format of an environment: DBDATE, else GL_DATE, else the locale's.
//
// DBDATE names the fields in the order wanted, with the digits of the year, a separator and an era
// suffix:
//   MDY4/   ->  "%m/%d/%iY"          month, day, four-digit year
//   Y2MD0   ->  "%iy%m%d"            "0" means no separator
//   EYMD/C1 ->  "%Eg%03.3Ey/%m/%d"   the suffix overrides the era prefix

#pragma once

#include <stddef.h>
#include <stdint.h>

enum {
    gls_dbdate_format_size = 19 // the longest format that DBDATE makes is 17 long
};

// Values of date_order.
enum { gls_date_day = 1, gls_date_month = 2, gls_date_year = 3 };

// What a DBDATE text means.
typedef struct dbdate_format {
    int32_t order[3]; // gls_date_day ..., 0 for a slot that is not there
    int32_t era_kind; // 0 none, 1 by J or N, 2 by C1 or C2, 3 by E or G
    char text[gls_dbdate_format_size];
} dbdate_format;

#ifdef __cplusplus
extern "C" {
#endif

// Parses a DBDATE text. Returns 0, or err_date_format when it breaks the grammar, with *out
// undefined.
int parse_dbdate(const char *text, dbdate_format *out);

// Settles date_fmt and its companions in the current environment.
// buffer  null: the format goes into a new allocation; else it goes there, and the buffer has 256
// bytes.
// Returns 0, err_date_no_memory without memory or room, err_date_format for a bad DBDATE.
int nogetenv_getglsfmt(void *ignored1, void *ignored2, char *buffer, int zero);

// Settles all of the current environment that depends on dates: the format, the calendar, the
// cached names, the copy of GL_DATETIME, the table of datetime formats. Returns 0, or the error of a
// format, which it stored.
int initdatetime(void);

#ifdef __cplusplus
}
#endif
