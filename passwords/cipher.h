// One use of the cipher: the provider's context and descriptor for AES-192 in electronic code book
// mode with padding, and the running of bytes through it.
//
// The cipher has a key of 24 bytes, a block of 16 and no vector; its padding makes every encrypted
// text 1 to 16 bytes longer than its plain form. All calls go through the crypto bridge; one that
// fails prints the provider's error text to standard error. Results: 0, or -1 for failure.

#pragma once

#include <kestrion/passwdapi.h>

#include <stdint.h>

namespace kestrion {

struct cipher_ctx {
    void *cipher_handle; // provider's cipher context, or null
    void *cipher_desc;   // provider's cipher descriptor
    int32_t block_size;  // bytes
};

// Fills a record that the caller has cleared. Always 0: a provider that is missing or refuses
// leaves a null handle or descriptor, and the first operation that needs it fails.
int cipher_init(cipher_ctx *cipher);

// Ends the use of the provider's context and frees it and the record. On failure both stay.
int cipher_cleanup(pw_ctx *ctx, cipher_ctx *cipher);

inline constexpr int32_t cipher_key_size = 24;

// Prints what the provider has to say about its last failure. Always -1.
int provider_failure();

// False when the last failure of the provider came without a text: the bridge had no memory for
// one.
bool provider_gave_reason();

// Ready the cipher to encrypt one text under a key of 24 bytes. A cipher whose blocks are longer
// than a stored key has room for counts as a failed call of the provider. Only where a key is
// encrypted is the key length set as well: between a start without a key and one with it.
int start_encryption(const cipher_ctx *cipher, const char *key);
int start_key_encryption(const cipher_ctx *cipher, const char *key);

// Runs data[0..length) through a started encryption into out[0..room) and stores the length that
// came out. One below 0 or above the room counts as a failure of the provider.
int encrypt_text(const cipher_ctx *cipher, const char *data, int32_t length, char *out,
                 int32_t room, int32_t *out_length);

// Decrypts data[0..length) under `key`. *result is null until its block is allocated, and then
// passes to the caller, wiped on failure, with a zero byte after the text on success.
int decrypt_text(pw_ctx *ctx, const cipher_ctx *cipher, const char *data, int32_t length,
                 const char *key, char **result, int32_t *result_length);

// Prints that there is no memory for a result. Always -1.
int no_output_buffer();

// Makes the provider forget the key and the partial block that its context holds, where a failure
// leaves the context allocated. A null handle or record is accepted.
void forget_cipher_key(const cipher_ctx *cipher);

} // namespace kestrion
