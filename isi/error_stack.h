// Error stacks: pushing items and turning them into text. The bridge and the stand-in provider are
// both built with this file, so that an item looks and is logged the same whoever pushed it.
//
// An item renders as its text, ": " if it has a code as well, the code's own message with a blank,
// the label and number of the code in parentheses:
//
//     text "padding", kind 5, code 101   ->  "padding: bad decrypt (OpenSSL:101)"
//     kind 2, code 2                     ->  "No such file or directory (errno 2)"
//
// Nothing here reports a failure: an item for which there is no memory is dropped.

#pragma once

#include <kestrion/isi_shared.h>

namespace kestrion {

// What the two sides do differently. The functions may be asked while a stack is being walked, so
// they must leave stacks alone.
struct err_context {
    struct isi_shared_globals *globals;                   // allocator and error log; never null
    const char *(*code_message)(int32_t kind, long code); // kinds 5 to 7; null for no message
    int (*provider_base)();                               // 3 names the codes "SecKit:"
};

// The text is copied; without memory for the copy the item goes without.
void push_err_item(const err_context &context, isi_err_stack *stack, int32_t kind, long code,
                   const char *text);
void free_err_items(const err_context &context, isi_err_stack *stack);

// Writes at most `capacity` bytes of the item's text and delimiter, unterminated, to `buffer`.
// Returns the bytes that the whole takes up.
size_t render_err_item(const err_context &context, const isi_err_item *item, char delimiter,
                       char *buffer, size_t capacity);

// Renders the stack into a new text of its own: items newest first, without those of kind 1, a
// terminator in place of the last delimiter. Null for a stack without a text.
const char *render_err_stack(const err_context &context, isi_err_stack *stack, char delimiter);

} // namespace kestrion
