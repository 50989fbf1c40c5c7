#include "gls/engine_test.h"
#include "tests/support/temp_dir.h"
#include <kestrion/code_set_registry.h>
#include <kestrion/path_search.h>

#include <sys/stat.h>

namespace {

// What a search finds: the first line of the file, or "error N".
std::string found_by(FILE *(*search)(void *, const char *, const char *, const char *),
                     const std::string &name, const char *version = "11") {
    int32_t word = 42;
    FILE *const file = search(&word, name.c_str(), "lc", version);
    if (file == nullptr)
        return "error " + std::to_string(word);
    EXPECT_EQ(word, 42) << "a found file leaves the error word alone";
    char line[64] = {};
    EXPECT_NE(fgets(line, sizeof line, file), nullptr);
    fclose(file);
    return line;
}

std::string directory_found(const char *name, const char *old = nullptr) {
    int32_t word = 0;
    char *const copy = old != nullptr ? strdup(old) : nullptr;
    char *const rpath = gl_path_search_rpath(copy, &word, name, "lc", "11");
    const std::string text = rpath != nullptr ? rpath : "none";
    _gl_free_ptr(rpath);
    return text;
}

class PathSearch : public testing::Test {
protected:
    PathSearch() {
        unsetenv("GL_PATH");
        setenv("KESTRIONDIR", root.path().c_str(), 1);
        root.write("gls/lc11/both", "versioned");
        root.write("gls/lc/both", "plain");
        root.write("gls/lc/old", "old");
        root.write("one/in_one", "one");
        root.write("two/in_two", "two");
        root.write("two/in_one", "two");
    }
    void set_path(const std::string &list) { setenv("GL_PATH", list.c_str(), 1); }

    temp_dir root;
};

TEST_F(PathSearch, VersionedDirectoryComesFirst) {
    for (const auto search : {gl_path_search, gl_path_search_no_ext}) {
        EXPECT_EQ(found_by(search, "both"), "versioned");
        EXPECT_EQ(found_by(search, "old"), "old");
        EXPECT_EQ(found_by(search, "both", ""), "plain");
        EXPECT_EQ(found_by(search, "none"), "error 8");
    }
    EXPECT_EQ(directory_found("both"), root.at("gls/lc11"));
    EXPECT_EQ(directory_found("old"), root.at("gls/lc"));
    EXPECT_EQ(directory_found("none", "/earlier"), "none");
}

TEST_F(PathSearch, ListOfDirectoriesDecidesAlone) {
    set_path(":" + root.at("missing") + "::" + root.at("one") + ":" + root.at("two") + ":");
    EXPECT_EQ(found_by(gl_path_search, "in_one"), "one");
    EXPECT_EQ(found_by(gl_path_search, "in_two"), "two");
    EXPECT_EQ(directory_found("in_two", "/earlier"), root.at("two"));
    EXPECT_EQ(found_by(gl_path_search, "both"), "error 8") << "no fall-back to the installation";
    EXPECT_EQ(directory_found("both"), "none");
    set_path(":::");
    EXPECT_EQ(found_by(gl_path_search, "both"), "error 8") << "nothing to try";
    set_path("");
    EXPECT_EQ(found_by(gl_path_search, "both"), "versioned");
}

TEST_F(PathSearch, LongListsAndNamesOutgrowTheStack) {
    set_path(std::string(3000, 'x') + ":" + root.at("two"));
    EXPECT_EQ(found_by(gl_path_search, "in_two"), "two");
    const counting_allocator memory;
    EXPECT_EQ(found_by(gl_path_search, std::string(5000, 'n')), "error 8");
    counting_allocator::fail_call(0);
    EXPECT_EQ(found_by(gl_path_search, "in_two"), "error 3");
    counting_allocator::fail_call(1);
    int32_t word = 0;
    EXPECT_EQ(gl_path_search_rpath(nullptr, &word, "in_two", "lc", "11"), nullptr);
    EXPECT_EQ(word, 3) << "no memory for the directory's name, though the next one has the file";
}

TEST_F(PathSearch, AbsoluteAndMarkedNamesBypassTheList) {
    set_path(root.at("one"));
    EXPECT_EQ(found_by(gl_path_search, root.at("two/in_two")), "two");
    EXPECT_EQ(directory_found(root.at("two/in_two").c_str()), "/");
    std::string marked = root.at("two/in_two");
    marked[marked.rfind('/')] = gl_directory_mark;
    for (const auto search : {gl_path_search, gl_path_search_no_ext})
        EXPECT_EQ(found_by(search, marked), "two");
    EXPECT_EQ(directory_found(marked.c_str(), "/earlier"), "/earlier");
}

TEST_F(PathSearch, InstallationDirectoryOf257CharactersFailsEverySearch) {
    setenv("KESTRIONDIR",
           (root.path() + "/" + std::string(256 - root.path().size() - 1, '/')).c_str(), 1);
    EXPECT_EQ(found_by(gl_path_search, "both"), "versioned");
    setenv("KESTRIONDIR", std::string(257, '/').c_str(), 1);
    EXPECT_EQ(found_by(gl_path_search, "both"), "error 8");
    EXPECT_EQ(found_by(gl_path_search, root.at("two/in_two")), "error 8");
    set_path(root.at("two"));
    EXPECT_EQ(found_by(gl_path_search, "in_two"), "error 8");
    EXPECT_EQ(gl_path_search(nullptr, "in_two", "lc", "11"), nullptr);
    EXPECT_EQ(temperr, 8);
}

// The opening of a pipe waits for a writer, who may never come.
TEST_F(PathSearch, OnlyRegularFilesAreOpened) {
    ASSERT_EQ(mkfifo(root.at("pipe").c_str(), 0600), 0);
    set_path(root.path());
    int32_t word = 0;
    EXPECT_EQ(gl_path_search(&word, "pipe", "lc", "11"), nullptr);
    EXPECT_EQ(word, GLS_ERR_FILE);
    EXPECT_EQ(gl_path_search_no_ext(&word, "pipe", "lc", "11"), nullptr);
    EXPECT_EQ(gl_open_file(&word, root.at("pipe").c_str()), nullptr);
    gl_cache_registry(&word, root.at("pipe").c_str());
    EXPECT_EQ(word, GLS_ERR_NO_REGISTRY);
}

} // namespace
