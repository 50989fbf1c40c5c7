// One whole run of the command on a text of 1 KB, from its start to its exit, beside `openssl enc`
// with a raw key on the same file. The two take turns, so that both meet the same machine.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdlib.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

struct measured {
    std::vector<double> milliseconds;
    long peak_kilobytes = 0;

    void run(const std::vector<const char *> &words) {
        std::vector<char *> argv;
        for (const char *word : words)
            argv.push_back(const_cast<char *>(word));
        argv.push_back(nullptr);
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = vfork();
        if (child == 0) {
            execvp(argv[0], argv.data());
            _exit(126);
        }
        int status = 0;
        rusage usage;
        wait4(child, &status, 0, &usage);
        const std::chrono::duration<double, std::milli> taken =
            std::chrono::steady_clock::now() - start;
        if (status != 0)
            abort();
        milliseconds.push_back(taken.count());
        peak_kilobytes = std::max(peak_kilobytes, usage.ru_maxrss);
    }
    double median() {
        const auto middle = milliseconds.begin() + static_cast<ptrdiff_t>(milliseconds.size() / 2);
        std::nth_element(milliseconds.begin(), middle, milliseconds.end());
        return *middle;
    }
};

void whole_run(benchmark::State &state) {
    std::string home = (std::filesystem::temp_directory_path() / "run_bench-XXXXXX").string();
    if (mkdtemp(home.data()) == nullptr ||
        system((INSTALL_COMMAND + home + " >/dev/null").c_str()) != 0) {
        state.SkipWithError("no installation to run");
        return;
    }
    setenv("KESTRIONDIR", home.c_str(), 1);
    const std::string plain = home + "/plain";
    const std::string tool = home + "/bin/pwsealtool";
    const std::string peer_output = home + "/peer";
    {
        std::ofstream text(plain);
        for (int i = 0; i < 32; ++i)
            text << "stores dbadmin rosebud  primary\n"; // 32 bytes
    }
    measured ours;
    measured peer;
    for (auto round : state) {
        (void)round;
        ours.run({tool.c_str(), "-k", "opensesame", "-e", plain.c_str()});
        peer.run({"openssl", "enc", "-aes-192-ecb", "-K",
                  "000102030405060708090a0b0c0d0e0f1011121314151617", "-in", plain.c_str(), "-out",
                  peer_output.c_str()});
    }
    state.counters["pwsealtool_ms"] = ours.median();
    state.counters["openssl_ms"] = peer.median();
    state.counters["ratio"] = ours.median() / peer.median();
    state.counters["peak_mb"] = static_cast<double>(ours.peak_kilobytes) / 1024;
    std::filesystem::remove_all(home);
}
BENCHMARK(whole_run)->Iterations(400)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
