#include "tool/toy_provider.h"

#include "isi/isi_api.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace toy_provider {

int block_size = 16;
int extra_length = 0;

namespace {

constexpr int block = 16;

struct toy_cipher {
    unsigned char key[24];
    unsigned char held[block]; // bytes that wait for the rest of their block, or the last block
    int count;
};

int calls_left = 0; // until the one that is refused
bool was_refused = false;
unsigned char next_random = 0;

bool refuse() {
    if (calls_left == 0 || --calls_left != 0)
        return false;
    return was_refused = true;
}

void xor_block(const toy_cipher *cipher, unsigned char *out) {
    for (int i = 0; i < block; ++i)
        out[i] = static_cast<unsigned char>(cipher->held[i] ^ cipher->key[i] ^
                                            cipher->key[16 + i % 8] ^ 0xa5);
}

// A failing API keeps its context by design: here it stays reachable.
void *ctx_new() {
    static auto &made = *new std::vector<void *>;
    return refuse() ? nullptr : made.emplace_back(calloc(1, sizeof(toy_cipher)));
}

int succeed(void *) { return refuse() ? 1 : 0; }
int set_number(void *, int) { return refuse() ? 1 : 0; }
int wipe(void *ctx) {
    if (refuse())
        return 1;
    explicit_bzero(ctx, sizeof(toy_cipher));
    return 0;
}
int release(void *ctx) {
    free(ctx);
    return 0;
}

int init(void *ctx, void *, const unsigned char *key, const unsigned char *) {
    if (refuse())
        return 1;
    auto *cipher = static_cast<toy_cipher *>(ctx);
    cipher->count = 0;
    if (key != nullptr)
        memcpy(cipher->key, key, sizeof cipher->key);
    return 0;
}

// `keep` bytes of a whole block wait for the final call: 0 in encryption, the block in decryption.
int update(toy_cipher *cipher, unsigned char *out, int *length, const unsigned char *in, int size,
           bool keep) {
    *length = 0;
    for (int i = 0; i < size; ++i) {
        if (cipher->count == block) {
            xor_block(cipher, out + *length);
            *length += block;
            cipher->count = 0;
        }
        cipher->held[cipher->count++] = in[i];
    }
    if (!keep && cipher->count == block) {
        xor_block(cipher, out + *length);
        *length += block;
        cipher->count = 0;
    }
    return refuse() ? 1 : 0;
}

int encrypt_update(void *ctx, unsigned char *out, int *length, const unsigned char *in, int size) {
    return update(static_cast<toy_cipher *>(ctx), out, length, in, size, false);
}

int decrypt_update(void *ctx, unsigned char *out, int *length, const unsigned char *in, int size) {
    return update(static_cast<toy_cipher *>(ctx), out, length, in, size, true);
}

int encrypt_final(void *ctx, unsigned char *out, int *length) {
    auto *cipher = static_cast<toy_cipher *>(ctx);
    memset(cipher->held + cipher->count, block - cipher->count,
           static_cast<size_t>(block - cipher->count));
    xor_block(cipher, out);
    *length = block + extra_length;
    return refuse() ? 1 : 0;
}

int decrypt_final(void *ctx, unsigned char *out, int *length) {
    auto *cipher = static_cast<toy_cipher *>(ctx);
    unsigned char last[block];
    xor_block(cipher, last);
    const int padding = last[block - 1];
    if (cipher->count != block || padding < 1 || padding > block || refuse())
        return 1;
    memcpy(out, last, static_cast<size_t>(block - padding));
    *length = block - padding + extra_length;
    return 0;
}

int rand_bytes(unsigned char *buffer, int count) {
    for (int i = 0; i < count; ++i)
        buffer[i] = next_random++;
    return refuse() ? 1 : 0;
}

void *cipher_by_name(const char *name) {
    static char descriptor;
    return strcmp(name, "AES-192-ECB") != 0 || refuse() ? nullptr : &descriptor;
}

int cipher_block_size(void *) { return block_size; }
void set_record(isi_shared_thread_globals *) {}

template <class F> void bind(isi_function_index row, F *function) {
    isi_functab[row].isi_fp.address = reinterpret_cast<void (*)()>(function);
}

} // namespace

void install() {
    block_size = block;
    extra_length = 0;
    next_random = 0;
    refuse_call(0);
    bind(IDX_ISI_SET_SHARED_THREAD_GLOBALS_PTR, set_record);
    bind(IDX_ISI_CIPHER_CTX_NEW, ctx_new);
    bind(IDX_ISI_CIPHER_CTX_INIT, succeed);
    bind(IDX_ISI_CIPHER_CTX_SET_PADDING, set_number);
    bind(IDX_ISI_CIPHER_CTX_SET_KEY_LENGTH, set_number);
    bind(IDX_ISI_CIPHER_CTX_CLEANUP, wipe);
    bind(IDX_ISI_CIPHER_CTX_FREE, release);
    bind(IDX_ISI_GET_CIPHERBYNAME, cipher_by_name);
    bind(IDX_ISI_CIPHER_BLOCK_SIZE, cipher_block_size);
    bind(IDX_ISI_ENCRYPT_INIT, init);
    bind(IDX_ISI_ENCRYPT_UPDATE, encrypt_update);
    bind(IDX_ISI_ENCRYPT_FINAL, encrypt_final);
    bind(IDX_ISI_DECRYPT_INIT, init);
    bind(IDX_ISI_DECRYPT_UPDATE, decrypt_update);
    bind(IDX_ISI_DECRYPT_FINAL, decrypt_final);
    bind(IDX_ISI_RAND_BYTES, rand_bytes);
}

void refuse_call(int k) {
    calls_left = k;
    was_refused = false;
}

bool refused() { return was_refused; }

} // namespace toy_provider
