// Numbered messages: every text that a user reads comes from a catalogue file.
//
// A message number selects a catalogue by its magnitude, through a table of ranges. The file is
// searched below $KESTRIONDIR in the directories of the user's language, then in the English ones.
// A message that the user's catalogue lacks is taken from the English catalogue; when that fails
// too, the buffer gets a fixed English text, so that a caller can always print what it got.
//
// A program binds its message slots once at its start:
//
//     const char *s_no_such_file = "";
//     const message_slot my_messages[] = {{&s_no_such_file, -70001}, {nullptr, 0}};
//     ...
//     if (rldinit() != 0 || rldmgar(my_messages) != 0)
//         ...
//
// The texts come from outside the program: print them with base/print_as_format.h, never with
// the printf family. One catalogue is open at a time; it stays open between lookups, in memory if
// it is small, unless QVT_FREE_FD has a value. One thread at a time; nothing here locks.

#pragma once

#include <stdint.h>
#include <stdio.h>

typedef struct value_heap value_heap; // <kestrion/value_heap.h>

// One slot of a program and the message that fills it. A row with a null slot ends a table.
typedef struct message_slot {
    const char **slot;
    int32_t number;
} message_slot;

// One row of the table that maps a message number to the leaf name of its catalogue: the first row
// with low <= |number| <= high counts; a row with marker 0 ends the table; a number that no row
// takes lies in "os.qem".
typedef struct message_range {
    int16_t marker;   // 1, or 0 in the row behind the last
    uint32_t low;     // magnitudes, both ends included
    uint32_t high;    //
    const char *leaf; // at most message_leaf_size - 1 bytes
} message_range;

enum {
    message_leaf_size = 64,
    msg_unknown_number = 32766, // "Unknown error message number '%d'"
    msg_unknown_file = 32765    // "Cannot open file '%s'"
};

#ifdef __cplusplus
extern "C" {
#endif

// The runtime's own slots. Their fixed English texts stand until rldinit() replaces them.
extern const char *s_unknown; // unknown message; takes the number
extern const char *s_presscr; // asks for RETURN
extern const char *s_msgfile; // the catalogue cannot be opened
extern const char *s_termtyp; // the terminal's type is unknown
extern const message_slot msginit[];

extern const message_range *_mfqvt;   // the table in use; the client's at start
extern const message_range _cmfqvt[]; // the client's
extern const message_range _smfqvt[]; // the server's

// The user's message directory: null until it is first needed; empty when there is none, and once a
// lookup named its own locale. Owned here.
extern char *msg_langdir;

// -- Binding slots -----------------------------------------------------------------------------

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

// -- Reading into a buffer ---------------------------------------------------------------------

// Copies a message with its line end into buffer[0..size), cut and terminated.
// length  gets the text's true length; may be null.
// Returns 0;
//         err_message_too_long when the text is not below `size`: the buffer holds what fits;
//         err_no_block, or the negative error of a failed locale start, with a fixed English text;
//         err_catalogue_not_opened with the text for a file that cannot be opened;
//         another status of lrseekmsg_gls with the text for an unknown number;
//         -1 with the buffer untouched when that text was itself the one asked for.
int32_t rgetlmsg(int32_t number, char *buffer, int32_t size, int32_t *length);
int32_t rget_lmsg(int32_t number, char *buffer, int32_t size, int32_t *length);
int32_t rgetlmsg_with_locale(int32_t number, char *buffer, int32_t size, int32_t *length,
                             const char *locale);
int32_t rgetlmsg_gls(int32_t number, char *buffer, int32_t size, int32_t *length,
                     const char *locale);

// Fills the buffer with the text for an unknown message number, or for a catalogue that cannot be
// opened, cut to `size`.
void rnomsg(int32_t number, char *buffer, int32_t size);
void rnofile(int32_t number, char *buffer, int32_t size);

// -- Positioning a file ------------------------------------------------------------------------

// Opens the catalogue of `number` and sets *stream to a new stream that stands at the text; the
// caller closes it. On failure *stream is null. rseekmsg is lrseekmsg.
int32_t lrseekmsg(int32_t number, int32_t *length, FILE **stream);
int32_t rseekmsg(int32_t number, int32_t *length, FILE **stream);

// The same with the catalogue's own descriptor, which the next lookup in another file closes, and
// the text's offset. Returns 0, err_no_block, err_catalogue_not_opened, err_no_such_message,
// err_catalogue_magic, err_catalogue_path or err_catalogue_cut.
int32_t lrseekmsg_gls(int32_t number, int32_t *length, int64_t *position, const char *locale,
                      int *descriptor);

// -- Finding files -----------------------------------------------------------------------------

// Returns 1 for a regular file that the process may read, with errno 0, else 0.
int _ofreadable(const char *path);

// The path of the catalogue `leaf` for the user's language or for `locale`, in the control block;
// empty when no readable file exists; null when the installation directory's name is too long.
char *rmsgfname(const char *leaf);
char *rmsgfname_gls(const char *leaf, const char *locale);

// Copies the leaf name for |number| to name[0..message_leaf_size).
// Returns 0, or -3 when no row has it and the name is the default.
int32_t rmkmsgleafname(int32_t number, char *name);

// Uses the file `path` for all messages from now on; null ends that.
// Returns 0, or err_no_block without memory, nothing being changed.
int32_t _setmsgfile(const char *path);

// Forgets the open catalogue and the user's message directory; both are settled afresh.
void rmsg_init(void);

// rmsg_init() with another table: the server's for kind "s", the client's for "c".
// Returns 0, or -1 with nothing changed for any other kind.
int32_t gen_resetMessageFindFile(const char *kind);

// -- Formats -----------------------------------------------------------------------------------

// Turns the stored form of 64-bit format directives into this platform's, in place. They are the
// same here, so the text comes back as it is. A null text gives null and
// err_no_block in *error.
char *rldmsg_fmtspecxtf(char *format, int32_t *error);

#ifdef __cplusplus
}
#endif
