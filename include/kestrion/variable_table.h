// The variables that the system knows, with their built-in defaults and limits, and the three lists
// of names that a connection sends.
//
// A row's position is the variable's index, which callers may pass to the lookups of
// <kestrion/env_registry.h> to skip the search by name: that of KESTRIONDIR is 212. The order is
// fixed for ever: indexes are compiled into other programs.

#pragma once

#include <stdint.h>

// One known variable; also the shape of the rows that a program adds with gsetudenv.
typedef struct env_variable {
    const char *name;          // null in the row that ends a list
    const char *default_value; // null: not set unless somebody sets it
    int32_t max_length; // in bytes, without the terminator; 0 for no limit, -1: never stores text
} env_variable;

enum {
    Num_DVals = 344, // rows of Kes_DVals without the row that ends it
    Num_SVars = 73,  // names in each of the three lists
    Num_LVars = 7,
    Num_MVars = 25
};

#ifdef __cplusplus
extern "C" {
#endif

extern const env_variable Kes_DVals[Num_DVals + 1];

extern const char *const Kes_SVarList[Num_SVars]; // sent to a server for the session
extern const char *const Kes_LVarList[Num_LVars]; // sent only where they are set
extern const char *const Kes_MVarList[Num_MVars]; // sent besides these

#ifdef __cplusplus
}
#endif
