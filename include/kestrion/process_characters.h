// The character tables of the process, set up as its settings say. The tables themselves are those
// of <kestrion/character_tables.h>.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Sets the C library's LC_CTYPE to `locale_name` and fills the tables from it.
// Returns 0; err_process_locale when the C library does not know the locale; err_no_block when the
// tables cannot be filled.
int rldnlsctype(const char *locale_name);

// Sets the tables up for the process: from the C library's default locale when DBNLS is 1 or 2,
// else by rld8bitarr. Works on its first call only. Returns 0 or -1.
int rldctype(void);

#ifdef __cplusplus
}
#endif
