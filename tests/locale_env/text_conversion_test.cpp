#include <kestrion/conversion.h>
#include <kestrion/text_conversion.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>

namespace {

// The fast way of a conversion stores in blocks, and so beyond what it has converted.
TEST(TextConversion, TextsEndWhereTheConversionEnds) {
    cv_rec *to_latin = nullptr;
    ASSERT_EQ(gl_cv_load(&to_latin, "en_US.8859-1", "en_US.utf8", nullptr, INSTALLATION "/gls/cv9"),
              1);
    char *kept = nullptr;
    for (size_t letters = 0; letters < 40; ++letters) {
        const std::string plain(letters, 'a');
        const std::string path = plain + "/jos\xc3\xa9/dat\xc3\xa9";
        ASSERT_EQ(gcvargs(to_latin, path.c_str(), &kept), 0); // releases the block before
        EXPECT_EQ(std::string(kept), plain + "/jos\xe9/dat\xe9");
    }
    free(kept);
    gl_cv_unload(to_latin);
}

} // namespace
