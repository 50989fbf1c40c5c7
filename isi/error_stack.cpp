#include "isi/error_stack.h"

#include "base/owned_text.h"
#include "isi/line_output.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

namespace {

using kestrion::err_context;

constexpr int base_with_own_label = 3;

// Collects bytes, writing those that fit and counting all.
struct byte_sink {
    char *buffer;
    size_t capacity;
    size_t wanted;

    void put(const char *text, size_t length) {
        if (wanted < capacity) {
            const size_t room = capacity - wanted;
            memcpy(buffer + wanted, text, length < room ? length : room);
        }
        wanted += length;
    }
    void put(const char *text) { put(text, strlen(text)); }
};

bool is_provider_kind(int32_t kind) { return kind >= ISI_ERR_CRYPTO && kind <= ISI_ERR_KM; }
bool is_errno_kind(int32_t kind) { return kind == ISI_ERR_ERRNO || kind == ISI_ERR_ERRNO_2; }

const char *code_message(const err_context &context, const isi_err_item *item) {
    if (is_errno_kind(item->kind))
        return strerror(static_cast<int>(item->code));
    if (is_provider_kind(item->kind))
        return context.code_message(item->kind, static_cast<long>(item->code));
    return nullptr;
}

const char *code_label(const err_context &context, int32_t kind) {
    if (is_errno_kind(kind))
        return "errno ";
    if (!is_provider_kind(kind))
        return "";
    return context.provider_base() == base_with_own_label ? "SecKit:" : "OpenSSL:";
}

void put_code(byte_sink &sink, const err_context &context, const isi_err_item *item) {
    if (const char *message = code_message(context, item)) {
        sink.put(message);
        sink.put(" ");
    }
    char number[32];
    const int length = snprintf(number, sizeof number, "%ld)", static_cast<long>(item->code));
    sink.put("(");
    sink.put(code_label(context, item->kind));
    sink.put(number, static_cast<size_t>(length));
}

void put_item(byte_sink &sink, const err_context &context, const isi_err_item *item) {
    if (item->text != nullptr)
        sink.put(item->text);
    if (item->text != nullptr && item->code != 0)
        sink.put(": ");
    if (item->code != 0)
        put_code(sink, context, item);
}

// Returns the bytes that the whole takes up.
size_t put_stack(const err_context &context, const isi_err_stack *stack, char delimiter,
                 char *buffer, size_t capacity) {
    byte_sink sink = {buffer, capacity, 0};
    for (const isi_err_item *item = stack->last; item != nullptr; item = item->previous) {
        if (item->kind == ISI_ERR_PLACE)
            continue;
        put_item(sink, context, item);
        sink.put(&delimiter, 1);
    }
    return sink.wanted;
}

void drop_text(const err_context &context, isi_err_stack *stack) {
    if (stack->text != nullptr)
        context.globals->release(stack->text);
    stack->text = nullptr;
}

__attribute__((format(printf, 2, 3))) void log_line(const err_context &context, const char *format,
                                                    ...) {
    va_list args;
    va_start(args, format);
    kestrion::isi_errtrace_helper(context.globals->err_callback, context.globals->err_file, format,
                                  args);
    va_end(args);
}

void log_item(const err_context &context, const isi_err_item *item) {
    if (context.globals->err_callback == nullptr && context.globals->err_file == nullptr)
        return;
    char line[kestrion::isi_line_size];
    byte_sink sink = {line, sizeof line - 1, 0};
    put_item(sink, context, item);
    line[sink.wanted < sizeof line ? sink.wanted : sizeof line - 1] = '\0';
    log_line(context, "%s", line);
}

} // namespace

namespace kestrion {

void push_err_item(const err_context &context, isi_err_stack *stack, int32_t kind, long code,
                   const char *text) {
    auto item = static_cast<isi_err_item *>(context.globals->allocate(sizeof(isi_err_item)));
    if (item == nullptr)
        return;
    *item = {.kind = kind,
             .code = code,
             .text = text != nullptr ? copied_text(text, context.globals->allocate) : nullptr,
             .next = nullptr,
             .previous = stack->last};
    if (stack->last != nullptr)
        stack->last->next = item;
    else
        stack->first = item;
    stack->last = item;
    log_item(context, item);
}

void free_err_items(const err_context &context, isi_err_stack *stack) {
    isi_err_item *item = stack->first;
    stack->first = nullptr;
    stack->last = nullptr;
    while (item != nullptr) {
        isi_err_item *next = item->next;
        if (item->text != nullptr)
            context.globals->release(item->text);
        context.globals->release(item);
        item = next;
    }
}

size_t render_err_item(const err_context &context, const isi_err_item *item, char delimiter,
                       char *buffer, size_t capacity) {
    byte_sink sink = {buffer, capacity, 0};
    put_item(sink, context, item);
    sink.put(&delimiter, 1);
    return sink.wanted;
}

const char *render_err_stack(const err_context &context, isi_err_stack *stack, char delimiter) {
    if (stack->last == nullptr)
        return nullptr;
    drop_text(context, stack);
    size_t size = 0;
    size_t wanted = put_stack(context, stack, delimiter, nullptr, 0);
    if (wanted == 0)
        return nullptr;
    // A provider's message may be longer than when it was measured; after a few rounds it is cut.
    for (int round = 0; wanted > size && round < 3; ++round) {
        drop_text(context, stack);
        size = wanted;
        stack->text = static_cast<char *>(context.globals->allocate(size));
        if (stack->text == nullptr)
            return nullptr;
        wanted = put_stack(context, stack, delimiter, stack->text, size);
    }
    stack->text[(wanted < size ? wanted : size) - 1] = '\0'; // over the last delimiter
    return stack->text;
}

} // namespace kestrion
