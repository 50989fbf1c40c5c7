#include <kestrion/time_scan.h>

#include "gls/base/engine_error.h"
#include "gls/time/current_time.h"
#include "gls/time/scanned_time.h"
#include "gls/time/time_scanner.h"
#include <kestrion/calendars.h>
#include <kestrion/ext_funcs.h>

#include <stdint.h>

using namespace kestrion;

namespace {

// Where a scan starts from: the time that was set, else the caller's.
void start_scan(const gl_tm &callers, gl_tm &start) {
    const gl_tm *set = time_that_was_set();
    start = set == nullptr ? callers : *set;
}
void start_scan(const gl_alt_tm &callers, gl_tm &start) {
    const gl_tm *set = time_that_was_set();
    if (set == nullptr)
        alt_tm_to_tm(&callers, &start);
    else
        start = *set;
}

void end_scan(const gl_tm &scanned, gl_tm &callers) { callers = scanned; }
void end_scan(const gl_tm &scanned, gl_alt_tm &callers) { tm_to_alt_tm(&scanned, &callers); }

// The date of another calendar that a scan begins with: the start's, where that is a date.
bool begin_local(locale_rec *lc, gl_tm &time) {
    const int32_t calendar = calendar_of(lc);
    if (calendar != CALENDAR_HEBREW && calendar != CALENDAR_ISLAMIC)
        return refuse(lc, GLS_ERR_CALENDAR);
    const int32_t error_before = *_gl_ext_errno(lc);
    const int32_t weekday = time.weekday;
    if (gl_cal_gregorian_to_local(lc, &time, &time) != 0)
        set_engine_error(lc, error_before);
    time.weekday = weekday;
    return true;
}

// Puts the date of another calendar back. A scan without a date leaves the one that was there.
bool end_local(locale_rec *lc, const gl_tm &start, scanned_time &scanned) {
    gl_tm &time = scanned.time;
    if (scanned.has_date)
        return gl_cal_local_to_gregorian(lc, &time, &time) == 0;
    time.day = start.day;
    time.month = start.month;
    time.month_name = start.month_name;
    time.year = start.year;
    time.day_of_year = start.day_of_year;
    return true;
}

// Scans in the locale's calendar.
template <class unit>
const unit *scan_local(locale_rec *lc, const unit *text, const unit *format, scanned_time &time) {
    time_scanner<unit> scanner(lc, text, time);
    int32_t error = walk_format(scanner, format);
    if (error == GLS_OK)
        error = settle(lc, time);
    if (error == GLS_OK)
        return scanner.at();
    set_engine_error(lc, error);
    return nullptr;
}

template <class unit>
const unit *scan_gregorian(locale_rec *lc, const unit *text, const unit *format,
                           scanned_time &time) {
    if (calendar_of(lc) == CALENDAR_GREGORIAN)
        return scan_local(lc, text, format, time);
    const gl_tm start = time.time;
    if (!begin_local(lc, time.time))
        return nullptr;
    const unit *rest = scan_local(lc, text, format, time);
    return rest != nullptr && end_local(lc, start, time) ? rest : nullptr;
}

enum class record_calendar { gregorian, of_locale };

template <record_calendar calendar, class unit, class record>
const unit *scan_time(locale_rec *lc, const unit *text, const unit *format, record *time) {
    if (text == nullptr || format == nullptr || time == nullptr) {
        set_engine_error(lc, GLS_ERR_NULL_ARGUMENT);
        return nullptr;
    }
    scanned_time scanned;
    start_scan(*time, scanned.time);
    const unit *rest = calendar == record_calendar::gregorian
                           ? scan_gregorian(lc, text, format, scanned)
                           : scan_local(lc, text, format, scanned);
    if (rest != nullptr)
        end_scan(scanned.time, *time);
    return rest;
}

} // namespace

const gl_wchar *gl_wcsptime(locale_rec *lc, const gl_wchar *text, const gl_wchar *format,
                            gl_alt_tm *time) {
    return scan_time<record_calendar::gregorian>(lc, text, format, time);
}

const gl_wchar *gl_wcsptime1(locale_rec *lc, const gl_wchar *text, const gl_wchar *format,
                             gl_tm *time) {
    return scan_time<record_calendar::gregorian>(lc, text, format, time);
}

const gl_wchar *gl_wcsptime_internal(locale_rec *lc, const gl_wchar *text, const gl_wchar *format,
                                     gl_tm *time) {
    return scan_time<record_calendar::of_locale>(lc, text, format, time);
}

const char *gl_mbsptime(locale_rec *lc, const char *text, const char *format, gl_alt_tm *time) {
    return scan_time<record_calendar::gregorian>(lc, text, format, time);
}

const char *gl_mbsptime_internal(locale_rec *lc, const char *text, const char *format,
                                 gl_tm *time) {
    return scan_time<record_calendar::of_locale>(lc, text, format, time);
}
