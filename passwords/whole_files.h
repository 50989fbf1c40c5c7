// Files read and written in one piece. Only regular files are supported as input: growing the
// buffer reads the file again from its start.

#pragma once

#include <kestrion/passwdapi.h>

#include <stdint.h>

namespace kestrion {

// Reads up to `limit` bytes into `buffer`, which has room for one more, and ends them with a zero
// byte. Stores the count of bytes read, on failure too. `ctx` is not used.
// Returns 0; -1 with a message on standard error; -2 when the caller is to grow the buffer and call
// again.
int read_file(pw_ctx *ctx, const char *path, char *buffer, int32_t limit, int32_t *length);

// Truncates or creates the file and writes data[0..length). Returns 0, or -1 with a
// message on standard error.
int write_file(const char *path, const char *data, int32_t length);

inline constexpr int32_t first_read_limit = 64000;
inline constexpr int32_t first_read_buffer = 65026;

// Takes the next step of growth: ten times the limit, and a buffer of 1025 bytes more. Returns
// false, and changes nothing, where that would pass the largest length.
bool next_read_size(int32_t *limit, int32_t *buffer_size);

} // namespace kestrion
