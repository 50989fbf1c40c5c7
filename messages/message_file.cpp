#include "messages/message_file.h"

#include "base/byte_order.h"
#include "base/regular_file.h"
#include <kestrion/error_numbers.h>

#include <algorithm>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrion {

namespace {

// A larger catalogue is read by windows: it is not worth its memory in every process.
constexpr int64_t image_limit = 256 * 1024;

int32_t big_endian_16(const unsigned char *bytes) {
    return static_cast<int16_t>(load_big_endian<uint16_t>(bytes));
}

int32_t big_endian_32(const unsigned char *bytes) {
    return static_cast<int32_t>(load_big_endian<uint32_t>(bytes));
}

bool read_fully(int fd, void *bytes, int64_t count, int64_t offset) {
    char *at = static_cast<char *>(bytes);
    while (count > 0) {
        const ssize_t n = pread(fd, at, static_cast<size_t>(count), offset);
        if (n <= 0)
            return false;
        at += n;
        offset += n;
        count -= n;
    }
    return true;
}

int32_t number_of(const gen_catalogue *catalogue, const unsigned char *record) {
    return catalogue->record_size == message_long_record ? big_endian_32(record)
                                                         : big_endian_16(record);
}

// The records of the cached window.
const unsigned char *window_records(const gen_catalogue *catalogue) {
    if (catalogue->image == nullptr)
        return catalogue->window;
    return catalogue->image + message_head_size + catalogue->window_first * catalogue->record_size;
}

// Makes `first` the first record of the window. A window is always read in its full width, even
// where the index ends inside it: texts follow the index, so only a file cut short fails here. What
// follows the index is never taken for a record.
bool move_window(gen_catalogue *catalogue, int32_t first) {
    const int32_t width = std::min(catalogue->count, message_window);
    const int64_t offset = message_head_size + int64_t{first} * catalogue->record_size;
    const int64_t bytes = int64_t{width} * catalogue->record_size;
    catalogue->window_count = 0;
    if (catalogue->image != nullptr ? bytes > catalogue->file_size - offset
                                    : !read_fully(catalogue->fd, catalogue->window, bytes, offset))
        return false;
    catalogue->window_first = first;
    catalogue->window_count = std::min(width, catalogue->count - first);
    return true;
}

const unsigned char *find_in_window(const gen_catalogue *catalogue, int32_t number) {
    const unsigned char *record = window_records(catalogue);
    for (int32_t i = 0; i < catalogue->window_count; ++i, record += catalogue->record_size)
        if (number_of(catalogue, record) == number)
            return record;
    return nullptr;
}

// A record that claims no text, or one outside the file, is a damaged one.
int32_t place_of(const gen_catalogue *catalogue, const unsigned char *record,
                 message_place *place) {
    const unsigned char *length = record + catalogue->record_size - 6;
    place->length = big_endian_16(length);
    place->offset = big_endian_32(length + 2);
    if (place->length <= 0)
        return err_no_such_message;
    if (place->offset < 0 || place->length > catalogue->file_size - place->offset)
        return err_catalogue_cut;
    return 0;
}

int32_t read_head(gen_catalogue *catalogue) {
    unsigned char head[message_head_size];
    if (!read_fully(catalogue->fd, head, sizeof head, 0))
        return err_catalogue_magic;
    switch (static_cast<uint16_t>(big_endian_16(head))) {
    case message_magic_short:
        catalogue->record_size = message_short_record;
        break;
    case message_magic_long:
        catalogue->record_size = message_long_record;
        break;
    default:
        return err_catalogue_magic;
    }
    catalogue->count = std::max(big_endian_16(head + 2), 0);
    return 0;
}

// Without memory, or when the file shrinks meanwhile, the catalogue is read by windows instead.
void load_image(gen_catalogue *catalogue) {
    if (catalogue->file_size > image_limit)
        return;
    void *image = malloc(static_cast<size_t>(catalogue->file_size));
    if (image == nullptr || !read_fully(catalogue->fd, image, catalogue->file_size, 0)) {
        free(image);
        return;
    }
    catalogue->image = static_cast<unsigned char *>(image);
}

} // namespace

int32_t catalogue_open(gen_catalogue *catalogue, const char *path) {
    catalogue->fd = open_regular_file(path);
    if (catalogue->fd < 0)
        return err_catalogue_not_opened;
    struct stat status;
    int32_t result = err_catalogue_not_opened;
    if (fstat(catalogue->fd, &status) == 0) {
        catalogue->file_size = status.st_size;
        result = read_head(catalogue);
    }
    if (result != 0)
        catalogue_close(catalogue);
    else
        load_image(catalogue);
    catalogue->fresh = 1;
    return result;
}

void catalogue_close(gen_catalogue *catalogue) {
    if (catalogue->fd >= 0)
        close(catalogue->fd);
    free(catalogue->image);
    *catalogue = {.fd = -1};
}

void catalogue_release_descriptor(gen_catalogue *catalogue) {
    if (catalogue->image == nullptr || catalogue->fd < 0)
        return;
    close(catalogue->fd);
    catalogue->fd = -1;
}

int32_t catalogue_find(gen_catalogue *catalogue, int32_t number, message_place *place) {
    // Neighbours are asked for together, so the last window often has the message.
    if (const unsigned char *record = find_in_window(catalogue, number))
        return place_of(catalogue, record, place);
    int32_t low = 0;
    int32_t high = catalogue->count - 1;
    while (low <= high) {
        const int32_t middle = (low + high) / 2;
        if (!move_window(catalogue, middle))
            return err_catalogue_cut;
        if (number < number_of(catalogue, window_records(catalogue))) {
            high = middle - 1;
            continue;
        }
        if (const unsigned char *record = find_in_window(catalogue, number))
            return place_of(catalogue, record, place);
        low = middle + std::min(catalogue->count, message_window);
    }
    return err_no_such_message;
}

int32_t catalogue_read(const gen_catalogue *catalogue, int64_t offset, char *bytes, int32_t count) {
    if (catalogue->image == nullptr)
        return read_fully(catalogue->fd, bytes, count, offset) ? 0 : err_catalogue_cut;
    if (count > catalogue->file_size - offset)
        return err_catalogue_cut;
    memcpy(bytes, catalogue->image + offset, static_cast<size_t>(count));
    return 0;
}

} // namespace kestrion
