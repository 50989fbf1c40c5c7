// Loads each locale object below the installation and tells its size and the time that loading
// took.
//
//     list_locales

#include <kestrion/categories.h>
#include <kestrion/char_length.h>
#include <kestrion/code_set_registry.h>
#include <kestrion/ext_funcs.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdio.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

double load_milliseconds(const std::string &name, locale_rec **lc) {
    const auto start = std::chrono::steady_clock::now();
    if (gl_lc_load(lc, name.c_str(), nullptr, nullptr) != 0)
        return -1;
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace

int main() {
    const char *dir = getenv("KESTRIONDIR");
    const fs::path objects = fs::path(dir != nullptr ? dir : "/usr/kestrion") / "gls" / "lc11";
    if (!fs::is_directory(objects)) {
        fprintf(stderr, "list_locales: no directory %s; is KESTRIONDIR right?\n", objects.c_str());
        return 1;
    }
    std::vector<std::string> names;
    for (const auto &entry : fs::recursive_directory_iterator(objects))
        if (entry.path().extension() == ".lco")
            names.push_back(fs::relative(entry.path(), objects));
    std::sort(names.begin(), names.end());

    gl_cache_registry(nullptr, nullptr);
    printf("%-18s %-14s %5s %10s %9s\n", "object", "code set", "bytes", "size", "load");
    int failed = 0;
    for (const std::string &name : names) {
        locale_rec *lc = nullptr;
        const double ms = load_milliseconds(name, &lc);
        const auto kilobytes = static_cast<double>(fs::file_size(objects / name)) / 1024;
        if (ms < 0) {
            printf("%-18s does not load (error %d)\n", name.c_str(), *_gl_ext_errno(lc));
            ++failed;
        } else {
            printf("%-18s %-14s %d..%-2d %7.1f KB %6.2f ms\n", name.c_str(), lc->cs_names[0],
                   gl_mb_loc_min(lc), gl_mb_loc_max(lc), kilobytes, ms);
        }
        gl_lc_unload(lc);
    }
    gl_free_registry_cache();
    return failed == 0 ? 0 : 1;
}
