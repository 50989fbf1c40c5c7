// Month and era names of an environment, in lower case, for the reading of dates.

#pragma once

#include <kestrion/gls_env.h>

#ifdef __cplusplus
extern "C" {
#endif

// Lower-cases `text` in the current locale, in place. A lower-case form can be longer than the
// character that it replaces: the block must hold four times the text's length plus one. Returns
// the bytes written, 0 for an empty text, or -1.
int tolower_string(char *text);

// Moves the text at *slot (allocated) to a block that tolower_string needs, and lower-cases it.
// Returns the result of tolower_string, or -1 without memory, with the text as it was.
int downcase_gls_string(char **slot);

// Puts `count` texts, as one block, at the head of *list. Returns 0; -1 for no texts or no memory.
int cache_locale_string(gls_name_list **list, char *const *texts, int32_t count);

// Frees a list and nulls it.
void free_locale_string(gls_name_list **list);

// Caches the abbreviated and the full month names of the current locale; in a Gregorian locale the
// English names are found first. Returns 0; -1 when the engine has no names or no memory.
int cache_month_strings(void);

// Caches both kinds of era names. Returns as cache_month_strings.
int cache_era_strings(void);

#ifdef __cplusplus
}
#endif
