// The locale sources of one compilation, and the statements of a category with what it copies.
#pragma once

#include "compilers/posix/locale_source.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrion {

// The sources of one compilation: finds them by name, reads each once, and keeps them.
class source_library {
public:
    explicit source_library(std::vector<std::string> directories)
        : directories_(std::move(directories)) {}

    // A locale source by its name or path. Throws compiler_failure or source_error.
    const locale_source &open(const std::string &name);
    // The same for a source that another one names at `place`: what is missing is a source_error
    // there.
    const locale_source &open_from(const source_place &place, const std::string &name);

    // The files read so far, by the names that they were asked for.
    const std::map<std::string, std::unique_ptr<source_file>> &files() const { return files_; }

    // Hands each statement of a category to `handler`, and for copy "name" the statements of that
    // source's category of the same name, once for each source. A source without the category, a copy of a copy
    // of itself, or copies nested deeper than 16 are a source_error.
    void for_each_statement(const locale_source &source, std::string_view category,
                            const std::function<void(const source_statement &)> &handler);

private:
    struct copy_chain;
    struct category_walk;
    void visit(const locale_source &source, category_walk &walk, copy_chain *chain);

    std::vector<std::string> directories_;
    std::map<std::string, std::unique_ptr<source_file>> files_;
    std::map<std::string, std::unique_ptr<locale_source>> sources_;
};

} // namespace kestrion
