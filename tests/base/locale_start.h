// How the locale starts in these tests: as each test says, instead of from an installation.

#pragma once

struct os_control;

extern int locale_start_result;              // what chkglsinit returns; 0 at first
extern const os_control *block_at_the_start; // the control block that the locale's start met
