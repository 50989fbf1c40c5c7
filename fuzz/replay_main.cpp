// Runs a fuzz target over the files of its corpus, for compilers that have no fuzzer of their own.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

void replay(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    const std::vector<uint8_t> copy(bytes.begin(), bytes.end()); // exact size: overreads are seen
    LLVMFuzzerTestOneInput(copy.data(), copy.size());
}

} // namespace

int main(int argc, char **argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::filesystem::is_directory(argv[i])) {
            for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
                replay(entry.path());
                ++inputs;
            }
        } else {
            replay(argv[i]);
            ++inputs;
        }
    }
    printf("%d inputs replayed\n", inputs);
    return inputs == 0 ? 1 : 0;
}
