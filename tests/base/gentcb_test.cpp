// The general control block.

#include "support/failing_malloc.h"
#include <kestrion/error_numbers.h>
#include <kestrion/gentcb.h>

#include <gtest/gtest.h>

TEST(Gentcb, NothingIsMadeForTheFloatType) {
    EXPECT_EQ(qvtGEN_getFloatType(), -1);
    EXPECT_EQ(getgenerr(), 0);
    EXPECT_EQ(qvtGEN_getFloatType(), 0) << "another accessor made the block";
    qvtGEN_setFloatType(7);
    EXPECT_EQ(qvtGEN_getFloatType(), 7);
}

TEST(Gentcb, ErrorWordsAreSeparate) {
    EXPECT_EQ(set_glserror(-23101), -23101);
    EXPECT_EQ(set_toerrno(-1213), -1213);
    CheckGenInit()->gen_err = -5;
    EXPECT_EQ(get_glserror(), -23101);
    EXPECT_EQ(get_toerrno(), -1213);
    EXPECT_EQ(getgenerr(), -5);
    EXPECT_EQ(CheckGenInit()->gen_err, -5) << "cleared when the block is made, not at each call";
}

TEST(Gentcb, NewBlockHasNoOpenCatalogue) {
    gentcb *block = gentcb_alloc();
    EXPECT_EQ(block, CheckGenInit());
    block->gen_flags = GEN_DBVER_SET;
    EXPECT_EQ(gget_dbver(), 1);
    genfill(block);
    EXPECT_EQ(gget_dbver(), 0);
    EXPECT_EQ(block->catalogues[0].fd, -1);
    EXPECT_EQ(block->catalogues[1].fd, -1);
}

TEST(Gentcb, NoMemoryIsAnErrorNumber) {
    {
        const failing_malloc::scope refused(1);
        EXPECT_EQ(get_glserror(), err_no_block);
    }
    EXPECT_EQ(set_toerrno(1), 1) << "the next call tries again";
}
