// Types, elements and blocks that the tests make by hand.

#pragma once

#include <kestrion/collection_compare.h>
#include <kestrion/collection_cursor.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace sample {

struct freed {
    void operator()(void *block) const { free(block); }
};
using type_ptr = std::unique_ptr<coll_type, freed>;

inline type_ptr type_of(int kind, int code, int length = 0) {
    type_ptr type(qvt_coll_new_type(kind, 1));
    qvt_coll_field(type.get(), 1)->type = static_cast<uint16_t>(code);
    qvt_coll_field(type.get(), 1)->length = static_cast<uint16_t>(length);
    return type;
}

// A record that starts empty and is released at the end.
struct collection : coll_rec {
    collection() : coll_rec{} {}
    explicit collection(const coll_type *type) : coll_rec{} {
        qvt_coll_init(this, type, nullptr, 0);
    }
    ~collection() { qvt_coll_free(this); }
    collection(const collection &) = delete;
    collection &operator=(const collection &) = delete;
};

inline std::string big_endian(uint32_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift);
    return text;
}

// An element that is a collection, as it lies at an address that 8 divides: its flags are at 8.
inline std::string nested_at_8(const std::string &content, uint32_t hash) {
    const std::string body = big_endian(8) + big_endian(hash) + content;
    const size_t length = 8 + body.size() - 2;
    std::string text = {static_cast<char>(length >> 8), static_cast<char>(length)};
    return text + std::string(6, '\0') + body;
}

// What of an element that is a collection does not depend on its address.
inline std::string nested_content(const void *data, int32_t length) {
    const auto *bytes = static_cast<const char *>(data);
    const size_t at = 3 + ((0 - (reinterpret_cast<size_t>(bytes) + 3)) & 7);
    return std::string(bytes + at, bytes + length);
}

inline std::vector<std::string> walked(coll_rec *collection, bool nested = false) {
    std::vector<std::string> elements;
    coll_cursor cursor = {};
    qvt_coll_open(collection, &cursor);
    void *data = nullptr;
    int32_t length = 0;
    while (qvt_coll_next(collection, &cursor, &data, &length) == 0) {
        elements.push_back(
            nested ? nested_content(data, length)
                   : std::string(static_cast<char *>(data), static_cast<size_t>(length)));
        data = nullptr;
    }
    qvt_coll_close(collection, &cursor);
    return elements;
}

inline int32_t append(coll_rec *collection, const std::string &element) {
    return qvt_coll_insert(collection, nullptr, element.data(),
                           static_cast<int32_t>(element.size()), 0);
}

inline std::string stored(coll_rec *collection, int32_t new_server) {
    std::string bytes(static_cast<size_t>(qvt_coll_stored_size(collection, new_server)), '\0');
    stcollection(bytes.data(), collection, new_server);
    return bytes;
}

} // namespace sample
