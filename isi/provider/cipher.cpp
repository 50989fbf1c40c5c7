#define OPENSSL_SUPPRESS_DEPRECATED // EVP_CIPHER_meth_dup
#include "isi/provider/provider.h"

#include <atomic>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/objects.h>
#include <stdlib.h>
#include <string.h>

namespace {

using kestrion::provider_failed;
using kestrion::provider_ok;
using kestrion::report_libcrypto;
using kestrion::report_message;

enum direction { DECRYPT = 0, ENCRYPT = 1, NO_DIRECTION };

struct cipher_context {
    EVP_CIPHER_CTX *evp;
    const EVP_CIPHER *type; // the descriptor in use, null before the first init
    direction keyed;        // what the key was given for; libcrypto does not look and may crash
    int padding;            // may be set before there is a cipher to have it
};

cipher_context *context_of(void *handle) {
    if (handle == nullptr)
        report_message("no cipher context");
    return static_cast<cipher_context *>(handle);
}

const EVP_CIPHER *cipher_of(void *descriptor) {
    if (descriptor == nullptr)
        report_message("no cipher");
    return static_cast<const EVP_CIPHER *>(descriptor);
}

void forget_cipher(cipher_context *context) {
    EVP_CIPHER_CTX_reset(context->evp); // wipes the key
    context->type = nullptr;
    context->keyed = NO_DIRECTION;
}

// A copy of libcrypto's built-in method is used as it is; the built-in itself would first be looked
// up among libcrypto's own providers, which takes longer than all the rest of a run. Made once and
// kept: descriptors are never given back.
EVP_CIPHER *built_in_aes_192_ecb() {
#if OPENSSL_VERSION_MAJOR < 4
    static constinit std::atomic<EVP_CIPHER *> kept = nullptr;
    EVP_CIPHER *cipher = kept.load(std::memory_order_acquire);
    if (cipher != nullptr)
        return cipher;
    EVP_CIPHER *made = EVP_CIPHER_meth_dup(EVP_aes_192_ecb());
    if (made == nullptr || kept.compare_exchange_strong(cipher, made))
        return made;
    EVP_CIPHER_meth_free(made);
    return cipher;
#else
    return const_cast<EVP_CIPHER *>(EVP_aes_192_ecb());
#endif
}

int start(void *handle, void *descriptor, const unsigned char *key, const unsigned char *iv,
          direction wanted) {
    cipher_context *context = context_of(handle);
    if (context == nullptr)
        return provider_failed;
    auto type = static_cast<const EVP_CIPHER *>(descriptor);
    if (type == nullptr && context->type == nullptr)
        return report_message("no cipher");
    // Naming the cipher again would undo a key length that was set since, and make its state anew.
    const bool is_new = type != nullptr && type != context->type;
    if (is_new)
        forget_cipher(context);
    if (EVP_CipherInit_ex(context->evp, is_new ? type : nullptr, nullptr, key, iv, wanted) != 1)
        return report_libcrypto();
    if (is_new)
        context->type = type;
    if (key != nullptr)
        context->keyed = wanted;
    return EVP_CIPHER_CTX_set_padding(context->evp, context->padding) == 1 ? provider_ok
                                                                           : report_libcrypto();
}

// The context, if it has been given a key for this direction and there is a place for the length.
cipher_context *keyed_context(void *handle, direction wanted, const int *outl) {
    cipher_context *context = context_of(handle);
    if (context == nullptr)
        return nullptr;
    if (outl != nullptr && context->keyed == wanted)
        return context;
    report_message(outl != nullptr ? "no key for this direction" : "no place for the length");
    return nullptr;
}

// The same for a text. libcrypto takes a length below 0 for a very large one with some ciphers.
cipher_context *context_for_text(void *handle, direction wanted, const int *outl, int inl) {
    if (inl >= 0)
        return keyed_context(handle, wanted, outl);
    report_message("negative length of a text");
    return nullptr;
}

} // namespace

void *ISI_cipher_ctx_new() {
    auto context = static_cast<cipher_context *>(malloc(sizeof(cipher_context)));
    EVP_CIPHER_CTX *evp = context != nullptr ? EVP_CIPHER_CTX_new() : nullptr;
    if (evp == nullptr) {
        free(context);
        report_message("no memory for a cipher context");
        return nullptr;
    }
    *context = {.evp = evp, .type = nullptr, .keyed = NO_DIRECTION, .padding = 1};
    return context;
}

int ISI_cipher_ctx_init(void *ctx) {
    cipher_context *context = context_of(ctx);
    if (context == nullptr)
        return provider_failed;
    forget_cipher(context);
    context->padding = 1;
    return provider_ok;
}

