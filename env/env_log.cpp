#include <kestrion/env_log.h>

#include "env/variable_table.h"

#include <stdarg.h>

namespace {

int32_t limit_of(const char *name, int32_t index) {
    if (index < 0 || index >= Num_DVals)
        index = name == nullptr ? -1 : kestrion::find_variable(name);
    return index < 0 ? -1 : Kes_DVals[index].max_length;
}

} // namespace

void qvt_log_error(FILE *stream, const char *format, ...) {
    if (format == nullptr || *format == '\0')
        return;
    if (stream == nullptr)
        stream = stderr;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(stream, format, arguments);
    va_end(arguments);
    fputc('\n', stream);
    fflush(stream);
}

void qvt_log_envvar_error_fp(FILE *stream, const char *name, int32_t index, int32_t limit,
                             const char *file, int32_t line, int32_t status) {
    if (limit < 1)
        limit = limit_of(name, index);
    qvt_log_error(stream, "WARNING: ");
    qvt_log_error(stream, "Environment variable %s is too long (maximum is %d characters).",
                  name == nullptr ? "(Unknown)" : name, limit);
    if (file != nullptr)
        qvt_log_error(stream, "File: %s, line: %d, status: %d.", file, line, status);
}

void qvt_log_envvar_error_mt_log(const char *name, int32_t index, int32_t limit, const char *file,
                                 int32_t line, int32_t status) {
    qvt_log_envvar_error_fp(nullptr, name, index, limit, file, line, status);
}
