#include "gls/numbers/value_list.h"

namespace kestrion {

static_assert(sizeof(long) == sizeof(int64_t) && sizeof(long long) == sizeof(int64_t));

listed_value value_list::next(value_kind kind) {
    walked_ = true;
    switch (kind) {
    case value_kind::int_value:
        return {.integer = va_arg(list, int)};
    case value_kind::long_value:
        return {.integer = va_arg(list, long)};
    case value_kind::double_value:
        return {.number = va_arg(list, double)};
    case value_kind::pointer:
        return {.pointer = va_arg(list, void *)};
    case value_kind::none:
        break;
    }
    return {};
}

bool value_list::take(int32_t index, value_kind kind, listed_value &out) {
    if ((index == 0) != (count_ == 0))
        return false;
    out = index == 0 ? next(kind) : values_[index - 1];
    return true;
}

bool value_list::announce(int32_t index, value_kind kind) {
    if (index < 1 || walked_)
        return false;
    value_kind &known = kinds_[index - 1];
    const bool agrees = known == value_kind::none || known == kind;
    known = kind;
    count_ = index > count_ ? index : count_;
    return agrees;
}

bool value_list::fetch() {
    for (int32_t i = 0; i < count_; ++i) {
        if (kinds_[i] == value_kind::none)
            return false;
        values_[i] = next(kinds_[i]);
    }
    return true;
}

} // namespace kestrion
