#include "compilers/mklco/mklco.h"

#include "compilers/head_lines.h"
#include "compilers/mklco/collation_by_code.h"
#include "compilers/mklco/collation_source.h"
#include "compilers/mklco/ctype_source.h"
#include "compilers/mklco/listing.h"
#include "compilers/mklco/sections_source.h"

#include <kestrion/code_set_registry.h>
#include <kestrion/gls_errors.h>

#include <filesystem>
#include <map>

namespace kestrion {
namespace {

// Where the operating system keeps its sources.
constexpr const char *system_sources = "/usr/share/i18n";
// The charmap that knows the width of every character.
constexpr const char *widths_charmap = "UTF-8";

struct mklco_options {
    bool list = false;
    bool of_a_compilation = false; // one of the next was given
    std::string charmap;
    std::string code_set;
    std::string registry; // empty: the one that the runtime finds
    std::string calendar = "gregorian";
    std::string collation; // empty: as suits the locale
    std::vector<std::string> directories;

    std::vector<std::string> below(const char *folder) const {
        std::vector<std::string> found;
        for (const std::string &directory : directories)
            found.push_back(directory + "/" + folder);
        return found;
    }
};

std::string collation_named(const std::string &name) {
    if (name != "as_specified" && name != "code" && name != "thai_smo")
        throw usage_error("--collation takes as_specified, code or thai_smo, not '" + name + "'");
    return name;
}

std::string calendar_named(const std::string &name) {
    if (is_calendar(name))
        return name;
    throw usage_error("--calendar takes gregorian, hebrew, islamic or arabic, not '" + name + "'");
}

// The sources of one object, kept until the last message about them is printed.
class compilation {
public:
    compilation(const mklco_options &options, const std::string &source, diagnostics &said)
        : options_(options), name_(source), said_(said), library_(options.below("locales")) {}

    locale_object run();

private:
    const source_file &charmap_file(const std::string &name) {
        std::unique_ptr<source_file> &file = charmap_files_[name];
        if (!file)
            file = find_source_file(name, options_.below("charmaps"));
        return *file;
    }
    void check_thai(const charmap &map) const;
    void check_code_set(const std::string &name);
    void collate(const locale_source &source, const charmap &map, locale_object &object);
    void describe(locale_object &object, const charmap &map) const;

