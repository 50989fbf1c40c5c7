#include "isi/wrapper.h"

#include "isi/line_output.h"

#include <stdio.h>
#include <string.h>

namespace {

using kestrion::traced_value;

constexpr const char *null_text = "<null>";

int render_value(char *out, size_t room, const traced_value &value) {
    switch (value.kind) {
    case traced_value::NUMBER:
        return snprintf(out, room, "=%d", value.number);
    case traced_value::ADDRESS:
        return snprintf(out, room, "=%p", value.address);
    default:
        return snprintf(out, room, "=%s",
                        value.address != nullptr ? static_cast<const char *>(value.address)
                                                 : null_text);
    }
}

// The line's text, cut at the size of `line`, with what the trace cuts anyway.
void render_arguments(char (&line)[kestrion::isi_line_size], const char *names,
                      const traced_value *values, size_t count) {
    size_t used = 0;
    for (size_t i = 0; i < count && used + 1 < sizeof line; ++i) {
        const int name = static_cast<int>(strcspn(names, ","));
        int length =
            snprintf(line + used, sizeof line - used, "%s%.*s", i != 0 ? ", " : "", name, names);
        used += static_cast<size_t>(length);
        if (used + 1 < sizeof line)
            used += static_cast<size_t>(render_value(line + used, sizeof line - used, values[i]));
        names += name;
        names += strspn(names, ", ");
    }
}

} // namespace

namespace kestrion {

void trace_enter(const char *wrapper, const char *names, const traced_value *values, size_t count) {
    isi_trace(trace_calls, "enter: %s ", wrapper);
    if (count == 0)
        return;
    char line[isi_line_size];
    render_arguments(line, names, values, count);
    isi_trace(trace_calls, "%s", line);
}

void trace_exit(const char *wrapper, traced_value result) {
    char text[isi_line_size];
    render_value(text, sizeof text, result);
    isi_trace(trace_calls, "ret%s", text);
    isi_trace(trace_calls, "exit: %s ", wrapper);
}

// After a failure the caller's length may never have been set, so it isn't looked at.
void trace_exit_with_length(const char *wrapper, int result, const int *outl) {
    isi_trace(trace_calls, "ret=%d, *outl=%d", result, result == 0 && outl != nullptr ? *outl : 0);
    isi_trace(trace_calls, "exit: %s ", wrapper);
}

bool ready_to_call(isi_function_index row, const char *wrapper) {
    auto set_record = ISI_BOUND(ISI_SET_SHARED_THREAD_GLOBALS_PTR);
    if (set_record == nullptr)
        return false;
    set_record(&isi_shared_thread_globals);
    isi_err_stack_reset(&isi_shared_thread_globals);
    if (isi_functab[row].isi_fp.address != nullptr)
        return true;
    const char *name = upper_name_of(row);
    isi_log_err(ISI_ERR_MESSAGE, nullptr, 0, wrapper, isi_source_name, __LINE__,
                "(isi_functab[IDX_%s].isi_fp.p_%s): function address not available", name, name);
    return false;
}

} // namespace kestrion