int ISI_cipher_ctx_set_key_length(void *ctx, int keylen) {
    cipher_context *context = context_of(ctx);
    if (context == nullptr)
        return provider_failed;
    if (context->type == nullptr)
        return report_message("no cipher");
    return EVP_CIPHER_CTX_set_key_length(context->evp, keylen) == 1 ? provider_ok
                                                                    : report_libcrypto();
}

int ISI_cipher_ctx_set_padding(void *ctx, int padding) {
    cipher_context *context = context_of(ctx);
    if (context == nullptr)
        return provider_failed;
    context->padding = padding;
    if (context->type == nullptr)
        return provider_ok;
    return EVP_CIPHER_CTX_set_padding(context->evp, padding) == 1 ? provider_ok
                                                                  : report_libcrypto();
}

int ISI_cipher_ctx_cleanup(void *ctx) {
    cipher_context *context = context_of(ctx);
    if (context == nullptr)
        return provider_failed;
    forget_cipher(context);
    return provider_ok;
}

int ISI_cipher_ctx_free(void *ctx) {
    cipher_context *context = context_of(ctx);
    if (context == nullptr)
        return provider_failed;
    EVP_CIPHER_CTX_free(context->evp); // wipes the key
    free(context);
    return provider_ok;
}

void *ISI_get_cipherbyname(const char *name) {
    if (name == nullptr) {
        report_message("no cipher name");
        return nullptr;
    }
    const EVP_CIPHER *cipher =
        strcmp(name, "AES-192-ECB") == 0 ? built_in_aes_192_ecb() : EVP_get_cipherbyname(name);
    if (cipher == nullptr)
        report_message("unknown cipher");
    return const_cast<EVP_CIPHER *>(cipher);
}

int ISI_cipher_block_size(void *cipher) {
    const EVP_CIPHER *type = cipher_of(cipher);
    return type != nullptr ? EVP_CIPHER_get_block_size(type) : 0;
}

int ISI_cipher_key_length(void *cipher) {
    const EVP_CIPHER *type = cipher_of(cipher);
    return type != nullptr ? EVP_CIPHER_get_key_length(type) : 0;
}

int ISI_cipher_iv_length(void *cipher) {
    const EVP_CIPHER *type = cipher_of(cipher);
    return type != nullptr ? EVP_CIPHER_get_iv_length(type) : 0;
}

int ISI_cipher_type(void *cipher) {
    const EVP_CIPHER *type = cipher_of(cipher);
    return type != nullptr ? EVP_CIPHER_get_nid(type) : 0;
}

const char *ISI_obj_nid2sn(int nid) {
    const char *name = OBJ_nid2sn(nid);
    if (name == nullptr) {
        ERR_clear_error(); // it says no more than the message
        report_message("unknown identifier");
    }
    return name;
}

int ISI_encrypt_init(void *ctx, void *type, const unsigned char *key, const unsigned char *iv) {
    return start(ctx, type, key, iv, ENCRYPT);
}

int ISI_decrypt_init(void *ctx, void *type, const unsigned char *key, const unsigned char *iv) {
    return start(ctx, type, key, iv, DECRYPT);
}

int ISI_encrypt_update(void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl) {
    cipher_context *context = context_for_text(ctx, ENCRYPT, outl, inl);
    if (context == nullptr)
        return provider_failed;
    return EVP_EncryptUpdate(context->evp, out, outl, in, inl) == 1 ? provider_ok
                                                                    : report_libcrypto();
}

int ISI_decrypt_update(void *ctx, unsigned char *out, int *outl, const unsigned char *in, int inl) {
    cipher_context *context = context_for_text(ctx, DECRYPT, outl, inl);
    if (context == nullptr)
        return provider_failed;
    return EVP_DecryptUpdate(context->evp, out, outl, in, inl) == 1 ? provider_ok
                                                                    : report_libcrypto();
}

int ISI_encrypt_final(void *ctx, unsigned char *out, int *outl) {
    cipher_context *context = keyed_context(ctx, ENCRYPT, outl);
    if (context == nullptr)
        return provider_failed;
    return EVP_EncryptFinal_ex(context->evp, out, outl) == 1 ? provider_ok : report_libcrypto();
}

int ISI_decrypt_final(void *ctx, unsigned char *out, int *outl) {
    cipher_context *context = keyed_context(ctx, DECRYPT, outl);
    if (context == nullptr)
        return provider_failed;
    return EVP_DecryptFinal_ex(context->evp, out, outl) == 1 ? provider_ok : report_libcrypto();
}
