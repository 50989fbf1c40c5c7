// The stand-in provider: libisi.so.1 on libcrypto. It does what sealing needs (one symmetric cipher
// interface and random bytes); everything else it exports fails and says so.
//
// It may be loaded by any program that keeps to <kestrion/isi_shared.h>. ISI_cleanup_int is
// accepted before ISI_init_int; without a record to report on, errors are dropped.

#pragma once

#include <kestrion/isi_shared.h>

extern "C" {
#define ISI_TYPED(symbol, upper, result, parameters) result symbol parameters;
#define ISI_OPAQUE(symbol, upper)
ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
}

namespace kestrion {

inline constexpr int provider_ok = 0;
inline constexpr int provider_failed = 1;

// All push on the record that the calling thread was last given, and return provider_failed.
int report_message(const char *text);
int report_errno(int error);
int report_libcrypto(); // what waits in libcrypto's queue of this thread; it may give no reason

void set_shared_globals(struct isi_shared_globals *globals); // null: reports are dropped
void set_current_record(struct isi_shared_thread_globals *record);

} // namespace kestrion
