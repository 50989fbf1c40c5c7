// One sealed text, made by the runtime's own operations on watchful memory, and the cipher that
// made it.

#pragma once

#include "passwords/keys.h"
#include "passwords/memory.h"
#include "passwords/sealed_file.h"
#include "passwords/watchful_memory.h"
#include <kestrion/isi_api.h>

#include <gtest/gtest.h>
#include <string>

struct sealing {
    kestrion::cipher_ctx cipher = {};
    char internal_key[32] = {};
    char *block = nullptr;
    int32_t length = 0;
    std::string bytes;

    sealing() { kestrion::cipher_init(&cipher); }
    ~sealing() {
        kestrion::release_wiped(watchful_memory::context(), block, static_cast<size_t>(length));
        isi_cipher_ctx_free(cipher.cipher_handle);
    }

    int seal(const std::string &text, const char *key) {
        pw_ctx *ctx = watchful_memory::context();
        if (kestrion::generate_internal_key(ctx, key, internal_key) != 0 ||
            kestrion::pw_encrypt(ctx, &cipher, text.data(), static_cast<int32_t>(text.size()),
                                 internal_key, key, &block, &length) != 0)
            return -1;
        bytes.assign(block, static_cast<size_t>(length));
        return 0;
    }
};

// What an action prints to standard error.
template <typename Action> std::string words_of(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}
