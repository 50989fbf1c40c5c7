// The keys of the sealed file. None is held by the program; each run makes or reads its own.
//
//     access key     0 to 24 characters, the administrator's; compared when a file is unsealed
//     internal key   24 random bytes, the base of the payload's key
//     combined key   internal key with access key characters over its even bytes; never stored
//     wrap key       24 random bytes; the access and internal keys are stored encrypted under it
//
// Random keys are raw bytes, any of which may be zero, and are moved by length; the zero byte
// after them only ends the buffer. The access key is text and is measured by its terminator.

#pragma once

#include "passwords/cipher.h"

#include <stdint.h>

namespace kestrion {

// Fills key[0..24) with random bytes and ends it with a zero byte. The first two arguments are not
// used. Returns 0, or -1 after "ISI_RAND_BYTES failed".
int generate_internal_key(pw_ctx *ctx, const char *access_key, char *key);

// Writes character i of the access key over byte 2i of key[0..24), i below 12. Always 0.
int combine_keys(char *key, const char *access_key);

// Returns 0 when the two texts are the same, else 1.
int compare_keys(const char *given, const char *sealed);

// Encrypt or decrypt a short text under a 24-byte key. *result is a block from the context's
// alloc_fn that passes to the caller, or null on failure; decrypt_key puts a zero byte after it.
int encrypt_key(pw_ctx *ctx, const cipher_ctx *cipher, const char *data, uint8_t length,
                const char *key, char **result, int32_t *result_length);
int decrypt_key(pw_ctx *ctx, const cipher_ctx *cipher, const char *data, int32_t length,
                const char *key, char **result, int32_t *result_length);
} // namespace kestrion
