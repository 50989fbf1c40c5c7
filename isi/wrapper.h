// The shape that all wrappers share: trace what goes in, look whether the provider and its function
// are there, give the call a clean error stack, call, trace what comes out. A wrapper is one line:
//
//     int isi_cipher_ctx_set_padding(void *ctx, int padding) {
//         return ISI_CALL(ISI_CIPHER_CTX_SET_PADDING, failed, ctx, padding);
//     }
//
// The trace lines come from the spelling and the types of the arguments ("ctx=%p, padding=%d") and
// from the type of the result ("ret=%d", "ret=%p", "ret=%s"; "ret=%d, *outl=%d" where an argument
// is an int *).

#pragma once

#include "isi/diagnostics.h"

#include <type_traits>

namespace kestrion {

// One argument or result as the trace shows it.
struct traced_value {
    enum { NUMBER, ADDRESS, TEXT } kind;
    int number;
    const void *address; // ADDRESS and TEXT
};

constexpr traced_value traced(int value) { return {traced_value::NUMBER, value, nullptr}; }
constexpr traced_value traced(const void *value) { return {traced_value::ADDRESS, 0, value}; }
constexpr traced_value traced(const char *value) { return {traced_value::TEXT, 0, value}; }

// `names` holds the names of values[0..count), separated by ", ".
void trace_enter(const char *wrapper, const char *names, const traced_value *values, size_t count);
void trace_exit(const char *wrapper, traced_value result);
void trace_exit_with_length(const char *wrapper, int result, const int *outl);

// Hands the thread's record to the provider and empties the thread's error stack; returns
// whether the row can be called. An unbound provider is not an error here; a function that a bound
// provider lacks is.
bool ready_to_call(isi_function_index row, const char *wrapper);

template <class Function, class... Arguments,
          class Result = std::invoke_result_t<Function, Arguments...>>
Result call_untraced(isi_function_index row, const char *wrapper,
                     std::type_identity_t<Result> fallback, Arguments... arguments) {
    return ready_to_call(row, wrapper) ? bound_function<Function>(row)(arguments...) : fallback;
}

template <class Result, class... Arguments>
void trace_end(const char *wrapper, Result result, Arguments... arguments) {
    const int *outl = nullptr;
    [[maybe_unused]] auto note_length = [&outl](auto argument) {
        if constexpr (std::is_same_v<decltype(argument), int *>)
            outl = argument;
    };
    (note_length(arguments), ...);
    if constexpr ((std::is_same_v<Arguments, int *> || ...))
        trace_exit_with_length(wrapper, result, outl);
    else
        trace_exit(wrapper, traced(result));
}

template <class Function, class... Arguments,
          class Result = std::invoke_result_t<Function, Arguments...>>
Result call_traced(bool allowed, isi_function_index row, const char *wrapper, const char *names,
                   std::type_identity_t<Result> fallback, Arguments... arguments) {
    if (is_traced(trace_calls)) {
        const traced_value values[] = {traced(arguments)..., traced_value{}};
        trace_enter(wrapper, names, values, sizeof...(arguments));
    }
    Result result = fallback;
    if (allowed)
        result = call_untraced<Function>(row, wrapper, fallback, arguments...);
    if (is_traced(trace_calls))
        trace_end(wrapper, result, arguments...);
    return result;
}

} // namespace kestrion

#define ISI_CALL_IF(allowed, upper, fallback, ...)                                                 \
    kestrion::call_traced<decltype(isi_fp::p_##upper)>(                                            \
        allowed, IDX_##upper, __func__, #__VA_ARGS__, fallback __VA_OPT__(, ) __VA_ARGS__)
#define ISI_CALL(upper, fallback, ...) ISI_CALL_IF(true, upper, fallback __VA_OPT__(, ) __VA_ARGS__)
#define ISI_CALL_UNTRACED(upper, fallback)                                                         \
    kestrion::call_untraced<decltype(isi_fp::p_##upper)>(IDX_##upper, __func__, fallback)
