// Which catalogue file a message number leads to.
//
// A row of the table in use gives the leaf name; the file is searched below $KESTRIONDIR, first in
// the user's language (DBLANG), then in that of the locale, then in the English directories.

#pragma once

#include <kestrion/gentcb.h>

#include <stdint.h>

namespace kestrion {

inline constexpr const char *default_leaf = "os.qem";

// The leaf name for |number|; never null. Rows are searched in order, the default stands last.
const char *leaf_of_message(int32_t number);

// Unsets msg_langdir: the next search settles it afresh.
void forget_language_directory();

} // namespace kestrion
