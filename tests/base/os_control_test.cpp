#include "base/locale_start.h"
#include "support/failing_malloc.h"
#include <kestrion/character_tables.h>
#include <kestrion/os_control.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

namespace {

TEST(OsControl, FirstUseMakesTheOneBlockWithItsStartValues) {
    EXPECT_EQ(ostcb, nullptr);
    _ixctype['x' + 1] = 77; // the block copies the tables as they are at its making
    os_control *block = CheckOsInit();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(ostcb, block);
    EXPECT_EQ(checkOsApi(), block);
    EXPECT_EQ(block->state, 0);
    EXPECT_EQ(block->trace_state, 0);
    for (int32_t handle : {block->handle_a, block->handle_b, block->handle_c})
        EXPECT_EQ(handle, -1);
    EXPECT_EQ(block->os_error, 0);
    EXPECT_EQ(block->ctype['x' + 1], 77);
    EXPECT_EQ(memcmp(block->ctype, _ixctype, 258), 0);
    EXPECT_EQ(memcmp(block->to_lower, _ix2lowmap, 256), 0);
    EXPECT_EQ(memcmp(block->to_upper, _ix2upmap, 256), 0);
}

TEST(OsControl, ConnectionAndErrorLieInTheBlock) {
    EXPECT_EQ(qvt_osgetconn(), -1);
    EXPECT_EQ(qvt_ossetconn(42), ostcb);
    EXPECT_EQ(qvt_osgetconn(), 42);
    EXPECT_EQ(getoserr(), 0);
    ostcb->os_error = 13;
    EXPECT_EQ(getoserr(), 13);
}

TEST(OsControl, AllocatingABlockPublishesNothing) {
    os_control *block = ostcb_alloc();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(ostcb, nullptr);
    EXPECT_EQ(block->connection, -1);
    free(block);
}

TEST(OsControl, LocaleStartsBehindThePublishedBlock) {
    CheckOsInit();
    EXPECT_NE(block_at_the_start, nullptr);
    EXPECT_EQ(block_at_the_start, ostcb);
}

TEST(OsControl, FailedLocaleAnswersNullOnceAndTheBlockStays) {
    for (int failure : {-23101, 4}) { // some errors of the engine come through as positive
        ostcb = nullptr;
        locale_start_result = failure;
        EXPECT_EQ(qvt_ossetconn(5), nullptr);
        ASSERT_NE(ostcb, nullptr);
        EXPECT_EQ(ostcb->connection, -1);
        EXPECT_EQ(CheckOsInit(), ostcb);
        free(ostcb);
    }
    ostcb = nullptr;
    locale_start_result = 0;
}

TEST(OsControl, NoMemoryAnswersNothingAndTheNextCallTriesAgain) {
    bool (*const answers_nothing[])() = {
        [] { return CheckOsInit() == nullptr; },
        [] { return getoserr() == 0; },
        [] { return qvt_osgetconn() == 0; },
        [] { return qvt_ossetconn(4) == nullptr; },
    };
    for (const auto &call : answers_nothing) {
        failing_malloc::scope refused(1);
        EXPECT_TRUE(call());
        EXPECT_EQ(refused.calls(), 1u);
        EXPECT_EQ(ostcb, nullptr);
    }
    EXPECT_EQ(qvt_osgetconn(), -1);
}

} // namespace
