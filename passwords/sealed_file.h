// The sealed password file, $KESTRIONDIR/etc/passwd_file: docs/formats/sealed-file.md.
//
//     payload | EI bytes | "EI" | D1 | EA bytes | "EA" | D2 | wrap key | "24" | '2'
//
// The payload is the whole password text; EI and EA are the lengths of the encrypted internal and
// access keys, written in decimal, with D1 and D2 as the one-character counts of their digits.
// There is no magic number and no checksum: the file is walked from its end. The writer's figures
// are fixed, the reader follows what it finds as far as the bytes and its buffers reach.
//
// Results: 0, or -1 with a message on standard error.

#pragma once

#include "passwords/cipher.h"

#include <stdint.h>

namespace kestrion {

// Seals text[0..length). *result is a block from the context's alloc_fn that passes to the caller
// as soon as it is not null, on failure too. The caller's internal key stays as it is.
int pw_encrypt(pw_ctx *ctx, const cipher_ctx *cipher, const char *text, int32_t length,
               const char *internal_key, const char *access_key, char **result,
               int32_t *result_length);

// Opens the payload sealed[0..payload_length) and puts a zero byte after the text. *result as
// above. The internal key is turned into the combined key in place.
int pw_decrypt(pw_ctx *ctx, const cipher_ctx *cipher, const char *sealed, int32_t payload_length,
               char *internal_key, const char *access_key, char **result, int32_t *result_length);

// Walks the tail of a sealed file and opens its two keys, the access key first, into buffers of 32
// bytes each. *length is that of the file before and of its payload after success.
int extract_keys(pw_ctx *ctx, const cipher_ctx *cipher, const char *sealed, int32_t *length,
                 char *internal_key, char *access_key);

inline constexpr int32_t key_room = 31;            // bytes of a key in its buffer of 32
inline constexpr int32_t stored_internal_max = 64; // bytes of an encrypted internal key

// The parts of a sealed file, as its tail describes them. Nothing is copied: all point into the
// file.
struct sealed_parts {
    int32_t payload_length;   // the payload begins at the start of the file
    const char *internal_key; // encrypted
    int32_t internal_length;
    const char *access_key; // encrypted
    int32_t access_length;
    const char *wrap_key; // in plain
    int32_t wrap_length;
};

// Returns 0, or -1 when a number of the tail is malformed or larger than what is there or fits.
int read_sealed_parts(const char *sealed, int32_t length, sealed_parts *parts);

} // namespace kestrion
