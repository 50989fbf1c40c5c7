// The one way out of the trace and of the error log: to a callback, then to a file.

#pragma once

#include <kestrion/isi_shared.h>

#include <stdarg.h>

namespace kestrion {

// The line buffer of every diagnostic, the prefix "ISI: <process>: " and the terminator included.
inline constexpr size_t isi_line_size = 512;

// Formats one line, shows it to `callback` and, unless that answers non-zero, appends it with a
// line end to `file_name`; "stdout" and "stderr" mean those streams. Either may be null. What does
// not fit the line buffer is cut; a file that can't be opened loses the line silently.
__attribute__((format(printf, 3, 0))) void isi_errtrace_helper(isi_line_callback callback,
                                                               const char *file_name,
                                                               const char *format, va_list args);

} // namespace kestrion
