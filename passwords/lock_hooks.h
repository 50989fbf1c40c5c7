// Hooks for programs that use the API on several threads. This build is single-threaded: each does
// nothing and returns 0.

#pragma once

#include <stdint.h>

namespace kestrion {

int pw_create_lock_array(int32_t count); // called by pw_init with lock_array_size
int pw_lock_array_idx(int32_t index);
int pw_unlock_array_idx(int32_t index);
int pw_init_lock(void); // these two bracket cipher_init
int pw_init_unlock(void);
int get_thread_id(void);

inline constexpr int32_t lock_array_size = 64;

} // namespace kestrion
