#include <kestrion/time_names.h>

#include <kestrion/ext_funcs.h>

#include <string.h>

namespace {

// Copies `count` texts; text(i) may be null, which becomes the empty text.
template <typename Text>
int32_t copy_names(int32_t count, Text text, gl_names_alloc alloc, char ***texts,
                   int32_t *count_out) {
    *texts = nullptr;
    *count_out = 0;
    if (count <= 0)
        return 0;
    const auto names = static_cast<size_t>(count);
    auto **copies = static_cast<char **>(alloc(names * sizeof(char *)));
    if (copies == nullptr)
        return -1;
    for (size_t i = 0; i < names; ++i) {
        const char *name = text(i) != nullptr ? text(i) : "";
        const size_t bytes = strlen(name) + 1;
        copies[i] = static_cast<char *>(alloc(bytes));
        if (copies[i] == nullptr) {
            while (i > 0)
                _gl_ext_free(copies[--i]);
            _gl_ext_free(copies);
            return -1;
        }
        memcpy(copies[i], name, bytes);
    }
    *texts = copies;
    *count_out = count;
    return 0;
}

} // namespace

int32_t gl_mbstimeinfo_ext(const locale_rec *lc, int32_t kind, gl_names_alloc alloc, char ***texts,
                           int32_t *count) {
    if (lc == nullptr || (kind != GL_NAMES_MON && kind != GL_NAMES_ABMON))
        return -1;
    const time_rec &time = lc->time_cat;
    char *const *names = kind == GL_NAMES_MON ? time.mon : time.abmon;
    return copy_names(
        names != nullptr ? time.month_count : 0, [&](size_t i) { return names[i]; }, alloc, texts,
        count);
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
