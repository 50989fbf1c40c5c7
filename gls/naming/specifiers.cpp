#include <kestrion/specifiers.h>

#include "base/ascii_class.h"
#include "gls/naming/category_words.h"
#include "gls/naming/specifier_text.h"

#include <string.h>

using namespace kestrion;

namespace {

using text_view = std::string_view;

constexpr size_t max_spec_length = 285;
constexpr size_t messages_slot = GL_CAT_MESSAGES - gl_first_category;

int write_file_names(void *ctx, const parsed_spec &spec, char *out, text_view dir) {
    out_text text(out, room_for(spec.found, dir));
    for (int32_t i = 0; i < spec.found.count; ++i) {
        start_item(text, spec.found.of[i], i == 0);
        text.add_directory(dir);
        spec.add_file_name(text, i);
    }
    return finish(ctx, text);
}

// Parses a specifier that is to be turned into file names.
int parse_for_names(void *ctx, const char *spec, const char *regfile, parsed_spec &parsed) {
    const text_view text = view_of(spec);
    return text.size() > max_spec_length ? fail(ctx, GLS_ERR_SPECIFIER)
                                         : parsed.parse(ctx, text, regfile);
}

} // namespace

int gl_lc_spec2cs_num(void *ctx, const char *spec, const char *regfile) {
    parsed_spec parsed;
    return parsed.parse(ctx, view_of(spec), regfile) == 0 ? parsed.number : gl_unknown_code_set;
}

int gl_lc_spec2lc_fname(void *ctx, const char *spec, char *out, const char *regfile,
                        const char *dir) {
    parsed_spec parsed;
    if (parse_for_names(ctx, spec, regfile, parsed) != 0)
        return -1;
    return write_file_names(ctx, parsed, out, view_of(dir));
}

int gl_lc_spec2msg_dname(void *ctx, const char *spec, char *out, const char *regfile,
                         const char *dir) {
    parsed_spec parsed;
    if (parse_for_names(ctx, spec, regfile, parsed) != 0)
        return -1;
    const spec_item *const messages = parsed.found.in_slot(messages_slot);
    if (messages == nullptr)
        return fail(ctx, GLS_ERR_SPECIFIER);
    char name[gl_lc_fname_size];
    out_text whole(name, sizeof name);
    parsed.add_file_name(whole, static_cast<int32_t>(messages - parsed.found.of));
    const text_view cut_name(name, static_cast<size_t>(strchr(name, '/') - name) + 5);
    const text_view in_dir = view_of(dir);
    out_text text(out, gl_simple_spec_size + (in_dir.empty() ? 0 : in_dir.size() + 1));
    return finish(ctx, text.add_directory(in_dir).add(cut_name));
}

int gl_cs_nums2cv_fname(void *ctx, int from, int to, char *out, const char *dir) {
    const text_view in_dir = view_of(dir);
    out_text text(out, gl_cv_fname_size + (in_dir.empty() ? 0 : in_dir.size() + 1));
    return finish(ctx, text.add_directory(in_dir).add_hex(from).add_hex(to).add(".cvo"));
}

int gl_lc_pieces2lc_spec(void *ctx, const char *lang, const char *cs, const char *modifier,
                         char *out) {
    text_view language = view_of(lang).substr(0, gl_max_lang_length);
    language = language.substr(0, language.find('.'));
    const text_view code_set = view_of(cs).substr(0, gl_max_cs_digits);
    const text_view its_modifier = view_of(modifier).substr(0, gl_max_modifier_length);
    const size_t length = language_and_territory(language);
    if (length == 0 || length != language.size() || code_set.empty() ||
        ascii_hex_value(code_set[0]) < 0 || code_set.find('@') != code_set.npos)
        return fail(ctx, GLS_ERR_SPECIFIER);
    out_text text(out, gl_simple_spec_size);
    text.add(language).add('.').add(code_set);
    if (!its_modifier.empty())
        text.add('@').add(its_modifier);
    // What the pieces hold between their ends is seen by reading the result.
    const int32_t written = static_cast<int32_t>(strlen(out));
    return text.fits() && _gl_is_xopen_spec(out, written, nullptr) == written
               ? 0
               : fail(ctx, GLS_ERR_SPECIFIER);
}

