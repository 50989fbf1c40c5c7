// A conversion object as the compiler holds it between charmaps, listing and file.
//
// The file is described in docs/formats/conversion-object.md.
#pragma once

#include "compilers/posix/charmap.h"
#include <kestrion/conversion.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace kestrion {

// One source character; control 0: valid in the source, without a mapping.
struct conversion_entry {
    code_sequence source;
    unsigned char control = 0;
    code_sequence target; // its length is the low bits of the control byte
    bool operator==(const conversion_entry &) const = default;
};

enum shift_sequence { SHIFT_IN, SHIFT_OUT, SOURCE_SHIFT_IN, SOURCE_SHIFT_OUT, SHIFT_SEQUENCES };

struct conversion_object {
    std::vector<std::string> head; // lines that the runtime skips
    bool source_stateful = false;  // there is a second table
    bool target_stateful = false;
    std::array<code_sequence, SHIFT_SEQUENCES> shifts;
    int target_min = 0, target_max = 0;
    int source_min = 0, source_max = 0;
    bool no_byte_table = true;
    double expansion = 1.0;
    std::vector<conversion_entry> normal;  // ascending by source
    std::vector<conversion_entry> shifted; // the same; empty unless source_stateful
};

// The order of the entries.
bool by_source(const conversion_entry &a, const conversion_entry &b);

// Sets what follows from the entries: lengths, expansion and whether there is a byte table.
void measure(conversion_object &object);

// The object's file. Throws compiler_failure for entries that no table can hold.
std::string object_text(const conversion_object &object);

// Lets the runtime load an object's bytes. Throws compiler_failure, which begins with the name of
// the source, when it refuses them.
void check_by_loading(const std::string &bytes, const std::string &source);

// The object of a file, as the runtime loads it. Throws compiler_failure when it refuses the file.
conversion_object read_object(const source_file &file);

// The object as a text that compiles to the same file, and that text read back. read_listing throws
// source_error.
std::string listing_text(const conversion_object &object);
conversion_object read_listing(const source_file &source);
bool is_listing(std::string_view text);

} // namespace kestrion
