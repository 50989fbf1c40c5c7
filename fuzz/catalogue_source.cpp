// A catalogue source of any bytes: it is refused with words, or what it compiles to lists as a
// source that compiles to the same bytes.

#include "compilers/mkqem/catalogue_source.h"
#include "compilers/mkqem/catalogue_image.h"

#include <stdint.h>
#include <stdlib.h>
#include <string>

using namespace kestrion;

namespace {

// The compiled bytes, or nothing for a source with errors.
std::string compiled(std::string text, code_set target) {
    diagnostics said(nullptr);
    const catalogue_source source = parse_catalogue({"source", std::move(text)}, target, said);
    check_arguments(source, said);
    catalogue_texts texts;
    for (const auto &[number, message] : source.messages) {
        if (message.places.size() != message.text.size() + 1)
            abort();
        texts.emplace(number, message.text + '\n');
    }
    if ((said.errors() == 0) && texts.empty())
        abort();
    return said.errors() != 0 ? "" : encode_catalogue(texts);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (const code_set target : {code_set::as_it_is, code_set::utf_8, code_set::latin_1}) {
        const std::string bytes = compiled(text, target);
        if (!bytes.empty() &&
            compiled(list_catalogue(decode_catalogue(bytes)), code_set::as_it_is) != bytes)
            abort();
    }
    return 0;
}
