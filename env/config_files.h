// Configuration files and the first load of the registry.
//
// Two files of one syntax are read, "etc/kestrion.rc" below KESTRIONDIR and ".kestrion" in the
// user's home directory, the second over the first:
//
//     # a number sign in the first column makes a comment
//     DBDATE Y4MD-
//     GL_DATE     %d %m %Y
//
// A line is a name, a run of white space, and the value up to the end of the line, trailing blanks
// included. There is no quoting, no continuation and no expansion. Empty lines are skipped; a line
// without white space has an empty value; a name that is unknown, as the empty name of a line that
// begins with a blank is, is dropped in silence. A line ends with a line feed; a last line without
// one is lost. A byte 255 inside a line ends the file there and loses the line.
// docs/formats/kestrion_rc.md tells it from the outside.
//
// Results of type int are 0 or one of the env_error values of env/registry.h.

#pragma once

#include "env/name_list.h"

#include <cstddef>
#include <cstdint>

// What the configuration files gave a value for: bits that ldcffile collects and gnlsenv asks for.
enum language_flag : uint32_t {
    LANGUAGE_DBNLS = 1, // with the value "1" or "2" only
    LANGUAGE_LANG = 2,
    LANGUAGE_LC_COLLATE = 4,
    LANGUAGE_LC_CTYPE = 8,
    LANGUAGE_LC_MONETARY = 16,
    LANGUAGE_LC_NUMERIC = 32,
    LANGUAGE_LC_TIME = 64,
};

inline constexpr size_t home_path_size = 65; // 64 characters of a home directory and the terminator

extern "C" {

// Loads the registry, once: defaults, the program's own variables, both files, and, where DBNLS
// asks for it, the locale variables. What was loaded before a failure stays.
// Returns 0; -2 without memory, home directory or control block; -4 when the user's file ended at a
//         value over its limit or with an unknown name on its last line, also a program's own row
//         whose default is over its limit.
// Ends the process with status 1 when there is no memory for the built-in defaults.
int greadenv(void);

// Reads one configuration file into the registry.
// ignore  names to pass over.
// line    receives the number of the last line read, counted from 1.
// flags   bits of language_flag are added.
// Returns 0, also for a file that cannot be opened; -2; -4 for a value over its limit, which ends
//         the reading at that line, and for an unknown name on the last line.
int ldcffile(const char *path, const env_name_list *ignore, uint32_t *line, uint32_t *flags);

// Reads a descriptor up to the end of the next line that is neither empty nor a comment, and not a
// byte further.
// buffer  from malloc, grown by 128 bytes whenever it is full; valid for free() after every result.
// size    its size; 0 after -2.
// line    1 is added for each line begun.
// Returns 0 for a line, terminated and without its line feed; -1 at the end of the file or when a
//         read fails, an unfinished line being lost; -2 without memory.
int _ggetcfline(int descriptor, char **buffer, size_t *size, uint32_t *line);

// Settles one locale variable when DBNLS is on.
// flags, bit  what the files gave, and this variable's bit in it.
// lang        the value of LANG, or null.
// Writes  `lang` or "en_US.819" into the registry, unless a file gave a value that is to be used. A
//         variable that is present but empty in the process environment gets the registry's value.
int gnlsenv(uint32_t flags, uint32_t bit, const char *name, const char *lang);

// Stores the first 64 characters of the user's home directory in `path`, which has home_path_size
// bytes. The user is the one who logged in, else the owner of the process: a root shell can stand
// for another account.
// Returns 0; -3 for a user without an account record, -4 for one whose directory is empty; gerrno
//         is set to the same.
int ggethomepath(char *path);
}
