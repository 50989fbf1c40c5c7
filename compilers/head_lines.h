// The head lines of an object, which the runtime skips: what made it, and of what.
#pragma once

#include "compilers/diagnostics.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

// The texts that an object was made of, by their names without directories: so the lines do not
// depend on the paths that the sources were asked for by.
using source_texts = std::multimap<std::string, std::string_view>;

// "COMPILER=mkxxx 1.0.0", "SOURCE=" and the CRC-32 of all names and texts, which shows
// whether an object was made of these sources.
std::vector<std::string> head_lines(const std::string &compiler, const std::string &made_of,
                                    const source_texts &read);

// The same lines of an object's file; the third line gives the number of the head's lines.
std::vector<std::string> skipped_head_lines(const source_file &object);

// "name" of "path/to/name".
std::string last_component(const std::string &path);

} // namespace kestrion
