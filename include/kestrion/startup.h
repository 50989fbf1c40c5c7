// Start-up of a locale environment.
//
// Initialisation is lazy: chkglsinit() is called at the head of everything that depends on the
// locale and does the work once. The registry of variables, the control blocks and the locale
// engine reach one another on the way; `initialising` makes every such call answer at once.

#pragma once

#include <kestrion/gls_env.h>

#include <stdint.h>

enum {
    GLS_MODE_CLIENT = 1 // the locale of a client, the one kind of start that there is
};

#ifdef __cplusplus
extern "C" {
#endif

// Makes sure that the current environment is initialised. Returns 0 when it is, or is just being
// initialised; else the error of the failed start, and the next call tries again.
int chkglsinit(void);

// Initialises the current environment for `mode`; a mode already initialised does nothing.
// Returns 0, -1 for any mode but GLS_MODE_CLIENT, or the folded error of getiniterr(). A failed
// attempt releases what it loaded and puts back the settings that it derived.
int initgls(int16_t mode);

// The client side of initgls: settles the specifiers, loads the locale, opens the conversions,
// settles the date format. Returns 0, or a negative value with the locale error word set or not.
int init_fe(void);

// initgls, and on success rmoninit.
int thr_initgls(int16_t mode);

// Registers the client's functions with the locale engine. Returns 0, or -1 for a mode other than
// GLS_MODE_CLIENT or a refused registration.
int setup_glext_funcs(int16_t mode);

// Public entry of the locale engine: 0, or -1 with the error word of the current locale as
// GLS_ERR_ARGUMENT for a bad name or a malformed file.
int qvt_gl_init(void);

// Folds the stored locale error into the number under which its text is catalogued, stores that and
// returns it.
int getiniterr(void);

// Value of DBNLS: 1 or 2 for exactly these texts, else 0. Never starts the locale.
int DBNLSset(void);

#ifdef __cplusplus
}
#endif
