// Texts that are cut to a length.

#pragma once

#include <stdint.h>

namespace kestrion {

// The bytes of text[0..length) that fit into `room` without splitting a character.
int32_t whole_characters(const char *text, int32_t length, int32_t room);

// Copies what fits into to[0..room); the bytes of a character that doesn't fit whole are blanks.
// Returns the bytes written, the smaller of both.
int32_t copy_cut(const char *text, int32_t length, char *to, int32_t room);

} // namespace kestrion
