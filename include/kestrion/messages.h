// Numbered messages: every text that a user reads comes from a catalogue file.
//
// A message number selects a catalogue by its magnitude (<kestrion/message_ranges.h>). The file is
// searched below $KESTRIONDIR in the directories of the user's language, then in the English ones.
// A message that the user's catalogue lacks is taken from the English catalogue; when that fails
// too, the buffer gets a fixed English text, so that a caller can always print what it got.
//
// The texts come from outside the program: never hand one to the printf family as a format. One
// catalogue is open at a time; it stays open between lookups, in memory if
// it is small, unless QVT_FREE_FD has a value. One thread at a time; nothing here locks.

#pragma once

#include <stdint.h>
#include <stdio.h>

enum {
    msg_unknown_number = 32766, // "Unknown error message number '%d'"
    msg_unknown_file = 32765    // "Cannot open file '%s'"
};

#ifdef __cplusplus
extern "C" {
#endif

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

// Opens the catalogue of `number` and sets *stream to a new stream positioned at the text; the
// caller closes it. On failure *stream is null. rseekmsg is lrseekmsg.
int32_t lrseekmsg(int32_t number, int32_t *length, FILE **stream);
int32_t rseekmsg(int32_t number, int32_t *length, FILE **stream);

// The same with the catalogue's own descriptor, which the next lookup in another file closes, and
// the text's offset. Returns 0, err_no_block, err_catalogue_not_opened, err_no_such_message,
// err_catalogue_magic, err_catalogue_path or err_catalogue_cut.
int32_t lrseekmsg_gls(int32_t number, int32_t *length, int64_t *position, const char *locale,
                      int *descriptor);

// -- Which files are read ----------------------------------------------------------------------

// Uses the file `path` for all messages from now on; null ends that.
// Returns 0, or err_no_block without memory, nothing being changed.
int32_t _setmsgfile(const char *path);

// Forgets the open catalogue and the user's message directory; both are settled again at their next
// use.
void rmsg_init(void);

// rmsg_init() with another table: the server's for kind "s", the client's for "c".
// Returns 0, or -1 with nothing changed for any other kind.
int32_t gen_resetMessageFindFile(const char *kind);

#ifdef __cplusplus
}
#endif
