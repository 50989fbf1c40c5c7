#include "passwords/message_texts.h"

#include <iterator>

namespace kestrion {

#define PW_SLOT(slot, number, text) constinit const char *slot = text;
PW_MESSAGES(PW_SLOT)
#undef PW_SLOT

#define PW_ROW(slot, number, text) {&slot, number},
constexpr message_slot rdpwmsg[] = {PW_MESSAGES(PW_ROW){nullptr, 0}};
#undef PW_ROW

namespace {

constexpr bool numbers_run_down() {
    for (int32_t i = 0; rdpwmsg[i].slot != nullptr; ++i)
        if (rdpwmsg[i].number != -84400 - i)
            return false;
    return true;
}

static_assert(std::size(rdpwmsg) == 17 && numbers_run_down());

} // namespace

} // namespace kestrion
