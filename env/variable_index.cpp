#include "env/variable_index.h"

#include "env/variable_table.h"
#include "platform/strings.h"

#include <array>
#include <span>

namespace {

// Open addressing over a table three times the rows: a name is found in 1.2 probes, and half of the
// unknown ones meet an empty slot at once. The compiler fills it, so that there is nothing to build
// at start and nothing to drop with the registry.
constexpr uint32_t slot_count = 1024;
constexpr int16_t empty_slot = -1;

constexpr uint32_t first_slot(const char *name) {
    uint32_t hash = 0;
    for (; *name != '\0'; ++name)
        hash = hash * 31 + static_cast<unsigned char>(*name);
    return (hash * 2654435769U) >> 22; // Fibonacci hashing: the upper 10 bits are the best mixed
}

constexpr uint32_t next_slot(uint32_t slot) { return (slot + 1) % slot_count; }

struct name_slots {
    std::array<int16_t, slot_count> row;
    bool names_unique;
};

consteval name_slots fill_slots() {
    name_slots slots{.row = {}, .names_unique = true};
    slots.row.fill(empty_slot);
    for (int16_t row = 0; row < Num_DVals; ++row) {
        const std::string_view name = Kes_DVals[row].name;
        uint32_t slot = first_slot(Kes_DVals[row].name);
        for (; slots.row[slot] != empty_slot; slot = next_slot(slot)) {
            if (name == Kes_DVals[slots.row[slot]].name)
                slots.names_unique = false;
        }
        slots.row[slot] = row;
    }
    return slots;
}

constexpr name_slots slots = fill_slots();
static_assert(slots.names_unique, "a name stands in Kes_DVals twice");

consteval bool all_known(std::span<const char *const> names) {
    for (const char *name : names) {
        uint32_t slot = first_slot(name);
        while (slots.row[slot] != empty_slot &&
               std::string_view(name) != Kes_DVals[slots.row[slot]].name)
            slot = next_slot(slot);
        if (slots.row[slot] == empty_slot)
            return false;
    }
    return true;
}
static_assert(all_known(Kes_SVarList) && all_known(Kes_LVarList) && all_known(Kes_MVarList));

} // namespace

namespace kestrion {

int32_t find_variable(const char *name) {
    for (uint32_t slot = first_slot(name); slots.row[slot] != empty_slot; slot = next_slot(slot)) {
        if (stcmpr(name, Kes_DVals[slots.row[slot]].name) == 0)
            return slots.row[slot];
    }
    return -1;
}

} // namespace kestrion
