// Stored collections: pictures made by hand, round trips, damage.

#include "support/failing_malloc.h"
#include "values/collection/sample_collections.h"

#include <kestrion/error_numbers.h>

#include <gtest/gtest.h>

namespace {

using strings = std::vector<std::string>;

std::string tail(const std::string &bytes, size_t count) {
    return bytes.substr(bytes.size() - count);
}

strings list_of_integers() { return {sample::big_endian(5), sample::big_endian(6)}; }

TEST(CollectionStore, HasTheStatedBytes) {
    const sample::type_ptr type = sample::type_of(coll_list, 2);
    sample::collection list(type.get());
    list.cl_handle = 7;
    for (const std::string &element : list_of_integers())
        ASSERT_EQ(sample::append(&list, element), 0);
    const std::string trailer = sample::big_endian(7) + sample::big_endian(8) +
                                sample::big_endian(0) + sample::big_endian(5) +
                                sample::big_endian(6);
    for (const auto &[new_server, size] : {std::pair{1, 574u}, {0, 134u}}) {
        const std::string bytes = sample::stored(&list, new_server);
        ASSERT_EQ(bytes.size(), size);
        EXPECT_EQ(bytes.substr(0, 4), sample::big_endian(size - 4));
        EXPECT_EQ(tail(bytes, 20), trailer);
    }
    EXPECT_NE(list.cl_log, nullptr) << "storing leaves the record alone";
    list.cl_flags |= coll_is_null;
    for (int new_server : {0, 1}) {
        EXPECT_EQ(sample::stored(&list, new_server),
                  sample::big_endian(562) + std::string(550, '\0') + sample::big_endian(7) +
                      sample::big_endian(0) + sample::big_endian(0x80000004));
    }
}

TEST(CollectionStore, LoadsWhatItStores) {
    sample::type_ptr type(qvt_coll_new_type(coll_row, 2));
    strcpy(type->name, "pair");
    const char *names[] = {"exactly_18_bytes__", "b"};
    const uint16_t types[] = {2, 43};
    for (int i = 0; i < 2; ++i) {
        coll_field *field = qvt_coll_field(type.get(), i + 1);
        strcpy(field->name, names[i]);
        field->type = types[i];
        field->word10 = 0x01020304;
    }
    sample::collection row(type.get());
    row.cl_handle = 9;
    sample::append(&row, sample::big_endian(1));
    sample::append(&row, std::string("\0\0\0\0\2xy", 7));
    for (int new_server : {0, 1}) {
        const std::string bytes = sample::stored(&row, new_server);
        sample::collection loaded;
        ASSERT_EQ(ldcollection(bytes.data(), &loaded, new_server), 0);
        EXPECT_EQ(sample::stored(&loaded, new_server), bytes);
        EXPECT_EQ(qvt_coll_equal(&loaded, &row), 1);
        EXPECT_EQ(sample::walked(&loaded), sample::walked(&row));
    }
    strcpy(type->name, "longer_than_18_bytes");
    EXPECT_EQ(qvt_coll_stored_size(&row, 0), err_coll_type);
    row.cl_svr_typeinfo = nullptr;
    EXPECT_EQ(qvt_coll_stored_size(&row, 1), err_coll_no_type);
}

TEST(CollectionStore, NamesBuiltInTypesOnLoad) {
    struct {
        uint16_t type;
        uint32_t id;
        uint16_t loaded;
    } const rows[] = {
        {40, 5, 45}, {41, 1, 43}, {41 | 0x100, 5, 45 | 0x100}, {41, 2, 41}, {2, 5, 2}};
    for (const auto &row : rows) {
        const sample::type_ptr type = sample::type_of(coll_set, row.type, 4);
        qvt_coll_field(type.get(), 1)->extended_id = row.id;
        sample::collection set(type.get());
        const std::string bytes = sample::stored(&set, 1);
        sample::collection loaded;
        ASSERT_EQ(ldcollection(bytes.data(), &loaded, 1), 0);
        EXPECT_EQ(qvt_coll_field(loaded.cl_svr_typeinfo, 1)->type, row.loaded);
    }
}

// Uses a loaded collection in every way that follows its bytes.
void use(coll_rec *collection) {
    coll_cursor cursor = {};
    qvt_coll_open(collection, &cursor);
    void *data = nullptr;
    int32_t length = 0;
    unsigned sum = 0;
    while (qvt_coll_next(collection, &cursor, &data, &length) == 0) {
        for (int32_t i = 0; i < length; ++i)
            sum += static_cast<unsigned char *>(data)[i];
        data = nullptr;
    }
    EXPECT_GE(sum, 0u);
    cursor_delete(&cursor);
    qvt_coll_hash(collection);
    qvt_coll_fold(collection);
    qvt_coll_equal(collection, collection);
    char text[4096];
    cltypetostr(collection, text, sizeof text);
    qvt_coll_close(collection, &cursor);
}

// Every byte of a stored collection changed and every tail cut off: an error, or a collection whose use
// stays inside.
TEST(CollectionStore, SurvivesDamage) {
    const std::string nested = sample::nested_at_8("content", 0x12345678);
    const std::pair<sample::type_ptr, std::string> samples[] = {
        {sample::type_of(coll_list, 2), sample::big_endian(77)},
        {sample::type_of(coll_set, 13, 20), "text"},
        {sample::type_of(coll_multiset, coll_list), nested},
    };
    for (const auto &[type, element] : samples) {
        sample::collection whole(type.get());
        sample::append(&whole, element);
        sample::append(&whole, element.substr(0, element.size()));
        for (int new_server : {0, 1}) {
            const std::string bytes = sample::stored(&whole, new_server);
            for (size_t at = 0; at < bytes.size(); ++at) {
                for (const char value : {'\0', '\1', '\x7f', '\x80', '\xff', '\x15'}) {
                    std::string damaged = bytes;
                    damaged[at] = value;
                    sample::collection loaded;
                    if (qvt_coll_load(damaged.data(), static_cast<int32_t>(damaged.size()), &loaded,
                                      new_server) == 0)
                        use(&loaded);
                }
                sample::collection cut;
                const std::vector<char> kept(bytes.begin(), bytes.begin() + static_cast<long>(at));
                EXPECT_LT(qvt_coll_load(kept.data(), static_cast<int32_t>(at), &cut, new_server),
                          0);
            }
        }
    }
}

TEST(CollectionStore, KeepsOldContentsWhenAnAllocationFails) {
    const sample::type_ptr type = sample::type_of(coll_list, 13, 20);
    sample::collection whole(type.get());
    sample::append(&whole, "one");
    sample::append(&whole, "two");
    const std::string bytes = sample::stored(&whole, 1);
    for (size_t k = 1;; ++k) {
        sample::collection target(type.get());
        sample::append(&target, "old");
        int32_t loaded;
        int32_t stored;
        std::string out(bytes.size(), '\0');
        failing_malloc::scope refused(k);
        loaded = qvt_coll_load(bytes.data(), static_cast<int32_t>(bytes.size()), &target, 1);
        stored = stcollection(out.data(), &whole, 1);
        if (!refused.happened())
            break;
        EXPECT_TRUE(loaded == err_no_buffer_memory || stored == err_no_buffer_memory);
        EXPECT_EQ(sample::walked(&target), loaded ? strings{"old"} : (strings{"one", "two"}));
    }
}

} // namespace
