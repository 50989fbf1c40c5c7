#include "compilers/mkqem/mkqem.h"

#include "compilers/mkqem/catalogue_image.h"
#include "compilers/mkqem/catalogue_source.h"

#include <optional>

namespace kestrion {

namespace {

struct mkqem_options {
    bool list = false;
    std::string reference;
    std::optional<code_set> target;
};

code_set code_set_named(const std::string &name) {
    if (name == "utf-8")
        return code_set::utf_8;
    if (name == "8859-1")
        return code_set::latin_1;
    throw usage_error("--code-set takes utf-8 or 8859-1, not '" + name + "'");
}

catalogue_texts texts_of(const catalogue_source &source) {
    catalogue_texts texts;
    for (const auto &[number, message] : source.messages)
        texts.emplace(number, message.text + '\n');
    return texts;
}

std::vector<output_file> compile(const mkqem_options &options, const compiler_run &run,
                                 diagnostics &said) {
    if (run.output.empty())
        throw usage_error("no output is named; -o FILE names it");
    const catalogue_source source = parse_catalogue(
        source_file::read(run.sources[0]), options.target.value_or(code_set::as_it_is), said);
    if (options.reference.empty()) {
        check_arguments(source, said);
    } else {
        const catalogue_source english =
            parse_catalogue(source_file::read(options.reference), code_set::as_it_is, said);
        check_arguments(english, said);
        check_translation(source, english, said);
    }
    if (said.failed())
        return {};
    return {{run.output, encode_catalogue(texts_of(source))}};
}

catalogue_texts texts_of_listing(const std::string &listing) {
    diagnostics unheard(nullptr);
    return texts_of(parse_catalogue({"listing", listing}, code_set::as_it_is, unheard));
}

// Texts that no source can hold, and bytes that no compilation lays out, come from other makers.
std::vector<output_file> list(const compiler_run &run, diagnostics &said) {
    const source_file catalogue = source_file::read(run.sources[0]);
    const catalogue_texts texts = decode_catalogue(catalogue.text());
    const std::string listing = list_catalogue(texts);
    const catalogue_texts again = texts_of_listing(listing);
    for (const auto &[number, text] : texts)
        if (const auto found = again.find(number); found == again.end() || found->second != text)
            said.loss(catalogue, {}, "a source cannot hold message " + std::to_string(number),
                      "write its text anew; a text has no null byte and ends in one line feed");
    if (again == texts && encode_catalogue(texts) != catalogue.text())
        said.warning(catalogue, {}, "mkqem did not lay this catalogue out",
                     "the listing compiles to the same messages, not to the same bytes");
    return {{run.output, listing}};
}

} // namespace

int mkqem_main(int argc, char **argv, FILE *messages) {
    mkqem_options options;
    const auto run = [&](const compiler_run &line, diagnostics &said) {
        if (!options.list)
            return compile(options, line, said);
        if (!options.reference.empty() || options.target)
            throw usage_error("--list goes with no other option of a compilation");
        return list(line, said);
    };
    const compiler self = {
        .name = "mkqem",
        .synopsis = "-o FILE [--reference SOURCE] [--code-set NAME] SOURCE\n"
                    "       mkqem --list [-o FILE] CATALOGUE",
        .summary = "Compiles the source of a message catalogue.",
        .options =
            {
                {"reference", 'r', "SOURCE", "hold the texts against this English source",
                 [&](const std::string &value) { options.reference = value; }},
                {"code-set", 'c', "NAME", "the source is UTF-8; store in utf-8 or 8859-1",
                 [&](const std::string &value) { options.target = code_set_named(value); }},
                {"list", 'l', nullptr, "print a compiled catalogue as a source",
                 [&](const std::string &) { options.list = true; }},
            },
        .compile = run,
    };
    return compiler_main(argc, argv, self, messages);
}

} // namespace kestrion
