#pragma once

#include <kestrion/gls_env.h>

namespace kestrion {

// Releases what `env` has loaded or cached and nulls the pointers; leaves flags and settings.
void release_loaded(GlsEnv *env);

} // namespace kestrion
