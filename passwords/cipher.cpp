#include "passwords/cipher.h"

#include "base/print_as_format.h"
#include "passwords/lock_hooks.h"
#include "passwords/memory.h"
#include <kestrion/isi_api.h>

#include <stdio.h>
#include <string.h>

namespace kestrion {

namespace {

constexpr int padding_on = 10; // the bridge's value for the provider's block padding

// A stored key has no room for longer blocks. The cipher that is asked for has blocks of 16 bytes;
// another provider may say otherwise.
constexpr int32_t largest_block_size = 23;

constinit bool reason_given = true; // by the last call of the provider that failed

const unsigned char *as_bytes(const char *text) {
    return reinterpret_cast<const unsigned char *>(text);
}

unsigned char *as_bytes(char *text) { return reinterpret_cast<unsigned char *>(text); }

// Stores null as the handle when the padding is refused: the context is gone then.
void set_up_handle(cipher_ctx *cipher) {
    isi_cipher_ctx_init(cipher->cipher_handle);
    if (isi_cipher_ctx_set_padding(cipher->cipher_handle, padding_on) == 0)
        return;
    provider_failure();
    isi_cipher_ctx_cleanup(cipher->cipher_handle);
    isi_cipher_ctx_free(cipher->cipher_handle);
    cipher->cipher_handle = nullptr;
}

void look_up_cipher(cipher_ctx *cipher) {
    cipher->cipher_desc = isi_get_cipherbyname("AES-192-ECB");
    if (cipher->cipher_desc == nullptr)
        provider_failure();
    else
        cipher->block_size = isi_cipher_block_size(cipher->cipher_desc);
}

int key_length_refused(const cipher_ctx *cipher) {
    provider_failure();
    void *desc = cipher->cipher_desc;
    const int type = isi_cipher_type(desc);
    fprintf(stderr, "key length= %d, iv length=%d, nid=%d\n", isi_cipher_key_length(desc),
            isi_cipher_iv_length(desc), type);
    const char *name = isi_obj_nid2sn(type);
    fprintf(stderr, "cipher_sbcs=%s\n", name == nullptr ? "<null>" : name);
    return -1;
}

// The two directions differ in the provider's calls alone.
struct direction {
    int (*init)(void *ctx, void *type, const unsigned char *key, const unsigned char *iv);
    int (*update)(void *ctx, unsigned char *out, int *out_length, const unsigned char *in,
                  int length);
    int (*final)(void *ctx, unsigned char *out, int *out_length);
};

constexpr direction encryption = {isi_encrypt_init, isi_encrypt_update, isi_encrypt_final};
constexpr direction decryption = {isi_decrypt_init, isi_decrypt_update, isi_decrypt_final};

// Sizes of buffers are computed from the block size, so a started cipher has a usable one.
int start(const direction &way, const cipher_ctx *cipher, const char *key) {
    if (cipher->cipher_handle == nullptr ||
        way.init(cipher->cipher_handle, cipher->cipher_desc, as_bytes(key), nullptr) != 0 ||
        cipher->block_size < 1 || cipher->block_size > largest_block_size)
        return provider_failure();
    return 0;
}

int run_text(const direction &way, const cipher_ctx *cipher, const char *in, int32_t length,
             char *out, int32_t room, int32_t *out_length) {
    int first = 0;
    int last = 0;
    if (way.update(cipher->cipher_handle, as_bytes(out), &first, as_bytes(in), length) != 0)
        return provider_failure();
    if (first < 0 || first > room)
        return provider_failure();
    if (way.final(cipher->cipher_handle, as_bytes(out + first), &last) != 0)
        return provider_failure();
    if (last < 0 || last > room - first)
        return provider_failure();
    *out_length = first + last;
    return 0;
}

} // namespace

int cipher_init(cipher_ctx *cipher) {
    pw_init_lock();
    cipher->cipher_handle = isi_cipher_ctx_new();
    if (cipher->cipher_handle == nullptr) {
        provider_failure();
    } else {
        set_up_handle(cipher);
        look_up_cipher(cipher);
    }
    pw_init_unlock();
    reason_given = true; // the first operation that needs what is missing fails again
    return 0;
}

int cipher_cleanup(pw_ctx *ctx, cipher_ctx *cipher) {
    if (cipher->cipher_handle == nullptr || isi_cipher_ctx_cleanup(cipher->cipher_handle) != 0) {
        fputs("Error freeing up cipher context\n", stderr);
        return -1;
    }
    isi_cipher_ctx_free(cipher->cipher_handle);
    cipher->cipher_handle = nullptr;
    ctx->free_fn(cipher);
    return 0;
}

int provider_failure() {
    const char *reason = isi_get_err('\n');
    reason_given = *reason != '\0';
    print_as_format(stderr, reason, nullptr, 0);
    return -1;
}

bool provider_gave_reason() { return reason_given; }

int start_encryption(const cipher_ctx *cipher, const char *key) {
    return start(encryption, cipher, key);
}

int start_key_encryption(const cipher_ctx *cipher, const char *key) {
    if (start_encryption(cipher, nullptr) != 0)
        return -1;
    if (isi_cipher_ctx_set_key_length(cipher->cipher_handle, cipher_key_size) != 0)
        return key_length_refused(cipher);
    return start_encryption(cipher, key);
}

int encrypt_text(const cipher_ctx *cipher, const char *data, int32_t length, char *out,
                 int32_t room, int32_t *out_length) {
    return run_text(encryption, cipher, data, length, out, room, out_length);
}

int decrypt_text(pw_ctx *ctx, const cipher_ctx *cipher, const char *data, int32_t length,
                 const char *key, char **result, int32_t *result_length) {
    *result = nullptr;
    if (start(decryption, cipher, key) != 0)
        return -1;
    const int64_t size = int64_t{cipher->block_size} + length - 1;
    if (length < 0 || size > INT32_MAX)
        return no_output_buffer();
    *result = static_cast<char *>(ctx_malloc(ctx, static_cast<size_t>(size)));
    if (*result == nullptr)
        return no_output_buffer();
    const auto room = static_cast<int32_t>(size) - 1; // padding leaves a byte for the terminator
    if (run_text(decryption, cipher, data, length, *result, room, result_length) != 0) {
        explicit_bzero(*result, static_cast<size_t>(size));
        return -1;
    }
    (*result)[*result_length] = '\0';
    return 0;
}

int no_output_buffer() {
    fputs("Can't allocate output buffer\n", stderr);
    return -1;
}

void forget_cipher_key(const cipher_ctx *cipher) {
    if (cipher != nullptr && cipher->cipher_handle != nullptr)
        isi_cipher_ctx_cleanup(cipher->cipher_handle);
}

} // namespace kestrion
