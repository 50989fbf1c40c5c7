#include <kestrion/datetime_now.h>

#include "values/datetime/datetime_workers.h"
#include <kestrion/date.h>
#include <kestrion/datetime_text.h>
#include <kestrion/env_registry.h>

#include <sys/time.h>
#include <time.h>

using namespace kestrion;

namespace {

// The general control block holds decimals of this subject as bytes.
void keep(const dec_value &value, unsigned char *bytes) { memcpy(bytes, &value, sizeof value); }
dec_value kept(const unsigned char *bytes) {
    dec_value value;
    memcpy(&value, bytes, sizeof value);
    return value;
}
static_assert(sizeof(dec_value) == sizeof(gentcb::set_present) &&
              sizeof(dec_value) == sizeof(gentcb::dbtoday_offset));

constexpr uint32_t dbtoday_flags = GEN_DBTODAY_BUSY | GEN_DBTODAY_OFFSET | GEN_DBTODAY_NONE;

// A local time as YEAR TO FRACTION(5). The zone is asked for each time: TZ may have changed.
bool local_time(time_t seconds, int64_t microseconds, dec_value *value) {
    tm local;
    tzset();
    if (localtime_r(&seconds, &local) == nullptr || local.tm_year < 1 - 1900 ||
        local.tm_year > 9999 - 1900)
        return false;
    const int year = local.tm_year + 1900;
    const int64_t fields[] = {year / 100,        year % 100,           local.tm_mon + 1,
                              local.tm_mday,     local.tm_hour,        local.tm_min,
                              local.tm_sec,      microseconds / 10000, microseconds % 10000 / 100,
                              microseconds % 100};
    unsigned char bytes[datetime_field_bytes] = {};
    for (size_t i = 0; i < sizeof fields / sizeof *fields; ++i)
        bytes[i] = static_cast<unsigned char>(fields[i]);
    return pack_fields(value, field_layout(qualifier_year_to_fraction5), bytes, dec_positive) == 0;
}

bool clock_now(dec_value *now) {
    timeval clock;
    return gettimeofday(&clock, nullptr) == 0 && local_time(clock.tv_sec, clock.tv_usec, now);
}

// How far DBTODAY is from the clock, as DAY(9) TO SECOND.
bool offset_of(const char *text, dec_value *offset) {
    constexpr int q = qualifier_year_to_second;
    dec_value wanted;
    dec_value now;
    if (rstrdtime(text, &wanted, q) != 0 || is_null(wanted) || !clock_now(&now))
        return false;
    const field_layout layout(q); // of the clock whole seconds count
    return subtract(row_of(wanted, layout), row_of(now, layout), q, qualifier_day9_to_second,
                    offset) == 0;
}

// The clock moved by the offset.
bool move_clock(const dec_value &clock, const gentcb &block, dec_value *now) {
    constexpr int q = qualifier_year_to_fraction5;
    const operand offset = operand_in(kept(block.dbtoday_offset));
    return add(row_of(clock, field_layout(q)), q,
               field_word(offset, field_layout(block.dbtoday_qualifier)), offset.sign,
               block.dbtoday_qualifier, now) == 0;
}

} // namespace

void getdbtoday(void) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return;
    const int32_t error = block->conv_err;
    block->gen_flags &= ~dbtoday_flags;
    const char *text = idx_ggetenv("DBTODAY", -1);
    dec_value offset;
    // Reading the text asks for the present, which must not lead back here.
    block->gen_flags |= GEN_DBTODAY_BUSY;
    const bool good = text != nullptr && offset_of(text, &offset);
    block->gen_flags &= ~uint32_t{GEN_DBTODAY_BUSY};
    block->gen_flags |= good ? GEN_DBTODAY_OFFSET : GEN_DBTODAY_NONE;
    if (good) {
        block->dbtoday_qualifier = qualifier_day9_to_second;
        keep(offset, block->dbtoday_offset);
    }
    block->conv_err = error;
}

void rdtcurrent(dec_value *now) {
    *now = null_decimal;
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return;
    if ((block->gen_flags & dbtoday_flags) == 0)
        getdbtoday();
    if ((block->gen_flags & GEN_PRESENT_SET) != 0) {
        *now = kept(block->set_present);
        return;
    }
    dec_value clock;
    if (!clock_now(&clock))
        return;
    if ((block->gen_flags & GEN_DBTODAY_OFFSET) == 0) {
        *now = clock;
    } else if (!move_clock(clock, *block, now)) {
        *now = null_decimal;
    }
}

int dtcurrent(dtime_value *now) {
    if (!is_datetime_qualifier(now->qualifier))
        now->qualifier = qualifier_year_to_fraction3;
    dec_value present;
    rdtcurrent(&present);
    return rdtextend(&present, qualifier_year_to_fraction5, &now->value, now->qualifier);
}

void rtoday(int32_t *date) {
    dec_value now;
    rdtcurrent(&now);
    operand x;
    *date = date_null;
    if (load_value(&now, &x) == loaded::value)
        date_of_row(row_of(x, field_layout(qualifier_year_to_fraction5)), date);
}

void rdtsetcurr(const dec_value *now) {
    gentcb *block = CheckGenInit();
    if (block == nullptr)
        return;
    block->gen_flags &= ~uint32_t{GEN_PRESENT_SET};
    if (now != nullptr && decverify(now) == 0) {
        keep(*now, block->set_present);
        block->gen_flags |= GEN_PRESENT_SET;
    }
}

int rdatetime(int64_t seconds, int qualifier, dec_value *value) {
    dec_value local;
    *value = null_decimal;
    if (is_datetime_qualifier(qualifier) && local_time(seconds, 0, &local)) {
        extend(row_of(local, field_layout(qualifier_year_to_fraction5)), dec_positive,
               qualifier_year_to_fraction5, qualifier, value);
    }
    return 0;
}

int64_t rutccurrent(void) { return time(nullptr); }

void initdbtoday(void) {
    gentcb *block = CheckGenInit();
    if (block != nullptr)
        rtoday(&block->thread_date);
}
