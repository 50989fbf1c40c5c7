// Kinds, NULLs, hashes, order, type texts.

#include "values/collection/sample_collections.h"

#include <kestrion/error_numbers.h>

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

using strings = std::vector<std::string>;

class words : public sample::collection {
public:
    words(const coll_type *type, const strings &elements) : sample::collection(type) {
        for (const std::string &element : elements)
            EXPECT_EQ(sample::append(this, element), 0);
    }
};

int32_t next_text(coll_rec *list, coll_cursor *cursor, std::string *text) {
    void *data = nullptr;
    int32_t length = 0;
    const int32_t answer = qvt_coll_next(list, cursor, &data, &length);
    if (answer == 0)
        text->assign(static_cast<char *>(data), static_cast<size_t>(length));
    return answer;
}

TEST(Collection, ReadsABlockOfVariableSizes) {
    const sample::type_ptr type = sample::type_of(coll_list, 13, 20);
    std::string block = "onethreeFOUR!" + sample::big_endian(0xFFFFFFFF) + sample::big_endian(8) +
                        sample::big_endian(3) + sample::big_endian(0);
    sample::collection list;
    ASSERT_EQ(qvt_coll_init(&list, type.get(), block.data(), static_cast<int32_t>(block.size())),
              0);
    EXPECT_EQ(sample::walked(&list), (strings{"one", "three", "FOUR!"}));
    const std::string damaged[] = {
        block.substr(0, 13) + sample::big_endian(8) + sample::big_endian(3) + sample::big_endian(0),
        block.substr(0, 25) + sample::big_endian(1),
        "x" + sample::big_endian(0xFFFFFFFF) + sample::big_endian(2) + sample::big_endian(0),
        "xy" + sample::big_endian(0xFFFFFFFF) + sample::big_endian(1) + sample::big_endian(2) +
            sample::big_endian(0),
        sample::big_endian(0xFFFFFFFF),
        "abc"};
    for (std::string bad : damaged) {
        sample::collection other;
        EXPECT_EQ(qvt_coll_init(&other, type.get(), bad.data(), static_cast<int32_t>(bad.size())),
                  err_coll_element_size);
    }
}

// The log after single changes to [one, two, three, four], worked by hand.
TEST(Collection, KeepsChangesInTheLog) {
    const sample::type_ptr type = sample::type_of(coll_list, 13, 20);
    words list(type.get(), {"one", "two", "three", "four"});
    ASSERT_EQ(qvt_coll_fold(&list), 0);
    list.cl_len = 15; // the elements alone, without their table
    coll_cursor cursor = {};
    std::string text;
    qvt_coll_open(&list, &cursor);
    ASSERT_EQ(qvt_coll_delete(&list, &cursor, 2), 0);
    EXPECT_EQ(list.cl_len, 12);
    EXPECT_EQ(list.cl_log->ch_modtype, coll_deleted);
    EXPECT_TRUE(list.cl_log->ch_flag & CHANGELOG_WITH_DATA);
    EXPECT_EQ(cursor.change, list.cl_log);
    EXPECT_EQ(cursor.passed, 1);
    EXPECT_EQ(next_text(&list, &cursor, &text), 0);
    EXPECT_EQ(text, "three");
    ASSERT_EQ(qvt_coll_insert(&list, &cursor, "X", 1, 2), 0);
    EXPECT_EQ(list.cl_log->ch_modtype, coll_inserted);
    EXPECT_EQ(list.cl_lastlog->ch_rownum, 3);
    ASSERT_EQ(cursor_seek(&cursor, 3, CSEEK_SET), 0);
    EXPECT_EQ(next_text(&list, &cursor, &text), 0);
    EXPECT_EQ(text, "four");
    ASSERT_EQ(qvt_coll_update(&list, &cursor, "FOUR!", 5, 4), 0);
    EXPECT_EQ(list.cl_len, 14);
    ASSERT_EQ(qvt_coll_delete(&list, &cursor, 2), 0);
    EXPECT_EQ(list.cl_log->ch_modtype, coll_deleted) << "the insert has vanished";
    EXPECT_EQ(list.cl_log->ch_rownum, 2);
    EXPECT_EQ(list.cl_lastlog->ch_modtype, coll_updated);
    EXPECT_EQ(list.cl_lastlog->ch_rownum, 3);
    EXPECT_EQ(sample::walked(&list), (strings{"one", "three", "FOUR!"}));
    EXPECT_EQ(cursor_seek(&cursor, 0, CSEEK_SET), coll_end);
}

