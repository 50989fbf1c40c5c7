// Random multi tables beside a plain map that says what they must answer.

#pragma once

#include <kestrion/multi.h>

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>

using multi_reference = std::map<std::string, std::string>; // sequence, datum

inline gl_char_desc desc_of(const std::string &sequence) {
    gl_char_desc desc = {.length = static_cast<int32_t>(sequence.size()), .bytes = {}};
    for (size_t i = 0; i < sequence.size() && i < gl_char_bytes; ++i)
        desc.bytes[i] = static_cast<unsigned char>(sequence[i]);
    return desc;
}

// True when one of the sequences is the start of the other.
inline bool are_prefixes(const std::string &a, const std::string &b) {
    return a.compare(0, std::min(a.size(), b.size()), b, 0, std::min(a.size(), b.size())) == 0;
}

// A table of `count` random sequences in a few rows of bytes, so that rows repeat; no byte is 0.
// It asks for the compressed form from the start, which means nothing before it is compressed.
// Sequences that the reference knows to clash are checked to be refused.
inline multi_arr *random_multi(std::mt19937 &random, uint32_t data_size, int count,
                               multi_reference &reference) {
    const std::string default_datum(data_size, '\x05');
    multi_arr *const table = _gl_create_multi(data_size, multi_compressed, default_datum.data());
    for (int i = 0; i < count; ++i) {
        std::string sequence(1 + random() % 4, '\0');
        for (char &byte : sequence)
            byte = static_cast<char>(0x40 + (random() % 3) * 0x40 + random() % 6);
        std::string datum(data_size, static_cast<char>(random() % 3 + 5));
        const gl_char_desc desc = desc_of(sequence);
        bool clashes = false;
        for (const auto &[known, unused] : reference)
            clashes = clashes || (known != sequence && are_prefixes(known, sequence));
        EXPECT_EQ(_gl_insert_desc_multi(&desc, datum.data(), table), clashes ? -1 : 0);
        if (!clashes)
            reference[sequence] = datum;
    }
    return table;
}

// Checks all lookups of a table against the reference, on texts near what it holds.
inline void check_lookups(const multi_arr *table, const multi_reference &reference,
                          std::mt19937 &random, const std::string &what) {
    const uint32_t size = table->data_size;
    for (int i = 0; i < 2000; ++i) {
        std::string text(4, '\0');
        for (char &byte : text)
            byte = static_cast<char>(0x40 + (random() % 3) * 0x40 + random() % 7);
        if (i % 8 == 0)
            text[random() % 4] = '\0';
        const std::string *datum = nullptr;
        size_t length = 0; // of the character, or of the longest start that goes on
        bool open = true;
        while (datum == nullptr && open && length < 4) {
            ++length;
            const std::string start = text.substr(0, length);
            const auto at = reference.lower_bound(start);
            datum = at != reference.end() && at->first == start ? &at->second : nullptr;
            open = at != reference.end() && at->first.compare(0, length, start) == 0;
        }
        SCOPED_TRACE(what + ", text " + testing::PrintToString(text));
        int32_t word = 0;
        int32_t used = -1;
        const void *found = _gl_retrieve_text_multi(text.c_str(), table, &used, &word);
        ASSERT_EQ(found != nullptr, datum != nullptr);
        ASSERT_EQ(used, static_cast<int32_t>(length));
        ASSERT_EQ(word, datum != nullptr ? 0 : GLS_ERR_BAD_CHARACTER);
        ASSERT_EQ(_gl_retrieve_text_multi_nv(text.c_str(), table, &word), datum ? used : 0);
        if (datum != nullptr) {
            ASSERT_EQ(std::string(static_cast<const char *>(found), size), *datum);
        }
        for (int32_t limit = 1; limit <= 4; ++limit) {
            word = 0;
            found = _gl_retrieve_text_multi_limit(text.data(), table, limit, &used, &word);
            const bool cut = limit < static_cast<int32_t>(length);
            ASSERT_EQ(used, std::min(limit, static_cast<int32_t>(length)));
            ASSERT_EQ(found != nullptr, datum != nullptr && !cut);
            ASSERT_EQ(word, found ? 0 : cut ? GLS_ERR_SPECIFIER : GLS_ERR_BAD_CHARACTER);
            const std::string piece = text.substr(0, static_cast<size_t>(limit));
            const gl_char_desc desc = desc_of(piece);
            found = _gl_retrieve_desc_multi(&desc, table);
            ASSERT_EQ(found != nullptr, reference.count(piece) != 0);
            const gl_wchar character = _gl_desc_to_gl_wchar(&desc);
            if (table->min_len == 1 && piece[0] != '\0') {
                found = _gl_retrieve_wchar_multi_nl(&word, character, table);
                ASSERT_EQ(found != nullptr, reference.count(piece) != 0);
                if (found != nullptr) {
                    ASSERT_EQ(std::string(static_cast<const char *>(found), size),
                              reference.at(piece));
                }
            }
        }
    }
}
