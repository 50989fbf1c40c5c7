#include <kestrion/dbcentury.h>

#include "values/datetime/centuries.h"
#include <kestrion/century.h>
#include <kestrion/current_time.h>
#include <kestrion/date.h>
#include <kestrion/datetime_now.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/ext_funcs.h>
#include <kestrion/gls_env.h>
#include <kestrion/gls_errors.h>

namespace {

constinit char dbcentury = 0; // P, F, C or R; 0 until DBCENTURY was read as one of them

bool is_century_letter(char letter) {
    return letter == 'P' || letter == 'F' || letter == 'C' || letter == 'R';
}

int error_of_century(int32_t locale_error) {
    switch (locale_error) {
    case GLS_ERR_MONTH:
        return err_date_month;
    case GLS_ERR_YEAR:
        return err_date_year;
    case GLS_ERR_DAY:
        return err_date_day;
    default:
        return err_date_text;
    }
}

} // namespace

namespace kestrion {

void mdy_of_today(int16_t mdy[3]) {
    int32_t today;
    rtoday(&today);
    rjulmdy(today, mdy);
}

int century_by_letter(int month, int day, int yy, char letter) {
    locale_rec *lc = qvt_get_gl_locale_thread();
    int16_t today[3];
    mdy_of_today(today);
    if (today[2] != mdy_null) {
        const gl_tm now = {.day = today[1],
                           .month = today[0] - 1,
                           .month_name = today[0] - 1,
                           .year = today[2] - 1900};
        gl_set_current_time(lc, &now);
    }
    const int century =
        gl_getcenturyloc(lc, month, day, yy, is_century_letter(letter) ? letter : 'R', 0);
    const int code = century < 0 ? error_of_century(*_gl_ext_errno(lc)) : century;
    gl_reset_time(lc);
    return code;
}

} // namespace kestrion

int getdbcentury(void) {
    if (dbcentury == 0) {
        const char *text = idx_ggetenv("DBCENTURY", -1);
        if (text == nullptr) {
            dbcentury = 'R';
        } else if (is_century_letter(text[0]) && text[1] == '\0') {
            dbcentury = text[0];
        }
    }
    return dbcentury != 0 ? dbcentury : 'R';
}

int getcentury(int month, int day, int yy) {
    return kestrion::century_by_letter(month, day, yy, static_cast<char>(getdbcentury()));
}
