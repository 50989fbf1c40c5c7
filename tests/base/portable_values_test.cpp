#include "support/guarded_bytes.h"
#include <kestrion/portable_values.h>

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <math.h>
#include <string.h>
#include <string>

namespace {

// A field at an odd address with a byte on each side that must stay.
struct field {
    char bytes[16];
    field() { memset(bytes, '#', sizeof bytes); }
    char *at() { return bytes + 1; }
    std::string content(size_t size) {
        EXPECT_EQ(bytes[0], '#');
        EXPECT_EQ(bytes[1 + size], '#');
        return std::string(at(), size);
    }
};

std::string hex(std::string_view bytes) {
    std::string text;
    for (char byte : bytes) {
        char pair[4];
        snprintf(pair, sizeof pair, "%02x", static_cast<unsigned char>(byte));
        text += pair;
    }
    return text;
}

TEST(PortableValues, IntegersHaveTheirStatedByteOrder) {
    field l, p, s;
    stlong(-2, l.at());
    EXPECT_EQ(hex(l.content(4)), "fffffffe");
    EXPECT_EQ(ldlong(l.at()), -2);
    stlong(0x01020304, l.at());
    EXPECT_EQ(hex(l.content(4)), "01020304");
    stptr(0x0102030405060708u, p.at());
    EXPECT_EQ(hex(p.content(8)), "0102030405060708");
    EXPECT_EQ(ldptr(p.at()), 0x0102030405060708u);
    stshort(0x0102, s.at());
    EXPECT_EQ(hex(s.content(2)), "0201") << "the short goes the other way";
    stshort(-2, s.at());
    EXPECT_EQ(hex(s.content(2)), "feff");
    for (int32_t value : {0, 1, -1, INT32_MAX, INT32_MIN}) {
        stlong(value, l.at());
        EXPECT_EQ(ldlong(l.at()), value);
    }
}

TEST(PortableValues, NetworkFormPutsTheSignFirst) {
    field f, d;
    network_stfloat(f.at(), 1, -2.5);
    EXPECT_EQ(hex(f.content(4)), "c0200000");
    EXPECT_EQ(network_ldfloat(f.at(), 1), -2.5);
    network_stdbl(d.at(), 1, -2.5);
    EXPECT_EQ(hex(d.content(8)), "c004000000000000");
    EXPECT_EQ(network_lddbl(d.at(), 1), -2.5);
    // Any other flag is the host's form.
    for (int flag : {0, 2, -1}) {
        network_stfloat(f.at(), flag, -2.5);
        EXPECT_EQ(ldfloat(f.at()), -2.5);
        EXPECT_EQ(network_ldfloat(f.at(), flag), -2.5);
        network_stdbl(d.at(), flag, -2.5);
        EXPECT_EQ(lddbl(d.at()), -2.5);
        EXPECT_EQ(network_lddbl(d.at(), flag), -2.5);
    }
}

TEST(PortableValues, NullKeepsItsBitsThroughLoadAndStore) {
    for (int network : {0, 1}) {
        field f, d;
        int16_t is_null = 7;
        network_stfltnull(f.at(), 1, network, 3.0);
        EXPECT_EQ(hex(f.content(4)), "ffffffff");
        const double from_float = network_ldfltnull(f.at(), &is_null, network);
        EXPECT_EQ(is_null, 1);
        EXPECT_EQ(std::bit_cast<uint32_t>(static_cast<float>(from_float)), 0xFFFFFFFFu);
        network_stfltnull(f.at(), 0, network, from_float);
        EXPECT_EQ(hex(f.content(4)), "ffffffff");

        is_null = 7;
        network_stdblnull(d.at(), -1, network, 3.0);
        EXPECT_EQ(hex(d.content(8)), "ffffffffffffffff");
        const double from_double = network_lddblnull(d.at(), &is_null, network);
        EXPECT_EQ(is_null, 1);
        EXPECT_EQ(std::bit_cast<uint64_t>(from_double), UINT64_MAX);

        network_stfltnull(f.at(), 0, network, 3.0);
        EXPECT_EQ(network_ldfltnull(f.at(), &is_null, network), 3.0);
        EXPECT_EQ(is_null, 0);
        network_stdblnull(d.at(), 0, network, 3.0);
        EXPECT_EQ(network_lddblnull(d.at(), &is_null, network), 3.0);
        EXPECT_EQ(is_null, 0);
    }
    // One byte short of NULL is a NaN and no NULL, at whichever end.
    int16_t is_null = 7;
    EXPECT_TRUE(std::isnan(lddblnull("\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF", &is_null)));
    EXPECT_EQ(is_null, 0);
    is_null = 7;
    ldfltnull("\xFF\xFF\xFF\x7F", &is_null);
    EXPECT_EQ(is_null, 0);
}

// What an operation leaves in a fresh field of `size` bytes.
template <typename Store> std::string stored(size_t size, Store store) {
    field f;
    store(f.at());
    return f.content(size);
}

std::string stored_char(const char *text, ptrdiff_t size) {
    return stored(static_cast<size_t>(std::max<ptrdiff_t>(size, 0)),
                  [&](char *at) { stchar(text, at, size); });
}

std::string loaded_char(const char *source, ptrdiff_t size, size_t taken) {
    return stored(taken, [&](char *at) { ldchar(source, size, at); });
}

TEST(PortableValues, CharFieldsArePaddedAndCut) {
    EXPECT_EQ(stored_char("ab", 4), "ab  ");
    EXPECT_EQ(stored_char("abcdef", 4), "abcd");
    EXPECT_EQ(stored_char(nullptr, 4), "    ");
    EXPECT_EQ(stored_char("ab", 0), "");
    EXPECT_EQ(stored_char("ab", -1), "");
    guarded_bytes exact("abcd"); // no terminator after the last byte that fits
    EXPECT_EQ(stored_char(exact.data(), 4), "abcd");

    EXPECT_EQ(loaded_char("ab  x", 4, 3), std::string("ab\0", 3));
    EXPECT_EQ(loaded_char("    ", 4, 1), std::string("\0", 1));
    EXPECT_EQ(loaded_char("x", -1, 1), std::string("\0", 1));
    EXPECT_EQ(loaded_char(exact.data(), 4, 5), std::string("abcd\0", 5));
}

std::string stored_varchar(const char *text, ptrdiff_t size, size_t taken) {
    return stored(taken, [&](char *at) { stvarchar(text, at, size); });
}

std::string loaded_varchar(const char *source, ptrdiff_t maximum, size_t taken) {
    return stored(taken, [&](char *at) { ldvarchar(source, maximum, at); });
}

TEST(PortableValues, VarcharKeepsTheTextsOwnLength) {
    EXPECT_EQ(stored_varchar("kl", 4, 5), "\x02kl  ");
    EXPECT_EQ(stored_varchar("klmnopq", 4, 5), "\x07klmn");
    EXPECT_EQ(stored_varchar(std::string(258, 'k').c_str(), 3, 4), "\x02kkk") << "the byte wraps";
    EXPECT_EQ(stored_varchar(nullptr, 4, 2), std::string("\x01\0", 2));
    EXPECT_EQ(stored_varchar(nullptr, 0, 1), "\x01");

    guarded_bytes hostile("\xFFklm"); // a length byte beyond the maximum is not believed
    EXPECT_EQ(loaded_varchar(hostile.data(), 3, 4), std::string("klm\0", 4));
    EXPECT_EQ(loaded_varchar(hostile.data(), -1, 1), std::string("\0", 1));
    EXPECT_EQ(loaded_varchar("\x02klm", 9, 3), std::string("kl\0", 3));
}

} // namespace
