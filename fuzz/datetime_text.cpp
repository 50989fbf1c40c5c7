// A text as a datetime and as an interval of any qualifier word, and as a date: what is read is
// written and read again.

#include <kestrion/date.h>
#include <kestrion/date_text.h>
#include <kestrion/datetime_now.h>
#include <kestrion/datetime_text.h>
#include <kestrion/interval_text.h>
#include <kestrion/qualifier.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool holds) {
    if (!holds)
        abort();
}

void read_datetime(const std::string &text, int word) {
    dec_value value;
    dec_value back;
    char written[rdtimestr_size];
    const int code = rstrdtime(text.c_str(), &value, word);
    require(decverify(&value) == 0);
    require((_chk_qual(0, word) != 0) == (code == -1268));
    if (code == 0) {
        require(rdtimestr(&value, word, written) == 0);
        require(rstrdtime(written, &back, word) == 0);
        require(memcmp(&value, &back, sizeof value) == 0);
    }
}

void read_interval(const std::string &text, int word) {
    dec_value value;
    dec_value back;
    char written[rinvstr_size];
    const int code = rstrinv(text.c_str(), &value, word);
    require(decverify(&value) == 0);
    if (code == 0) {
        require(rinvstr(&value, word, written) == 0);
        require(rstrinv(written, &back, word) == 0);
        require(memcmp(&value, &back, sizeof value) == 0);
    }
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
    const int word = data[0] << 8 | data[1];
    const std::string text(reinterpret_cast<const char *>(data) + 2, size - 2);
    read_datetime(text, word);
    read_interval(text, word);
    int32_t date;
    rdefmtdate(&date, "mmm dd, yyyy", text.c_str());
    return 0;
}
