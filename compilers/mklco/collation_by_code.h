// A collation that orders by code: for code sets whose bytes are in a useful order, and what objects have until their source's own order is compiled.
#pragma once

#include "compilers/mklco/object.h"

namespace kestrion {

// Fills collation and rows of an object whose characters are there. A single-byte object has a
// weight for each byte; in a multibyte one all characters have the same weight and their ties are
// broken by the characters themselves.
void collate_by_code(locale_object &object);

} // namespace kestrion
