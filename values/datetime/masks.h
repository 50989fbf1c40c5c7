// The masks of an environment, for the texts that follow them.

#pragma once

#include "values/datetime/field_layout.h"

namespace kestrion {

// Whether GL_DATETIME says how datetimes are written.
bool writes_by_gl_datetime();

// The mask that the environment has for a qualifier: the one that it keeps, else one made in
// `buffer` of datetime_format_size bytes. Null when it is malformed or too long.
const char *environment_mask(int qualifier, char *buffer);

// dtcvfmtasc with a letter for the century, without the checks of the word. NULL after a failure.
int read_under_mask(const char *text, const char *mask, const field_layout &q, char century,
                    dec_value *value);

} // namespace kestrion
