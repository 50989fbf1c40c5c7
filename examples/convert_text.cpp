// Converts standard input between the code sets of two locales, through the installation's
// conversion objects.
//
//     convert_text ja_JP.sjis ja_JP.utf8 <in >out

#include <kestrion/conversion.h>
#include <kestrion/ext_funcs.h>

#include <iterator>
#include <stdio.h>
#include <string>
#include <vector>

namespace {

std::string read_all(FILE *file) {
    std::string text;
    char block[4096];
    for (size_t n; (n = fread(block, 1, sizeof block, file)) > 0;)
        text.append(block, n);
    return text;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        fputs("usage: convert_text FROM_LOCALE TO_LOCALE <in >out\n", stderr);
        return 2;
    }
    cv_rec *cv = nullptr;
    const int opened = gl_cv_load(&cv, argv[2], argv[1], nullptr, nullptr);
    if (opened < 0) {
        fprintf(stderr, "convert_text: no conversion from %s to %s (error %d)\n", argv[1], argv[2],
                *_gl_ext_errno(cv));
        gl_cv_unload(cv);
        return 1;
    }
    const std::string text = read_all(stdin);
    if (opened == 0) { // one code set
        fwrite(text.data(), 1, text.size(), stdout);
        return 0;
    }

    const char *source = text.data();
    auto left = static_cast<int32_t>(text.size());
    int32_t room = gl_cv_outbuflen(cv, left);
    std::vector<char> converted(static_cast<size_t>(room));
    char *target = converted.data();
    int32_t lossy = 0;
    const int result = gl_cv_mconv(cv, nullptr, &source, &left, &target, &room, &lossy);
    fwrite(converted.data(), 1, static_cast<size_t>(target - converted.data()), stdout);
    if (result != 0)
        fprintf(stderr, "convert_text: byte %td does not convert (error %d)\n",
                source - text.data(), *_gl_ext_errno(cv));
    gl_cv_unload(cv);
    return result == 0 ? 0 : 1;
}
