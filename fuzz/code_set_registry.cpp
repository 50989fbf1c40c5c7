// The registry file and the grammar of specifiers over it: the first line of the input is taken as
// a specifier, the rest as the registry.

#include <kestrion/code_set_registry.h>
#include <kestrion/specifiers.h>

#include <stdio.h>
#include <stdlib.h>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::string spec = input.substr(0, input.find('\n'));
    const std::string registry = spec.size() == size ? "" : input.substr(spec.size() + 1);
    // One file for the whole run, in the current directory of the process.
    static char name[] = "/tmp/kestrion-registry-XXXXXX";
    static FILE *const file = fdopen(mkstemp(name), "w");
    rewind(file);
    fwrite(registry.data(), 1, registry.size(), file);
    fflush(file);
    if (ftruncate(fileno(file), static_cast<off_t>(registry.size())) != 0)
        abort();

    int32_t word = 0;
    char out[gl_composite_spec_size];
    gl_lc_spec2cs_num(&word, spec.c_str(), name);
    gl_cache_registry(&word, name);
    for (const auto run : {gl_lc_spec2lc_norm, gl_lc_spec2lc_short, gl_lc_short2lc_long})
        run(&word, spec.c_str(), out, nullptr);
    // A normal form that was made without the registry is its own.
    if (registry.empty() && gl_lc_spec2lc_norm(&word, spec.c_str(), out, nullptr) == 0) {
        const std::string once = out;
        if (gl_lc_spec2lc_norm(&word, once.c_str(), out, nullptr) != 0 || once != out)
            abort();
    }
    char lang[7];
    char cs[6];
    char modifier[5];
    gl_lc_fname2lc_pieces(&word, spec.c_str(), lang, cs, modifier);
    gl_free_registry_cache();
    return 0;
}
