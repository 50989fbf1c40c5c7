// Configuration files.
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
// docs/formats/kestrion_rc.md is the page for those who write one.
//
// Results of type int are 0 or one of the err_env_ numbers of <kestrion/error_numbers.h>.

#pragma once

#include <kestrion/name_list.h>

#include <stddef.h>
#include <stdint.h>

// What the configuration files gave a value for: bits that ldcffile collects and gnlsenv asks for.
enum language_flag {
    LANGUAGE_DBNLS = 1, // with the value "1" or "2" only
    LANGUAGE_LANG = 2,
    LANGUAGE_LC_COLLATE = 4,
    LANGUAGE_LC_CTYPE = 8,
    LANGUAGE_LC_MONETARY = 16,
    LANGUAGE_LC_NUMERIC = 32,
    LANGUAGE_LC_TIME = 64,
};

#ifdef __cplusplus
extern "C" {
#endif

// Reads one configuration file into the registry.
// ignore  names to pass over.
// line    receives the number of the last line read, counted from 1.
// flags   bits of language_flag are added.
// Returns 0, also for what cannot be opened or is not a regular file; err_env_no_memory;
//         err_env_value_size for a value over its limit, which ends the reading at that line, and
//         for an unknown name on the last line.
int ldcffile(const char *path, const env_name_list *ignore, uint32_t *line, uint32_t *flags);

// Reads a descriptor up to the end of the next line that is neither empty nor a comment, and not a
// byte further.
// buffer  from malloc, grown by 128 bytes whenever it is full; valid for free() after every result.
// size    its size; 0 after err_env_no_memory.
// line    1 is added for each line begun.
// Returns 0 for a line, terminated and without its line feed; -1 at the end of the file or when a
//         read fails, an unfinished line being lost; err_env_no_memory.
int _ggetcfline(int descriptor, char **buffer, size_t *size, uint32_t *line);

#ifdef __cplusplus
}
#endif
