#include "passwords/lock_hooks.h"

namespace kestrion {

int pw_create_lock_array(int32_t) { return 0; }
int pw_lock_array_idx(int32_t) { return 0; }
int pw_unlock_array_idx(int32_t) { return 0; }
int pw_init_lock(void) { return 0; }
int pw_init_unlock(void) { return 0; }
int get_thread_id(void) { return 0; }

} // namespace kestrion
