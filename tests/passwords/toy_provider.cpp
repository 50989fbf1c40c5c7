#include "passwords/toy_provider.h"

#include <kestrion/isi_api.h>

#include <stdlib.h>
#include <string.h>
#include <vector>

namespace toy_provider {

bool leaves_copies = false;
int block_size = 16;
int extra_length = 0;

namespace {

constexpr int longest_block = 64;

// Each text comes in one update, so the place of a byte in it is known.
struct toy_cipher {
    unsigned char key[24];
    unsigned char last[longest_block]; // of the opened text, padding and all
    int length;                        // of the text so far

    void apply(unsigned char *out, const unsigned char *in, int size, int from) const {
        for (int i = 0; i < size; ++i)
            out[i] = static_cast<unsigned char>(in[i] ^ key[(from + i) % 24] ^ 0xa5);
    }
};

// What the blocks really are: as long as the cipher says, where that is possible.
int block() { return block_size >= 1 && block_size <= longest_block ? block_size : 16; }

int calls_left = 0; // until the one that is refused
bool was_refused = false;
unsigned char next_random = 0;

bool refuse() {
    if (calls_left == 0 || --calls_left != 0)
        return false;
    return was_refused = true;
}

// All contexts: those that a failing API keeps by design stay reachable here.
auto &contexts = *new std::vector<toy_cipher *>;

void *ctx_new() {
    if (refuse())
        return nullptr;
    return contexts.emplace_back(static_cast<toy_cipher *>(calloc(1, sizeof(toy_cipher))));
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
    std::erase(contexts, ctx);
    free(ctx);
    return 0;
}

[[gnu::noinline]] void leave_copy(const unsigned char *key) {
    unsigned char deep[2048]; // so that later calls do not overwrite it
    memcpy(deep, key, 24);
    asm volatile("" ::"r"(deep) : "memory");
}

int init(void *ctx, void *, const unsigned char *key, const unsigned char *) {
    if (refuse())
        return 1;
    if (key == nullptr)
        return 0;
    memcpy(static_cast<toy_cipher *>(ctx)->key, key, 24);
    if (leaves_copies)
        leave_copy(key);
    return 0;
}

int encrypt_update(void *ctx, unsigned char *out, int *length, const unsigned char *in, int size) {
    auto *cipher = static_cast<toy_cipher *>(ctx);
    cipher->apply(out, in, size, 0);
    *length = cipher->length = size;
    return refuse() ? 1 : 0;
}

int encrypt_final(void *ctx, unsigned char *out, int *length) {
    auto *cipher = static_cast<toy_cipher *>(ctx);
    const int padding = block() - cipher->length % block();
    unsigned char bytes[longest_block];
    memset(bytes, padding, sizeof bytes);
    cipher->apply(out, bytes, padding, cipher->length);
    *length = padding + extra_length;
    return refuse() ? 1 : 0;
}

int decrypt_update(void *ctx, unsigned char *out, int *length, const unsigned char *in, int size) {
    auto *cipher = static_cast<toy_cipher *>(ctx);
    if (size < block() || size % block() != 0 || refuse())
        return 1;
    *length = size - block();
    cipher->apply(out, in, *length, 0);
    cipher->apply(cipher->last, in + *length, block(), *length);
    return 0;
}

int decrypt_final(void *ctx, unsigned char *out, int *length) {
    const auto *cipher = static_cast<toy_cipher *>(ctx);
    const int padding = cipher->last[block() - 1];
    if (padding < 1 || padding > block() || refuse())
        return 1;
    memcpy(out, cipher->last, static_cast<size_t>(block() - padding));
    *length = block() - padding + extra_length;
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
void set_record(struct isi_shared_thread_globals *) {}

template <class F> void bind(isi_function_index row, F *function) {
    isi_functab[row].isi_fp.address = reinterpret_cast<void (*)()>(function);
}

} // namespace

void install() {
    leaves_copies = false;
    block_size = 16;
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

bool holds_key() {
    for (const toy_cipher *cipher : contexts)
        for (const unsigned char byte : cipher->key)
            if (byte != 0)
                return true;
    return false;
}

} // namespace toy_provider
