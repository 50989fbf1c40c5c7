#include "compilers/posix/source_library.h"

#include "compilers/posix/statement_reader.h"

#include <set>

namespace kestrion {
namespace {

constexpr int deepest_copy = 16;

} // namespace

const locale_source &source_library::open(const std::string &name) {
    std::unique_ptr<source_file> &file = files_[name];
    if (!file)
        file = find_source_file(name, directories_);
    std::unique_ptr<locale_source> &source = sources_[name];
    if (!source)
        source = std::make_unique<locale_source>(*file);
    return *source;
}

const locale_source &source_library::open_from(const source_place &place, const std::string &name) {
    try {
        return open(name);
    } catch (const compiler_failure &missing) {
        throw source_error(place, missing.what(), "put the source there, or name its directory");
    }
}

// Who copies whom, from the innermost source outwards.
struct source_library::copy_chain {
    const locale_source *source;
    copy_chain *outer;
    source_place copied_at;
    int depth;
};

// One walk over a category with all that it copies.
struct source_library::category_walk {
    std::string_view category;
    const std::function<void(const source_statement &)> &handler;
    std::set<const locale_source *> done; // a second copy adds nothing, and could go on for ever
};

void source_library::for_each_statement(
    const locale_source &source, std::string_view category,
    const std::function<void(const source_statement &)> &handler) {
    category_walk walk{category, handler, {}};
    visit(source, walk, nullptr);
}

void source_library::visit(const locale_source &source, category_walk &walk, copy_chain *chain) {
    source_place asked_at = chain ? chain->copied_at : source_place{&source.file(), 0};
    for (copy_chain *c = chain; c != nullptr; c = c->outer)
        if (c->source == &source || c->depth >= deepest_copy)
            throw source_error(asked_at, "this copy comes back to itself or goes too deep",
                               "copy a category that copies nothing");
    if (!walk.done.insert(&source).second)
        return;
    const locale_source::category *found = source.find(walk.category);
    if (found == nullptr)
        throw source_error(asked_at, source.file().name() + " has no " + std::string(walk.category),
                           "write the category, or copy it from another source");
    statement_reader reader(source, *found);
    source_statement statement;
    while (reader.next(statement)) {
        if (statement.keyword() != "copy") {
            walk.handler(statement);
            continue;
        }
        if (statement.tokens.size() != 2 || statement.tokens[1].kind != token_kind::string)
            throw source_error(statement.place(), "expected the name of a source after copy",
                               "write copy \"NAME\"");
        copy_chain here{&source, chain, statement.place(1), chain ? chain->depth + 1 : 1};
        const locale_source &other =
            open_from(statement.place(1), std::string(statement.tokens[1].text));
        visit(other, walk, &here);
    }
}

} // namespace kestrion
