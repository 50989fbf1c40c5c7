// Which catalogue holds which message numbers.

#pragma once

#include <stdint.h>

// One row of the table that maps a message number to the leaf name of its catalogue: the first row
// with low <= |number| <= high counts; a row with marker 0 ends the table; a number without a row
// is in "os.qem".
typedef struct message_range {
    int16_t marker;   // 1, or 0 in the row after the last
    uint32_t low;     // magnitudes, both ends included
    uint32_t high;    //
    const char *leaf; // at most message_leaf_size - 1 bytes
} message_range;

enum { message_leaf_size = 64 };

#ifdef __cplusplus
extern "C" {
#endif

extern const message_range *_mfqvt;   // the table in use; the client's at start
extern const message_range _cmfqvt[]; // the client's
extern const message_range _smfqvt[]; // the server's

// Copies the leaf name for |number| to name[0..message_leaf_size).
// Returns 0, or -3 when no row has it and the name is the default.
int32_t rmkmsgleafname(int32_t number, char *name);

#ifdef __cplusplus
}
#endif
