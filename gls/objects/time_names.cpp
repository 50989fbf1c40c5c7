#include <kestrion/time_names.h>

#include <string.h>

namespace {

// Copies `count` texts; text(i) may be null, which becomes the empty text. All lie in one block:
// the caller gave no function to release the others when one allocation fails.
template <typename Text>
int32_t copy_names(int32_t count, Text text, gl_names_alloc alloc, char ***texts,
                   int32_t *count_out) {
    *texts = nullptr;
    *count_out = 0;
    if (count <= 0)
        return 0;
    const auto names = static_cast<size_t>(count);
    const auto name = [&](size_t i) { return text(i) != nullptr ? text(i) : ""; };
    size_t bytes = names * sizeof(char *);
    for (size_t i = 0; i < names; ++i)
        bytes += strlen(name(i)) + 1;
    auto **copies = static_cast<char **>(alloc(bytes));
    if (copies == nullptr)
        return -1;
    char *at = reinterpret_cast<char *>(copies + names);
    for (size_t i = 0; i < names; ++i) {
        copies[i] = at;
        at = stpcpy(at, name(i)) + 1;
    }
    *texts = copies;
    *count_out = count;
    return 0;
}

} // namespace

int32_t gl_mbstimeinfo_ext(const locale_rec *lc, int32_t kind, gl_names_alloc alloc, char ***texts,
                           int32_t *count) {
    if (lc == nullptr || kind < GL_NAMES_DAY || kind > GL_NAMES_ABMON)
        return -1;
    const time_rec &time = lc->time_cat;
    char *const *const lists[] = {time.day, time.abday, time.mon, time.abmon};
    char *const *names = lists[kind - GL_NAMES_DAY];
    const bool of_days = kind == GL_NAMES_DAY || kind == GL_NAMES_ABDAY;
    return copy_names(
        of_days            ? gl_week_days
        : names != nullptr ? time.month_count
                           : 0,
        [&](size_t i) { return names[i]; }, alloc, texts, count);
}

int32_t gl_mbstimeinfo(const locale_rec *lc, int32_t kind, gl_names_alloc alloc, char ***texts,
                       int32_t *count) {
    if (lc == nullptr || (kind != GL_NAMES_ERA_FIRST && kind != GL_NAMES_ERA_SECOND))
        return -1;
    const time_rec &time = lc->time_cat;
    return copy_names(
        time.eras != nullptr ? time.era_count : 0,
        [&](size_t i) {
            return kind == GL_NAMES_ERA_FIRST ? time.eras[i].name : time.eras[i].second_name;
        },
        alloc, texts, count);
}
