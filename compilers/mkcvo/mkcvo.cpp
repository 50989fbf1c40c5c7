#include "compilers/mkcvo/mkcvo.h"

#include "compilers/head_lines.h"
#include "compilers/mkcvo/code_set.h"
#include "compilers/mkcvo/conversion.h"
#include "compilers/mkcvo/join.h"
#include "compilers/posix/transliteration.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

namespace kestrion {

namespace {

constexpr std::string_view shifted_prefix = "shifted:";

struct mkcvo_options {
    std::vector<std::string> charmap_directories;
    std::vector<std::string> locale_directories;
    std::string translit;
    std::map<char32_t, code_sequence> near_bytes;
    std::optional<char32_t> substitute;
    code_sequence shift_in{1, {0x0e}};
    code_sequence shift_out{1, {0x0f}};
    bool list = false;
};

char32_t parse_character(const std::string &text) {
    uint32_t value = 0;
    const char *const end = text.data() + text.size();
    if (text.starts_with("U+") && text.size() > 2) {
        const auto [stop, error] = std::from_chars(text.data() + 2, end, value, 16);
        if (error == std::errc() && stop == end && value < code_point_limit)
            return value;
    }
    throw usage_error("'" + text + "' is not a character; write it as U+003F");
}

code_sequence parse_bytes(const std::string &text) {
    if (const auto bytes = sequence_of_hex(text))
        return *bytes;
    throw usage_error("'" + text + "' is not one to four bytes in hexadecimal, such as 0e");
}

// "U+005C=5c".
void add_near(mkcvo_options &options, const std::string &text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw usage_error("'" + text + "' has no '='; write U+005C=5c");
    options.near_bytes[parse_character(text.substr(0, equals))] =
        parse_bytes(text.substr(equals + 1));
}

// All that was read; it outlives the errors that point into it.
struct held_sources {
    std::vector<std::unique_ptr<source_file>> files;
    std::unique_ptr<source_library> library;

    const source_file &hold(std::unique_ptr<source_file> file) {
        return *files.emplace_back(std::move(file));
    }
};

// One of the two code sets that the command line names.
struct named_set {
    explicit named_set(const std::string &word)
        : shifted(word.starts_with(shifted_prefix)),
          name(shifted ? word.substr(shifted_prefix.size()) : word),
          unicode_bytes(word == "UCS-2"   ? 2
                        : word == "UCS-4" ? 4
                                          : 0) {}

    bool shifted;
    std::string name;
    int unicode_bytes; // 2 or 4 for a fixed-width Unicode form, else 0
    const source_file *file = nullptr;
    std::unique_ptr<charmap> map;

    void read(const mkcvo_options &options, held_sources &held) {
        if (unicode_bytes != 0)
            return;
        file = &held.hold(find_source_file(name, options.charmap_directories));
        map = std::make_unique<charmap>(*file);
    }

