// Catalogue files for tests, sound and damaged, written by the format's page and not by the
// compiler.

#pragma once

#include <map>
#include <stdint.h>
#include <string>
#include <vector>

struct test_record {
    int32_t number;
    int32_t length;
    int64_t offset;
};

inline std::string big_endian(int64_t value, int bytes) {
    std::string out;
    for (int i = bytes - 1; i >= 0; --i)
        out += static_cast<char>(value >> (8 * i) & 0xFF);
    return out;
}

// Magic, count and the records, whatever they say.
inline std::string index_bytes(bool is_long, int count, const std::vector<test_record> &records) {
    std::string out = big_endian(is_long ? 65129 : 65128, 2) + big_endian(count, 2);
    for (const test_record &record : records)
        out += big_endian(record.number, is_long ? 4 : 2) + big_endian(record.length, 2) +
               big_endian(record.offset, 4);
    return out;
}

// A sound catalogue: texts with their line ends, and `padding` bytes after them.
inline std::string catalogue_bytes(bool is_long, const std::map<int32_t, std::string> &texts,
                                   size_t padding = 80) {
    std::vector<test_record> records;
    std::string stored;
    const size_t base = 4 + texts.size() * (is_long ? 10 : 8);
    for (const auto &[number, text] : texts) {
        records.push_back({number, static_cast<int32_t>(text.size()),
                           static_cast<int64_t>(base + stored.size())});
        stored += text;
    }
    return index_bytes(is_long, static_cast<int>(texts.size()), records) + stored +
           std::string(padding, '\0');
}
