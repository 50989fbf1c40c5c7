// Places in the sources that the readers walk, the error that a bad place is refused with, and the
// reading of source files that may be compressed.
#pragma once

#include "compilers/diagnostics.h"

#include <memory>
#include <stdexcept>
#include <stdint.h>
#include <string>
#include <vector>

namespace kestrion {

// A place in a source, as an offset; it becomes line and column only when a message is printed. The
// file outlives every place in it.
struct source_place {
    const source_file *file = nullptr;
    size_t offset = 0; // in bytes of the text

    source_position position() const;
};

// A fault in a source: what is wrong, where, and what to do about it.
struct source_error : std::runtime_error {
    source_error(const source_place &place, const std::string &what_is_wrong,
                 const std::string &what_to_do)
        : std::runtime_error(what_is_wrong), where(place), remedy(what_to_do) {}
    source_place where;
    std::string remedy;
};

// Reads a file whole, plain or compressed by gzip: name/NAME or name/NAME.gz below each directory
// in order, or `name` itself when it holds a slash. Throws compiler_failure, which names all that
// was tried.
std::unique_ptr<source_file> find_source_file(const std::string &name,
                                              const std::vector<std::string> &directories);

} // namespace kestrion
