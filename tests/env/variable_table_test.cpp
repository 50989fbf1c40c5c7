#include "env/variable_table.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Adler-32 of the names, each followed by a line feed.
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

// The checksums were worked out by another program over the lists that the tables were made from.
TEST(VariableTable, NamesStandAtTheirIndexes) {
    ASSERT_EQ(Num_DVals, 344);
    EXPECT_EQ(Kes_DVals[344].name, nullptr);
    std::vector<const char *> names;
    for (int i = 0; i < Num_DVals; ++i)
        names.push_back(Kes_DVals[i].name);
    EXPECT_EQ(checksum(names.data(), names.size()), 3317621422U);
}

TEST(VariableTable, ThirteenRowsHaveADefaultOrALimit) {
    std::string rows;
    for (int i = 0; i < Num_DVals; ++i) {
        const auto &[name, text, limit] = Kes_DVals[i];
        if (text != nullptr || limit != 0)
            rows += std::string(name) + "=" + (text != nullptr ? text : "(null)") + " " +
                    std::to_string(limit) + "\n";
    }
    EXPECT_EQ(rows, "DBDELIMITER=| 0\n"
                    "DBPATH=. 0\n"
                    "DBPRINT=lp -s 0\n"
                    "DBTEMP=/tmp 0\n"
                    "KESTRIONDIR=/usr/kestrion 256\n"
                    "KESTRIONSERVER=(null) 128\n"
                    "KESTRIONTERM=termcap 0\n"
                    "NODEFDAC=no 0\n"
                    "NON_M6_ATTRS_OK=1 0\n"
                    "SUBQCACHESZ=10 0\n"
                    "TBCONFIG=onconfig 0\n"
                    "TERM=dumb 0\n"
                    "TERMCAP=/etc/termcap 0\n");
}

TEST(VariableTable, ListsOfAConnectionHoldTheirNamesInOrder) {
    EXPECT_EQ(checksum(Kes_SVarList, std::size(Kes_SVarList)), 4284281254U);
    EXPECT_EQ(checksum(Kes_LVarList, std::size(Kes_LVarList)), 1793397295U);
    EXPECT_EQ(checksum(Kes_MVarList, std::size(Kes_MVarList)), 4150810076U);
}
