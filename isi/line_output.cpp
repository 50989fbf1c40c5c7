#include "isi/line_output.h"

#include "base/print_as_format.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

namespace {

// A directive in the finished line takes effect once more: who reads these logs sees "%%" as "%",
// and "%s" as the line itself.
void print_line(FILE *stream, const char *line) {
    kestrion::print_as_own_format(stream, line);
    fputc('\n', stream);
    fflush(stream);
}

} // namespace

void kestrion::isi_errtrace_helper(isi_line_callback callback, const char *file_name,
                                   const char *format, va_list args) {
    char line[isi_line_size];
    const int prefix = snprintf(line, sizeof line, "ISI: %d: ", static_cast<int>(getpid()));
    vsnprintf(line + prefix, sizeof line - static_cast<size_t>(prefix), format, args);

    if (callback != nullptr && callback(line) != 0)
        return;
    if (file_name == nullptr)
        return;
    if (strcmp(file_name, "stdout") == 0)
        return print_line(stdout, line);
    if (strcmp(file_name, "stderr") == 0)
        return print_line(stderr, line);
    if (FILE *file = fopen(file_name, "ae")) {
        print_line(file, line);
        fclose(file);
    }
}
