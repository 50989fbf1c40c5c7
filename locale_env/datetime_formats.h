// The formats that an environment keeps for each datetime qualifier.

#pragma once

#include <kestrion/gls_env.h>

namespace kestrion {

// Fills the table of `env` where USE_DTENV is in force, and empties it elsewhere. Qualifiers that
// the format cannot serve have null. Returns 0, or err_date_no_memory (-1211).
int settle_datetime_formats(GlsEnv *env);

// Frees the formats and nulls the table.
void release_datetime_formats(GlsEnv *env);

} // namespace kestrion