int gl_lc_fname2lc_pieces(void *ctx, const char *fname, char *lang, char *cs, char *modifier) {
    text_view name = view_of(fname);
    const size_t length = language_and_territory(name);
    if (length == 0)
        return fail(ctx, GLS_ERR_SPECIFIER);
    if (length == name.size() || (name[length] != '/' && name[length] != '\\'))
        return -1;
    int number = 0;
    size_t at = length + 1;
    for (; at < name.size() && at < length + 5 && ascii_hex_value(name[at]) >= 0; ++at)
        number = number << 4 | ascii_hex_value(name[at]);
    if (at == length + 1)
        return fail(ctx, GLS_ERR_SPECIFIER);
    for (size_t i = 0; i < length; ++i)
        lang[i] = i < length - 2 ? ascii_lower(name[i]) : ascii_upper(name[i]);
    lang[length] = '\0';
    snprintf(cs, gl_max_cs_digits + 1, "%d", number);
    const text_view rest = name.substr(at, name.find('.', at) - at);
    modifier[rest.copy(modifier, gl_max_modifier_length)] = '\0';
    return 0;
}

int gl_lc_spec2lc_norm(void *ctx, const char *spec, char *out, const char *regfile) {
    parsed_spec parsed;
    if (parsed.parse(ctx, view_of(spec), regfile) != 0)
        return -1;
    if (!parsed.found.has_all())
        return fail(ctx, GLS_ERR_SPECIFIER);
    out_text text(out, room_for(parsed.found, {}));
    for (int32_t i = 0; i < parsed.found.count; ++i) {
        char name[gl_lc_fname_size];
        out_text whole(name, sizeof name);
        parsed.add_file_name(whole, i);
        name_pieces pieces;
        char simple[gl_simple_spec_size];
        if (gl_lc_fname2lc_pieces(ctx, name, pieces.lang, pieces.cs, pieces.modifier) != 0 ||
            gl_lc_pieces2lc_spec(ctx, pieces.lang, pieces.cs, pieces.modifier, simple) != 0)
            return -1;
        start_item(text, parsed.found.of[i], i == 0);
        text.add(simple);
    }
    return finish(ctx, text);
}

int gl_lc_spec2lc_short(void *ctx, const char *spec, char *out, const char *regfile) {
    parsed_spec parsed;
    if (parsed.parse(ctx, view_of(spec), regfile) != 0)
        return -1;
    if (!parsed.found.has_all())
        return fail(ctx, GLS_ERR_SPECIFIER);
    bool all_equal = true;
    for (int32_t i = 1; i < parsed.found.count; ++i)
        all_equal = all_equal && parsed.found.of[i].body == parsed.found.of[0].body;
    out_text text(out, room_for(parsed.found, {}));
    for (size_t slot = 0; slot < (all_equal ? 1 : gl_category_count); ++slot)
        text.add(slot == 0 ? "" : ";").add(parsed.found.in_slot(slot)->body);
    return finish(ctx, text);
}

int gl_lc_short2lc_long(void *ctx, const char *short_spec, char *out, const char *regfile) {
    text_view rest = view_of(short_spec);
    const text_view first = rest.substr(0, rest.find(';'));
    char composed[gl_composite_spec_size];
    out_text text(composed, sizeof composed);
    bool another = true; // a separator comes before what is left
    for (size_t slot = 0; slot < gl_category_count; ++slot) {
        const text_view piece = rest.substr(0, rest.find(';'));
        // After the last separator nothing is left, and the first piece serves for the others.
        another = piece.size() < rest.size();
        rest.remove_prefix(piece.size() + (another ? 1 : 0));
        text.add(slot == 0 ? text_view() : spec_separator);
        text.add(category_words[slot].text).add(spec_equals);
        text.add(piece.empty() ? first : piece);
    }
    parsed_spec parsed;
    if (!text.fits() || another)
        return fail(ctx, GLS_ERR_SPECIFIER);
    if (parsed.parse(ctx, composed, regfile) != 0)
        return -1;
    memcpy(out, composed, strlen(composed) + 1);
    return 0;
}

int gl_is_lc_spec(void *ctx, const char *text) {
    int32_t &word = *_gl_ext_errno(ctx);
    const int32_t word_before = word;
    char name[gl_composite_spec_size];
    const int result = gl_lc_spec2lc_fname(ctx, text, name, nullptr, nullptr);
    word = word_before;
    return result == 0;
}

int gl_lc_spec2category(void *ctx, const char *spec, int category, char *out, const char *regfile) {
    if (category < gl_first_category || category > GL_CAT_MESSAGES)
        return fail(ctx, GLS_ERR_ARGUMENT);
    parsed_spec parsed;
    if (parsed.parse(ctx, view_of(spec), regfile) != 0)
        return -1;
    const spec_item *const wanted =
        parsed.found.in_slot(static_cast<size_t>(category - gl_first_category));
    if (wanted == nullptr)
        return fail(ctx, GLS_ERR_SPECIFIER);
    out_text text(out, gl_simple_spec_size);
    return finish(ctx, text.add(wanted->body));
}
