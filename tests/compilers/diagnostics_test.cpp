// What a compiler prints of what it finds, and what it lists.

#include "compilers/diagnostics.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdlib.h>

namespace kestrion {
namespace {

// What is printed of `count` findings, without their remedies.
template <typename Find> std::string printed(size_t count, Find find) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    diagnostics said(stream);
    for (size_t i = 0; i < count; ++i)
        find(said, "finding " + std::to_string(i + 1) + ".");
    fclose(stream);
    const std::string result = text;
    free(text);
    return result;
}

// All are counted and listed, and say so.
TEST(Diagnostics, TheFirstTwentyOfAKindArePrinted) {
    const auto loss = [](diagnostics &said, const std::string &what) { said.loss(what, ""); };
    const std::string twenty = printed(20, loss), more = printed(22, loss);
    EXPECT_NE(twenty.find("finding 20."), std::string::npos);
    EXPECT_EQ(twenty.find("further"), std::string::npos);
    EXPECT_EQ(more, twenty + "further losses are not shown; --losses FILE lists them all\n");
    const auto error = [](diagnostics &said, const std::string &what) { said.error(what, ""); };
    EXPECT_EQ(printed(500, error), printed(20, error) + "further errors are not shown\n");
    const auto warning = [](diagnostics &said, const std::string &what) { said.warning(what, ""); };
    EXPECT_EQ(printed(500, warning), printed(20, warning) + "further warnings are not shown\n");
    diagnostics quiet(nullptr);
    for (int i = 0; i < 22; ++i)
        loss(quiet, "finding");
    EXPECT_EQ(std::count(quiet.loss_list().begin(), quiet.loss_list().end(), '\n'), 22);
}

} // namespace
} // namespace kestrion
