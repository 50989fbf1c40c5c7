#include "isi/diagnostics.h"

#include "isi/line_output.h"

#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

namespace {

using kestrion::isi_line_size;

// The provider is asked without the wrappers, which would empty the stack that is being built or
// read.
const char *provider_code_message(int32_t kind, long code) {
    if (kind == ISI_ERR_CRYPTO)
        return isi_get_crypto_error_string(code);
    return kind == ISI_ERR_SSL ? isi_get_ssl_error_string(code) : isi_get_km_error_string(code);
}

int provider_base() {
    auto base = ISI_BOUND(ISI_LIB_BASE);
    return base != nullptr ? base() : 0;
}

constexpr kestrion::err_context bridge = {
    .globals = &isi_shared_globals,
    .code_message = provider_code_message,
    .provider_base = provider_base,
};

isi_err_stack *thread_stack() { return &isi_shared_thread_globals; }

using push_fn = int (*)(long);
using text_fn = const char *(*)(long);

// The provider gets the thread's stack first, since this thread may not have called it before.
int push_provider_code(push_fn push, int32_t kind, long code) {
    auto set_record = ISI_BOUND(ISI_SET_SHARED_THREAD_GLOBALS_PTR);
    if (push != nullptr && set_record != nullptr) {
        set_record(thread_stack());
        return push(code);
    }
    push_err_item(bridge, thread_stack(), kind, code, nullptr);
    return 0;
}

const char *provider_text(text_fn text, long code) {
    return text != nullptr ? text(code) : nullptr;
}

void push_cause(int kind, long code, int error, const char *dl_message) {
    switch (kind) {
    case ISI_ERR_ERRNO:
    case ISI_ERR_ERRNO_2:
        return push_err_item(bridge, thread_stack(), kind, error, nullptr);
    case ISI_ERR_DLERROR:
        return push_err_item(bridge, thread_stack(), kind, 0, dl_message);
    case ISI_ERR_CRYPTO:
        isi_err_stack_push_crypto_error(code);
        return;
    case ISI_ERR_SSL:
        isi_err_stack_push_ssl_error(code);
        return;
    case ISI_ERR_KM:
        isi_err_stack_push_km_error(code);
        return;
    default:
        return;
    }
}

void push_place(const char *operation, long code, const char *function, const char *source,
                int line) {
    const char *slash = strrchr(source, '/');
    char place[isi_line_size];
    snprintf(place, sizeof place, "%s()=%ld in %s() at %s:%d", operation, code, function,
             slash != nullptr ? slash + 1 : source, line);
    push_err_item(bridge, thread_stack(), ISI_ERR_PLACE, 0, place);
}

} // namespace

int isi_trace(int level, const char *format, ...) {
    if (!kestrion::is_traced(level))
        return 0;
    va_list args;
    va_start(args, format);
    kestrion::isi_errtrace_helper(isi_shared_globals.trace_callback, isi_shared_globals.trace_file,
                                  format, args);
    va_end(args);
    return 0;
}

void isi_err(const char *format, ...) {
    va_list args;
    va_start(args, format);
    kestrion::isi_errtrace_helper(isi_shared_globals.err_callback, isi_shared_globals.err_file,
                                  format, args);
    va_end(args);
}

void isi_log_err(int kind, const char *operation, long code, const char *function,
                 const char *source, int line, const char *format, ...) {
    // Both are taken before anything here could change them.
    const int error = errno;
    const char *dl_message = kind == ISI_ERR_DLERROR ? dlerror() : nullptr;

    push_cause(kind, code, error, dl_message);
    if (operation != nullptr)
        push_place(operation, code, function, source, line);
    if (format == nullptr)
        return;
    char message[isi_line_size];
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    push_err_item(bridge, thread_stack(), ISI_ERR_MESSAGE, 0, message);
}

const char *isi_get_err(signed char delimiter) {
    isi_trace(kestrion::trace_calls, "enter: %s ", __func__);
    isi_trace(kestrion::trace_calls, "delim=%c", delimiter);
    const char *text = isi_err_stack_text(thread_stack(), static_cast<char>(delimiter));
    if (text == nullptr)
        text = "";
    isi_err_stack_reset(thread_stack());
    isi_trace(kestrion::trace_calls, "ret=%s", text);
    isi_trace(kestrion::trace_calls, "exit: %s ", __func__);
    return text;
}

void isi_clear_err() { isi_err_stack_clear(thread_stack()); }

isi_err_stack *isi_err_stack_new() {
    auto stack = static_cast<isi_err_stack *>(isi_malloc(sizeof(isi_err_stack)));
    if (stack != nullptr)
        isi_err_stack_init(stack);
    return stack;
}

void isi_err_stack_free(isi_err_stack **stack) {
    if (*stack != nullptr)
        isi_err_stack_clear(*stack);
    isi_free(*stack);
    *stack = nullptr;
}

void isi_err_stack_init(isi_err_stack *stack) { *stack = {}; }

void isi_err_stack_reset(isi_err_stack *stack) { free_err_items(bridge, stack); }

void isi_err_stack_clear(isi_err_stack *stack) {
    isi_free(stack->text);
    stack->text = nullptr;
    isi_err_stack_reset(stack);
}

void isi_err_stack_push(isi_err_stack *stack, int kind, long code, const char *text) {
    push_err_item(bridge, stack, kind, code, text);
}

const char *isi_err_stack_text(isi_err_stack *stack, char delimiter) {
    return render_err_stack(bridge, stack, delimiter);
}

size_t isi_err_item_text(const struct isi_err_item *item, char *buffer, char delimiter) {
    return render_err_item(bridge, item, delimiter, buffer, buffer != nullptr ? SIZE_MAX : 0);
}

int isi_err_stack_push_crypto_error(long code) {
    return push_provider_code(ISI_BOUND(ISI_ERR_STACK_PUSH_CRYPTO_ERROR), ISI_ERR_CRYPTO, code);
}

int isi_err_stack_push_ssl_error(long code) {
    return push_provider_code(ISI_BOUND(ISI_ERR_STACK_PUSH_SSL_ERROR), ISI_ERR_SSL, code);
}

int isi_err_stack_push_km_error(long code) {
    return push_provider_code(ISI_BOUND(ISI_ERR_STACK_PUSH_KM_ERROR), ISI_ERR_KM, code);
}

const char *isi_get_crypto_error_string(long code) {
    return provider_text(ISI_BOUND(ISI_GET_CRYPTO_ERROR_STRING), code);
}

const char *isi_get_ssl_error_string(long code) {
    return provider_text(ISI_BOUND(ISI_GET_SSL_ERROR_STRING), code);
}

const char *isi_get_km_error_string(long code) {
    return provider_text(ISI_BOUND(ISI_GET_KM_ERROR_STRING), code);
}
