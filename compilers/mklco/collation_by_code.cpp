#include "compilers/mklco/collation_by_code.h"

#include <kestrion/locale_file.h>

#include <algorithm>

namespace kestrion {
namespace {

constexpr uint16_t forward = 1;
constexpr uint16_t first_weight = 2; // 0 and 1 have other meanings

} // namespace

void collate_by_code(locale_object &object) {
    object_collation &collation = object.collation;
    collation = {.code_order_form = 1, .levels = {forward}};
    bool single_byte =
        std::all_of(object.characters.begin(), object.characters.end(),
                    [](const object_character &c) { return c.sequence.length == 1; });
    size_t rows = single_byte ? 256 : 1;
    for (size_t row = 0; row < rows; ++row)
        collation.rows.push_back(
            {static_cast<uint16_t>((first_weight + row) | (single_byte ? 0 : coll_tie_on_char))});
    for (object_character &character : object.characters)
        character.row = single_byte ? character.sequence.bytes[0] : uint16_t{0};
    collation.max_weight = static_cast<uint32_t>(first_weight + rows - 1);
}

} // namespace kestrion
