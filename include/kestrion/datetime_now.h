// The present moment, as datetimes see it.
//
// It is the clock's local time, moved by DBTODAY when that is set: a YEAR TO SECOND text, the
// moment at which the clock of this process is taken to start. A program can also set the present
// for its thread. Dates (rtoday), centuries and the fields that extension fills in follow all of
// it.
//
//     DBTODAY="1995-06-01 00:00:00"    the day begins with the first look at the clock
//
// A text in DBTODAY that cannot be read leaves the real clock. The variable is read at the first
// look. TZ may change while the process runs.

#pragma once

#include <stdint.h>

#include <kestrion/datetime.h>

#ifdef __cplusplus
extern "C" {
#endif

// Now as YEAR TO FRACTION(5); NULL when it cannot be had or is beyond year 9999.
void rdtcurrent(dec_value *now);

// Now under the record's qualifier; an invalid one is replaced by YEAR TO FRACTION(3).
int dtcurrent(dtime_value *now);

// Today as a date (<kestrion/date.h>).
void rtoday(int32_t *date);

// Sets the present of this thread, YEAR TO FRACTION(5), to a copy of *now; DBTODAY does not move
// it. Null goes back to the clock.
void rdtsetcurr(const dec_value *now);

// The local time of a moment in seconds since the epoch, extended to `qualifier`. Always 0; an
// invalid qualifier or a moment outside years 1 to 9999 gives NULL.
int rdatetime(int64_t seconds, int qualifier, dec_value *value);

// Seconds since the epoch, always by the clock.
int64_t rutccurrent(void);

// Reads DBTODAY anew, from now on.
void getdbtoday(void);

// Notes today as the thread's date, which is the day on which it began its work.
void initdbtoday(void);

#ifdef __cplusplus
}
#endif