TEST(Collection, UpdatesFixedElementsInTheBlock) {
    const sample::type_ptr type = sample::type_of(coll_list, 2);
    std::string block = sample::big_endian(1) + sample::big_endian(2);
    sample::collection list;
    ASSERT_EQ(qvt_coll_init(&list, type.get(), block.data(), 8), 0);
    coll_cursor cursor = {};
    qvt_coll_open(&list, &cursor);
    EXPECT_EQ(qvt_coll_update(&list, &cursor, "abc", 3, 2), err_coll_element_size);
    EXPECT_EQ(cursor.position, 0);
    ASSERT_EQ(qvt_coll_update(&list, &cursor, "abcd", 4, 2), 0);
    EXPECT_EQ(list.cl_log, nullptr);
    EXPECT_EQ(block, sample::big_endian(1) + "abcd");
}

// After the last element went, the cursor finds what is appended before it looks.
TEST(Collection, CursorBeyondTheEndFindsWhatIsAppended) {
    const sample::type_ptr type = sample::type_of(coll_list, 2);
    words list(type.get(), {"aaaa"});
    ASSERT_EQ(qvt_coll_fold(&list), 0);
    coll_cursor cursor = {};
    std::string text;
    qvt_coll_open(&list, &cursor);
    ASSERT_EQ(qvt_coll_delete(&list, &cursor, 1), 0);
    sample::append(&list, "bbbb");
    EXPECT_EQ(next_text(&list, &cursor, &text), 0);
    EXPECT_EQ(text, "bbbb");
    ASSERT_EQ(qvt_coll_delete(&list, &cursor, 0), 0);
    EXPECT_EQ(next_text(&list, &cursor, &text), coll_end);
    EXPECT_EQ(next_text(&list, &cursor, &text), coll_end);
}

TEST(Collection, RefusesWhatItsKindDoesNotAllow) {
    const sample::type_ptr set_type = sample::type_of(coll_set, 2 | coll_field_not_null);
    const sample::type_ptr list_type = sample::type_of(coll_list, 2);
    words set(set_type.get(), {"aaaa"});
    words list(list_type.get(), {"aaaa"});
    coll_rec null = {};
    null.cl_flags = coll_is_null;
    const std::string null_integer = sample::big_endian(0x80000000);
    coll_cursor cursor = {};
    void *data = nullptr;
    int32_t length;
    EXPECT_EQ(qvt_coll_insert(&null, nullptr, "aaaa", 4, 0), err_coll_null);
    EXPECT_EQ(qvt_coll_next(&null, &cursor, &data, &length), err_coll_null);
    EXPECT_EQ(qvt_coll_insert(&set, nullptr, "aaaa", 4, 1), err_coll_position);
    EXPECT_EQ(qvt_coll_insert(&set, nullptr, "aaaa", 4, coll_at_cursor), err_coll_position);
    EXPECT_EQ(qvt_coll_insert(&set, nullptr, "aaa", 3, 0), err_coll_element_size);
    EXPECT_EQ(qvt_coll_insert(&set, nullptr, null_integer.data(), 4, 0), err_coll_null_element);
    EXPECT_EQ(qvt_coll_insert(&set, nullptr, nullptr, 0, 0), err_coll_null_element);
    EXPECT_EQ(qvt_coll_insert(&set, nullptr, "aaaa", 4, 0), 0) << "a SET skips what it has";
    EXPECT_EQ(set.cl_cardinality, 1);
    EXPECT_EQ(qvt_coll_insert(&list, nullptr, "aaaa", 4, -1), coll_end);
    EXPECT_EQ(qvt_coll_insert(&list, nullptr, "aaaa", 4, 99), 0) << "beyond the end appends";
    EXPECT_EQ(qvt_coll_insert(&list, nullptr, nullptr, 0, 0), 0);
    EXPECT_EQ(sample::walked(&list), (strings{"aaaa", "aaaa", null_integer}));
    EXPECT_EQ(qvt_coll_delete(&list, nullptr, 1), err_coll_no_element);
    EXPECT_EQ(qvt_coll_close(&list, &cursor), -1);
}

