// The bridge's own records, and what its files share of the diagnostics. Public operations are in
// isi_api.h.

#pragma once

#include "isi/error_stack.h"
#include <kestrion/isi_api.h>

namespace kestrion {

// The source name that every error of the bridge carries.
inline constexpr const char *isi_source_name = "isi_api";

// Trace levels.
inline constexpr int trace_load = 1;
inline constexpr int trace_functions = 2;
inline constexpr int trace_calls = 3;

inline bool is_traced(int level) { return isi_shared_globals.trace_level >= level; }

// The function bound to a row, cast to the row's type; null when there is none. For calls that must
// leave the error stack as it is: the wrappers empty it.
template <class Function> Function bound_function(isi_function_index row) {
    return reinterpret_cast<Function>(isi_functab[row].isi_fp.address);
}
#define ISI_BOUND(upper) kestrion::bound_function<decltype(isi_fp::p_##upper)>(IDX_##upper)

// "ISI_RAND_BYTES" for IDX_ISI_RAND_BYTES.
const char *upper_name_of(isi_function_index row);

} // namespace kestrion
