#include "passwords/sealed_file.h"

#include "passwords/keys.h"
#include "passwords/memory.h"

#include <stdio.h>
#include <string.h>

namespace kestrion {

namespace {

// The end of every file, whatever the wrap key: the reader follows these figures.
constexpr char wrap_length_text[] = {'2', '4', '2'};

// One stored key on its way into the file.
struct stored_key {
    char *bytes = nullptr; // encrypted
    int32_t length = 0;
    int32_t digits = 0; // of the length in decimal
};

struct sealing_keys {
    key_buffer combined;
    key_buffer wrap;
    stored_key internal;
    stored_key access;
};

// A length of 0 or below has no digits, although printing it would give one.
int32_t decimal_digits(int32_t length) {
    int32_t digits = 0;
    for (; length > 0; length /= 10)
        ++digits;
    return digits;
}

int make_stored_key(pw_ctx *ctx, const cipher_ctx *cipher, const char *data, uint8_t length,
                    const key_buffer &wrap, stored_key *stored) {
    if (encrypt_key(ctx, cipher, data, length, wrap.bytes, &stored->bytes, &stored->length) != 0)
        return -1;
    stored->digits = decimal_digits(stored->length);
    return 0;
}

int64_t stored_size(const stored_key &stored) { return int64_t{stored.length} + stored.digits + 1; }

char *append(char *out, const char *bytes, int32_t length) {
    memcpy(out, bytes, static_cast<size_t>(length));
    return out + length;
}

char *append_number(char *out, int32_t number, int32_t digits) {
    for (int32_t i = digits; i > 0; number /= 10)
        out[--i] = static_cast<char>('0' + number % 10);
    return out + digits;
}

char *append_stored_key(char *out, const stored_key &stored) {
    out = append(out, stored.bytes, stored.length);
    out = append_number(out, stored.length, stored.digits);
    return append_number(out, stored.digits, 1);
}

int32_t append_tail(char *out, const sealing_keys &keys) {
    const char *start = out;
    out = append_stored_key(out, keys.internal);
    out = append_stored_key(out, keys.access);
    out = append(out, keys.wrap.bytes, cipher_key_size);
    out = append(out, wrap_length_text, sizeof wrap_length_text);
    return static_cast<int32_t>(out - start);
}

int seal_text(pw_ctx *ctx, const cipher_ctx *cipher, const char *text, int32_t length,
              const sealing_keys &keys, char **result, int32_t *result_length) {
    if (start_encryption(cipher, keys.combined.bytes) != 0)
        return -1;
    const int64_t stored = stored_size(keys.internal) + stored_size(keys.access);
    // Twice the stored keys is more than the file needs; the callers' allocators see this size.
    const int64_t size = int64_t{cipher->block_size} + length + 2 * (stored)-1;
    const int64_t room = size - stored - cipher_key_size - int64_t{sizeof wrap_length_text};
    if (length < 0 || size > INT32_MAX)
        return no_output_buffer();
    *result = static_cast<char *>(ctx_malloc(ctx, static_cast<size_t>(size)));
    if (*result == nullptr)
        return no_output_buffer();
    if (encrypt_text(cipher, text, length, *result, static_cast<int32_t>(room), result_length) != 0)
        return -1;
    *result_length += append_tail(*result + *result_length, keys);
    return 0;
}

// Takes the fields of a sealed file off its end.
struct tail_reader {
    const char *start;
    int32_t left;

    bool take_bytes(int32_t count, const char **bytes) {
        if (count > left)
            return false;
        left -= count;
        *bytes = start + left;
        return true;
    }

    // A number, which is followed by the one digit that counts its digits. Nine digits cannot
    // overflow.
    bool take_number(int32_t *value) {
        const char *digits = nullptr;
        if (!take_bytes(1, &digits) || *digits < '1' || *digits > '9')
            return false;
        const int32_t count = *digits - '0';
        if (!take_bytes(count, &digits))
            return false;
        *value = 0;
        for (int32_t i = 0; i < count; ++i) {
            if (digits[i] < '0' || digits[i] > '9')
                return false;
            *value = *value * 10 + (digits[i] - '0');
        }
        return true;
    }

