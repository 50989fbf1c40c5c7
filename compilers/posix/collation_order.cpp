#include "compilers/posix/collation_order.h"

#include <algorithm>

namespace kestrion {

collation_element &collation_order::character(uint32_t code_point) {
    collation_element *&known = characters_[code_point];
    if (known == nullptr) {
        known = &elements.emplace_back();
        known->characters = {code_point};
        known->declared = true;
    }
    return *known;
}

collation_element &collation_order::named(std::string_view name) {
    collation_element *&known = names_[std::string(name)];
    if (known == nullptr) {
        known = &elements.emplace_back();
        known->name = name;
    }
    return *known;
}

void collation_order::rename(std::string_view name, collation_element &meant) {
    names_[std::string(name)] = &meant;
}

collation_section &collation_order::section_named(std::string_view name) {
    for (collation_section &section : sections)
        if (section.name == name)
            return section;
    collation_section &section = sections.emplace_back();
    section.name = name;
    section_order.push_back(&section);
    return section;
}

void collation_order::unlink(collation_element &element) {
    collation_section &list = *element.list;
    (element.previous != nullptr ? element.previous->next : list.first) = element.next;
    (element.next != nullptr ? element.next->previous : list.last) = element.previous;
}

void collation_order::insert(collation_element &element, collation_section &list,
                             collation_element *after) {
    if (after == &element)
        return;
    if (element.listed)
        unlink(element);
    collation_element *&next_of_after = after != nullptr ? after->next : list.first;
    element.previous = after;
    element.next = next_of_after;
    next_of_after = &element;
    (element.next != nullptr ? element.next->previous : list.last) = &element;
    element.list = &list;
    element.listed = true;
}

void collation_order::move_section(collation_section &section, const collation_section &after) {
    std::erase(section_order, &section);
    section_order.insert(std::find(section_order.begin(), section_order.end(), &after) + 1,
                         &section);
}

void collation_order::number_places() {
    uint32_t place = 0;
    for (const collation_section *section : section_order)
        for (collation_element *e = section->first; e != nullptr; e = e->next)
            e->order = place++;
}

const collation_element *collation_order::find(uint32_t code_point) const {
    const auto found = characters_.find(code_point);
    return found != characters_.end() && found->second->listed ? found->second : nullptr;
}

size_t collation_order::level_count() const {
    size_t most = 0;
    for (const collation_section &section : sections)
        most = std::max(most, section.levels.size());
    return most;
}

} // namespace kestrion
