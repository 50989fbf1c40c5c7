// Where catalogue files are searched: below $KESTRIONDIR, in the directories of the user's language
// (DBLANG), then in those of the locale, then in the English ones.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// The user's message directory: null until it is first needed; empty when there is none, and once a
// lookup named its own locale. Owned here.
extern char *msg_langdir;

// Returns 1 for a regular file that the process may read, with errno 0, else 0.
int _ofreadable(const char *path);

// The path of the catalogue `leaf` for the user's language or for `locale`, in the control block;
// empty when no readable file exists; null when the installation directory's name is too long.
char *rmsgfname(const char *leaf);
char *rmsgfname_gls(const char *leaf, const char *locale);

#ifdef __cplusplus
}
#endif
