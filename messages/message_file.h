// Layout of a message catalogue (docs/formats/message-catalogue.md), and reading an open one.
//
// A catalogue comes from outside: every count, length and offset is checked against the file before
// it is used. A catalogue of ordinary size is read whole when it opens, so that a lookup makes no
// system call and needs no descriptor; a larger one is read by windows of eight index records.

#pragma once

#include <kestrion/gentcb.h>

#include <stdint.h>

namespace kestrion {

// All numbers in a catalogue are big-endian. Stored: never renumber.
inline constexpr uint16_t message_magic_short = 65128; // 8-byte records: number in 16 bits
inline constexpr uint16_t message_magic_long = 65129;  // 10-byte records: number in 32 bits
inline constexpr int32_t message_head_size = 4;        // magic and record count
inline constexpr int32_t message_short_record = 8;
inline constexpr int32_t message_long_record = 10;
inline constexpr int32_t message_window = 8;           // records that a lookup reads at once
inline constexpr int32_t message_count_limit = 32767;  // the count is a signed 16-bit field
inline constexpr int32_t message_length_limit = 32767; // and so is a text's length

// Where the text of a message lies in its file. Only texts that lie wholly inside the file are
// reported: length >= 1, offset >= 0, offset + length <= size of the file.
struct message_place {
    int32_t length;
    int64_t offset;
};

// Opens the file `path` in a closed slot. Returns 0, err_catalogue_not_opened or
// err_catalogue_magic; the slot is closed on failure.
int32_t catalogue_open(gen_catalogue *catalogue, const char *path);

// Closes what is open and forgets the leaf name; a closed slot stays closed.
void catalogue_close(gen_catalogue *catalogue);

// Closes the descriptor of a catalogue that is in memory; another keeps it.
void catalogue_release_descriptor(gen_catalogue *catalogue);

// Finds a message in an open catalogue. Returns 0, err_no_such_message or err_catalogue_cut.
int32_t catalogue_find(gen_catalogue *catalogue, int32_t number, message_place *place);

// Copies the first `count` bytes of a text from its `offset`. Returns 0, or err_catalogue_cut when
// the file ends before.
int32_t catalogue_read(const gen_catalogue *catalogue, int64_t offset, char *bytes, int32_t count);

} // namespace kestrion
