#include "isi/diagnostics.h"

#include "base/ascii_class.h"

#include <iterator>

constinit struct isi_functab_row isi_functab[ISI_FUNCTION_COUNT] = {
#define ISI_TYPED(symbol, upper, result, parameters) {.name = #symbol, .isi_fp = {nullptr}},
#define ISI_OPAQUE(symbol, upper)                    {.name = #symbol, .isi_fp = {nullptr}},
    ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
};

namespace {

constexpr const char *upper_names[] = {
#define ISI_TYPED(symbol, upper, result, parameters) #upper,
#define ISI_OPAQUE(symbol, upper)                    #upper,
    ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
};

constexpr const char *symbols[] = {
#define ISI_TYPED(symbol, upper, result, parameters) #symbol,
#define ISI_OPAQUE(symbol, upper)                    #symbol,
    ISI_FUNCTIONS(ISI_TYPED, ISI_OPAQUE)
#undef ISI_TYPED
#undef ISI_OPAQUE
};

constexpr bool upper_names_match() {
    for (size_t row = 0; row < std::size(symbols); ++row)
        for (size_t i = 0; upper_names[row][i] != '\0' || symbols[row][i] != '\0'; ++i)
            if (kestrion::ascii_upper(symbols[row][i]) != upper_names[row][i])
                return false;
    return true;
}

static_assert(ISI_FUNCTION_COUNT == 110);
static_assert(upper_names_match(), "a row's index constant is its symbol in upper case");

} // namespace

const char *kestrion::upper_name_of(isi_function_index row) { return upper_names[row]; }
