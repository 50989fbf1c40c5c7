// Decimals of 28 digits beside their peers. Each row runs ours and the peer in turns within a
// round; "times" is the peer's time over ours, "wanted" what we want it to be.

#include <kestrion/decimal.h>
#include <kestrion/decimal_text.h>

#include <benchmark/benchmark.h>
#include <boost/multiprecision/cpp_dec_float.hpp>

#ifdef HAS_DECIMAL128
#define DECIMAL_CALL_BY_REFERENCE      0
#define DECIMAL_GLOBAL_ROUNDING        0
#define DECIMAL_GLOBAL_EXCEPTION_FLAGS 0
extern "C" {
#include <bid_conf.h>
#include <bid_functions.h>
}
#endif

#if defined(__GNUC__) && !defined(__clang__)
#include <decimal/decimal>
#define HAS_COMPILER_DECIMAL
#endif

#include <random>
#include <string>
#include <vector>

#include "side_by_side.h"

namespace {

namespace mp = boost::multiprecision;
using multi = mp::number<mp::cpp_dec_float<34>, mp::et_off>;

constexpr size_t values = 8192; // too many for the branch predictor to know by heart
constexpr int rounds = 31;
constexpr int text_size = 40;

#ifdef HAS_COMPILER_DECIMAL
using compiler_decimal = std::decimal::decimal128; // 34 digits

compiler_decimal by_compiler(const std::string &text) {
    compiler_decimal value(0);
    for (char c : text)
        if (c != '.')
            value = value * 10 + (c - '0');
    for (size_t after = text.size() - text.find('.') - 1; after > 0; --after)
        value /= 10;
    return value;
}
#endif

// The same numbers in every form: 28 digits, 20 to 25 of them before the point.
struct numbers {
    std::vector<std::string> text;
    std::vector<dec_value> ours;
    std::vector<multi> multis;
#ifdef HAS_COMPILER_DECIMAL
    std::vector<compiler_decimal> compilers;
#endif
#ifdef HAS_DECIMAL128
    std::vector<BID_UINT128> bids;
#endif

