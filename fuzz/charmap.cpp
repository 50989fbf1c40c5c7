// The charmap reader: what it accepts has sequences of 1 to 4 bytes that can be found again.

#include "compilers/posix/charmap.h"
#include "compilers/posix/source_place.h"

#include <stdlib.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const kestrion::source_file source("fuzz",
                                       std::string(reinterpret_cast<const char *>(data), size));
    try {
        const kestrion::charmap map(source);
        for (const kestrion::charmap_row &row : map.rows) {
            if (row.sequence.length < 1 || row.sequence.length > gl_char_bytes)
                abort();
            if (row.code_point < 0x110000 && !row.one_way && map.find(row.code_point) == nullptr)
                abort();
        }
    } catch (const kestrion::source_error &error) {
        if (error.where.position().line == 0 || error.remedy.empty())
            abort();
    }
    return 0;
}
