// The engine's diagnostic log, for engineers only.
//
// GLSLOG=on (any case) appends each line to "gls.log" in the current directory; GLSDEBUG=on (a
// small n) prints it on the standard output. Both are looked at once, by the first message. A log
// file that can't be opened is not an error: the line is dropped.

#pragma once

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

extern int32_t gls_debug_initialized; // 1 after the first message
extern int32_t gls_logging;           // 1: lines go to gls.log
extern int32_t gls_popups;            // 1: lines go to the standard output

// Reads the two settings and writes the head of the log. Run by the first `gl_message`.
void gl_init_debug(void);

// Writes one line. The text is data, never a format. The log is opened and closed for each line, so
// that a crash loses nothing; unless logging is on, this is a test of two flags.
void gl_message(const char *text);

// Opens the log. As root on behalf of another real user, the file is opened as that user. Returns
// null when it can't be opened, when the identity can't be dropped, and with raised privileges
// (set-user-id and the like); the process ends when the identity can't be restored.
FILE *openlogfile(const char *name, const char *mode);

// Writes "Assert in FILE at line LINE failed." to the standard error and ends the process.
void gl_assert_failed(const char *file, long line) __attribute__((noreturn));

// End of the engine's use of its log. Nothing is kept open between lines, so nothing is left to do.
void _gl_exit_utilities(void);

#ifdef __cplusplus
}
#endif