    // As many bytes as the number after them says, which lies within low to high.
    bool take_field(int32_t low, int32_t high, int32_t *length, const char **bytes) {
        return take_number(length) && *length >= low && *length <= high &&
               take_bytes(*length, bytes);
    }
};

int damaged_file() {
    fputs("FATAL error! password file is damaged\n", stderr);
    return -1;
}

// Copies an opened key to its buffer of 32 bytes and wipes the block that it came in.
int take_key(char *opened, int32_t length, char *buffer) {
    if (length <= key_room) {
        memset(buffer, 0, key_room + 1);
        memcpy(buffer, opened, static_cast<size_t>(length));
    }
    explicit_bzero(opened, static_cast<size_t>(length));
    return length <= key_room ? 0 : damaged_file();
}

// The opened block is wiped and never given back: callers' allocators know it as lost.
int open_access_key(pw_ctx *ctx, const cipher_ctx *cipher, const sealed_parts &parts,
                    const key_buffer &wrap, char *access_key) {
    const auto length = static_cast<size_t>(parts.access_length);
    auto *copy = static_cast<char *>(ctx_malloc(ctx, length + 1));
    if (copy == nullptr) {
        fputs("Memory allocation error\n", stderr);
        return -1;
    }
    memcpy(copy, parts.access_key, length);
    char *opened = nullptr;
    int32_t opened_length = 0;
    const int result =
        decrypt_key(ctx, cipher, copy, parts.access_length, wrap.bytes, &opened, &opened_length);
    ctx->free_fn(copy);
    return result != 0 ? -1 : take_key(opened, opened_length, access_key);
}

int open_internal_key(pw_ctx *ctx, const cipher_ctx *cipher, const sealed_parts &parts,
                      const key_buffer &wrap, char *internal_key) {
    char *opened = nullptr;
    int32_t opened_length = 0;
    if (decrypt_key(ctx, cipher, parts.internal_key, parts.internal_length, wrap.bytes, &opened,
                    &opened_length) != 0)
        return -1;
    const int result = take_key(opened, opened_length, internal_key);
    ctx->free_fn(opened);
    return result;
}

} // namespace

int read_sealed_parts(const char *sealed, int32_t length, sealed_parts *parts) {
    tail_reader tail = {sealed, length};
    const bool whole =
        tail.take_field(0, key_room, &parts->wrap_length, &parts->wrap_key) &&
        tail.take_field(1, INT32_MAX, &parts->access_length, &parts->access_key) &&
        tail.take_field(1, stored_internal_max, &parts->internal_length, &parts->internal_key);
    parts->payload_length = tail.left;
    return whole ? 0 : -1;
}

int pw_encrypt(pw_ctx *ctx, const cipher_ctx *cipher, const char *text, int32_t length,
               const char *internal_key, const char *access_key, char **result,
               int32_t *result_length) {
    *result = nullptr;
    sealing_keys keys;
    memcpy(keys.combined.bytes, internal_key, cipher_key_size);
    combine_keys(keys.combined.bytes, access_key);
    // Without random bytes the message is printed and the sealing goes on, under a wrap key of zero
    // bytes; the internal key, whose making failed the same way before, has stopped the command.
    generate_internal_key(ctx, access_key, keys.wrap.bytes);
    const auto access_length = static_cast<uint8_t>(strlen(access_key));
    if (make_stored_key(ctx, cipher, internal_key, cipher_key_size, keys.wrap, &keys.internal) != 0)
        return -1;
    int status = make_stored_key(ctx, cipher, access_key, access_length, keys.wrap, &keys.access);
    // The encrypted access key is not given back: callers' allocators know it as lost.
    if (status == 0)
        status = seal_text(ctx, cipher, text, length, keys, result, result_length);
    ctx->free_fn(keys.internal.bytes);
    return status;
}

int pw_decrypt(pw_ctx *ctx, const cipher_ctx *cipher, const char *sealed, int32_t payload_length,
               char *internal_key, const char *access_key, char **result, int32_t *result_length) {
    combine_keys(internal_key, access_key);
    return decrypt_text(ctx, cipher, sealed, payload_length, internal_key, result, result_length);
}

int extract_keys(pw_ctx *ctx, const cipher_ctx *cipher, const char *sealed, int32_t *length,
                 char *internal_key, char *access_key) {
    if (*length < 0) {
        fprintf(stderr, "FATAL error! data size negative %d\n", *length);
        return -1;
    }
    sealed_parts parts;
    if (read_sealed_parts(sealed, *length, &parts) != 0)
        return damaged_file();
    key_buffer wrap;
    memcpy(wrap.bytes, parts.wrap_key, static_cast<size_t>(parts.wrap_length));
    if (open_access_key(ctx, cipher, parts, wrap, access_key) != 0 ||
        open_internal_key(ctx, cipher, parts, wrap, internal_key) != 0)
        return -1;
    *length = parts.payload_length;
    return 0;
}

} // namespace kestrion
