// Characters of UTF-8 in the sources that the compilers read.

#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string_view>

namespace kestrion {

// Decodes the character at the start of `bytes`: the well-formed sequences of the Unicode
// standard, so no overlong ones and no surrogates. Returns its length, or 0 for anything else.
size_t decode_utf8(std::string_view bytes, uint32_t &code_point);

} // namespace kestrion
