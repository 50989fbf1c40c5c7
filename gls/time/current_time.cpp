#include <kestrion/current_time.h>

#include "gls/base/engine_error.h"
#include "gls/time/current_time.h"

namespace {

struct set_time {
    bool is_set;
    gl_tm time;
};

int32_t error_of_date(const gl_tm *time) {
    if (time == nullptr)
        return GLS_ERR_NULL_ARGUMENT;
    if (time->year <= -1900 || time->year > 9999 - 1900)
        return GLS_ERR_YEAR;
    if (time->month < 0 || time->month > 11)
        return GLS_ERR_MONTH;
    return time->day < 1 || time->day > 31 ? GLS_ERR_DAY : GLS_OK;
}

constinit thread_local set_time present = {};

} // namespace

namespace kestrion {

const gl_tm *time_that_was_set() { return present.is_set ? &present.time : nullptr; }

} // namespace kestrion

int32_t gl_set_current_time(locale_rec *lc, const gl_tm *time) {
    const int32_t error = error_of_date(time);
    if (error != GLS_OK)
        return kestrion::fail(lc, error);
    present = {.is_set = true, .time = *time};
    return 0;
}

int32_t gl_reset_time(locale_rec *) {
    present = {};
    return 0;
}
