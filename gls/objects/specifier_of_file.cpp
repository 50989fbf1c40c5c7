#include <kestrion/locale_file.h>

#include "gls/base/name_separators.h"
#include "gls/naming/specifier_text.h"

#include <stdio.h>

using namespace kestrion;

namespace {

// Adds the specifier of one file name, its code set by the name in the head of the file.
int add_spec_of_file(void *ctx, std::string_view name, out_text &out) {
    char path[gl_file_name_size];
    if (name.size() >= sizeof path)
        return fail(ctx, GLS_ERR_SPECIFIER);
    path[name.copy(path, name.size())] = '\0';
    name_pieces pieces;
    char simple[gl_simple_spec_size];
    // The rest of the name is to be a modifier, not a way to some other file.
    if (name.find_first_of(gl_name_separators) != name.find_last_of(gl_name_separators) ||
        gl_lc_fname2lc_pieces(ctx, path, pieces.lang, pieces.cs, pieces.modifier) != 0 ||
        gl_lc_pieces2lc_spec(ctx, pieces.lang, pieces.cs, pieces.modifier, simple) != 0)
        return fail(ctx, GLS_ERR_SPECIFIER);
    FILE *const file = gl_path_search_no_ext(ctx, path, "lc", "11");
    if (file == nullptr)
        return -1;
    char code_set[gl_cs_name_size];
    int32_t error = GLS_OK;
    const bool good = read_file_header(file, code_set, &error) != 0;
    fclose(file);
    if (!good)
        return fail(ctx, error);
    out_text spec(simple, sizeof simple);
    spec.add(pieces.lang).add('.').add(code_set);
    if (pieces.modifier[0] != '\0')
        spec.add('@').add(pieces.modifier);
    const std::string_view written = simple;
    const auto length = static_cast<int32_t>(written.size());
    // The head may hold any text where the code set's name is expected.
    if (!spec.fits() || _gl_is_xopen_spec(simple, length, nullptr) != length)
        return fail(ctx, GLS_ERR_MALFORMED);
    out.add(written);
    return 0;
}

} // namespace

// The code set's name comes from the files, so no registry is asked.
int gl_lc_fname2lc_spec(void *ctx, const char *fname, char *out, const char *) {
    spec_items found;
    if (!cut_spec(view_of(fname), found))
        return fail(ctx, GLS_ERR_SPECIFIER);
    out_text text(out, room_for(found, {}));
    for (int32_t i = 0; i < found.count; ++i) {
        start_item(text, found.of[i], i == 0);
        if (add_spec_of_file(ctx, found.of[i].body, text) != 0)
            return -1;
    }
    return finish(ctx, text);
}
