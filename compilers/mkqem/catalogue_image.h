// The bytes of a compiled catalogue, and back.

#pragma once

#include <map>
#include <stdint.h>
#include <string>
#include <string_view>

namespace kestrion {

// Texts by their numbers, each with the line end that closes it.
using catalogue_texts = std::map<int32_t, std::string>;

// At least one text. Short records when all numbers fit 16 bits, else long ones; texts back to back
// in the order of their numbers, followed by zero bytes until a lookup's last window lies
// inside the file.
std::string encode_catalogue(const catalogue_texts &texts);

// Throws compiler_failure for a catalogue that is not sound: a wrong magic, no message, an index or a
// text outside the file, numbers that do not ascend.
catalogue_texts decode_catalogue(std::string_view bytes);

// A source that compiles to these texts.
std::string list_catalogue(const catalogue_texts &texts);

} // namespace kestrion