    explicit numbers(unsigned seed) {
        std::mt19937 random(seed);
        for (size_t i = 0; i < values; ++i) {
            std::string digits(1, static_cast<char>('1' + random() % 9));
            while (digits.size() < 28)
                digits.push_back(static_cast<char>('0' + random() % 10));
            digits.insert(20 + random() % 6, 1, '.');
            dec_value value;
            if (deccvasc_net(digits.c_str(), text_size, &value) != 0)
                abort();
            ours.push_back(value);
            multis.emplace_back(digits);
#ifdef HAS_COMPILER_DECIMAL
            compilers.push_back(by_compiler(digits));
#endif
#ifdef HAS_DECIMAL128
            unsigned flags = 0;
            bids.push_back(bid128_from_string(digits.data(), 0, &flags));
#endif
            text.push_back(digits);
        }
    }
};

const numbers &first() {
    static const numbers made(1);
    return made;
}
const numbers &second() {
    static const numbers made(2);
    return made;
}

// A call for each of the values.
template <typename Call> std::function<void()> over_all(Call call) {
    return [call] {
        for (size_t i = 0; i < values; ++i)
            call(i);
    };
}

using operation = int (*)(const dec_value *, const dec_value *, dec_value *);

std::function<void()> ours(operation act) {
    return over_all([act](size_t i) {
        dec_value result;
        benchmark::DoNotOptimize(act(&first().ours[i], &second().ours[i], &result));
        benchmark::DoNotOptimize(result);
    });
}

template <typename Work> std::function<void()> multi_pair(Work work) {
    return over_all([work](size_t i) {
        multi result = work(first().multis[i], second().multis[i]);
        benchmark::DoNotOptimize(result);
    });
}

#ifdef HAS_COMPILER_DECIMAL
void divide_by_compiler() {
    for (size_t i = 0; i < values; ++i) {
        compiler_decimal result = first().compilers[i] / second().compilers[i];
        benchmark::DoNotOptimize(result);
    }
}
#endif

void compare_all() {
    for (size_t i = 0; i < values; ++i)
        benchmark::DoNotOptimize(deccmp(&first().ours[i], &second().ours[i]));
}

void scan_all() {
    for (size_t i = 0; i < values; ++i) {
        dec_value result;
        deccvasc_net(first().text[i].c_str(), text_size, &result);
        benchmark::DoNotOptimize(result);
    }
}

void print_all() {
    for (size_t i = 0; i < values; ++i) {
        char text[text_size];
        dectoasc_net(&first().ours[i], text, text_size, -1);
        benchmark::DoNotOptimize(text);
    }
}

#ifdef HAS_DECIMAL128
using bid_operation = BID_UINT128 (*)(BID_UINT128, BID_UINT128, unsigned, unsigned *);

std::function<void()> bid_pair(bid_operation act) {
    return over_all([act](size_t i) {
        unsigned flags = 0;
        BID_UINT128 result = act(first().bids[i], second().bids[i], 0, &flags);
        benchmark::DoNotOptimize(result);
    });
}

void bid_compare_all() {
    unsigned flags = 0;
    for (size_t i = 0; i < values; ++i)
        benchmark::DoNotOptimize(bid128_quiet_less(first().bids[i], second().bids[i], &flags));
}

void bid_scan_all() {
    for (size_t i = 0; i < values; ++i) {
        unsigned flags = 0;
        BID_UINT128 result =
            bid128_from_string(const_cast<char *>(first().text[i].c_str()), 0, &flags);
        benchmark::DoNotOptimize(result);
    }
}

void bid_print_all() {
    for (size_t i = 0; i < values; ++i) {
        unsigned flags = 0;
        char text[text_size + 10];
        bid128_to_string(text, first().bids[i], &flags);
        benchmark::DoNotOptimize(text);
    }
}
#endif

struct row {
    const char *name;
    std::function<void()> ours, peer;
    double wanted; // times the peer's speed
};

std::vector<row> all_rows() {
    const auto times = [](const multi &a, const multi &b) -> multi { return a * b; };
    const auto over = [](const multi &a, const multi &b) -> multi { return a / b; };
    std::vector<row> rows = {
        {"multiply_beside_multiprecision", ours(decmul), multi_pair(times), 0.8},
        {"divide_beside_multiprecision", ours(decdiv), multi_pair(over), 2},
#ifdef HAS_COMPILER_DECIMAL
        {"divide_beside_the_compiler", ours(decdiv), divide_by_compiler, 2},
#endif
    };
#ifdef HAS_DECIMAL128
    const std::vector<row> beside_bid = {
        {"add_beside_decimal128", ours(decadd), bid_pair(bid128_add), 1.3},
        {"subtract_beside_decimal128", ours(decsub), bid_pair(bid128_sub), 1.3},
        {"multiply_beside_decimal128", ours(decmul), bid_pair(bid128_mul), 1},
        {"divide_beside_decimal128", ours(decdiv), bid_pair(bid128_div), 2},
        {"compare_beside_decimal128", compare_all, bid_compare_all, 1.8},
        {"from_text_beside_decimal128", scan_all, bid_scan_all, 1.1},
        {"to_text_beside_decimal128", print_all, bid_print_all, 2},
    };
    rows.insert(rows.end(), beside_bid.begin(), beside_bid.end());
#endif
    return rows;
}

void beside_peer(benchmark::State &state, const row &one) {
    std::vector<contestant> field = {{"ours", one.ours}, {"peer", one.peer}};
    for (auto round : state) {
        (void)round;
        run_in_turns(field, rounds, 3);
    }
    for (const contestant &side : field)
        state.counters[std::string(side.name) + "_ns"] = side.median() * 1e9 / values;
    state.counters["times"] = field[1].median() / field[0].median();
    state.counters["wanted"] = one.wanted;
}

} // namespace

int main(int argc, char **argv) {
    const std::vector<row> rows = all_rows();
    for (const row &one : rows)
        benchmark::RegisterBenchmark(one.name, [&one](benchmark::State &state) {
            beside_peer(state, one);
        })->Iterations(1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
