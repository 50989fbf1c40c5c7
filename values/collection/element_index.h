// Index of a SET's elements, so that an insert needs no walk to see whether the element is there.
//
// It is made by the first search, knows every element inserted after that, and is dropped by any other
// change. It only ever speeds a search up: without memory for it there is none.

#pragma once

#include "values/collection/elements.h"

namespace kestrion {

enum class found { no, yes, unknown };

// Looks an element up, making the index if there is none; unknown without memory for it.
found find_in_index(coll_rec *collection, element searched);

// Adds an element that was inserted; nothing without an index.
void add_to_index(coll_rec *collection, element added);

void drop_index(coll_rec *collection);

} // namespace kestrion
