#include "compilers/source_hash.h"

#include <zlib.h>

#include "compilers/object_table.h"

namespace kestrion {

namespace {

uint32_t add_bytes(uint32_t value, std::string_view bytes) {
    return static_cast<uint32_t>(
        crc32_z(value, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()));
}

} // namespace

void source_hash::add(std::string_view name, std::string_view text) {
    value_ = add_bytes(value_, name);
    value_ = add_bytes(value_, std::string_view("\0", 1)); // names and texts must not run together
    value_ = add_bytes(value_, text);
}

std::string source_hash::text() const {
    const unsigned char bytes[] = {
        static_cast<unsigned char>(value_ >> 24), static_cast<unsigned char>(value_ >> 16),
        static_cast<unsigned char>(value_ >> 8), static_cast<unsigned char>(value_)};
    std::string out;
    append_hex_bytes(out, bytes, sizeof bytes);
    return out;
}

std::string_view compiler_version() { return KESTRION_VERSION; }

} // namespace kestrion
