// Registry lookups beside plain getenv, in turns within one run, so that both meet the same
// machine.

#include "env/variable_table.h"
#include <kestrion/env_registry.h>

#include <benchmark/benchmark.h>
#include <chrono>
#include <stdlib.h>
#include <string>

namespace {

// An environment of the usual size: the variable is in the middle of 40.
void fill_environment() {
    clearenv();
    for (int i = 0; i < 40; ++i)
        setenv(i == 20 ? "KESTRIONSERVER" : ("SOME_VARIABLE_" + std::to_string(i)).c_str(), "value",
               1);
}

template <typename Call> double nanoseconds(int calls, Call call) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
        benchmark::DoNotOptimize(call());
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / calls;
}

// Reports the time of one lookup, of getenv for the same name, and their ratio.
template <typename Call> void beside_getenv(benchmark::State &state, const char *name, Call call) {
    constexpr int calls = 10000;
    ggetenv("DBPATH");
    double ours = 0;
    double theirs = 0;
    for (auto round : state) {
        (void)round;
        ours += nanoseconds(calls, call);
        theirs += nanoseconds(calls, [&] { return getenv(name); });
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["lookup_ns"] = ours / rounds;
    state.counters["getenv_ns"] = theirs / rounds;
    state.counters["ratio"] = ours / theirs;
}

void set_by_index(benchmark::State &state) {
    fill_environment();
    constexpr int32_t index = kestrion::variable_index("KESTRIONSERVER");
    beside_getenv(state, "KESTRIONSERVER", [] { return idx_ggetenv("KESTRIONSERVER", index); });
}

// The worst case for whatever is around getenv: it finds the variable at once.
void set_first_by_index(benchmark::State &state) {
    constexpr int32_t index = kestrion::variable_index("W1");
    clearenv();
    setenv("W1", "value", 1);
    beside_getenv(state, "W1", [] { return idx_ggetenv("W1", index); });
}

void set_by_name(benchmark::State &state) {
    fill_environment();
    beside_getenv(state, "KESTRIONSERVER", [] { return ggetenv("KESTRIONSERVER"); });
}

// Not in the environment: getenv answers "no", the registry its default.
void default_by_index(benchmark::State &state) {
    fill_environment();
    constexpr int32_t index = kestrion::variable_index("TERMCAP");
    beside_getenv(state, "TERMCAP", [] { return idx_ggetenv("TERMCAP", index); });
}

void default_by_name(benchmark::State &state) {
    fill_environment();
    beside_getenv(state, "TERMCAP", [] { return ggetenv("TERMCAP"); });
}

// What the index saves: the walk over the rows up to the same one.
void search_by_name(benchmark::State &state) {
    for (auto round : state) {
        (void)round;
        benchmark::DoNotOptimize(search_evar("TERMCAP", Kes_EVars, Num_EVars));
    }
}

void first_load(benchmark::State &state) {
    for (auto round : state) {
        (void)round;
        gFreeEVars();
        benchmark::DoNotOptimize(ggetenv("DBPATH"));
    }
}

BENCHMARK(set_by_index);
BENCHMARK(set_by_name);
BENCHMARK(set_first_by_index);
BENCHMARK(default_by_index);
BENCHMARK(default_by_name);
BENCHMARK(search_by_name);
BENCHMARK(first_load);

} // namespace

BENCHMARK_MAIN();
