#include "environment.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/first_load.h>

#include <stdlib.h>
#include <vector>

namespace {

class Store : public Environment {
protected:
    void SetUp() override {
        Environment::SetUp();
        ASSERT_EQ(greadenv(), 0);
    }
};

env_entry *live(const char *name) { return search_evar(name, Kes_EVars, Num_EVars); }

} // namespace

TEST_F(Store, EqualValueKeepsTheStoredPointer) {
    ASSERT_EQ(ginsenv("W1", "one", nullptr), 0);
    const char *stored = live("W1")->value;
    EXPECT_EQ(ginsenv("W1", "one", nullptr), 0);
    EXPECT_EQ(live("W1")->value, stored);
    EXPECT_EQ(ginsenv("W1", stored + 1, nullptr), 0); // the new text is a piece of the old
    EXPECT_STREQ(live("W1")->value, "ne");
}

// Rows of value before, value given, value after; the mark is the shared empty text.
TEST_F(Store, NullAndEmptyAreTwoThings) {
    const char *mark = EnvEmptyVal;
    const struct {
        const char *before, *given, *after;
    } rows[] = {
        {nullptr, nullptr, nullptr},
        {nullptr, "", mark},
        {nullptr, "x", "x"},
        {mark, nullptr, mark}, // already empty: not unset by a null
        {mark, "", mark},
        {mark, "x", "x"},
        {"x", nullptr, nullptr},
        {"x", "", mark},
        {"x", "y", "y"},
    };
    for (const auto &row : rows) {
        gFreeEVars();
        ASSERT_EQ(greadenv(), 0);
        ASSERT_EQ(ginsenv("W1", row.before, nullptr), 0);
        EXPECT_EQ(ginsenv("W1", row.given, nullptr), 0);
        EXPECT_STREQ(live("W1")->value, row.after) << row.before << "," << row.given;
        EXPECT_EQ(live("W1")->value == EnvEmptyVal, row.after == mark);
    }
}

TEST_F(Store, RefusesLongValuesAndUnknownNames) {
    EXPECT_EQ(ginsenv("KESTRIONSERVER", std::string(128, 'a').c_str(), nullptr), 0);
    EXPECT_EQ(ginsenv("KESTRIONSERVER", std::string(129, 'b').c_str(), nullptr),
              err_env_value_size);
    EXPECT_EQ(live("KESTRIONSERVER")->value, std::string(128, 'a'));
    EXPECT_EQ(ginsenv("NOT_KNOWN", "x", nullptr), err_env_unknown_name);
    EXPECT_EQ(ginsenv("", "x", nullptr), err_env_unknown_name);
    EXPECT_EQ(ginsenv("W1", "given entry wins", live("W2")), 0);
    EXPECT_STREQ(live("W2")->value, "given entry wins");
    gFreeEVars();
    EXPECT_EQ(ginsenv("W1", "x", nullptr), err_env_unknown_name);
}

TEST_F(Store, PutsIntoTheProcessEnvironment) {
    EXPECT_EQ(gfeputenv("W1", "one=two"), 0);
    EXPECT_STREQ(getenv("W1"), "one=two");
    EXPECT_EQ(gputenv("W2", nullptr), 0);
    EXPECT_STREQ(getenv("W2"), "");
    EXPECT_EQ(gfeputenv("TREE", ""), 0);
    EXPECT_STREQ(ggetenv("TREE"), "");
}

TEST_F(Store, ProgramsOwnVariablesStandBehindTheBuiltInOnes) {
    char name[] = "MY_OWN";
    const env_variable own[] = {{name, "its default", 20},
                                {"DBPATH", "hidden by the built-in row", 0},
                                {"MY_SWITCH", nullptr, -1},
                                {name, "second of the name", 0},
                                {nullptr}};
    gFreeEVars();
    gsetudenv(own);
    EXPECT_STREQ(ggetenv("DBPATH"), ".");
    EXPECT_EQ(Num_EVars, 348);
    EXPECT_EQ(live("MY_OWN"), &Kes_EVars[344]);
    EXPECT_EQ(live("MY_OWN")->index, -1);
    EXPECT_NE(live("MY_OWN")->name, name);
    EXPECT_STREQ(ggetenv("MY_OWN"), "its default");
    EXPECT_STREQ(idx_getdefault("MY_SWITCH", 344), nullptr); // entries of index -1 go by name
    EXPECT_STREQ(idx_getdefault("MY_OWN", 347), "its default");

    EXPECT_EQ(ginsenv("MY_OWN", std::string(21, 'x').c_str(), nullptr), err_env_value_size);
    setenv("MY_OWN", std::string(21, 'x').c_str(), 1);
    EXPECT_EQ(ggetenv("MY_OWN"),
              std::string(21, 'x')); // its limit does not hold for the environment

    // A limit of -1 makes a switch: it is set or not, its text is not kept.
    EXPECT_EQ(ginsenv("MY_SWITCH", "on", nullptr), 0);
    EXPECT_EQ(live("MY_SWITCH")->value, EnvEmptyVal);
}

TEST_F(Store, OwnDefaultOverItsOwnLimitFailsTheLoad) {
    const env_variable own[] = {{"GOOD", "fine", 0}, {"BAD", "too long", 3}, {nullptr}};
    gFreeEVars();
    gsetudenv(own);
    EXPECT_EQ(ggetenv("GOOD"), nullptr);
    EXPECT_EQ(gerrno, err_env_value_size);
    EXPECT_STREQ(ggetenv("GOOD"), "fine");
}

TEST(Search, OfATableEndsAtItsCountOrANullName) {
    char a[] = "A", b[] = "B", c[] = "C", second[] = "second";
    env_entry table[] = {{a, nullptr, 0, 0},
                         {b, nullptr, 7, 0},
                         {b, second, 2, 0},
                         {nullptr, nullptr, 3, 0},
                         {c, nullptr, 4, 0}};
    EXPECT_EQ(search_evar("B", table, 5), &table[1]); // the first of two
    EXPECT_EQ(search_evar("B", table, 1), nullptr);
    EXPECT_EQ(search_evar("C", table, 5), nullptr); // after the null name
    EXPECT_EQ(search_evar("A", table, 0), nullptr);
    EXPECT_EQ(search_evar("A", table, -1), nullptr);
    EXPECT_EQ(search_evar("A", nullptr, 5), nullptr);
    EXPECT_EQ(search_evar_enum(2, "A", table, 5), &table[2]); // records its own index
    EXPECT_EQ(search_evar_enum(1, "A", table, 5), &table[0]); // records another: by name
    EXPECT_EQ(search_evar_enum(3, "A", table, 5), &table[0]); // has no name
    EXPECT_EQ(search_evar_enum(5, "A", table, 5), nullptr);
    EXPECT_EQ(search_evar_enum(-1, "A", table, 5), nullptr);
    EXPECT_EQ(search_evar_enum(0, "A", nullptr, 5), nullptr);
}

// The search by name against a plain walk.
TEST_F(Store, SearchByNameFindsEveryRow) {
    for (int32_t i = 0; i < Num_DVals; ++i) {
        EXPECT_EQ(live(Kes_DVals[i].name), &Kes_EVars[i]) << Kes_DVals[i].name;
        EXPECT_EQ(search_evar(Kes_DVals[i].name, Kes_EVars, i), nullptr);
        const std::string longer = std::string(Kes_DVals[i].name) + "_";
        EXPECT_EQ(live(longer.c_str()), nullptr);
    }
}
