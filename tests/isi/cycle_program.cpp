// Binds the provider, seals and unseals, unbinds, three times over: run under valgrind by the
// tests. With the argument "raised" it only binds, and ends with 77 unless its privileges are
// raised.

#include "isi/isi_api.h"

#include <string.h>
#include <sys/auxv.h>

namespace {

bool seal_and_unseal() {
    unsigned char key[24];
    unsigned char seed[56];
    unsigned char plain[100] = "text";
    unsigned char sealed[160];
    unsigned char opened[160];
    int head = 0;
    int tail = 0;
    bool random = isi_generate_random_seed(56, seed) == 0 && isi_rand_seed(seed, 56) == 0 &&
                  isi_rand_bytes(key, 24) == 0;

    void *ctx = isi_cipher_ctx_new();
    void *cipher = isi_get_cipherbyname("AES-192-ECB");
    bool ready = isi_cipher_ctx_init(ctx) == 0 && isi_cipher_ctx_set_padding(ctx, 10) == 0;
    bool sealing = isi_encrypt_init(ctx, cipher, nullptr, nullptr) == 0 &&
                   isi_cipher_ctx_set_key_length(ctx, 24) == 0 &&
                   isi_encrypt_init(ctx, cipher, key, nullptr) == 0 &&
                   isi_encrypt_update(ctx, sealed, &head, plain, sizeof plain) == 0 &&
                   isi_encrypt_final(ctx, sealed + head, &tail) == 0;
    int size = head + tail;
    bool opening = isi_decrypt_init(ctx, cipher, key, nullptr) == 0 &&
                   isi_decrypt_update(ctx, opened, &head, sealed, size) == 0 &&
                   isi_decrypt_final(ctx, opened + head, &tail) == 0;
    bool same = head + tail == sizeof plain && memcmp(plain, opened, sizeof plain) == 0;

    // And a failure, for its texts.
    bool refused = isi_decrypt_init(ctx, cipher, key, nullptr) == 0 &&
                   isi_decrypt_update(ctx, opened, &head, sealed, size - 1) == 0 &&
                   isi_decrypt_final(ctx, opened, &tail) != 0 && isi_get_err('\n')[0] != '\0';
    bool ended = isi_cipher_ctx_cleanup(ctx) == 0 && isi_cipher_ctx_free(ctx) == 0;
    return random && ready && sealing && opening && same && refused && ended;
}

} // namespace

int main(int argc, char **) {
    if (argc > 1)
        return getauxval(AT_SECURE) != 0 ? isi_init() : 77;
    for (int round = 0; round < 3; ++round) {
        if (isi_init() != 0 || !seal_and_unseal())
            return 1;
        isi_cleanup();
        if (isi_cipher_ctx_new() != nullptr)
            return 2;
    }
    isi_clear_err();
    return 0;
}
