// Which catalogue file a message number leads to.
//
// A row of the table in use gives the leaf name; the file is searched below $KESTRIONDIR, first in
// the user's language (DBLANG), then in that of the locale, then in the English directories.

#pragma once

#include <stdint.h>

#include "general/gentcb.h"

namespace kestrion {

inline constexpr const char *default_leaf = "os.qem";

// The leaf name for |number|; never null. Rows are searched in order, the default stands last.
const char *leaf_of_message(int32_t number);

// Unsets msg_langdir: the next search settles it afresh.
void forget_language_directory();

// A copy of a text from malloc; null for a null text or without memory.
char *copy_of_text(const char *text);

} // namespace kestrion

extern "C" {

// Returns 1 for a regular file that the process may read, with errno 0, else 0.
int _ofreadable(const char *path);
}
