#include "base/locale_start.h"

#include <kestrion/os_control.h>

int locale_start_result = 0;
const os_control *block_at_the_start = nullptr;

extern "C" int __wrap_chkglsinit(void) {
    block_at_the_start = ostcb;
    return locale_start_result;
}
