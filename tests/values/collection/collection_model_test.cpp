// Collections beside a plain vector under random operations.

#include "support/failing_malloc.h"
#include "support/random_cases.h"
#include "values/collection/sample_collections.h"

#include <kestrion/error_numbers.h>

#include <gtest/gtest.h>
#include <random>

namespace {

using strings = std::vector<std::string>;

enum class shape { fixed, variable, nested };

struct model_cursor {
    coll_cursor real = {};
    bool open = false;
    int64_t position = 0;
    bool stay = false;
};

class pair_of_lists {
public:
    pair_of_lists(shape form, uint64_t seed)
        : form_(form), random_(seed),
          type_(form == shape::fixed      ? sample::type_of(coll_list, 2)
                : form == shape::variable ? sample::type_of(coll_list, 13, 255)
                                          : sample::type_of(coll_list, coll_set)),
          list_(type_.get()) {}
    ~pair_of_lists() {
        for (model_cursor &cursor : cursors_)
            qvt_coll_close(&list_, &cursor.real);
    }

    // One random operation on both; what it answers must agree.
    void step() {
        model_cursor &cursor = cursors_[pick(3)];
        if (!cursor.open)
            return open(cursor);
        switch (pick(16)) {
        case 0:
            return close(cursor);
        case 1:
        case 2:
        case 3:
            return next(cursor);
        case 4:
        case 5:
            return seek(cursor);
        case 6:
        case 7:
        case 8:
        case 9:
            return elements_.size() < 40 ? insert(cursor) : remove(cursor);
        case 10:
        case 11:
        case 12:
            return remove(cursor);
        case 13:
        case 14:
            return update(cursor);
        default:
            return pick(8) ? next(cursor) : fold();
        }
    }

    // The whole of the list, and of what becomes of it when it is stored, copied and folded.
    void compare() {
        ASSERT_EQ(contents(), elements_);
        ASSERT_EQ(list_.cl_cardinality, static_cast<int32_t>(elements_.size()));
        for (model_cursor &cursor : cursors_)
            ASSERT_EQ(cursor.real.position, cursor.position);
        sample::collection loaded;
        const std::string bytes = sample::stored(&list_, 1);
        ASSERT_EQ(qvt_coll_load(bytes.data(), static_cast<int32_t>(bytes.size()), &loaded, 1), 0);
        ASSERT_EQ(sample::walked(&loaded, form_ == shape::nested), elements_);
        sample::collection copy;
        ASSERT_EQ(qvt_coll_copy(&copy, &list_), 0);
        ASSERT_EQ(qvt_coll_equal(&copy, &loaded), 1);
        ASSERT_EQ(qvt_coll_hash(&list_), 0);
        ASSERT_EQ(qvt_coll_hash(&loaded), 0);
        ASSERT_EQ(list_.cl_hashvalue, loaded.cl_hashvalue);
        ASSERT_EQ(qvt_coll_fold(&copy), 0);
        ASSERT_EQ(copy.cl_len, loaded.cl_len);
        if (form_ == shape::fixed) {
            ASSERT_EQ(list_.cl_len, static_cast<int32_t>(4 * elements_.size()));
        }
    }

    strings contents() { return sample::walked(&list_, form_ == shape::nested); }
    const strings &expected() const { return elements_; }

private:
    uint64_t pick(uint64_t n) { return random_() % n; }
    int64_t count() const { return static_cast<int64_t>(elements_.size()); }

    // An element, and what the walk yields of it.
    std::string element(std::string *yields) {
        std::string text = sample::big_endian(static_cast<uint32_t>(random_()));
        if (form_ == shape::variable)
            text.resize(1 + pick(4));
        if (form_ == shape::nested) {
            text =
                sample::nested_at_8(std::string(pick(12), 'x'), static_cast<uint32_t>(random_()));
            *yields = text.substr(8);
        } else {
            *yields = text;
        }
        return text;
    }

    void open(model_cursor &cursor) {
        ASSERT_EQ(qvt_coll_open(&list_, &cursor.real), 0);
        ASSERT_EQ(qvt_coll_open(&list_, &cursor.real), err_coll_cursor_open);
        cursor.open = true;
    }

    void close(model_cursor &cursor) {
        ASSERT_EQ(qvt_coll_close(&list_, &cursor.real), 0);
        cursor = {};
    }

    void next(model_cursor &cursor) {
        alignas(8) char copy[256];
        void *data = pick(2) ? copy : nullptr;
        int32_t length = 0;
        const int32_t answer = qvt_coll_next(&list_, &cursor.real, &data, &length);
        const int64_t target = cursor.position + (cursor.stay ? 0 : 1);
        cursor.stay = false;
        ASSERT_EQ(answer, target > count() ? coll_end : 0);
        if (answer)
            return;
        cursor.position = target;
        const std::string yields =
            form_ == shape::nested
                ? sample::nested_content(data, length)
                : std::string(static_cast<char *>(data), static_cast<size_t>(length));
        ASSERT_EQ(yields, elements_[static_cast<size_t>(target - 1)]);
    }

