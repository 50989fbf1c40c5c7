// The two conventions records of the current environment.

#pragma once

#include <kestrion/gls_env.h>

namespace kestrion {

inline const lconv_rec *local_conventions() { return CheckGlsEnv()->state->lconv; }
inline const lconv_rec *neutral_conventions() { return CheckGlsEnv()->state->net_lconv; }

} // namespace kestrion
