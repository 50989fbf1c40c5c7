#include "compilers/mkcvo/conversion.h"

#include <algorithm>

namespace kestrion {

namespace {

constexpr int byte_values = 256;

bool all_bytes_map(const conversion_object &object) {
    return object.source_max == 1 && object.target_max == 1 &&
           object.normal.size() == byte_values &&
           std::all_of(object.normal.begin(), object.normal.end(),
                       [](const conversion_entry &entry) { return entry.target.length == 1; });
}

} // namespace

bool by_source(const conversion_entry &a, const conversion_entry &b) {
    return a.source.order() != b.source.order() ? a.source.order() < b.source.order()
                                                : a.source.length < b.source.length;
}

void measure(conversion_object &object) {
    const int longest_shift =
        std::max<int>(object.shifts[SHIFT_IN].length, object.shifts[SHIFT_OUT].length);
    object.source_min = object.target_min = gl_char_bytes;
    for (const auto *entries : {&object.normal, &object.shifted}) {
        for (const conversion_entry &entry : *entries) {
            const int source = entry.source.length;
            const int target = entry.target.length;
            object.source_min = std::min(object.source_min, source);
            object.source_max = std::max(object.source_max, source);
            if (target == 0)
                continue;
            object.target_min = std::min(object.target_min, target);
            object.target_max = std::max(object.target_max, target);
            // A shifted character alone has a sequence on either side.
            const int shifts =
                (entry.control & CV_SHIFTED) != 0
                    ? object.shifts[SHIFT_IN].length + object.shifts[SHIFT_OUT].length
                    : longest_shift;
            object.expansion =
                std::max(object.expansion, static_cast<double>(target + shifts) / source);
        }
    }
    object.no_byte_table = !all_bytes_map(object);
}

} // namespace kestrion
