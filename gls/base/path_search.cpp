#include <kestrion/path_search.h>

#include "base/installation.h"
#include "gls/base/engine_error.h"
#include "gls/base/log_with_name.h"
#include <kestrion/gls_log.h>

#include <stdlib.h>
#include <string.h>
#include <string_view>

using namespace kestrion;

namespace {

constexpr size_t max_base_length = 256;
constexpr size_t stack_path_size = 1024;

// A path under construction: on the stack while it is short, from the search's allocator above
// that.
class path_buffer {
public:
    path_buffer(void *ctx, const gl_file_functions *functions) : ctx_(ctx), functions_(functions) {}
    path_buffer(const path_buffer &) = delete;
    path_buffer &operator=(const path_buffer &) = delete;
    ~path_buffer() {
        if (heap_ != nullptr)
            functions_->release(heap_);
    }

    // Empties the path and makes room for `size` bytes; false with GLS_ERR_NO_MEMORY.
    bool start(size_t size) {
        length_ = 0;
        if (size <= capacity_)
            return true;
        char *const bigger = static_cast<char *>(functions_->allocate(size));
        if (bigger == nullptr)
            return refuse(ctx_, GLS_ERR_NO_MEMORY);
        if (heap_ != nullptr)
            functions_->release(heap_);
        heap_ = bigger;
        capacity_ = size;
        return true;
    }
    // Appends a piece, for which `start` made room, and terminates the path.
    void add(std::string_view piece) {
        piece.copy(text() + length_, piece.size());
        length_ += piece.size();
        text()[length_] = '\0';
    }
    char *text() { return heap_ != nullptr ? heap_ : stack_; }

private:
    void *ctx_;
    const gl_file_functions *functions_;
    char *heap_ = nullptr;
    size_t capacity_ = stack_path_size;
    size_t length_ = 0;
    char stack_[stack_path_size];
};

FILE *open_file(void *ctx, const char *name, const gl_file_functions *functions) {
    FILE *const file = functions->open(name, "r");
    log_with_name(file != nullptr ? "Opened: " : "Could not open: ", name);
    if (file == nullptr && ctx != nullptr)
        set_engine_error(ctx, GLS_ERR_FILE);
    return file;
}

// One search. `rpath` is where the directory goes, or null when nobody asks for it.
struct search {
    void *ctx;
    std::string_view name; // terminated
    const char *dir;
    const char *version;
    char **rpath;
    const gl_file_functions *functions;
    int32_t word_before;
    bool out_of_memory = false; // ends the search: its word must not be restored

