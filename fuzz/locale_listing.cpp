// Listings of locale objects: what is accepted and can be an object is listed to a text that gives
// the same object again.

#include "compilers/mklco/listing.h"

#include <stdlib.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace kestrion;
    const source_file source("fuzz", std::string(reinterpret_cast<const char *>(data), size));
    try {
        const std::string object = write_object(read_listing(source));
        const source_file again("again", write_listing(read_listing(source)));
        if (write_object(read_listing(again)) != object)
            abort();
    } catch (const source_error &error) {
        if (error.where.file != &source || error.where.position().line == 0 || error.remedy.empty())
            abort();
    } catch (const compiler_failure &) {
    }
    return 0;
}
