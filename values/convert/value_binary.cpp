#include <kestrion/value_binary.h>

#include "base/byte_order.h"
#include <kestrion/error_numbers.h>

#include <string.h>

using namespace kestrion;

int studt(const void *data, int32_t length, int is_null, void *column, int32_t size) {
    const int32_t written = udtstore(data, length, is_null, column, size);
    return written < 0 ? written : 0;
}

int32_t udtstore(const void *data, int32_t length, int is_null, void *column, int32_t size) {
    const int32_t bytes = is_null != 0 || length < 0 ? 0 : length;
    if (size < binary_row_header || bytes > size - binary_row_header)
        return err_binary_size;
    auto *to = static_cast<unsigned char *>(column);
    to[0] = is_null != 0 ? 1 : 0;
    store_big_endian(static_cast<uint32_t>(bytes), to + 1);
    if (bytes > 0)
        memcpy(to + binary_row_header, data, static_cast<size_t>(bytes));
    return binary_row_header + bytes;
}

int ldudt(const void *column, int32_t size, const void **data, int32_t *length, int16_t *is_null) {
    const auto *from = static_cast<const unsigned char *>(column);
    *data = nullptr;
    *length = 0;
    *is_null = 1;
    if (size < binary_row_header)
        return err_binary_size;
    const auto bytes = load_big_endian<uint32_t>(from + 1);
    if (bytes > static_cast<uint32_t>(size - binary_row_header))
        return err_binary_size;
    if (from[0] == 1)
        return 0;
    *is_null = 0;
    *data = from + binary_row_header;
    *length = static_cast<int32_t>(bytes);
    return 0;
}

int tblobstore(const blob_rec *blob, void *column, int32_t size) {
    if (size < static_cast<int32_t>(sizeof *blob))
        return err_binary_size;
    blob_rec stored = *blob;
    stored.data = nullptr;
    stored.flags &= ~uint32_t{blob_owner};
    memcpy(column, &stored, sizeof stored);
    return 0;
}

int tblobload(const void *column, int32_t size, blob_rec *blob) {
    if (size < static_cast<int32_t>(sizeof *blob))
        return err_binary_size;
    memcpy(blob, column, sizeof *blob);
    blob->data = nullptr;
    blob->flags &= ~uint32_t{blob_owner};
    return 0;
}
