// What the command hands to its messages, held against what the English source declares. The
// compiler holds the texts of all languages against the same declarations.

#include "compilers/mkqem/catalogue_source.h"
#include "passwords/message_texts.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace fs = std::filesystem;
using namespace kestrion;

namespace {

catalogue_source english() {
    diagnostics said;
    return parse_catalogue(source_file::read(KESTRION_SOURCE_DIR "/msg/en_us/pwseal.msg"),
                           code_set::as_it_is, said);
}

const struct {
    const char *name;
    const char *fixed;
    int32_t number;
} slots[] = {
#define PW_ROW(slot, number, text) {#slot, text, number},
    PW_MESSAGES(PW_ROW)
#undef PW_ROW
};

// The kinds of argument that follow `slot` in the calls of the command's sources: "none" for
// nullptr, "number" for &number, "text" for whatever else names a path.
std::set<std::string> uses_of(const std::string &slot, const std::string &sources) {
    std::set<std::string> kinds;
    const std::string call = slot + ", ";
    for (size_t at = 0; (at = sources.find(call, at)) != std::string::npos;) {
        at += call.size();
        const std::string argument = sources.substr(at, sources.find_first_of(",)", at) - at);
        kinds.insert(argument == "nullptr" ? "none" : argument == "&number" ? "number" : "text");
    }
    return kinds;
}

std::string sources_in(const fs::path &folder) {
    std::string text;
    for (const auto &entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".cpp")
            text += source_file::read(entry.path()).text();
    return text;
}

} // namespace

TEST(MessageUses, CallsGiveTheDeclaredArguments) {
    const catalogue_source source = english();
    const std::string sources =
        sources_in(KESTRION_SOURCE_DIR "/passwords") + sources_in(KESTRION_SOURCE_DIR "/tool");
    const std::set<std::string> unused = {"s_err_setperms", "s_err_perms"};
    for (const auto &slot : slots) {
        const std::set<std::string> kinds = uses_of(slot.name, sources);
        ASSERT_EQ(kinds.empty(), unused.contains(slot.name)) << slot.name;
        if (kinds.empty())
            continue;
        const bool both = kinds == std::set<std::string>{"number", "text"};
        const std::string given = both ? "any" : kinds.size() == 1 ? *kinds.begin() : "a mixture";
        EXPECT_EQ(given, signature_words(source.arguments_of(slot.number))) << slot.name;
    }
}

TEST(MessageUses, FixedTextsFitTheDeclaredArguments) {
    const catalogue_source source = english();
    for (const auto &slot : slots) {
        const auto found = find_misfit(slot.fixed, source.arguments_of(slot.number));
        EXPECT_FALSE(found) << slot.name << ": " << found->what;
        EXPECT_TRUE(std::string(slot.fixed).ends_with('\n') &&
                    source.messages.at(slot.number).text.ends_with('\n'))
            << slot.name;
    }
}
