#include "gls/engine_test.h"
#include "support/stated_leaks.h"

#include <time.h>

namespace {

int calls = 0;

void *counting_malloc(size_t size) {
    ++calls;
    return malloc(size);
}

int answer_seven() { return 7; }

TEST(ExtFuncs, HostsFunctionServesOnlyWhileTheTableIsOn) {
    free(_gl_ext_malloc(8));
    EXPECT_EQ(calls, 0) << "nothing is registered yet";
    _gl_set_ext_funcptr(GL_SLOT_MALLOC, reinterpret_cast<gl_function>(counting_malloc));
    free(_gl_ext_malloc(8));
    EXPECT_EQ(calls, 0) << "the raw accessor must not switch the table on";

    int32_t word = 0;
    EXPECT_EQ(gl_setextfunc(&word, GL_SLOT_UCA, reinterpret_cast<gl_function>(answer_seven)), 0);
    EXPECT_EQ(_gl_ext_UCA(), 7);
    free(_gl_ext1_malloc(&word, 8));
    EXPECT_EQ(calls, 1);

    _gl_reset_ext_func();
    EXPECT_EQ(_gl_ext_UCA(), -1);
    EXPECT_NE(_gl_get_ext_funcptr(GL_SLOT_UCA), nullptr) << "the slots survive a reset";
}

TEST(ExtFuncs, SlotAfterTheLastIsRefusedAndChangesNothing) {
    int32_t word = 0;
    EXPECT_EQ(gl_setextfunc(&word, 21, reinterpret_cast<gl_function>(answer_seven)), -1);
    EXPECT_EQ(word, GLS_ERR_ARGUMENT);
    EXPECT_EQ(_gl_ext_func, 0);
    EXPECT_EQ(gl_setextfunc(nullptr, 4000000000u, nullptr), -1);
    EXPECT_EQ(temperr, GLS_ERR_ARGUMENT);
    EXPECT_EQ(_gl_get_ext_funcptr(21), nullptr);
}

TEST(ExtFuncs, PutenvKeepsItsOwnCopy) {
    const stated_leaks environment;
    char text[] = "KESTRION_TEST_VALUE=first";
    EXPECT_EQ(_gl_ext_putenv(text), 0);
    memset(text, 'x', sizeof text - 1);
    EXPECT_STREQ(_gl_get_env_var("KESTRION_TEST_VALUE"), "first");
    EXPECT_EQ(_gl_ext_putenv("KESTRION_TEST_EMPTY="), 0);
    EXPECT_STREQ(_gl_ext_getenv("KESTRION_TEST_EMPTY"), "");
    EXPECT_EQ(_gl_get_env_var("KESTRION_TEST_EMPTY"), nullptr);
}

TEST(ExtFuncs, ClockRecordsAgreeWithTheSystem) {
    setenv("TZ", "UTC", 1);
    gl_date_rec date;
    gl_time_rec time;
    memset(&time, 0xAA, sizeof time);
    const time_t before = ::time(nullptr);
    ASSERT_EQ(_gl_ext_currdate(&date), 0);
    ASSERT_EQ(_gl_ext_currtime(&time), 0);
    tm wanted = {};
    wanted.tm_sec = time.second;
    wanted.tm_min = time.minute;
    wanted.tm_hour = time.hour;
    wanted.tm_mday = time.day;
    wanted.tm_mon = time.month;
    wanted.tm_year = time.year;
    EXPECT_NEAR(static_cast<double>(timegm(&wanted)), static_cast<double>(before), 2);
    EXPECT_EQ(time.head, 0);
    EXPECT_EQ(time.utc_offset, 0);
    EXPECT_EQ(time.zone, nullptr);
    EXPECT_EQ(date.year, time.year + 1900);
    EXPECT_EQ(date.month, time.month + 1);

    setenv("TZ", "EAST-5", 1);
    gl_time_rec in_the_east;
    ASSERT_EQ(_gl_ext_currtime(&in_the_east), 0);
    EXPECT_NEAR((in_the_east.hour + 24 - time.hour) % 24, 5, 1) << "the zone was changed meanwhile";
}

TEST(ExtFuncs, NothingIsAllocatedForSizeZero) {
    EXPECT_EQ(_gl_alloc_ptr(0), nullptr);
    _gl_free_ptr(nullptr);
    gl_destroystring(nullptr);
}

} // namespace
