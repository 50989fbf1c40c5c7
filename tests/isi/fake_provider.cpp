// A provider that does nothing, successfully. What a test wants different is a compile definition;
// a symbol is left out by renaming it.

#include <kestrion/isi_shared.h>

#include <stdlib.h>

#ifndef FAKE_MAJOR
#define FAKE_MAJOR 1
#endif
#ifndef FAKE_MINOR
#define FAKE_MINOR 2
#endif
#ifndef FAKE_BASE
#define FAKE_BASE 1
#endif
#ifndef FAKE_INIT
#define FAKE_INIT 0
#endif

#define ISI_OPAQUE(symbol, upper)                                                                  \
    void symbol() {}
#define ISI_TYPED(symbol, upper, result, parameters) result symbol parameters;

extern "C" {
ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)

int fake_random_calls = 0;
struct isi_shared_thread_globals *fake_record = nullptr; // what the bridge last handed over
int fake_answer = 0;                                     // result of ISI_encrypt_update

int ISI_init_int(struct isi_shared_globals *, struct isi_shared_thread_globals *) {
    return FAKE_INIT;
}
void ISI_cleanup_int() { setenv("FAKE_CLEANED", "yes", 1); }
void ISI_set_shared_thread_globals_ptr(struct isi_shared_thread_globals *record) {
    fake_record = record;
}
int ISI_lib_version_major() { return FAKE_MAJOR; }
int ISI_lib_version_minor() { return FAKE_MINOR; }
const char *ISI_lib_version_string() { return "fake"; }
int ISI_lib_base() { return FAKE_BASE; }
const char *ISI_crypto_version() { return "none"; }

// Words the code longer every other time.
const char *ISI_get_crypto_error_string(long) {
    static bool wordy = false;
    wordy = !wordy;
    return wordy ? "brief" : "a wording that has grown since it was measured";
}
const char *ISI_get_ssl_error_string(long) { return "line down"; }
const char *ISI_get_km_error_string(long) { return nullptr; }
int ISI_err_stack_push_crypto_error(long) { return 0; }
int ISI_err_stack_push_ssl_error(long) { return 0; }
int ISI_err_stack_push_km_error(long) { return 0; }

int ISI_name2digest(const char *) { return 3; }
int ISI_name2cipher(const char *) { return 4; }
void *ISI_cipher_ctx_new() { return &fake_answer; }
int ISI_cipher_ctx_init(void *) { return 0; }
int ISI_cipher_ctx_set_key_length(void *, int) { return 0; }
int ISI_cipher_ctx_set_padding(void *, int padding) { return padding; }
int ISI_cipher_ctx_cleanup(void *) { return 0; }
int ISI_cipher_ctx_free(void *) { return 0; }
void *ISI_get_cipherbyname(const char *) { return &fake_answer; }
int ISI_cipher_block_size(void *) { return 16; }
int ISI_cipher_key_length(void *) { return 24; }
int ISI_cipher_iv_length(void *) { return 0; }
int ISI_cipher_type(void *) { return 422; }
int ISI_encrypt_init(void *, void *, const unsigned char *, const unsigned char *) { return 0; }
int ISI_encrypt_update(void *, unsigned char *, int *outl, const unsigned char *, int inl) {
    if (fake_answer == 0)
        *outl = inl;
    return fake_answer;
}
int ISI_encrypt_final(void *, unsigned char *, int *) { return 0; }
int ISI_decrypt_init(void *, void *, const unsigned char *, const unsigned char *) { return 0; }
int ISI_decrypt_update(void *, unsigned char *, int *, const unsigned char *, int) { return 0; }
int ISI_decrypt_final(void *, unsigned char *, int *) { return 0; }
int ISI_encode_block(unsigned char *, const unsigned char *, int) { return 0; }
int ISI_decode_block(unsigned char *, const unsigned char *, int) { return 0; }
const char *ISI_obj_nid2sn(int nid) { return nid == 422 ? "AES" : nullptr; }
int ISI_rand_bytes(unsigned char *, int) { return fake_random_calls++; }
int ISI_rand_seed(const unsigned char *, int) { return fake_random_calls++; }
int ISI_generate_random_seed(int, unsigned char *) { return fake_random_calls++; }
}
