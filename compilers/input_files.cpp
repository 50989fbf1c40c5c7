#include "compilers/input_files.h"

#include <set>
#include <utility>

namespace kestrion {
namespace {

using file_identity = std::pair<dev_t, ino_t>;

std::set<file_identity> &files() {
    static std::set<file_identity> read;
    return read;
}

} // namespace

void note_input_file(int fd) {
    struct stat file;
    if (fstat(fd, &file) == 0)
        files().emplace(file.st_dev, file.st_ino);
}

bool is_input_file(const struct stat &file) { return files().contains({file.st_dev, file.st_ino}); }

void forget_input_files() { files().clear(); }

} // namespace kestrion
