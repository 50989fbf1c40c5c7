// The reader of locale sources: every category to its end, every text in its characters.

#include "compilers/posix/locale_source.h"
#include "compilers/posix/source_place.h"
#include "compilers/posix/statement_reader.h"

#include <stdlib.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const kestrion::source_file file("fuzz",
                                     std::string(reinterpret_cast<const char *>(data), size));
    try {
        const kestrion::locale_source source(file);
        for (const char *name : {"LC_CTYPE", "LC_TIME", "LC_COLLATE"}) {
            const auto *category = source.find(name);
            if (category == nullptr)
                continue;
            kestrion::statement_reader reader(source, *category);
            kestrion::source_statement statement;
            while (reader.next(statement)) {
                if (statement.tokens.empty())
                    abort();
                for (const kestrion::source_token &token : statement.tokens)
                    source.elements(token);
            }
        }
    } catch (const kestrion::source_error &error) {
        if (error.where.position().line == 0 || error.remedy.empty())
            abort();
    }
    return 0;
}
