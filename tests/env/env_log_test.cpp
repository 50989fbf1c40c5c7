#include "env/variable_table.h"
#include <kestrion/env_log.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>

namespace {

// What a call prints to the stream that it is given.
template <typename Call> std::string printed(Call call) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    call(stream);
    const std::string flushed(text, size); // before the stream is closed
    fclose(stream);
    free(text);
    return flushed;
}

} // namespace

TEST(EnvLog, PrintsAFlushedLine) {
    EXPECT_EQ(printed([](FILE *out) { qvt_log_error(out, "%s is %d%%", "this", 7); }),
              "this is 7%\n");
    void (*unchecked)(FILE *, const char *, ...) = qvt_log_error; // for texts that are not formats
    EXPECT_EQ(printed([&](FILE *out) {
                  unchecked(out, "");
                  unchecked(out, nullptr);
              }),
              "");
    testing::internal::CaptureStderr();
    qvt_log_error(nullptr, "to standard error");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to standard error\n");
}

TEST(EnvLog, TellsTheVariableItsLimitAndThePlace) {
    constexpr int32_t dir = kestrion::variable_index("KESTRIONDIR");
    const struct {
        const char *name;
        int32_t index, limit;
        const char *file;
        std::string lines;
    } rows[] = {
        {"KESTRIONDIR", -1, 0, "start.c",
         "Environment variable KESTRIONDIR is too long (maximum is 256 characters).\n"
         "File: start.c, line: 12, status: -4.\n"},
        {"X", -1, 5, nullptr, "Environment variable X is too long (maximum is 5 characters).\n"},
        {"X", dir, 0, nullptr, "Environment variable X is too long (maximum is 256 characters).\n"},
        {"X", 9999, 0, nullptr, "Environment variable X is too long (maximum is -1 characters).\n"},
        {"W1", -1, -3, nullptr, "Environment variable W1 is too long (maximum is 0 characters).\n"},
        {nullptr, -1, 0, nullptr,
         "Environment variable (Unknown) is too long (maximum is -1 characters).\n"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(printed([&](FILE *out) {
                      qvt_log_envvar_error_fp(out, row.name, row.index, row.limit, row.file, 12,
                                              -4);
                  }),
                  "WARNING: \n" + row.lines);
    }
    testing::internal::CaptureStderr();
    qvt_log_envvar_error_mt_log("A%sB", -1, 3, nullptr, 0, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WARNING: \nEnvironment variable A%sB is too long (maximum is 3 characters).\n");
}
