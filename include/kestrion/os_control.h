// The control block of the platform layer, one for the whole process.
//
// It is made at first use and lives until the process ends. No lock guards it: the first call must
// come before threads start. Operations that cannot get the block return 0 or null.

#pragma once

#include <stdint.h>

enum {
    os_no_handle = -1,    // a handle word that holds no open handle
    os_no_connection = -1 // no current connection
};

typedef struct os_control {
    int32_t state;               // cleared at start
    int32_t handle_a;            // os_no_handle until opened
    int32_t handle_b;            // likewise
    int32_t trace_state;         // cleared at start
    int32_t connection;          // current connection, or os_no_connection
    int32_t handle_c;            // os_no_handle until opened
    unsigned char ctype[258];    // _ixctype as it was when the block was made
    unsigned char to_lower[256]; // _ix2lowmap likewise
    unsigned char to_upper[256]; // _ix2upmap likewise
    int32_t os_error;            // last operating system error, read by getoserr()
} os_control;

#ifdef __cplusplus
extern "C" {
#endif

extern os_control *ostcb; // null until first use

// Returns the control block, making it and bringing the locale up at first use. Null when there is
// no memory or the locale did not start; in the second case the block stays, so that later calls
// return it.
os_control *CheckOsInit(void);
os_control *checkOsApi(void); // a second name for CheckOsInit

// Returns a new block with its start values, or null. `ostcb` points at it while the wire trace is
// set up, and is put back before this returns.
os_control *ostcb_alloc(void);
void osfill(os_control *block); // sets the start values

int32_t getoserr(void); // last operating system error, 0 without a block

os_control *qvt_ossetconn(int32_t connection); // the block, or null
int32_t qvt_osgetconn(void);                   // 0 without a block

void _sqdbgsetup(void); // set-up of the wire trace, which this build does not carry: does nothing

#ifdef __cplusplus
}
#endif
