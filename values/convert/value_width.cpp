#include <kestrion/value_text.h>

#include "values/datetime/masks.h"
#include <kestrion/datetime_format.h>
#include <kestrion/gls_env.h>
#include <kestrion/money_text.h>
#include <kestrion/startup.h>
#include <kestrion/time_expand.h>
#include <kestrion/value_types.h>

#include <algorithm>
#include <string.h>

using namespace kestrion;

namespace {

constexpr int masked_width = 80; // of datetimes under GL_DATETIME

int decimal_width(int word) {
    const int precision = word >> 8 & 0xFF;
    const int scale = word & 0xFF;
    const auto radix = static_cast<int>(strlen(CheckGlsEnv()->state->lconv->radix));
    return radix + precision + (scale == 255 ? 6 : 1) + (precision == scale ? 1 : 0);
}

int money_width(int word) { return decimal_width(word) + rfrontlen() + rbacklen(); }

// Digits, a delimiter before each later field, and the point before a fraction alone.
int plain_width(int word) {
    const int length = word >> 8 & 0xFF;
    const int start = word >> 4 & 0xF;
    const int end = (word & 0xF) > unit_second ? +unit_fraction : word & 0xF;
    return std::max((end - start) / 2 + length + (start == unit_fraction ? 1 : 0), 0);
}

int expanded(const char *format) {
    return format == nullptr ? 0 : std::max(gl_mbsfmtexpand(CheckGlsEnv()->cur_lc, format, 1), 0);
}

int datetime_width(int word) {
    char format[datetime_format_size];
    if (get_usedtenv() != 0)
        return expanded(environment_mask(word & 0xFFFF, format));
    return writes_by_gl_datetime() ? masked_width : plain_width(word);
}

int interval_width(int word) { return plain_width(word) + 1; }

} // namespace

int rtypwidth(int type, int word) {
    if (type < 0 || type >= sql_type_count || chkglsinit() != 0)
        return 0;
    const int n = std::max(word, 0);
    switch (type) {
    case sql_smallint:
        return 6;
    case sql_integer:
    case sql_serial:
        return 11;
    case sql_float:
    case sql_smallfloat:
        return 14;
    case sql_decimal:
        return decimal_width(word);
    case sql_date:
        return expanded(CheckGlsEnv()->state->date_fmt);
    case sql_money:
        return money_width(word);
    case sql_datetime:
        return datetime_width(word);
    case sql_interval:
        return interval_width(word);
    case sql_varchar:
    case sql_nvarchar:
        return std::min(n, 255);
    case sql_int8:
    case sql_serial8:
    case sql_bigint:
    case sql_bigserial:
        return 20;
    case sql_boolean:
        return 1;
    default:
        return sqlctype(type) >= 0 && rtypmsize(type, n) > 0 ? n : 0;
    }
}
