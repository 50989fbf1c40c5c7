#include "compilers/posix/source_place.h"

#include "compilers/input_files.h"

#include <errno.h>
#include <fcntl.h>
#include <new>
#include <string.h>
#include <unistd.h>
#include <zlib.h>

namespace kestrion {
namespace {

constexpr size_t largest_text = size_t{256} << 20;
constexpr int read_step = 1 << 18;

struct gz_closer {
    void operator()(gzFile file) const { gzclose(file); }
};

// What zlib says of a file, which most of its texts name already.
std::string damage_text(const std::string &path, const std::string &reason) {
    return (reason.starts_with(path) ? reason : path + ": " + reason) +
           "; the file is damaged, put a whole copy in its place";
}

// The text of a file; null with errno when it cannot be opened.
std::unique_ptr<source_file> read_if_there(const std::string &path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    note_input_file(fd);
    const std::unique_ptr<gzFile_s, gz_closer> file(gzdopen(fd, "rb"));
    if (!file) {
        close(fd);
        throw std::bad_alloc();
    }
    std::string text;
    for (int got = read_step; got == read_step;) {
        size_t length = text.size();
        text.resize(length + read_step);
        got = gzread(file.get(), text.data() + length, read_step);
        int number = Z_OK;
        const char *reason = gzerror(file.get(), &number);
        // A compressed file that is cut reads as a short one; only at its end does zlib notice.
        if (got < 0 || number == Z_BUF_ERROR)
            throw compiler_failure(number == Z_ERRNO ? path + ": " + strerror(errno)
                                                     : damage_text(path, reason));
        text.resize(length + static_cast<size_t>(got));
        if (text.size() > largest_text)
            throw compiler_failure(path + ": more than 256 MB of text");
    }
    return std::make_unique<source_file>(path, std::move(text));
}

} // namespace

source_position source_place::position() const {
    if (file == nullptr)
        return {};
    // What is missing at the end of a file is missing at the end of its last line.
    bool after_last_line = offset == file->text().size() && file->text().ends_with('\n');
    return file->position(after_last_line ? offset - 1 : offset);
}

std::unique_ptr<source_file> find_source_file(const std::string &name,
                                              const std::vector<std::string> &directories) {
    std::vector<std::string> candidates;
    if (name.find('/') != std::string::npos)
        candidates.push_back(name);
    else
        for (const std::string &directory : directories)
            for (const char *ending : {"", ".gz"})
                candidates.push_back(directory + "/" + name + ending);
    std::string tried;
    for (const std::string &path : candidates) {
        if (std::unique_ptr<source_file> source = read_if_there(path))
            return source;
        if (errno != ENOENT)
            throw compiler_failure(path + ": " + strerror(errno));
        tried += (tried.empty() ? "" : ", ") + path;
    }
    throw compiler_failure(name + " is not there: tried " + tried);
}

} // namespace kestrion
