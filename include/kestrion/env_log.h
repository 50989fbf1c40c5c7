// Warnings about the environment for whoever starts a program: the only place of env/ that prints.

#pragma once

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

// Prints a line and flushes it. The line end is added. A null stream is standard error; a null or
// empty format prints nothing. The format is one that is compiled into the caller, never a text
// from outside.
void qvt_log_error(FILE *stream, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Says that a variable's value is over its limit, in lines of their own: "WARNING: ", the variable
// and its limit, and, if `file` is given, the place.
// name    null prints "(Unknown)".
// limit   below 1: the limit of the row at `index`, else of the row of that name, else -1.
// Example (null, "KESTRIONDIR", -1, 0, "start.c", 12, -4) ->
//   WARNING:
//   Environment variable KESTRIONDIR is too long (maximum is 256 characters).
//   File: start.c, line: 12, status: -4.
void qvt_log_envvar_error_fp(FILE *stream, const char *name, int32_t index, int32_t limit,
                             const char *file, int32_t line, int32_t status);

// The same on standard error.
void qvt_log_envvar_error_mt_log(const char *name, int32_t index, int32_t limit, const char *file,
                                 int32_t line, int32_t status);

#ifdef __cplusplus
}
#endif
