// The shipped locales, each beside the C library's locale of the same source and charmap. The C
// library's are made for the test, in a directory of its own.

#pragma once

#include "support/temp_dir.h"
#include <kestrion/categories.h>
#include <kestrion/ext_funcs.h>

#include <fstream>
#include <gtest/gtest.h>
#include <locale.h>
#include <sstream>
#include <stdlib.h>
#include <string>
#include <vector>

// The C library keeps a copy of LOCPATH that it never gives back.
extern "C" const char *__lsan_default_suppressions();
extern "C" [[gnu::used]] inline const char *__lsan_default_suppressions() {
    return "leak:argz_add_sep\n";
}

// A row of the list of what is shipped.
struct shipped_locale {
    std::string source, charmap, code_set, object;
};

inline void PrintTo(const shipped_locale &row, std::ostream *out) {
    *out << row.source << " " << row.charmap;
}

inline std::vector<shipped_locale> shipped() {
    std::vector<shipped_locale> found;
    std::ifstream list(KESTRION_SOURCE_DIR "/locales/shipped");
    for (std::string line; std::getline(list, line);) {
        shipped_locale row;
        if (!line.empty() && line[0] != '#' &&
            std::istringstream(line) >> row.source >> row.charmap >> row.code_set >> row.object)
            found.push_back(row);
    }
    return found;
}

inline std::string shipped_locale_name(const testing::TestParamInfo<shipped_locale> &info) {
    std::string name = info.param.object.substr(0, info.param.object.find('.'));
    name[name.find('/')] = '_';
    return name;
}

// The engine's record and the C library's locale, which is the thread's while this lives.
class locale_pair {
public:
    explicit locale_pair(const shipped_locale &row) : row_(row) {
        make_library_locale();
        library = newlocale(LC_ALL_MASK, "peer", nullptr);
        EXPECT_NE(library, nullptr) << "localedef made no locale";
        if (library != nullptr)
            uselocale(library);
        gl_create_null_locale_4(&engine);
        char *loaded =
            set_categories(engine, GL_CAT_ALL, row.object.c_str(), KESTRION_BUILD_DIR "/gls/lc11");
        EXPECT_NE(loaded, nullptr) << engine->err;
        gl_destroystring(loaded);
        engine->err = 0;
    }
    ~locale_pair() {
        uselocale(LC_GLOBAL_LOCALE);
        if (library != nullptr)
            freelocale(library);
        gl_lc_unload(engine);
    }
    locale_pair(const locale_pair &) = delete;
    locale_pair &operator=(const locale_pair &) = delete;

    locale_t library = nullptr;
    locale_rec *engine = nullptr;

private:
    // All categories of the shipped source but the collation, which takes long and is not compared.
    void make_library_locale() const {
        std::string text =
            "comment_char %\nescape_char /\nLC_COLLATE\ncopy \"POSIX\"\nEND LC_COLLATE\n";
        for (const std::string category :
             {"LC_CTYPE", "LC_MONETARY", "LC_NUMERIC", "LC_TIME", "LC_MESSAGES", "LC_PAPER",
              "LC_NAME", "LC_ADDRESS", "LC_TELEPHONE", "LC_MEASUREMENT", "LC_IDENTIFICATION"})
            text += category + "\ncopy \"" + row_.source + "\"\nEND " + category + "\n";
        // Some sources make localedef fall over when their categories are copied one by one.
        if (!localedef(directory_.write("source", text)))
            localedef(row_.source);
        setenv("LOCPATH", directory_.path().c_str(), 1);
    }

    bool localedef(const std::string &source) const {
        std::string command = "localedef --quiet -c -i " + source + " -f " + row_.charmap + " " +
                              directory_.at("peer") + " >" + directory_.at("said") + " 2>&1";
        // The status is 1 for warnings, of which there are many.
        [[maybe_unused]] int status = system(command.c_str());
        return directory_.holds("peer/LC_CTYPE");
    }

    shipped_locale row_;
    temp_dir directory_;
};
