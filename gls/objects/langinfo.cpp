#include <kestrion/langinfo.h>

namespace {

constexpr const char *calendar_names[] = {nullptr, "gregorian", "hebrew", "islamic", "arabic"};

} // namespace

const char *gl_nl_langinfo(const locale_rec *lc, int32_t item) {
    const char *text = nullptr;
    if (lc != nullptr && item == GL_ITEM_DATE_FORMAT)
        text = lc->time_cat.d_fmt;
    if (lc != nullptr && item == GL_ITEM_CALENDAR)
        text = calendar_names[lc->time_cat.calendar];
    return text != nullptr && *text != 0 ? text : nullptr;
}
