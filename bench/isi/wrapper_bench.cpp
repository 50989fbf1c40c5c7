// What going through the bridge costs: sealing a text by isi_* calls, beside the same calls of
// libcrypto's EVP interface made directly, turn by turn in one run. `of_peer` is the median of the
// pairs' ratios: 1.05 would be 5 % slower than the peer.

#include <kestrion/isi_api.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <openssl/evp.h>
#include <stdio.h>
#include <stdlib.h>
#include <vector>

namespace {

const unsigned char key[24] = {1, 2, 3};

struct buffers {
    explicit buffers(size_t size) : in(size, 'x'), out(size + 16) {}
    std::vector<unsigned char> in;
    std::vector<unsigned char> out;
};

bool seal_by_isi(void *ctx, void *cipher, buffers &text) {
    int head = 0;
    int tail = 0;
    return isi_encrypt_init(ctx, cipher, key, nullptr) == 0 &&
           isi_encrypt_update(ctx, text.out.data(), &head, text.in.data(),
                              static_cast<int>(text.in.size())) == 0 &&
           isi_encrypt_final(ctx, text.out.data() + head, &tail) == 0;
}

bool seal_by_evp(EVP_CIPHER_CTX *ctx, const EVP_CIPHER *cipher, buffers &text) {
    int head = 0;
    int tail = 0;
    return EVP_EncryptInit_ex(ctx, cipher, nullptr, key, nullptr) == 1 &&
           EVP_EncryptUpdate(ctx, text.out.data(), &head, text.in.data(),
                             static_cast<int>(text.in.size())) == 1 &&
           EVP_EncryptFinal_ex(ctx, text.out.data() + head, &tail) == 1;
}

template <class Work> double seconds(Work work) {
    auto start = std::chrono::steady_clock::now();
    bool worked = true;
    for (int i = 0; i < 20; ++i)
        worked &= work();
    std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (!worked)
        abort();
    return taken.count() / 20;
}

void seal_beside_evp(benchmark::State &state) {
    buffers text(static_cast<size_t>(state.range(0)));
    void *ctx = isi_cipher_ctx_new();
    void *cipher = isi_get_cipherbyname("AES-192-ECB");
    EVP_CIPHER_CTX *peer = EVP_CIPHER_CTX_new();
    std::vector<double> ratios;
    for (auto _ : state) {
        double mine = seconds([&] { return seal_by_isi(ctx, cipher, text); });
        ratios.push_back(mine /
                         seconds([&] { return seal_by_evp(peer, EVP_aes_192_ecb(), text); }));
        state.SetIterationTime(mine);
    }
    std::nth_element(ratios.begin(), ratios.begin() + ratios.size() / 2, ratios.end());
    state.counters["of_peer"] = ratios[ratios.size() / 2];
    state.SetBytesProcessed(state.iterations() * state.range(0));
    EVP_CIPHER_CTX_free(peer);
    isi_cipher_ctx_free(ctx);
}

// One call that does next to nothing, through the wrapper and by the table's pointer.
void call_by_wrapper(benchmark::State &state) {
    void *cipher = isi_get_cipherbyname("AES-192-ECB");
    for (auto _ : state)
        benchmark::DoNotOptimize(isi_cipher_block_size(cipher));
}

void call_by_pointer(benchmark::State &state) {
    void *cipher = isi_get_cipherbyname("AES-192-ECB");
    auto function =
        reinterpret_cast<int (*)(void *)>(isi_functab[IDX_ISI_CIPHER_BLOCK_SIZE].isi_fp.address);
    for (auto _ : state)
        benchmark::DoNotOptimize(function(cipher));
}

BENCHMARK(seal_beside_evp)->Arg(1000)->Arg(60000)->UseManualTime();
BENCHMARK(call_by_wrapper);
BENCHMARK(call_by_pointer);

} // namespace

int main(int argc, char **argv) {
    setenv("KESTRIONDIR", KESTRION_BUILD_DIR, 1);
    if (isi_init() != 0) {
        fprintf(stderr, "%s\n", isi_get_err('\n'));
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
