// Multi tables as the compilers handle them: filled by sequences, written by the engine's own
// writer.
#pragma once

#include "compilers/posix/code_sequence.h"
#include <kestrion/multi.h>
#include <kestrion/multi_file.h>

#include <functional>
#include <memory>
#include <string>

namespace kestrion {

struct multi_deleter {
    void operator()(multi_arr *table) const { _gl_free_multi(table); }
};
using multi_table = std::unique_ptr<multi_arr, multi_deleter>;

// An empty table whose data have `data_size` bytes, all zero by default. Throws std::bad_alloc.
multi_table make_table(uint32_t data_size);

// Adds a character; a null datum makes it valid and no more. Throws compiler_failure when one
// character is the beginning of another.
void add_to_table(multi_arr *table, const code_sequence &sequence, const void *datum);

// Calls visit(sequence, datum) for each character of a table, in the order of their bytes.
void for_each_entry(const multi_arr *table,
                    const std::function<void(const code_sequence &, const unsigned char *)> &visit);

// The table in the shorter of its two text forms; it is compressed afterwards.
std::string table_text(multi_arr *table, multi_datum_writer writer);

} // namespace kestrion