    code_set_side side(const mkcvo_options &options, diagnostics &said) const {
        return shifted ? shifted_side(std::string(shifted_prefix) + name, *map, options.shift_in,
                                      options.shift_out, said)
                       : side_of_charmap(name, *map);
    }
};

source_texts texts_read(const named_set &source, const named_set &target,
                        const held_sources &held) {
    source_texts read;
    for (const named_set *set : {&source, &target})
        if (set->file != nullptr)
            read.emplace(last_component(set->name), set->file->text());
    if (held.library != nullptr)
        for (const auto &[name, file] : held.library->files())
            read.emplace(last_component(name), file->text());
    return read;
}

// No UCS-2 text loses anything, but it cannot have all that the target could write.
code_set_side unicode_source(const code_set_side &target, int bytes, diagnostics &said) {
    const auto beyond =
        std::count_if(target.rows.begin(), target.rows.end(), [](const side_row &row) {
            return row.characters.size() == 1 && row.characters[0] > last_of_two_bytes;
        });
    if (bytes == 2 && beyond != 0)
        said.loss(std::to_string(beyond) + " characters of " + target.name +
                      " lie beyond U+FFFF, where two bytes do not reach",
                  "UCS-4 holds them");
    return unicode_side(target, bytes);
}

std::string checked(const conversion_object &object, const std::string &source) {
    std::string text = object_text(object);
    check_by_loading(text, source);
    return text;
}

std::string compile_charmaps(const mkcvo_options &options, const compiler_run &run,
                             held_sources &held, diagnostics &said) {
    if (run.sources.size() != 2)
        throw usage_error("two code sets are needed, the source and the target");
    named_set source(run.sources[0]);
    named_set target(run.sources[1]);
    if (source.unicode_bytes != 0 && target.unicode_bytes != 0)
        throw usage_error("one of the code sets must be a charmap");
    source.read(options, held);
    target.read(options, held);

    code_set_side from, to;
    if (source.unicode_bytes == 0)
        from = source.side(options, said);
    if (target.unicode_bytes == 0)
        to = target.side(options, said);
    if (source.unicode_bytes != 0)
        from = unicode_source(to, source.unicode_bytes, said);
    if (target.unicode_bytes != 0)
        to = unicode_side(from, target.unicode_bytes, options.substitute);

    substitutes instead{options.near_bytes, nullptr, options.substitute};
    std::unique_ptr<transliteration> translit;
    if (!options.translit.empty()) {
        held.library = std::make_unique<source_library>(options.locale_directories);
        translit =
            std::make_unique<transliteration>(*held.library, held.library->open(options.translit));
        instead.translit = translit.get();
    }
    conversion_object object = join(from, to, instead, said);
    if (said.failed())
        return {};
    object.head =
        head_lines("mkcvo", last_component(run.sources[0]) + " " + last_component(run.sources[1]),
                   texts_read(source, target, held));
    return checked(object, run.sources[0]);
}

// The only source of a command line; it may also be a charmap whose target was forgotten.
const source_file &listing_named(const std::string &path, held_sources &held) {
    const std::string advice = "; to join charmaps, name two, the source and the target";
    if (!std::filesystem::exists(path))
        throw usage_error("there is no listing " + path + advice);
    const source_file &listing = held.hold(std::make_unique<source_file>(source_file::read(path)));
    if (!is_listing(listing.text()))
        throw usage_error(path + " is not a listing" + advice);
    return listing;
}

std::vector<output_file> compile(const mkcvo_options &options, const compiler_run &run,
                                 held_sources &held, diagnostics &said) {
    if (run.output.empty())
        throw usage_error("no output is named; -o FILE names it");
    if (run.sources.size() == 1) {
        return {{run.output,
                 checked(read_listing(listing_named(run.sources[0], held)), run.sources[0])}};
    }
    return {{run.output, compile_charmaps(options, run, held, said)}};
}

std::vector<output_file> list(const compiler_run &run, held_sources &held, diagnostics &said) {
    if (run.sources.size() != 1)
        throw usage_error("--list takes one conversion object");
    const source_file file = source_file::read(run.sources[0]);
    const std::string listing = listing_text(read_object(file));
    const source_file &again = held.hold(std::make_unique<source_file>("listing", listing));
    if (object_text(read_listing(again)) != file.text())
        said.warning(file, {}, "mkcvo did not lay this object out",
                     "the listing compiles to the same conversions, not to the same bytes");
    return {{run.output, listing}};
}

std::vector<output_file> run_mkcvo(const mkcvo_options &options, const compiler_run &line,
                                   diagnostics &said) {
    held_sources held;
    try {
        return options.list ? list(line, held, said) : compile(options, line, held, said);
    } catch (const source_error &error) {
        said.error(*error.where.file, error.where.position(), error.what(), error.remedy);
        return {};
    }
}

} // namespace

int mkcvo_main(int argc, char **argv, FILE *messages) {
    mkcvo_options options;
    compiler self{
        .name = "mkcvo",
        .synopsis = "[options] -o FILE SOURCE TARGET\n       mkcvo --list [-o FILE] OBJECT",
        .summary =
            "Compiles two charmaps into a code-set conversion object.\n"
            "SOURCE and TARGET are charmaps by name or path, UCS-2 or UCS-4 for a fixed-width Unicode\n"
            "form, or shifted:CHARMAP for the 7-bit form of an EUC charmap with shift states. A listing\n"
            "in place of both compiles to the object that it was made of.",
        .most_sources = 2,
        .options =
            {
                {"charmaps", 'C', "DIR", "also look for charmaps here",
                 [&](const std::string &value) { options.charmap_directories.push_back(value); }},
                {"locales", 'L', "DIR", "also look for locale sources here",
                 [&](const std::string &value) { options.locale_directories.push_back(value); }},
                {"near", 'n', "U+XXXX=HEX", "write this character, if it has none, by these bytes",
                 [&](const std::string &value) { add_near(options, value); }},
                {"translit", 't', "LOCALE",
                 "write what this source's transliteration gives, inexactly",
                 [&](const std::string &value) { options.translit = value; }},
                {"substitute", 's', "U+XXXX", "write this for what has no counterpart, inexactly",
                 [&](const std::string &value) { options.substitute = parse_character(value); }},
                {"shift-in", 0, "HEX", "bytes that begin the shifted state (0e)",
                 [&](const std::string &value) { options.shift_in = parse_bytes(value); }},
                {"shift-out", 0, "HEX", "bytes that end it (0f)",
                 [&](const std::string &value) { options.shift_out = parse_bytes(value); }},
                {"list", 'l', nullptr, "print an object as a text that compiles to it",
                 [&](const std::string &) { options.list = true; }},
            },
        .compile =
            [&](const compiler_run &line, diagnostics &said) {
                options.charmap_directories.push_back("/usr/share/i18n/charmaps");
                options.locale_directories.push_back("/usr/share/i18n/locales");
                return run_mkcvo(options, line, said);
            },
    };
    return compiler_main(argc, argv, self, messages);
}

} // namespace kestrion
