// The time that a program has set for the present one.

#pragma once

#include <kestrion/broken_down_time.h>

namespace kestrion {

// The time that was set, or null. Of the calling thread.
const gl_tm *time_that_was_set();

} // namespace kestrion
