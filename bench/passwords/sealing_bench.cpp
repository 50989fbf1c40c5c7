// Sealing and opening 60 KB in process, beside the provider's own time: the same calls made to it
// directly, each after the one that names the thread's record as the provider demands, on buffers
// that are already there.

#include "passwords/keys.h"
#include "passwords/sealed_file.h"
#include <kestrion/isi_api.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <vector>

namespace {

constexpr int32_t text_size = 60 * 1024;
constexpr char access_key[] = "opensesame";

void *allocate(size_t size, const char *, int) { return malloc(size); }
void *reallocate(void *block, size_t size, const char *, int) { return realloc(block, size); }

pw_ctx context = {.alloc_fn = allocate,
                  .realloc_fn = reallocate,
                  .free_fn = free,
                  .keystore_path = {},
                  .install_dir = {},
                  .counted_lines = -1};

double median(std::vector<double> &times) {
    const auto middle = times.begin() + static_cast<ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

template <typename Call> double microseconds(Call call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double, std::micro> taken =
        std::chrono::steady_clock::now() - start;
    return taken.count();
}

template <typename Ours, typename Theirs>
void beside_the_provider(benchmark::State &state, Ours ours, Theirs theirs) {
    std::vector<double> our_times;
    std::vector<double> their_times;
    for (auto round : state) {
        (void)round;
        our_times.push_back(microseconds(ours));
        their_times.push_back(microseconds(theirs));
    }
    state.counters["runtime_us"] = median(our_times);
    state.counters["provider_us"] = median(their_times);
    state.counters["ratio"] = median(our_times) / median(their_times);
}

// The provider's functions as the table holds them, without their wrappers.
isi_err_stack record;

void name_record() {
    isi_functab[IDX_ISI_SET_SHARED_THREAD_GLOBALS_PTR].isi_fp.p_ISI_SET_SHARED_THREAD_GLOBALS_PTR(
        &record);
}
#define PROVIDER(upper) (name_record(), isi_functab[IDX_##upper].isi_fp.p_##upper)

unsigned char key[32];
std::vector<unsigned char> out(text_size + 64);

int encrypt_directly(const cipher_ctx &cipher, const void *data, int size) {
    int first = 0;
    int last = 0;
    PROVIDER(ISI_ENCRYPT_UPDATE)
    (cipher.cipher_handle, out.data(), &first, static_cast<const unsigned char *>(data), size);
    PROVIDER(ISI_ENCRYPT_FINAL)(cipher.cipher_handle, out.data() + first, &last);
    return first + last;
}

void encrypt_key_directly(const cipher_ctx &cipher, const void *data, int size) {
    PROVIDER(ISI_ENCRYPT_INIT)(cipher.cipher_handle, cipher.cipher_desc, nullptr, nullptr);
    PROVIDER(ISI_CIPHER_CTX_SET_KEY_LENGTH)(cipher.cipher_handle, 24);
    PROVIDER(ISI_ENCRYPT_INIT)(cipher.cipher_handle, cipher.cipher_desc, key, nullptr);
    encrypt_directly(cipher, data, size);
}

void decrypt_directly(const cipher_ctx &cipher, const unsigned char *data, int size) {
    int first = 0;
    int last = 0;
    PROVIDER(ISI_DECRYPT_INIT)(cipher.cipher_handle, cipher.cipher_desc, key, nullptr);
    PROVIDER(ISI_DECRYPT_UPDATE)(cipher.cipher_handle, out.data(), &first, data, size);
    PROVIDER(ISI_DECRYPT_FINAL)(cipher.cipher_handle, out.data() + first, &last);
}

void sealing(benchmark::State &state) {
    cipher_ctx cipher = {};
    cipher_init(&cipher);
    const std::string text(text_size, 'x');
    const auto ours = [&] {
        char internal[32];
        char *sealed = nullptr;
        int32_t length = 0;
        generate_internal_key(&context, access_key, internal);
        if (pw_encrypt(&context, &cipher, text.data(), text_size, internal, access_key, &sealed,
                       &length) != 0)
            abort();
        free(sealed);
    };
    const auto theirs = [&] {
        unsigned char seed[56];
        for (int i = 0; i < 2; ++i) {
            PROVIDER(ISI_GENERATE_RANDOM_SEED)(56, seed);
            PROVIDER(ISI_RAND_SEED)(seed, 56);
            PROVIDER(ISI_RAND_BYTES)(key, 24);
        }
        encrypt_key_directly(cipher, key, 24);
        encrypt_key_directly(cipher, access_key, 10);
        PROVIDER(ISI_ENCRYPT_INIT)(cipher.cipher_handle, cipher.cipher_desc, key, nullptr);
        encrypt_directly(cipher, text.data(), text_size);
    };
    beside_the_provider(state, ours, theirs);
}
BENCHMARK(sealing)->Iterations(3000)->Unit(benchmark::kMicrosecond);

void opening(benchmark::State &state) {
    cipher_ctx cipher = {};
    cipher_init(&cipher);
    const std::string text(text_size, 'x');
    char internal[32];
    char access[32];
    char *sealed = nullptr;
    int32_t length = 0;
    generate_internal_key(&context, access_key, internal);
    if (pw_encrypt(&context, &cipher, text.data(), text_size, internal, access_key, &sealed,
                   &length) != 0)
        abort();
    const auto ours = [&] {
        char *opened = nullptr;
        int32_t payload = length;
        int32_t opened_length = 0;
        if (extract_keys(&context, &cipher, sealed, &payload, internal, access) != 0 ||
            pw_decrypt(&context, &cipher, sealed, payload, internal, access, &opened,
                       &opened_length) != 0)
            abort();
        free(opened);
    };
    // Under one key for all: what comes out is of no interest, but its padding must be right.
    std::vector<unsigned char> access_text;
    std::vector<unsigned char> internal_text;
    encrypt_key_directly(cipher, access_key, 10);
    access_text.assign(out.begin(), out.begin() + 16);
    encrypt_key_directly(cipher, key, 24);
    internal_text.assign(out.begin(), out.begin() + 32);
    PROVIDER(ISI_ENCRYPT_INIT)(cipher.cipher_handle, cipher.cipher_desc, key, nullptr);
    const int size = encrypt_directly(cipher, text.data(), text_size);
    const std::vector<unsigned char> payload_text(out.begin(), out.begin() + size);
    const auto theirs = [&] {
        decrypt_directly(cipher, access_text.data(), 16);
        decrypt_directly(cipher, internal_text.data(), 32);
        decrypt_directly(cipher, payload_text.data(), size);
    };
    beside_the_provider(state, ours, theirs);
}
BENCHMARK(opening)->Iterations(3000)->Unit(benchmark::kMicrosecond);

bool bind_provider() {
    std::string home = (std::filesystem::temp_directory_path() / "sealing_bench-XXXXXX").string();
    if (mkdtemp(home.data()) == nullptr)
        return false;
    std::filesystem::create_directory(home + "/lib");
    std::filesystem::create_symlink(ISI_PROVIDER, home + "/lib/libisi.so.1");
    setenv("KESTRIONDIR", home.c_str(), 1);
    const bool bound = isi_init() == 0;
    std::filesystem::remove_all(home);
    return bound;
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (!bind_provider())
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