TEST(Collection, SetHasEachElementOnce) {
    const sample::type_ptr type = sample::type_of(coll_set, 13, 20);
    sample::collection set(type.get());
    std::set<std::string> model;
    std::mt19937 random(1);
    coll_cursor cursor = {};
    qvt_coll_open(&set, &cursor);
    for (int i = 0; i < 3000; ++i) {
        const std::string element = std::to_string(random() % 500);
        if (random() % 8 == 0 && !model.empty()) {
            std::string text;
            cursor_seek(&cursor, static_cast<int32_t>(random() % model.size()), CSEEK_SET);
            if (next_text(&set, &cursor, &text) == 0 && cursor_delete(&cursor) == 0)
                model.erase(text.substr(0, text.find(' ')));
        } else {
            const std::string padded = element + std::string(random() % 3, ' ');
            ASSERT_EQ(sample::append(&set, set.cl_cardinality % 2 ? padded : element), 0);
            model.insert(element);
        }
        ASSERT_EQ(static_cast<size_t>(set.cl_cardinality), model.size());
        if (i % 700 == 0)
            qvt_coll_fold(&set);
    }
    std::set<std::string> elements;
    for (std::string element : sample::walked(&set))
        elements.insert(element.substr(0, element.find(' ')));
    EXPECT_EQ(elements, model);
}

TEST(Collection, HashesAsServersDo) {
    const struct {
        const char *text;
        uint32_t hash;
    } texts[] = {{"abc", 124}, {"Smith", 40}, {"\xc3\xa9", 34}, {"abcdefghijklmnop", 191}};
    for (const auto &row : texts)
        EXPECT_EQ(qvt_hashpjw(row.text, static_cast<int32_t>(strlen(row.text))), row.hash)
            << row.text;
    EXPECT_EQ(qvt_calc_hval(0, "\0\0\0\7", 4), 7u);
    EXPECT_EQ(qvt_calc_hval(0, "\1\2\3\4\5", 5), 0x04020304u);
    EXPECT_EQ(qvt_calc_hval(0, "\1\2", 2), 0x01020000u);
    const sample::type_ptr type = sample::type_of(coll_list, 13, 20);
    words list(type.get(), {"abc", "Smith"});
    ASSERT_EQ(qvt_coll_hash(&list), 0);
    EXPECT_EQ(list.cl_hashvalue, 124u ^ 40u);
    sample::append(&list, "Smith");
    EXPECT_FALSE(list.cl_flags & coll_hash_valid);
    ASSERT_EQ(qvt_coll_hash(&list), 0);
    EXPECT_EQ(list.cl_hashvalue, 124u);
}

