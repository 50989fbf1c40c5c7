// The sealed file from its last byte to its opened text. The provider is a toy whose cipher is easy
// to guess, so that mutations get past it: the lengths in the file are what matters here.

#include "passwords/sealed_file.h"
#include "fuzz/quiet_words.h"
#include "passwords/memory.h"
#include "passwords/toy_provider.h"
#include "passwords/watchful_memory.h"

#include <stdlib.h>
#include <string.h>

namespace {

using namespace kestrion;

cipher_ctx *toy_cipher() {
    static cipher_ctx cipher;
    if (cipher.cipher_handle == nullptr) {
        toy_provider::install();
        cipher_init(&cipher);
    }
    return &cipher;
}

// The parts follow the payload in their order and fill the file.
void check_parts(const char *sealed, int32_t length) {
    sealed_parts parts;
    if (read_sealed_parts(sealed, length, &parts) != 0)
        return;
    const char *end = sealed + length;
    if (sealed + parts.payload_length != parts.internal_key || parts.payload_length < 0 ||
        parts.internal_key + parts.internal_length >= parts.access_key ||
        parts.access_key + parts.access_length >= parts.wrap_key ||
        parts.wrap_key + parts.wrap_length >= end)
        abort();
}

void open_text(const cipher_ctx *cipher, const char *sealed, int32_t length) {
    pw_ctx *ctx = watchful_memory::context();
    key_buffer internal;
    key_buffer access;
    if (extract_keys(ctx, cipher, sealed, &length, internal.bytes, access.bytes) != 0)
        return;
    char *text = nullptr;
    int32_t text_length = 0;
    const int result =
        pw_decrypt(ctx, cipher, sealed, length, internal.bytes, access.bytes, &text, &text_length);
    if (result == 0 && (text_length < 0 || text_length > length || text[text_length] != '\0'))
        abort();
    release_wiped(ctx, text, static_cast<size_t>(text_length));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    auto *exact = static_cast<char *>(malloc(size == 0 ? 1 : size)); // overreads are seen
    if (size > 0)
        memcpy(exact, data, size);
    quiet_words();
    const cipher_ctx *cipher = toy_cipher();
    check_parts(exact, static_cast<int32_t>(size));
    open_text(cipher, exact, static_cast<int32_t>(size));
    watchful_memory::reset();
    free(exact);
    return 0;
}
