#include "gls/engine_test.h"
#include "tests/support/temp_dir.h"
#include <kestrion/code_set_registry.h>

#include <set>

namespace {

// Looks a name up with and without a cache of the file; the two must agree. Gives the number, or
// "error N".
struct answers {
    std::string cached;
    std::string uncached;
};

std::string answer(const char *name, const char *regfile) {
    int32_t word = 0;
    const int number = gl_cs_name2cs_num(&word, name, regfile);
    if (word != 0) {
        EXPECT_EQ(number, gl_unknown_code_set);
        return "error " + std::to_string(word);
    }
    return std::to_string(number);
}

answers look_up(const std::string &text, const char *name, int32_t cache_word = 0) {
    const temp_dir dir;
    const std::string file = dir.write("registry", text);
    const std::string uncached = answer(name, file.c_str());
    int32_t word = 0;
    gl_cache_registry(&word, file.c_str());
    EXPECT_EQ(word, cache_word) << text;
    EXPECT_EQ(gls_registry_array_cache == gls_canned_registry, cache_word != 0);
    const std::string cached = answer(name, nullptr);
    gl_free_registry_cache();
    EXPECT_EQ(gls_registry_list_cache, nullptr);
    EXPECT_EQ(gls_registry_array_cache, nullptr);
    return {cached, uncached};
}

TEST(CodeSetRegistry, FileIsReadLineByLine) {
    const counting_allocator memory;
    const std::string text = "# 8859-1 1\n\n  \tLatin-1\t 819 the rest # is ignored\n"
                             "latin-1 820\n"
                             "x12345678901234567890 7\n"
                             "max 65535\n"
                             "9 10\r\n";
    const struct {
        const char *name;
        const char *wanted;
    } rows[] = {
        {"latin-1", "819"}, // the first of two
        {"LATIN-1", "819"},
        {"8859-1", "error 7"}, // in a comment
        {"x12345678901234567890", "7"},
        {"x12345678901234567890zzz", "7"}, // a longer name is cut
        {"max", "65535"},
        {"9", "10"}, // a name before it is a number
        {"65535", "65535"},
        {"65536", "error 7"},
        {"00000000000000000819", "819"},
        {"8e1", "error 7"},
        {"57344", "57344"},
        {"", "error 7"},
    };
    for (const auto &row : rows) {
        const answers found = look_up(text, row.name);
        EXPECT_EQ(found.cached, row.wanted) << row.name;
        EXPECT_EQ(found.uncached, row.wanted) << row.name;
    }
}

TEST(CodeSetRegistry, LastLineMayLackItsEnd) {
    const std::string text = "one 1\nlast 12 no line end";
    EXPECT_EQ(look_up(text, "last").cached, "12");
    EXPECT_EQ(look_up(text, "last").uncached, "12");
    EXPECT_EQ(look_up(text, "none").cached, "error 7");
    EXPECT_EQ(look_up(text, "none").uncached, "error 11") << "without a cache to keep it";
    EXPECT_EQ(look_up("one 1\n# comment", "one").cached, "1");
}

TEST(CodeSetRegistry, DamagedFileGivesWayToTheBuiltInTable) {
    const counting_allocator memory;
    const struct {
        const char *what;
        const char *text;
    } rows[] = {
        {"no number", "one 1\ntwo\n"},
        {"a number on the next line", "one 1\ntwo\n2\n"},
        {"no digit", "one 1\ntwo x2\n"},
        {"name at the end of the file", "one 1\ntwo"},
        {"number at the end of the file", "one 1\ntwo 2"},
        {"number of 17 bits", "one 1\ntwo 65536\n"},
        {"huge number", "one 1\ntwo 99999999999999999999999\n"},
        {"no graphic name", "one 1\n\x80 2\n"},
        {"name and number run together by a byte that is not graphic", "one 1\ntwo\x80 2\n"},
    };
    for (const auto &row : rows) {
        const answers found = look_up(row.text, "one", 11);
        EXPECT_EQ(found.cached, "error 7") << row.what << ": the list was discarded";
        EXPECT_EQ(found.uncached, "1") << row.what;
        EXPECT_EQ(look_up(row.text, "two", 11).uncached, "error 11") << row.what;
        EXPECT_EQ(look_up(row.text, "greek", 11).cached, std::to_string(0x2E1)) << row.what;
    }
    int32_t word = 0;
    gl_cache_registry(&word, "/");
    EXPECT_EQ(word, GLS_ERR_NO_REGISTRY) << "a directory is not a registry";
    EXPECT_EQ(answer("greek", nullptr), std::to_string(0x2E1));
    gl_free_registry_cache();
}

TEST(CodeSetRegistry, NameOf22CharactersEndsTheReading) {
    const std::string text = "one 1\nx1234567890123456789012 2\ntwo 2\n";
    EXPECT_EQ(look_up(text, "one").cached, "1");
    EXPECT_EQ(look_up(text, "two").cached, "error 7");
    EXPECT_EQ(look_up(text, "two").uncached, "error 7");
    EXPECT_EQ(look_up(text, "x12345678901234567890").cached, "error 7");
}

TEST(CodeSetRegistry, MissingFileLeavesTheBuiltInTableAndItsErrorWord) {
    setenv("GL_PATH", "/no/such/directory", 1);
    EXPECT_EQ(answer("8859-1", "/no/such/file"), "error 15");
    EXPECT_EQ(answer("819", "/no/such/file"), "error 15");
    gl_cache_registry(nullptr, nullptr);
    EXPECT_EQ(temperr, 15);
    temperr = 0;
    EXPECT_EQ(answer("8859-1", nullptr), "819");
    EXPECT_EQ(answer("utf8", nullptr), std::to_string(0xE01C));
    EXPECT_EQ(temperr, 0) << "later look-ups don't report it again";
    gl_free_registry_cache();
}

TEST(CodeSetRegistry, LookUpWithoutACacheFillsIt) {
    const counting_allocator memory;
    const temp_dir dir;
    setenv("GL_PATH", dir.path().c_str(), 1);
    EXPECT_EQ(answer("greek", nullptr), std::to_string(0x2E1)) << "there is no file";
    EXPECT_EQ(gls_registry_array_cache, gls_canned_registry);
    gl_free_registry_cache();
    dir.write("registry", "one 1\n");
    EXPECT_EQ(answer("one", dir.at("registry").c_str()), "1");
    EXPECT_EQ(gls_registry_list_cache, nullptr) << "a caller's own file is not everybody's";
    counting_allocator::fail_call(0);
    EXPECT_EQ(answer("one", nullptr), "1");
    EXPECT_EQ(gls_registry_array_cache, nullptr) << "the file has names that the table lacks";
    EXPECT_EQ(answer("one", nullptr), "1");
    dir.write("registry", "");
    EXPECT_EQ(answer("one", nullptr), "1");
    // A start without memory does not take the names away.
    dir.write("registry", "two 2\n");
    counting_allocator::fail_call(0);
    int32_t word = 0;
    gl_cache_registry(&word, nullptr);
    EXPECT_EQ(word, GLS_ERR_NO_MEMORY);
    EXPECT_EQ(answer("one", nullptr), "1");
    gl_free_registry_cache();
}

TEST(CodeSetRegistry, EveryAllocationMayFail) {
    const counting_allocator memory;
    const temp_dir dir;
    const std::string file = dir.write("registry", "one 1\ntwo 2\nthree 3\n");
    for (int call = 0; call < 6; ++call) {
        int32_t word = 0;
        counting_allocator::fail_call(call);
        gl_cache_registry(&word, file.c_str());
        EXPECT_EQ(word, 3);
        EXPECT_EQ(answer("utf8", nullptr), std::to_string(0xE01C));
        gl_free_registry_cache();
    }
}

// What is installed must not contradict what serves without it, and its names must fit in the head
// of a locale object.
TEST(CodeSetRegistry, InstalledFileAgreesWithTheBuiltInTable) {
    int32_t word = 0;
    gl_cache_registry(&word, KESTRION_SOURCE_DIR "/locales/registry");
    ASSERT_EQ(word, 0);
    ASSERT_NE(gls_registry_list_cache, nullptr);
    for (const gls_registry_row *row = gls_canned_registry; row->name != nullptr; ++row)
        EXPECT_EQ(gl_cs_name2cs_num(&word, row->name, nullptr), static_cast<int>(row->number))
            << row->name;
    std::set<std::string> names;
    for (const gls_registry_node *node = gls_registry_list_cache; node != nullptr;
         node = node->next) {
        EXPECT_LE(strlen(node->name), 19u) << node->name;
        EXPECT_TRUE(names.insert(node->name).second) << node->name << " is there twice";
    }
    EXPECT_EQ(answer("ISO-8859-15", nullptr), std::to_string(0xE02F));
    EXPECT_EQ(answer("UTF-8", nullptr), std::to_string(0xE01C));
    gl_free_registry_cache();
}

TEST(CodeSetRegistry, ExampleOfTheFormatsPageIsRead) {
    const std::string page = file_text(KESTRION_SOURCE_DIR "/docs/formats/code-set-registry.md");
    const size_t start = page.rfind("```\n#") + 4;
    const std::string example = page.substr(start, page.find("```", start) - start);
    EXPECT_EQ(look_up(example, "Latin-1").cached, "819") << example;
    EXPECT_EQ(look_up(example, "utf8").cached, "57372");
}

TEST(CodeSetRegistry, CcsidsMapBothWaysButOne) {
    const struct {
        int number;
        int ccsid;
    } rows[] = {{0x333, 819}, {0xE006, 943}, {0xE007, 33722}, {0xE01C, 1208}, {0xE02F, 923}};
    for (const auto &row : rows) {
        EXPECT_EQ(gl_cs_nums2ccsid(nullptr, row.number), row.ccsid);
        EXPECT_EQ(gl_ccsid2cs_nums(nullptr, row.ccsid), row.number);
    }
    EXPECT_EQ(gl_cs_nums2ccsid(nullptr, 0xE02E), 921);
    EXPECT_EQ(gl_ccsid2cs_nums(nullptr, 921), 921);
    EXPECT_EQ(gl_cs_nums2ccsid(nullptr, 0xE000), 0);
    EXPECT_EQ(gl_cs_nums2ccsid(nullptr, 0xE009), 0);
    EXPECT_EQ(gl_ccsid2cs_nums(nullptr, 0xE006), 0);
}

} // namespace
