#pragma once

#include <kestrion/message_ranges.h>

namespace kestrion {

// The leaf name of the messages that no row has. leaf_of_message gives this very address for them.
extern const char default_leaf[];

// The leaf name for |number|, never null.
const char *leaf_of_message(int32_t number);

} // namespace kestrion
