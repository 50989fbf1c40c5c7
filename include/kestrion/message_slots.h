// Message slots: the texts that a program loads once and prints often.
//
// A program binds its slots at its start:
//
//     const char *s_no_such_file = "";
//     const message_slot my_messages[] = {{&s_no_such_file, -70001}, {nullptr, 0}};
//     ...
//     if (rldinit() != 0 || rldmgar(my_messages) != 0)
//         ...
//
// The texts come from outside the program: never hand one to the printf family as a format. How a
// text is found is described in <kestrion/messages.h>.

#pragma once

#include <stdint.h>

typedef struct value_heap value_heap; // <kestrion/value_heap.h>

// One slot of a program and the message that fills it. A row with a null slot ends a table.
typedef struct message_slot {
    const char **slot;
    int32_t number;
} message_slot;

#ifdef __cplusplus
extern "C" {
#endif

// The runtime's own slots, with fixed English texts until rldinit() replaces them.
extern const char *s_unknown; // unknown message; takes the number
extern const char *s_presscr; // asks for RETURN
extern const char *s_msgfile; // the catalogue cannot be opened
extern const char *s_termtyp; // the terminal's type is unknown
extern const message_slot msginit[];

// rldmgar() on msginit.
int32_t rldinit(void);

// Fills the slots of `rows` in order. Returns 0, or the number of the first message that could not
// be loaded; the slots before it stay filled.
int32_t rldmgar(const message_slot *rows);

// The text of a message without its line end, in the string heap, where it lives until the process
// ends; null on any failure. `locale` may be null: the user's own. rldmsg is rld_lmsg.
char *rld_lmsg(int32_t number);
char *rld_lmsg_gls(int32_t number, const char *locale);
char *rldmsg(int32_t number);

// The heap that loaded messages live in; null before the first.
value_heap *get_strheap(void);
void set_strheap(value_heap *heap);

// Turns the stored form of 64-bit format directives into this platform's, in place. They are the
// same here, so the text comes back as it is. A null text gives null and err_no_block in *error.
char *rldmsg_fmtspecxtf(char *format, int32_t *error);

#ifdef __cplusplus
}
#endif
