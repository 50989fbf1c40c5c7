#include <kestrion/name_list.h>

#include "base/owned_text.h"
#include <kestrion/strings.h>

#include <stdlib.h>

namespace {

constexpr int32_t list_step = 16;

bool make_room(env_name_list *list) {
    if (list->count < list->capacity)
        return true;
    const auto room = static_cast<size_t>(list->capacity) + list_step;
    void *names = realloc(list->names, room * sizeof(char *));
    if (names == nullptr)
        return false;
    list->names = static_cast<char **>(names);
    list->capacity += list_step;
    return true;
}

} // namespace

env_name_list *_ginitnamelist(void) {
    auto *list = static_cast<env_name_list *>(calloc(1, sizeof(env_name_list)));
    if (list != nullptr && !make_room(list)) {
        free(list);
        list = nullptr;
    }
    return list;
}

int32_t _gaddnamelist(env_name_list *list, const char *name) {
    if (!make_room(list))
        return -1;
    list->names[list->count] = kestrion::joined_text(name);
    return list->names[list->count] == nullptr ? -1 : list->count++;
}

int32_t _gsrchnamelist(const env_name_list *list, const char *name) {
    for (int32_t i = 0; i < list->count; ++i) {
        if (stcmpr(list->names[i], name) == 0)
            return i;
    }
    return -1;
}

void _gfreenamelist(env_name_list *list) {
    if (list == nullptr)
        return;
    for (int32_t i = 0; i < list->count; ++i)
        free(list->names[i]);
    free(list->names);
    free(list);
}
