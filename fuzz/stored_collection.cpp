// A stored collection of any bytes, in the form of the server that the first byte names: an error, or a
// collection that can be walked, changed, printed and stored, and that loads as an equal one.

#include <kestrion/collection_compare.h>
#include <kestrion/collection_cursor.h>

#include <stdint.h>
#include <stdlib.h>
#include <vector>

namespace {

void require(bool held) {
    if (!held)
        abort();
}

volatile unsigned touched; // keeps the reads of elements

// Walks the elements; false when one of them is damaged.
bool walk(coll_rec *collection) {
    coll_cursor cursor = {};
    qvt_coll_open(collection, &cursor);
    void *data = nullptr;
    int32_t length = 0;
    int32_t answer;
    while ((answer = qvt_coll_next(collection, &cursor, &data, &length)) == 0) {
        if (length)
            touched = touched + static_cast<unsigned char *>(data)[length - 1];
        data = nullptr;
    }
    qvt_coll_close(collection, &cursor);
    return answer == coll_end;
}

void change(coll_rec *collection) {
    coll_cursor cursor = {};
    qvt_coll_open(collection, &cursor);
    qvt_coll_insert(collection, nullptr, nullptr, 0, 0);
    cursor_seek(&cursor, 1, CSEEK_SET);
    cursor_delete(&cursor);
    qvt_coll_hash(collection);
    qvt_coll_close(collection, &cursor);
}

void store_and_load(coll_rec *collection, int32_t new_server) {
    const int32_t size = qvt_coll_stored_size(collection, new_server);
    if (size < 0)
        return;
    std::vector<unsigned char> bytes(static_cast<size_t>(size));
    require(stcollection(bytes.data(), collection, new_server) == size);
    coll_rec loaded = {};
    require(qvt_coll_load(bytes.data(), size, &loaded, new_server) == 0);
    if (walk(collection))
        require(qvt_coll_equal(collection, &loaded) == 1);
    qvt_coll_free(&loaded);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const int32_t new_server = data[0] & 1;
    coll_rec collection = {};
    if (qvt_coll_load(data + 1, static_cast<int32_t>(size - 1), &collection, new_server) == 0) {
        free(qvt_cltype2str(collection.cl_svr_typeinfo));
        walk(&collection);
        store_and_load(&collection, new_server);
        change(&collection);
        store_and_load(&collection, new_server);
    }
    qvt_coll_free(&collection);
    return 0;
}
