// Start-up of a locale environment.

#pragma once

extern "C" {

// Makes sure that the current environment is initialised. Everything that needs the locale calls
// this first. Returns 0 when it is, or is just being initialised; else the error of the failed
// start.
int chkglsinit(void);
}
