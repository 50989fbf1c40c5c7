// The conversion object file: the words and limits of its format, which
// docs/formats/conversion-object.md describes.

#pragma once

#include <stdint.h>

namespace kestrion {

inline constexpr char cvo_file_type[] = "FILE_TYPE=codeset_conversion_object\n";
inline constexpr char cvo_version[] = "COMPILER_VERSION=9\n";
inline constexpr char cvo_directory[] = "cv";        // word for the path search
inline constexpr char cvo_directory_version[] = "9"; // tried after the word first

inline constexpr int32_t cvo_head_lines = 3;   // lines before the skipped ones
inline constexpr int32_t cvo_line_limit = 126; // characters of a head line

} // namespace kestrion
