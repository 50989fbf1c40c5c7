// The search for the engine's data files.
//
// A file is known by a name, a directory word and a version text: ("en_us/0333.lco", "lc", "11").
// It is looked for, first match wins:
//   - a name that holds the byte 255 was made by the engine: each 255 becomes a slash, and nothing
//     else is tried;
//   - a name that starts with a slash is opened as it is;
//   - GL_PATH, a list of directories with colons between them, decides alone when it is not empty:
//     ELEMENT/NAME for each element, with no fall-back;
//   - BASE/gls/lc11/NAME, unless the version is empty, then BASE/gls/lc/NAME, where BASE is
//     KESTRIONDIR or the built-in "/usr/kestrion".
// A program with raised privileges (set-user-id and the like) takes neither variable from its
// environment.
// A KESTRIONDIR of more than 256 characters fails every search.
//
// Failures: null with GLS_ERR_FILE (no file, unusable KESTRIONDIR) or GLS_ERR_NO_MEMORY. A file
// that is found leaves the error word as it was before the search.

#pragma once

#include <kestrion/ext_funcs.h>

// Replaces the slash in names that bypass the search.
#define gl_directory_mark ((char)0xFF)

#ifdef __cplusplus
extern "C" {
#endif

// Opens `name` for reading without a search, each byte 255 taken as a slash.
FILE *gl_open_file(void *ctx, const char *name);

// Search and open. The plain form works through the table of external functions, the `no_ext` form
// with the plain library's, so that it can run before the engine is set up.
FILE *gl_path_search(void *ctx, const char *name, const char *dir, const char *version);
FILE *gl_path_search_no_ext(void *ctx, const char *name, const char *dir, const char *version);

// Search, and return the directory in which the file was found ("/" for an absolute name): an
// allocation of the same function table, null if not found. `rpath` is an older result or null; it
// is consumed. A name with the byte 255 has no directory: an older result is handed back as it is.
char *gl_path_search_rpath(char *rpath, void *ctx, const char *name, const char *dir,
                           const char *version);
char *gl_path_search_no_ext_rpath(char *rpath, void *ctx, const char *name, const char *dir,
                                  const char *version);

// Frees the text in *slot and stores a copy of `text` there. Returns 0, or -1 with
// GLS_ERR_NO_MEMORY and a null slot.
int gl_fix_rpath(void *ctx, char **slot, const char *text, const gl_file_functions *functions);

#ifdef __cplusplus
}
#endif