    FILE *run();
    FILE *in_directories(std::string_view list);
    FILE *in_installation(std::string_view base);
    FILE *in_directory(path_buffer &path);
    void restore_word() const {
        if (ctx != nullptr)
            set_engine_error(ctx, word_before);
    }
    bool keep_directory(const char *text) {
        out_of_memory = rpath != nullptr && gl_fix_rpath(ctx, rpath, text, functions) != 0;
        return !out_of_memory;
    }
};

// Opens the name below the directory in `path`, which has room for it.
FILE *search::in_directory(path_buffer &path) {
    if (!keep_directory(path.text()))
        return nullptr;
    path.add("/");
    path.add(name);
    return open_file(ctx, path.text(), functions);
}

FILE *search::in_directories(std::string_view list) {
    path_buffer path(ctx, functions);
    while (!list.empty()) {
        const size_t colon = list.find(':');
        const std::string_view element = list.substr(0, colon);
        list = colon == list.npos ? std::string_view() : list.substr(colon + 1);
        if (element.empty())
            continue;
        restore_word();
        if (!path.start(element.size() + name.size() + 2))
            return nullptr;
        path.add(element);
        FILE *const file = in_directory(path);
        if (file != nullptr || out_of_memory)
            return file;
    }
    // Said here once more, since a list of nothing but colons tries nothing.
    return ctx != nullptr ? fail_with_null(ctx, GLS_ERR_FILE) : nullptr;
}

FILE *search::in_installation(std::string_view base) {
    const std::string_view to_gls = base.ends_with('/') ? "gls/" : "/gls/";
    const std::string_view versions[] = {version, ""};
    path_buffer path(ctx, functions);
    for (const std::string_view &tried : versions) {
        if (tried.empty() && &tried == versions)
            continue;
        restore_word();
        if (!path.start(base.size() + to_gls.size() + strlen(dir) + tried.size() + name.size() + 2))
            return nullptr;
        path.add(base);
        path.add(to_gls);
        path.add(dir);
        path.add(tried);
        FILE *const file = in_directory(path);
        if (file != nullptr || out_of_memory)
            return file;
    }
    return nullptr;
}

FILE *search::run() {
    const char *const set_base = _gl_ext_getenv("KESTRIONDIR");
    const std::string_view base = set_base != nullptr ? set_base : kestrion::built_in_directory;
    if (base.size() > max_base_length) {
        gl_message("Environment variable KESTRIONDIR cannot be greater than 256 characters");
        return fail_with_null(ctx, GLS_ERR_FILE);
    }
    if (name.find(gl_directory_mark) != name.npos)
        return gl_open_file(ctx, name.data());
    if (name.starts_with('/'))
        return keep_directory("/") ? open_file(ctx, name.data(), functions) : nullptr;
    // Read past the table: the search also runs before a host has registered anything.
    const char *const list = kestrion::place_from_environment("GL_PATH");
    return list != nullptr && *list != '\0' ? in_directories(list) : in_installation(base);
}

FILE *gl_path_search1(void *ctx, const char *name, char **rpath, const char *dir,
                      const char *version, const gl_file_functions *functions) {
    search wanted = {.ctx = ctx,
                     .name = name,
                     .dir = dir,
                     .version = version != nullptr ? version : "",
                     .rpath = rpath,
                     .functions = functions,
                     .word_before = ctx != nullptr ? *_gl_ext_errno(ctx) : 0};
    return wanted.run();
}

char *directory_of(char *rpath, void *ctx, const char *name, const char *dir, const char *version,
                   const gl_file_functions *functions) {
    FILE *const file = gl_path_search1(ctx, name, &rpath, dir, version, functions);
    if (file != nullptr) {
        functions->close(file);
        return rpath;
    }
    if (rpath != nullptr)
        functions->release(rpath);
    return nullptr;
}

} // namespace

FILE *gl_open_file(void *ctx, const char *name) {
    const size_t size = strlen(name) + 1;
    path_buffer path(ctx, &gl_ext_functions);
    if (!path.start(size))
        return nullptr;
    path.add(name);
    char *const text = path.text();
    for (size_t i = 0; i < size; ++i) {
        if (text[i] == gl_directory_mark)
            text[i] = '/';
    }
    return open_file(ctx, text, &gl_ext_functions);
}

FILE *gl_path_search(void *ctx, const char *name, const char *dir, const char *version) {
    return gl_path_search1(ctx, name, nullptr, dir, version, &gl_ext_functions);
}

FILE *gl_path_search_no_ext(void *ctx, const char *name, const char *dir, const char *version) {
    return gl_path_search1(ctx, name, nullptr, dir, version, &gl_reg_functions);
}

char *gl_path_search_rpath(char *rpath, void *ctx, const char *name, const char *dir,
                           const char *version) {
    return directory_of(rpath, ctx, name, dir, version, &gl_ext_functions);
}

char *gl_path_search_no_ext_rpath(char *rpath, void *ctx, const char *name, const char *dir,
                                  const char *version) {
    return directory_of(rpath, ctx, name, dir, version, &gl_reg_functions);
}

int gl_fix_rpath(void *ctx, char **slot, const char *text, const gl_file_functions *functions) {
    if (*slot != nullptr)
        functions->release(*slot);
    const size_t size = strlen(text) + 1;
    *slot = static_cast<char *>(functions->allocate(size));
    if (*slot == nullptr)
        return fail(ctx, GLS_ERR_NO_MEMORY);
    memcpy(*slot, text, size);
    return 0;
}
