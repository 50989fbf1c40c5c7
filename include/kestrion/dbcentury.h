// The century of years in two digits, as DBCENTURY wants it.
//
//     letter  on 2024-06-01 "50-01-01" is
//     R       2050    the present century; also without DBCENTURY
//     P       1950    the latest that is past
//     F       2050    the earliest that is to come
//     C       2050    the closest, of two equally close ones the past
//
// Today is rtoday() of <kestrion/datetime_now.h>, so DBTODAY moves the choice.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// The letter in force. DBCENTURY is read until it holds one of the four letters alone, or is not
// set; as long as it holds something else, the letter is R.
int getdbcentury(void);

// The century (20 for 2024) of the year yy, 0 to 99.
// Returns err_date_month (-1205), err_date_year (-1204) or err_date_day (-1206) for what is out of
// range (months 1 to 12, days 1 to 31), in this order; err_date_text (-1218) for other failures.
int getcentury(int month, int day, int yy);

#ifdef __cplusplus
}
#endif
