// Message lookups beside gettext and catgets, over the same texts, in turns within one run.

#include <kestrion/gls_env.h>
#include <kestrion/messages.h>

#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <libintl.h>
#include <locale.h>
#include <nl_types.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int base = 2001; // catgets has no numbers below 1

// The texts of os.qem, as sources for the two peers, and their catalogues from these.
struct peers {
    peers() {
        char name[] = "/tmp/kestrion-bench-XXXXXX";
        dir = mkdtemp(name);
        std::ofstream cat(dir / "m.msg");
        std::ofstream po(dir / "m.po");
        po << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
        new_gls_env.init_flags = 1;
        setenv("KESTRIONDIR", KESTRION_BUILD_DIR, 1);
        unsetenv("DBLANG");
        for (int32_t number = -2000; number <= 2000; ++number) {
            char text[600];
            int32_t length = 0;
            if (rgetlmsg(number, text, sizeof text, &length) != 0)
                continue;
            text[length - 1] = '\0';
            numbers.push_back(number);
            texts.emplace_back(text);
            cat << number + base << ' ' << text << '\n';
            po << "\nmsgid \"" << text << "\"\nmsgstr \"" << text << "!\"\n";
        }
        cat.close();
        po.close();
        fs::create_directories(dir / "xx/LC_MESSAGES");
        const std::string in = "cd " + dir.string() + " && ";
        ready = system((in + "gencat m.cat m.msg").c_str()) == 0 &&
                system((in + "msgfmt -o xx/LC_MESSAGES/m.mo m.po").c_str()) == 0;
        setlocale(LC_ALL, "C.UTF-8");
        setenv("LANGUAGE", "xx", 1);
        bindtextdomain("m", dir.c_str());
        textdomain("m");
        ready = ready && std::string(gettext(texts[0].c_str())) != texts[0];
    }
    ~peers() { fs::remove_all(dir); }
    fs::path dir;
    std::vector<int32_t> numbers;
    std::vector<std::string> texts;
    bool ready = false;
};

peers &the_peers() {
    static peers made;
    return made;
}

// Asks for every message in turn, `rounds` times.
template <typename Call> double nanoseconds(size_t rounds, Call call) {
    const size_t count = the_peers().numbers.size();
    const auto start = std::chrono::steady_clock::now();
    for (size_t round = 0; round < rounds; ++round)
        for (size_t i = 0; i < count; ++i)
            benchmark::DoNotOptimize(call(i));
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / static_cast<double>(rounds * count);
}

template <typename Ours, typename Theirs>
void side_by_side(benchmark::State &state, size_t asked, Ours ours, Theirs theirs) {
    double our_time = 0;
    double their_time = 0;
    for (auto round : state) {
        (void)round;
        our_time += nanoseconds(asked, ours);
        their_time += nanoseconds(asked, theirs);
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["lookup_ns"] = our_time / rounds;
    state.counters["peer_ns"] = their_time / rounds;
    state.counters["ratio"] = our_time / their_time;
}

int32_t look_up(const peers &made, size_t i) {
    char text[200];
    const int32_t status = rgetlmsg(made.numbers[i], text, sizeof text, nullptr);
    benchmark::DoNotOptimize(text);
    return status;
}

void open_catalogue_beside_gettext(benchmark::State &state) {
    const peers &made = the_peers();
    if (!made.ready)
        return state.SkipWithError("msgfmt or gencat is missing");
    side_by_side(
        state, 100, [&](size_t i) { return look_up(made, i); },
        [&](size_t i) { return gettext(made.texts[i].c_str()); });
}

void open_catalogue_beside_catgets(benchmark::State &state) {
    const peers &made = the_peers();
    nl_catd catalogue = catopen((made.dir / "m.cat").c_str(), 0);
    side_by_side(
        state, 100, [&](size_t i) { return look_up(made, i); },
        [&](size_t i) { return catgets(catalogue, 1, made.numbers[i] + base, ""); });
    catclose(catalogue);
}

void first_lookup_beside_catopen(benchmark::State &state) {
    const peers &made = the_peers();
    const std::string name = made.dir / "m.cat";
    side_by_side(
        state, 2,
        [&](size_t i) {
            rmsg_init();
            return look_up(made, i);
        },
        [&](size_t i) {
            nl_catd catalogue = catopen(name.c_str(), 0);
            const bool found = catgets(catalogue, 1, made.numbers[i] + base, nullptr) != nullptr;
            catclose(catalogue);
            return found;
        });
}

BENCHMARK(open_catalogue_beside_gettext);
BENCHMARK(open_catalogue_beside_catgets);
BENCHMARK(first_lookup_beside_catopen);

} // namespace

BENCHMARK_MAIN();
