#include "env/variable_table.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

// Adler-32 of the names, each with a line feed behind it.
uint32_t checksum(const char *const *names, size_t count) {
    uint32_t low = 1;
    uint32_t high = 0;
    for (size_t i = 0; i < count; ++i) {
        for (const char byte : std::string(names[i]) + "\n") {
            low = (low + static_cast<unsigned char>(byte)) % 65521;
            high = (high + low) % 65521;
        }
    }
    return high << 16 | low;
}

} // namespace

// Marks from all over the table tell where a row was lost, doubled or moved; that all names are
// right is told by a checksum that another program worked out over the list that the table was made
// from.
TEST(VariableTable, RowsStandAtTheirIndexes) {
    const std::map<int, std::string> marks = {
        {0, "ACCEPTKEY"},   {7, "ANSIOWNER"}, {28, "CDRSITES_92x"}, {67, "CLIENT_LOCALE"},
        {79, "DBXCLI"},     {92, "DBDATE"},   {103, "DBNLS"},       {117, "DB_LOCALE"},
        {134, "ENVIGNORE"}, {151, "HOME"},    {212, "KESTRIONDIR"}, {238, "LANG"},
        {245, "LC_TIME"},   {322, "TERM"},    {332, "TZ"},          {343, "XTRACE"},
    };
    for (const auto &[index, name] : marks)
        EXPECT_EQ(Kes_DVals[index].name, name) << index;
    ASSERT_EQ(Num_DVals, 344);
    EXPECT_EQ(Kes_DVals[344].name, nullptr);

    std::vector<const char *> names;
    for (int i = 0; i < Num_DVals; ++i)
        names.push_back(Kes_DVals[i].name);
    EXPECT_EQ(checksum(names.data(), names.size()), 3317621422U);
}

TEST(VariableTable, ThirteenRowsHaveADefaultOrALimit) {
    struct row {
        const char *default_value;
        int limit;
    };
    std::map<std::string, row> expected = {
        {"DBDELIMITER", {"|", 0}},
        {"DBPATH", {".", 0}},
        {"DBPRINT", {"lp -s", 0}},
        {"DBTEMP", {"/tmp", 0}},
        {"KESTRIONDIR", {"/usr/kestrion", 256}},
        {"KESTRIONSERVER", {nullptr, 128}},
        {"KESTRIONTERM", {"termcap", 0}},
        {"NODEFDAC", {"no", 0}},
        {"NON_M6_ATTRS_OK", {"1", 0}},
        {"SUBQCACHESZ", {"10", 0}},
        {"TBCONFIG", {"onconfig", 0}},
        {"TERM", {"dumb", 0}},
        {"TERMCAP", {"/etc/termcap", 0}},
    };
    for (int i = 0; i < Num_DVals; ++i) {
        const auto found = expected.find(Kes_DVals[i].name);
        const row wanted = found == expected.end() ? row{nullptr, 0} : found->second;
        EXPECT_STREQ(Kes_DVals[i].default_value, wanted.default_value) << Kes_DVals[i].name;
        EXPECT_EQ(Kes_DVals[i].max_length, wanted.limit) << Kes_DVals[i].name;
        expected.erase(Kes_DVals[i].name);
    }
    EXPECT_TRUE(expected.empty());
}

TEST(VariableTable, ListsOfAConnectionHoldTheirNamesInOrder) {
    EXPECT_EQ(checksum(Kes_SVarList, std::size(Kes_SVarList)), 4284281254U);
    EXPECT_EQ(checksum(Kes_LVarList, std::size(Kes_LVarList)), 1793397295U);
    EXPECT_EQ(checksum(Kes_MVarList, std::size(Kes_MVarList)), 4150810076U);
}
