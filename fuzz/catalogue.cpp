// A message catalogue of any bytes: what a lookup finds lies inside the file, in memory and by
// windows alike, and what the compiler can list it can make again.

#include "compilers/diagnostics.h"
#include "compilers/mkqem/catalogue_image.h"
#include "messages/message_file.h"
#include <kestrion/error_numbers.h>

#include <stdint.h>
#include <stdlib.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace kestrion;

namespace {

void require(bool holds) {
    if (!holds)
        abort();
}

// The message's text, or the status as a number.
std::string look_up(gen_catalogue &catalogue, int32_t number, std::string_view file) {
    message_place place = {};
    if (const int32_t status = catalogue_find(&catalogue, number, &place); status != 0) {
        require(status == err_no_such_message || status == err_catalogue_cut);
        return std::to_string(status);
    }
    require(place.length >= 1 && place.offset >= 0 &&
            place.offset + place.length <= static_cast<int64_t>(file.size()));
    std::string text(static_cast<size_t>(place.length), '\0');
    require(catalogue_read(&catalogue, place.offset, text.data(), place.length) == 0);
    require(text == file.substr(static_cast<size_t>(place.offset), text.size()));
    return text;
}

void list_and_compile(std::string_view file) {
    try {
        const catalogue_texts texts = decode_catalogue(file);
        require(!list_catalogue(texts).empty());
        require(decode_catalogue(encode_catalogue(texts)) == texts);
    } catch (const compiler_failure &) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view file(reinterpret_cast<const char *>(data), size);
    list_and_compile(file);
    const int fd = memfd_create("catalogue", MFD_CLOEXEC);
    require(fd >= 0 && write(fd, data, size) == static_cast<ssize_t>(size));
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    gen_catalogue whole = {.fd = -1};
    gen_catalogue windows = {.fd = -1};
    if (catalogue_open(&whole, path.c_str()) == 0) {
        require(catalogue_open(&windows, path.c_str()) == 0);
        free(windows.image);
        windows.image = nullptr;
        catalogue_release_descriptor(&whole);
        for (const int32_t number : {0, 1, 2, 1204, -1, -84400, 32767, INT32_MIN, 1})
            require(look_up(whole, number, file) == look_up(windows, number, file));
    }
    catalogue_close(&whole);
    catalogue_close(&windows);
    close(fd);
    return 0;
}
