// Arrays of the engine's memory. They return false with the error word set when there is none.

#pragma once

#include "gls/base/engine_error.h"
#include <kestrion/ext_funcs.h>

#include <stddef.h>

namespace kestrion {

// Makes room for one more entry behind the first `count`.
template <class entry> bool make_room(void *ctx, entry *&array, size_t count, size_t &room) {
    if (count < room)
        return true;
    size_t wanted = room == 0 ? 8 : room * 2;
    void *bigger = _gl_ext_realloc(array, wanted * sizeof(entry));
    if (!bigger)
        return refuse(ctx, GLS_ERR_NO_MEMORY);
    array = static_cast<entry *>(bigger);
    room = wanted;
    return true;
}

// Zeroed entries; `count` is at least 1.
template <class entry> bool make_array(void *ctx, entry *&array, size_t count) {
    array = static_cast<entry *>(_gl_ext_calloc(count, sizeof(entry)));
    return array || refuse(ctx, GLS_ERR_NO_MEMORY);
}

template <class entry> void free_array(entry *&array) {
    _gl_free_ptr(const_cast<void *>(static_cast<const void *>(array)));
    array = nullptr;
}

} // namespace kestrion