TEST(Collection, ComparesBySortOfKind) {
    const strings one_way = {"a", "b ", "b"};
    const strings other_way = {"b", "a  ", "b"};
    const strings fewer_b = {"a", "b", "a"};
    for (const int kind : {coll_list, coll_multiset}) {
        const sample::type_ptr type = sample::type_of(kind, 13, 20);
        words a(type.get(), one_way);
        words b(type.get(), other_way);
        words c(type.get(), fewer_b);
        int32_t equal = -1;
        EXPECT_EQ(qvt_coll_equal(&a, &a), 1);
        EXPECT_EQ(mi_qvt_coll_equal(&a, &b, &equal), 0);
        EXPECT_EQ(equal, kind == coll_multiset);
        EXPECT_EQ(qvt_coll_equal(&b, &c), 0);
    }
    const sample::type_ptr list_type = sample::type_of(coll_list, 13, 20);
    const sample::type_ptr set_type = sample::type_of(coll_set, 13, 20);
    words list(list_type.get(), {"a"});
    words set(set_type.get(), {"a"});
    EXPECT_EQ(qvt_coll_equal(&list, &set), err_coll_type);
    coll_rec null = {};
    null.cl_flags = coll_is_null;
    EXPECT_EQ(qvt_coll_equal(&null, &null), 1);
    EXPECT_EQ(qvt_coll_equal(&null, &set), 0);
}

int32_t by_first_byte(const void *a, int32_t, const void *b, int32_t, void *) {
    return *static_cast<const char *>(a) - *static_cast<const char *>(b);
}

TEST(Collection, SortsAndKeepsTheOrderOfEqualElements) {
    const sample::type_ptr type = sample::type_of(coll_list, 13, 20);
    words list(type.get(), {"c1", "a1", "b1", "a2", "c2", "b2", "a3"});
    ASSERT_EQ(qvt_coll_qsort(&list, by_first_byte, nullptr), 0);
    EXPECT_EQ(sample::walked(&list), (strings{"a1", "a2", "a3", "b1", "b2", "c1", "c2"}));
    EXPECT_EQ(list.cl_log, nullptr);
    sample::type_ptr row(qvt_coll_new_type(coll_row, 2));
    sample::collection pair(row.get());
    EXPECT_EQ(qvt_coll_qsort(&pair, by_first_byte, nullptr), err_coll_type);
}

TEST(CollectionType, PrintsAsSql) {
    const struct {
        int kind;
        int code;
        int length;
        const char *text;
    } rows[] = {
        {coll_list, 2 | coll_field_not_null, 4, "LIST(INTEGER NOT NULL)"},
        {coll_set, 5, 16 << 8 | 2, "SET(DECIMAL(16,2))"},
        {coll_set, 5, 16 << 8 | 255, "SET(DECIMAL(16))"},
        {coll_multiset, 10, 3594, "MULTISET(DATETIME YEAR TO SECOND)"},
        {coll_multiset, 10, 4365, "MULTISET(DATETIME YEAR TO FRACTION(3))"},
        {coll_multiset, 14, 3914, "MULTISET(INTERVAL DAY(9) TO SECOND)"},
        {coll_list, 13, 10 << 8 | 255, "LIST(VARCHAR(255,10))"},
        {coll_list, 43, 2048, "LIST(LVARCHAR(2048))"},
        {coll_list, int{coll_set} | coll_field_not_null, 0, "LIST(SET NOT NULL)"},
    };
    char text[64];
    for (const auto &row : rows) {
        const sample::type_ptr type = sample::type_of(row.kind, row.code, row.length);
        const auto length = static_cast<int32_t>(strlen(row.text));
        EXPECT_EQ(qvt_cltypetostr(type.get(), text, sizeof text), length);
        EXPECT_STREQ(text, row.text);
        EXPECT_EQ(qvt_cltypetostr(type.get(), text, length), -1);
    }
    sample::type_ptr row(qvt_coll_new_type(coll_row, 2));
    strcpy(qvt_coll_field(row.get(), 1)->name, "a b");
    strcpy(qvt_coll_field(row.get(), 2)->name, "b");
    qvt_coll_field(row.get(), 1)->type = 2;
    qvt_coll_field(row.get(), 2)->length = 20;
    const std::unique_ptr<char, sample::freed> made(qvt_cltype2str(row.get()));
    EXPECT_STREQ(made.get(), "ROW(\"a b\" INTEGER, b CHAR(20))");
    strcpy(row->name, "person");
    EXPECT_EQ(qvt_cltypetostr(row.get(), text, sizeof text), 6);
    EXPECT_STREQ(text, "person");
}

} // namespace
