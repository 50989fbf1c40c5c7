// How collections are stored and loaded. Collections are built on values, so they install their
// routines here instead of being called by name.

#pragma once

#include <kestrion/value.h>

namespace kestrion {

struct collection_forms {
    // Each returns 0 or an error; `room` is the column's length, `new_server` what gget_dbver says.
    int (*store)(collection_rec *collection, void *column, int room, int new_server);
    int (*load)(const void *column, int room, int new_server, collection_rec *collection);
};

// Null while no program part uses collections; columns of them are then err_no_routine.
extern const collection_forms *installed_collection_forms;

} // namespace kestrion
