// One run of the command: its settings, its blocks, and the ways out of it. Every way out wipes
// what held a key, a password or plain text.
//
// Status 1 is for what goes wrong before the sealing or in unsealing, 255 for bad usage and for
// what goes wrong in sealing and writing; scripts rely on the split.

#pragma once

#include "passwords/cipher.h"
#include <kestrion/passwdapi.h>

#include <stddef.h>
#include <stdint.h>

enum operation : int16_t { OP_ENCRYPT = 0, OP_DECRYPT = 1 };

inline constexpr size_t file_name_size = 256; // 255 characters and the terminator
inline constexpr size_t access_key_size = 25; // 24 characters and the terminator
inline constexpr int32_t checked_lines = 101; // lines that the command accepts in a text

namespace kestrion {

// Settled by the options.
extern int16_t op_mode;
extern char inputfile_path[file_name_size];
extern char outputfile_path[file_name_size];
extern char key_input[access_key_size];
extern const char *qvtxdir; // directory_from_environment(): no configuration file decides it

// What one run holds. A block that was given back is null.
struct command_run {
    int argc;
    char **argv;
    pw_ctx *ctx;
    cipher_ctx *cipher;
    char *file; // the input, with a zero byte after it
    int32_t file_length;
    char *copy; // of the text, cut up by the parser
    size_t copy_size;
    pw_entry *entries[checked_lines]; // made only to prove the text well-formed
    char internal_key[32];
    char sealed_access_key[32];
    char *result; // what is written
    int32_t result_length;
};

extern command_run run;

// To be called before anything that can leave: from here on every way out wipes what the run holds.
void start_run(int argc, char **argv);

// Ends the process with one of these.
inline constexpr int status_ok = 0;
inline constexpr int status_error = 1;
inline constexpr int status_failure = -1; // which a shell sees as 255
[[noreturn]] void leave(int status);

// Prints a compiled-in format and leaves with status 1. Adds neither a prefix nor a line end.
[[noreturn]] __attribute__((format(printf, 1, 2))) void error(const char *format, ...);

// Prints a message slot with its path, which may be null for a slot without one.
void print_message(const char *slot, const char *path);

// Gives a block of the run back, wiped.
void release_file();
void release_result();
void release_cipher();

} // namespace kestrion
