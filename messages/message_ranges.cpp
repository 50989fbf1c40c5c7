#include "messages/message_ranges.h"

#include <kestrion/strings.h>

namespace {

constexpr int32_t leaf_is_default = -3;

} // namespace

// Every catalogue of msg/ but the default has its rows here; a row for a catalogue that is not
// installed would turn "no such message" into "cannot open file". Numbers 1202 to 1204 and their
// negatives share a magnitude, so the runtime's slots and its value errors lie in one catalogue.
const message_range _cmfqvt[] = {
    {1, 9600, 9999, "collect.qem"},
    {1, 23100, 23199, "locale.qem"},
    {1, 34394, 34394, "locale.qem"},
    {1, 84400, 84415, "pwseal.qem"},
    {0, 0, 0, nullptr},
};
// A server gives out the same texts.
const message_range _smfqvt[] = {
    {1, 9600, 9999, "collect.qem"},
    {1, 23100, 23199, "locale.qem"},
    {1, 34394, 34394, "locale.qem"},
    {1, 84400, 84415, "pwseal.qem"},
    {0, 0, 0, nullptr},
};
constinit const message_range *_mfqvt = _cmfqvt;

int32_t rmkmsgleafname(int32_t number, char *name) {
    const char *leaf = kestrion::leaf_of_message(number);
    stncopy(leaf, name, message_leaf_size);
    return leaf == kestrion::default_leaf ? leaf_is_default : 0;
}

namespace kestrion {

constexpr char default_leaf[] = "os.qem";

const char *leaf_of_message(int32_t number) {
    const uint32_t magnitude =
        number < 0 ? 0U - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
    for (const message_range *row = _mfqvt; row->marker != 0; ++row)
        if (row->low <= magnitude && magnitude <= row->high)
            return row->leaf;
    return default_leaf;
}

} // namespace kestrion
