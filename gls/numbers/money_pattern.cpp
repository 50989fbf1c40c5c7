#include <kestrion/money_pattern.h>

#include <iterator>
#include <string.h>

namespace {

struct pattern_row {
    int32_t key;                                    // sign_posn * 10 + sep_by_space
    unsigned char symbol_after[money_pattern_size]; // cs_precedes 0
    unsigned char symbol_first[money_pattern_size]; // cs_precedes 1
};

// The rows are not as regular as they look: 12 and 22 lack the space on one side, 30 is 10 when the
// symbol comes first, 40 is 20 when it comes after. Amounts stored as text rely on all of them.
constexpr pattern_row patterns[] = {
    {0, {1, 3, 2, 6}, {1, 2, 3, 6}},  {1, {1, 3, 5, 2, 6}, {1, 2, 5, 3, 6}},
    {2, {1, 3, 2, 6}, {1, 2, 3, 6}},  {10, {4, 3, 2}, {4, 2, 3}},
    {11, {4, 3, 5, 2}, {4, 2, 5, 3}}, {12, {4, 3, 2}, {4, 5, 2, 3}},
    {20, {3, 2, 4}, {2, 3, 4}},       {21, {3, 5, 2, 4}, {2, 5, 3, 4}},
    {22, {3, 2, 5, 4}, {2, 3, 4}},    {30, {3, 4, 2}, {4, 2, 3}},
    {31, {3, 5, 4, 2}, {4, 2, 5, 3}}, {32, {3, 4, 5, 2}, {4, 5, 2, 3}},
    {40, {3, 2, 4}, {2, 4, 3}},       {41, {3, 5, 2, 4}, {2, 4, 5, 3}},
    {42, {3, 2, 5, 4}, {2, 5, 4, 3}},
};

// Three rows for each position of the sign.
constexpr size_t row_of(int64_t key) { return static_cast<size_t>(key / 10 * 3 + key % 10); }

constexpr bool rows_are_in_order() {
    for (size_t i = 0; i < std::size(patterns); ++i)
        if (row_of(patterns[i].key) != i)
            return false;
    return true;
}
static_assert(rows_are_in_order());

} // namespace

int32_t mon_mask(int32_t cs_precedes, int32_t sign_posn, int32_t sep_by_space,
                 int32_t tokens[money_pattern_size]) {
    memset(tokens, 0, money_pattern_size * sizeof *tokens);
    if (cs_precedes != 0 && cs_precedes != 1)
        return -1;
    const int64_t key = static_cast<int64_t>(sign_posn) * 10 + sep_by_space;
    if (key < 0 || key > patterns[std::size(patterns) - 1].key || key % 10 > 2)
        return -1;
    const pattern_row &row = patterns[row_of(key)];
    for (int32_t i = 0; i < money_pattern_size; ++i)
        tokens[i] = cs_precedes == 1 ? row.symbol_first[i] : row.symbol_after[i];
    return 0;
}
