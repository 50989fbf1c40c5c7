// A growing list of owned names: the variables that ENVIGNORE names, which the reader of the
// configuration files skips.

#pragma once

#include <stdint.h>

typedef struct env_name_list {
    char **names;     // owned texts
    int32_t count;    // names in use
    int32_t capacity; // room in `names`: 16, then 16 more each time it is full
} env_name_list;

#ifdef __cplusplus
extern "C" {
#endif

// Returns a new empty list, or null when there is no memory.
env_name_list *_ginitnamelist(void);

// Appends a copy of a name. Returns its index, or -1 when there is no memory; the list is then
// as before.
int32_t _gaddnamelist(env_name_list *list, const char *name);

// Returns the index of the first equal name, or -1.
int32_t _gsrchnamelist(const env_name_list *list, const char *name);

// Frees a list and its names; a null list is ignored.
void _gfreenamelist(env_name_list *list);

#ifdef __cplusplus
}
#endif