    void seek(model_cursor &cursor) {
        const auto whence = static_cast<int32_t>(pick(3));
        const auto n = static_cast<int32_t>(pick(50)) - (whence == CSEEK_SET ? 2 : 25);
        const int64_t base[] = {0, cursor.position, count()};
        const int64_t target = base[whence] + n;
        const bool there = target >= 1 && target <= count();
        ASSERT_EQ(cursor_seek(&cursor.real, n, whence), there ? 0 : coll_end);
        if (there) {
            cursor.position = target;
            cursor.stay = false;
        }
    }

    void insert(model_cursor &cursor) {
        std::string yields;
        alignas(8) char data[64];
        const std::string bytes = element(&yields);
        memcpy(data, bytes.data(), bytes.size());
        const uint64_t way = pick(3);
        const auto position = way == 0   ? int32_t{coll_at_cursor}
                              : way == 1 ? 0
                                         : static_cast<int32_t>(1 + pick(45));
        last_ = qvt_coll_insert(&list_, &cursor.real, data, static_cast<int32_t>(bytes.size()),
                                position);
        if (last_ == err_no_buffer_memory)
            return;
        ASSERT_EQ(last_, 0);
        int64_t row = way == 0 ? std::max<int64_t>(cursor.position, 1) : position;
        const bool appended = row == 0 || row > count();
        row = appended ? count() + 1 : row;
        elements_.insert(elements_.begin() + (row - 1), yields);
        for (model_cursor &other : cursors_)
            other.position += &other != &cursor && !appended && other.position >= row ? 1 : 0;
        cursor.position = row;
        cursor.stay = false;
    }

    // Whether a change at the cursor is one, and its answer if it is not.
    bool changeable(const model_cursor &cursor, int64_t row, int32_t shared) {
        int32_t wanted = row < 1 || row > count() ? coll_end : 0;
        for (const model_cursor &other : cursors_) {
            if (!wanted && &other != &cursor && other.open && other.position == row)
                wanted = shared;
        }
        EXPECT_EQ(last_, wanted);
        return wanted == 0;
    }

    int32_t any_position(const model_cursor &cursor, int64_t *row) {
        const auto position = pick(2) ? 0 : static_cast<int32_t>(1 + pick(45));
        *row = position ? position : cursor.position;
        return position;
    }

    void remove(model_cursor &cursor) {
        int64_t row;
        const int32_t position = any_position(cursor, &row);
        last_ = qvt_coll_delete(&list_, &cursor.real, position);
        if (last_ == err_no_buffer_memory || !changeable(cursor, row, err_coll_delete_shared))
            return;
        elements_.erase(elements_.begin() + (row - 1));
        for (model_cursor &other : cursors_)
            other.position -= other.position > row && &other != &cursor ? 1 : 0;
        cursor.position = row;
        cursor.stay = true;
    }

    void update(model_cursor &cursor) {
        std::string yields;
        int64_t row;
        alignas(8) char data[64];
        const std::string bytes = element(&yields);
        memcpy(data, bytes.data(), bytes.size());
        const int32_t position = any_position(cursor, &row);
        last_ = qvt_coll_update(&list_, &cursor.real, data, static_cast<int32_t>(bytes.size()),
                                position);
        if (last_ == err_no_buffer_memory || !changeable(cursor, row, err_coll_update_shared))
            return;
        elements_[static_cast<size_t>(row - 1)] = yields;
        cursor.position = row;
        cursor.stay = cursor.stay && position == 0;
    }

    void fold() {
        last_ = qvt_coll_fold(&list_);
        if (last_ == err_no_buffer_memory)
            return;
        ASSERT_EQ(last_, 0);
        ASSERT_EQ(list_.cl_log, nullptr);
        ASSERT_EQ(list_.cl_len, list_.cl_datalen);
    }

    shape form_;
    std::mt19937_64 random_;
    sample::type_ptr type_;
    sample::collection list_;
    strings elements_;
    model_cursor cursors_[3];
    int32_t last_ = 0;
};

class CollectionModel : public testing::TestWithParam<shape> {};

TEST_P(CollectionModel, AgreesWithAVectorUnderRandomChanges) {
    const long steps = random_cases(340'000);
    for (long done = 0, seed = 1; done < steps; done += 1000, ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        pair_of_lists lists(GetParam(), static_cast<uint64_t>(seed));
        for (int i = 0; i < 1000; ++i) {
            lists.step();
            ASSERT_FALSE(HasFatalFailure() || HasNonfatalFailure()) << "step " << i;
            if (i % 20 == 0)
                lists.compare();
        }
    }
}

TEST_P(CollectionModel, StaysAsItWasWhenAnAllocationFails) {
    for (size_t k = 1;; ++k) {
        pair_of_lists lists(GetParam(), 7);
        failing_malloc::scope refused(k);
        for (int i = 0; i < 150; ++i) {
            lists.step();
            ASSERT_FALSE(HasFatalFailure() || HasNonfatalFailure()) << "allocation " << k;
        }
        if (!refused.happened())
            break;
        ASSERT_EQ(lists.contents(), lists.expected()) << "allocation " << k;
    }
}

std::string form_name(const testing::TestParamInfo<shape> &form) {
    const char *const names[] = {"Fixed", "Variable", "Nested"};
    return names[static_cast<size_t>(form.param)];
}

INSTANTIATE_TEST_SUITE_P(Forms, CollectionModel,
                         testing::Values(shape::fixed, shape::variable, shape::nested), form_name);

} // namespace
