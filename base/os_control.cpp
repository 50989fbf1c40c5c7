#include <kestrion/os_control.h>

#include "base/locale_hooks.h"
#include <kestrion/character_tables.h>

#include <stdlib.h>
#include <string.h>

constinit os_control *ostcb = nullptr;

void _sqdbgsetup(void) {}

void osfill(os_control *block) {
    *block = {.handle_a = os_no_handle,
              .handle_b = os_no_handle,
              .connection = os_no_connection,
              .handle_c = os_no_handle};
    static_assert(sizeof block->ctype == sizeof _ixctype);
    memcpy(block->ctype, _ixctype, sizeof block->ctype);
    memcpy(block->to_lower, _ix2lowmap, sizeof block->to_lower);
    memcpy(block->to_upper, _ix2upmap, sizeof block->to_upper);
}

os_control *ostcb_alloc(void) {
    os_control *block = static_cast<os_control *>(malloc(sizeof *block));
    if (block == nullptr)
        return nullptr;
    osfill(block);
    os_control *published = ostcb;
    ostcb = block;
    _sqdbgsetup();
    ostcb = published;
    return block;
}

// The block is stored before the locale starts: the locale asks the registry for its settings, the
// registry asks for this block, and that inner call must find it.
os_control *CheckOsInit(void) {
    if (ostcb != nullptr)
        return ostcb;
    ostcb = ostcb_alloc();
    if (ostcb == nullptr)
        return nullptr;
    ostcb->os_error = 0;
    return kestrion::locale_hooks.start() == 0 ? ostcb : nullptr;
}

os_control *checkOsApi(void) { return CheckOsInit(); }

int32_t getoserr(void) {
    const os_control *block = CheckOsInit();
    return block != nullptr ? block->os_error : 0;
}

os_control *qvt_ossetconn(int32_t connection) {
    os_control *block = CheckOsInit();
    if (block != nullptr)
        block->connection = connection;
    return block;
}

int32_t qvt_osgetconn(void) {
    const os_control *block = CheckOsInit();
    return block != nullptr ? block->connection : 0;
}
