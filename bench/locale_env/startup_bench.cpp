// What a program pays for its locale: the start of the default environment, and finding one of
// many.
//
// Needs the installation directory that the tests lay down. setlocale, which loads the system's own
// locale, is beside the start.

#include <kestrion/env_registry.h>
#include <kestrion/environments.h>
#include <kestrion/startup.h>

#include <benchmark/benchmark.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string>

namespace {

// Files in the page cache: the first round is not counted.
void start_default_environment(benchmark::State &state) {
    for (auto round : state) {
        (void)round;
        if (chkglsinit() != 0)
            state.SkipWithError("the locale does not start; run the tests once");
        state.PauseTiming();
        freegls();
        state.ResumeTiming();
    }
}

void system_setlocale(benchmark::State &state) {
    for (auto round : state) {
        (void)round;
        benchmark::DoNotOptimize(setlocale(LC_ALL, "C.UTF-8"));
        state.PauseTiming();
        setlocale(LC_ALL, "C");
        state.ResumeTiming();
    }
}

// The last of 100 environments that differ in their date format, and a request that none matches.
void find_among_100(benchmark::State &state) {
    GlsEnvLocale want = {};
    want.settings[GLS_CLIENT_LOCALE] = "en_US.8859-1";
    std::string date;
    for (int i = 0; i < 100; ++i) {
        date = "%d%m%Y" + std::to_string(i);
        want.settings[GLS_GL_DATE] = date.c_str();
        GlsEnv *made;
        if (CreateGlsEnv(&want, &made, 0) != 0)
            state.SkipWithError("no memory");
    }
    if (state.range(0) != 0)
        want.settings[GLS_GL_DATE] = "none of them";
    for (auto round : state) {
        (void)round;
        GlsEnv *found;
        benchmark::DoNotOptimize(CheckExistingGlsEnv(&want, &found));
    }
    FreeAllGlsEnv();
}

void current_environment(benchmark::State &state) {
    for (auto round : state) {
        (void)round;
        benchmark::DoNotOptimize(CheckGlsEnv());
    }
}

BENCHMARK(start_default_environment)->Unit(benchmark::kMicrosecond);
BENCHMARK(system_setlocale)->Unit(benchmark::kMicrosecond);
BENCHMARK(find_among_100)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(current_environment);

} // namespace

int main(int argc, char **argv) {
    clearenv();
    setenv("KESTRIONDIR", INSTALLATION, 1);
    ggetenv("KESTRIONDIR");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
