// Datetimes beside the C library's texts and std::chrono's calendar, in turns within one round, so
// that both meet the same machine. "times" is the peer's time over ours.

#include <kestrion/date.h>
#include <kestrion/date_text.h>
#include <kestrion/datetime_arithmetic.h>
#include <kestrion/datetime_text.h>
#include <kestrion/interval_text.h>
#include <kestrion/startup.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <random>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <time.h>
#include <vector>

namespace {

using namespace std::chrono;

constexpr int y_s = qualifier_year_to_second;
constexpr size_t sample_size = 1024;

// Moments of this and the last century, in every form that a row needs.
struct sample {
    std::vector<std::string> texts;
    std::vector<dtime_value> seconds;
    std::vector<dtime_value> days;
    std::vector<tm> library;
    std::vector<sys_days> calendar;
    std::vector<intv_value> months;
    std::vector<int> month_counts;
};

const sample &moments() {
    static const sample made = [] {
        setenv("KESTRIONDIR", INSTALLATION, 0);
        chkglsinit();
        std::mt19937_64 random(1);
        sample all;
        for (size_t i = 0; i < sample_size; ++i) {
            const time_t seconds = static_cast<time_t>(random() % 4102444800u);
            tm library;
            char text[64];
            gmtime_r(&seconds, &library);
            strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &library);
            all.texts.emplace_back(text);
            all.library.push_back(library);
            all.calendar.push_back(floor<days>(sys_seconds{std::chrono::seconds{seconds}}));
            dtime_value value = {.qualifier = y_s, .value = {}};
            dtcvasc(text, &value);
            all.seconds.push_back(value);
            dtime_value day = {.qualifier = qualifier_year_to_day, .value = {}};
            dtextend(&value, &day);
            all.days.push_back(day);
            const int months = static_cast<int>(random() % 99) - 49;
            intv_value span = {.qualifier = qualifier_word(2, unit_month, unit_month), .value = {}};
            incvasc(std::to_string(months).c_str(), &span);
            all.months.push_back(span);
            all.month_counts.push_back(months);
        }
        return all;
    }();
    return made;
}

template <typename Call> double nanoseconds(Call call) {
    const auto now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    for (size_t i = 0; i < sample_size; ++i)
        call(i);
    return (now() - start) / sample_size;
}

// The medians of both sides over all rounds, and their ratio.
template <typename Ours, typename Peer> void beside(benchmark::State &state, Ours ours, Peer peer) {
    std::vector<double> our_times;
    std::vector<double> peer_times;
    for (auto round : state) {
        (void)round;
        our_times.push_back(nanoseconds(ours));
        peer_times.push_back(nanoseconds(peer));
    }
    const auto median = [](std::vector<double> &times) {
        std::nth_element(times.begin(), times.begin() + static_cast<ptrdiff_t>(times.size() / 2),
                         times.end());
        return times[times.size() / 2];
    };
    const double our_time = median(our_times);
    const double peer_time = median(peer_times);
    state.counters["ours_ns"] = our_time;
    state.counters["peer_ns"] = peer_time;
    state.counters["times"] = peer_time / our_time;
}

void datetime_from_text(benchmark::State &state) {
    const sample &all = moments();
    dtime_value value = {.qualifier = y_s, .value = {}};
    tm library = {};
    beside(
        state, [&](size_t i) { benchmark::DoNotOptimize(dtcvasc(all.texts[i].c_str(), &value)); },
        [&](size_t i) {
            benchmark::DoNotOptimize(strptime(all.texts[i].c_str(), "%Y-%m-%d %H:%M:%S", &library));
        });
}

void datetime_to_text(benchmark::State &state) {
    const sample &all = moments();
    char text[rdtimestr_size];
    beside(
        state, [&](size_t i) { benchmark::DoNotOptimize(dttoasc(&all.seconds[i], text)); },
        [&](size_t i) {
            benchmark::DoNotOptimize(
                strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &all.library[i]));
        });
}

// A record of fields, as the library's user has it at the end, is what both sides make.
void add_months(benchmark::State &state) {
    const sample &all = moments();
    dtime_value sum = {};
    beside(
        state,
        [&](size_t i) { benchmark::DoNotOptimize(dtaddinv(&all.days[i], &all.months[i], &sum)); },
        [&](size_t i) {
            const year_month_day date{all.calendar[i]};
            year_month_day later = date + std::chrono::months{all.month_counts[i]};
            if (!later.ok())
                later = later.year() / later.month() / last;
            benchmark::DoNotOptimize(later);
        });
}

void days_between(benchmark::State &state) {
    const sample &all = moments();
    dec_value difference;
    beside(
        state,
        [&](size_t i) {
            const size_t j = (i + 1) % sample_size;
            benchmark::DoNotOptimize(rdtsub(&all.days[i].value, qualifier_year_to_day,
                                            &all.days[j].value, qualifier_year_to_day, &difference,
                                            qualifier_word(8, unit_day, unit_day)));
        },
        [&](size_t i) {
            const size_t j = (i + 1) % sample_size;
            const year_month_day a{all.calendar[i]};
            const year_month_day b{all.calendar[j]};
            benchmark::DoNotOptimize(sys_days{a} - sys_days{b});
        });
}

void dates_both_ways(benchmark::State &state) {
    const sample &all = moments();
    const auto day_zero = sys_days{1899y / December / 31};
    beside(
        state,
        [&](size_t i) {
            int16_t mdy[3];
            auto date = static_cast<int32_t>((all.calendar[i] - day_zero).count());
            rjulmdy(date, mdy);
            benchmark::DoNotOptimize(rmdyjul(mdy, &date));
            benchmark::DoNotOptimize(date);
        },
        [&](size_t i) {
            const year_month_day date{all.calendar[i]};
            benchmark::DoNotOptimize(sys_days{date});
        });
}

BENCHMARK(datetime_from_text);
BENCHMARK(datetime_to_text);
BENCHMARK(add_months);
BENCHMARK(days_between);
BENCHMARK(dates_both_ways);

} // namespace

BENCHMARK_MAIN();
