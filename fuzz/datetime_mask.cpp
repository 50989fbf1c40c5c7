// A mask and a text, separated by the first zero byte, for datetimes, intervals and dates: formats are
// cut, values written into buffers of every size up to their length, texts read.

#include <kestrion/date.h>
#include <kestrion/date_text.h>
#include <kestrion/datetime_format.h>
#include <kestrion/datetime_now.h>
#include <kestrion/datetime_text.h>
#include <kestrion/format_mask.h>
#include <kestrion/interval_mask.h>
#include <kestrion/interval_text.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int result_does_not_fit = -1273;

void require(bool holds) {
    if (!holds)
        abort();
}

template <typename Write> void write_in_every_size(Write write) {
    constexpr int32_t most = 300;
    std::vector<char> text(most);
    const int code = write(text.data(), most);
    if (code != 0)
        return;
    const auto length = static_cast<int32_t>(strlen(text.data()));
    std::vector<char> exact(static_cast<size_t>(length) + 1);
    require(write(exact.data(), length + 1) == 0 && strcmp(exact.data(), text.data()) == 0);
    if (length > 0)
        require(write(exact.data(), length) == result_does_not_fit);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool ready = [] {
        dec_value now;
        setenv("KESTRIONDIR", "/nonexistent", 1);
        require(rstrdtime("2024-03-15 10:20:30.12345", &now, qualifier_year_to_fraction5) == 0);
        rdtsetcurr(&now);
        return true;
    }();
    (void)ready;
    if (size < 2)
        return 0;
    const auto word = static_cast<int16_t>(data[0] << 8 | data[1]);
    const std::string both(reinterpret_cast<const char *>(data) + 2, size - 2);
    const std::string mask = both.c_str();
    // Texts end at a zero byte, which both.c_str() may have within.
    const char *text = mask.size() < both.size() ? both.c_str() + mask.size() + 1 : "";

    char part[datetime_format_size];
    qualtofmt(word, mask.c_str(), part, sizeof part);
    dtime_value moment = {.qualifier = qualifier_year_to_fraction5, .value = {}};
    require(dtcvasc("2024-02-29 12:34:56.78912", &moment) == 0);
    write_in_every_size(
        [&](char *to, int32_t room) { return dttofmtasc(&moment, to, room, mask.c_str()); });
    dtime_value read = {.qualifier = word, .value = {}};
    dtcvfmtasc(text, mask.c_str(), &read);
    require(decverify(&read.value) == 0);

    intv_value span = {.qualifier = word, .value = {}};
    if (incvfmtasc(text, mask.c_str(), &span) == 0) {
        write_in_every_size(
            [&](char *to, int32_t room) { return intofmtasc(&span, to, room, mask.c_str()); });
    }
    require(decverify(&span.value) == 0);
    int32_t date;
    rdefmtdate(&date, mask.c_str(), text);
    require(date == date_null || (date >= date_first && date <= date_last));
    return 0;
}
