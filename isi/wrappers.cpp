#include "isi/wrapper.h"

namespace {

// What a wrapper answers when the provider can't be asked.
constexpr int failed = 1;
constexpr int unknown_size = 0;
constexpr int nothing_coded = -1;
constexpr const char *unknown = "unknown";

} // namespace

// Asked while the provider is being bound, so these five leave no trace lines.
int isi_lib_version_major() { return ISI_CALL_UNTRACED(ISI_LIB_VERSION_MAJOR, 0); }
int isi_lib_version_minor() { return ISI_CALL_UNTRACED(ISI_LIB_VERSION_MINOR, 0); }
const char *isi_lib_version_string() { return ISI_CALL_UNTRACED(ISI_LIB_VERSION_STRING, unknown); }
int isi_lib_base() { return ISI_CALL_UNTRACED(ISI_LIB_BASE, 0); }
const char *isi_crypto_version() { return ISI_CALL_UNTRACED(ISI_CRYPTO_VERSION, unknown); }

void *isi_cipher_ctx_new() { return ISI_CALL(ISI_CIPHER_CTX_NEW, nullptr); }

int isi_cipher_ctx_init(void *ctx) { return ISI_CALL(ISI_CIPHER_CTX_INIT, failed, ctx); }

int isi_cipher_ctx_set_key_length(void *ctx, int keylen) {
    return ISI_CALL(ISI_CIPHER_CTX_SET_KEY_LENGTH, failed, ctx, keylen);
}

int isi_cipher_ctx_set_padding(void *ctx, int padding) {
    return ISI_CALL(ISI_CIPHER_CTX_SET_PADDING, failed, ctx, padding);
}

int isi_cipher_ctx_cleanup(void *ctx) { return ISI_CALL(ISI_CIPHER_CTX_CLEANUP, failed, ctx); }

int isi_cipher_ctx_free(void *ctx) { return ISI_CALL(ISI_CIPHER_CTX_FREE, failed, ctx); }

void *isi_get_cipherbyname(const char *name) {
    return ISI_CALL(ISI_GET_CIPHERBYNAME, nullptr, name);
}

int isi_cipher_block_size(void *cipher) {
    return ISI_CALL(ISI_CIPHER_BLOCK_SIZE, unknown_size, cipher);
}

int isi_cipher_key_length(void *cipher) {
    return ISI_CALL(ISI_CIPHER_KEY_LENGTH, unknown_size, cipher);
}

int isi_cipher_iv_length(void *cipher) {
    return ISI_CALL(ISI_CIPHER_IV_LENGTH, unknown_size, cipher);
}

int isi_cipher_type(void *cipher) { return ISI_CALL(ISI_CIPHER_TYPE, unknown_size, cipher); }

int isi_encrypt_init(void *ctx, void *type, const unsigned char *key, const unsigned char *iv) {
    return ISI_CALL(ISI_ENCRYPT_INIT, failed, ctx, type, key, iv);
}

int isi_encrypt_update(void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl) {
    return ISI_CALL(ISI_ENCRYPT_UPDATE, failed, ctx, out, outl, in, inl);
}

int isi_encrypt_final(void *ctx, unsigned char *out, int *outl) {
    return ISI_CALL(ISI_ENCRYPT_FINAL, failed, ctx, out, outl);
}

int isi_decrypt_init(void *ctx, void *type, const unsigned char *key, const unsigned char *iv) {
    return ISI_CALL(ISI_DECRYPT_INIT, failed, ctx, type, key, iv);
}

int isi_decrypt_update(void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl) {
    return ISI_CALL(ISI_DECRYPT_UPDATE, failed, ctx, out, outl, in, inl);
}

int isi_decrypt_final(void *ctx, unsigned char *out, int *outl) {
    return ISI_CALL(ISI_DECRYPT_FINAL, failed, ctx, out, outl);
}

int isi_rand_bytes(unsigned char *buf, int num) {
    return ISI_CALL_IF(buf != nullptr, ISI_RAND_BYTES, failed, buf, num);
}

int isi_rand_seed(const unsigned char *buf, int num) {
    return ISI_CALL_IF(buf != nullptr, ISI_RAND_SEED, failed, buf, num);
}

int isi_generate_random_seed(int seedLength, unsigned char *seed) {
    return ISI_CALL(ISI_GENERATE_RANDOM_SEED, failed, seedLength, seed);
}

const char *isi_obj_nid2sn(int nid) { return ISI_CALL(ISI_OBJ_NID2SN, nullptr, nid); }

int isi_encode_block(unsigned char *out, const unsigned char *in, int inl) {
    return ISI_CALL(ISI_ENCODE_BLOCK, nothing_coded, out, in, inl);
}

int isi_decode_block(unsigned char *out, const unsigned char *in, int inl) {
    return ISI_CALL(ISI_DECODE_BLOCK, nothing_coded, out, in, inl);
}

int isi_name2digest(const char *name) { return ISI_CALL(ISI_NAME2DIGEST, ISI_NO_DIGEST, name); }

int isi_name2cipher(const char *name) { return ISI_CALL(ISI_NAME2CIPHER, ISI_NO_CIPHER, name); }