    const mklco_options &options_;
    std::string name_;
    diagnostics &said_;
    source_library library_;
    std::map<std::string, std::unique_ptr<source_file>> charmap_files_;
};

locale_object compilation::run() {
    locale_object object;
    try {
        const locale_source &source = library_.open(name_);
        charmap map(charmap_file(options_.charmap));
        std::unique_ptr<charmap> widths;
        if (!map.has_widths)
            widths = std::make_unique<charmap>(charmap_file(widths_charmap));
        compile_ctype(library_, source, map, widths.get(), said_, object);
        text_encoder encoder(library_, source, map, said_);
        compile_sections(library_, source, encoder, said_, options_.calendar, object);
        collate(source, map, object);
        describe(object, map);
        check_code_set(object.code_set);
    } catch (const source_error &error) {
        said_.error(*error.where.file, error.where.position(), error.what(), error.remedy);
    }
    return object;
}

// The method of Thai orders the bytes of TIS-620 and of code sets that extend it.
void compilation::check_thai(const charmap &map) const {
    constexpr uint32_t first_letter = 0x0E01, last_sign = 0x0E5B;
    constexpr uint32_t first_byte = 0xA1, last_byte = 0xFB;
    const charmap_row *first = map.find(first_letter), *last = map.find(last_sign);
    if (map.mb_cur_max > 1 || first == nullptr || first->sequence.packed() != first_byte ||
        last == nullptr || last->sequence.packed() != last_byte)
        throw compiler_failure(options_.charmap + " does not have the Thai letters in single bytes "
                                                  "from A1 to FB, where thai_smo expects them");
}

void compilation::check_code_set(const std::string &name) {
    gl_free_registry_cache(); // it may hold another file
    int32_t error = GLS_OK;
    const std::string &registry = options_.registry;
    const int number = gl_cs_name2cs_num(&error, name.c_str(), registry.c_str());
    if (!registry.empty() && error != GLS_OK && error != GLS_ERR_SPECIFIER)
        throw compiler_failure(registry + ": this is not a registry of code sets");
    if (number == gl_unknown_code_set)
        said_.warning("the registry of code sets has no name " + name,
                      "give the name that it has by --code-set, or add it to the registry");
}

// The order: what an option says, else the one that fits bytes of Thai, code order for the locales
// that are defined by it or have no order, and the source's own for all others.
void compilation::collate(const locale_source &source, const charmap &map, locale_object &object) {
    std::string method = options_.collation;
    const charmap_row *ko_kai = map.find(0x0E01);
    if (method.empty() && map.mb_cur_max == 1 && ko_kai != nullptr)
        method = "thai_smo";
    const bool ordered = source.find("LC_COLLATE") != nullptr;
    if (method.empty() && (!ordered || name_ == "C" || name_ == "POSIX"))
        method = "code";
    object.collation.thai = method == "thai_smo";
    if (object.collation.thai)
        check_thai(map);
    else if (method == "code")
        collate_by_code(object);
    else
        compile_collation(library_, source, map, said_, object);
}

// The head lines: what made the object, and of what.
void compilation::describe(locale_object &object, const charmap &map) const {
    source_texts read;
    for (const auto *files : {&library_.files(), &charmap_files_})
        for (const auto &[name, file] : *files)
            read.emplace(last_component(name), file->text());
    object.code_set = options_.code_set.empty() ? map.code_set_name : options_.code_set;
    object.head =
        head_lines("mklco", last_component(name_) + " " + last_component(options_.charmap), read);
}

std::string checked(const locale_object &object, const std::string &source) {
    std::string bytes = write_object(object);
    check_by_loading(bytes, source);
    return bytes;
}

std::vector<output_file> compile(const mklco_options &options, const compiler_run &run,
                                 diagnostics &said) {
    if (run.output.empty())
        throw usage_error("no output is named; -o FILE names it");
    if (options.charmap.empty()) {
        source_file listing = source_file::read(run.sources[0]);
        if (!is_listing(listing))
            throw usage_error("no charmap is named; --charmap NAME names it");
        if (options.of_a_compilation)
            throw usage_error("a listing goes with no option of a compilation");
        try {
            return {{run.output, checked(read_listing(listing), run.sources[0])}};
        } catch (const source_error &error) {
            said.error(listing, error.where.position(), error.what(), error.remedy);
            return {};
        }
    }
    locale_object object = compilation(options, run.sources[0], said).run();
    if (said.failed())
        return {};
    return {{run.output, checked(object, run.sources[0])}};
}

// Objects of other makers may hold what a listing does not show: the bytes between two numbers, the
// order of sections, tables whose characters differ.
std::vector<output_file> list(const compiler_run &run, diagnostics &said) {
    const source_file file = source_file::read(run.sources[0]);
    std::string listing = write_listing(read_object(file));
    if (write_object(read_listing({"listing", listing})) != file.text())
        said.warning(file, {}, "mklco did not lay this object out",
                     "the listing compiles to the same data, not to the same bytes");
    return {{run.output, std::move(listing)}};
}

std::vector<output_file> run_mklco(mklco_options &options, const compiler_run &run,
                                   diagnostics &said) {
    if (!options.list) {
        options.directories.emplace_back(system_sources);
        return compile(options, run, said);
    }
    if (options.of_a_compilation)
        throw usage_error("--list goes with no option of a compilation");
    return list(run, said);
}

} // namespace

int mklco_main(int argc, char **argv, FILE *messages) {
    mklco_options options;
    const auto given = [&options](auto set) {
        return [&options, set](const std::string &value) {
            options.of_a_compilation = true;
            set(value);
        };
    };
    const compiler self = {
        .name = "mklco",
        .synopsis = "-o FILE --charmap NAME [--code-set NAME] LOCALE\n"
                    "       mklco -o FILE LISTING\n"
                    "       mklco --list [-o FILE] OBJECT",
        .summary = "Compiles a POSIX locale source and a charmap to a locale object.",
        .options =
            {
                {"charmap", 'f', "NAME", "the charmap of the code set",
                 given([&](const std::string &value) { options.charmap = value; })},
                {"code-set", 'c', "NAME", "the code set's name in the registry of code sets",
                 given([&](const std::string &value) { options.code_set = value; })},
                {"registry", 0, "FILE", "the registry of code sets that knows the name",
                 given([&](const std::string &value) {
                     options.registry = std::filesystem::absolute(value);
                 })},
                {"calendar", 0, "NAME", "gregorian, hebrew, islamic or arabic",
                 given(
                     [&](const std::string &value) { options.calendar = calendar_named(value); })},
                {"collation", 0, "NAME", "as_specified by the source, by code, or by thai_smo",
                 given([&](const std::string &value) {
                     options.collation = collation_named(value);
                 })},
                {"directory", 'I', "DIR", "look for locales/ and charmaps/ here first",
                 given([&](const std::string &value) { options.directories.push_back(value); })},
                {"list", 'l', nullptr, "print an object as a text that compiles to it",
                 [&](const std::string &) { options.list = true; }},
            },
        .compile = [&](const compiler_run &run,
                       diagnostics &said) { return run_mklco(options, run, said); },
    };
    return compiler_main(argc, argv, self, messages);
}

} // namespace kestrion
