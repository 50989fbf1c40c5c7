#include <kestrion/message_paths.h>

#include "base/default_locale.h"
#include "base/installation.h"
#include "base/owned_text.h"
#include "env/variable_table.h"
#include <kestrion/env_registry.h>
#include <kestrion/gentcb.h>
#include <kestrion/specifiers.h>
#include <kestrion/startup.h>
#include <kestrion/strings.h>

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t room_for_directories = 21; // what installation directory and leaf must leave
constexpr size_t locale_name_limit = 260;   // a longer name is dropped

// The names that a path may have in its middle.
enum middle_name {
    LANGUAGE_DIR,  // msg_langdir
    LANGUAGE_NAME, // directory name of msg_langdir, taken as a locale specifier
    LOCALE_DIR,    // the locale
    LOCALE_NAME,   // directory name of the locale
    ENGLISH_NAME,
    ENGLISH_LOCALE,
    ENGLISH_WORD,
    NO_NAME,
    MIDDLE_NAMES
};

struct attempt {
    const char *above; // "msg/" or empty
    middle_name middle;
};

// The places in the order in which they are tried. Rows 6 and 7 repeat 1 and 2: a file that is
// installed meanwhile is found before the English ones.
constexpr attempt attempts[] = {
    {"msg/", LANGUAGE_DIR}, {"", LANGUAGE_DIR},     {"msg/", LANGUAGE_NAME},
    {"msg/", LOCALE_NAME},  {"msg/", LOCALE_DIR},   {"msg/", LANGUAGE_DIR},
    {"", LANGUAGE_DIR},     {"msg/", ENGLISH_NAME}, {"msg/", ENGLISH_LOCALE},
    {"msg/", NO_NAME},      {"msg/", ENGLISH_WORD},
};

const char *install_dir(gentcb *block) {
    if (block->install_dir == nullptr) {
        const char *value = idx_ggetenv("KESTRIONDIR", kestrion::variable_index("KESTRIONDIR"));
        block->install_dir =
            kestrion::joined_text(value != nullptr ? value : kestrion::built_in_directory);
    }
    return block->install_dir;
}

// Settles msg_langdir at its first use; without a directory it is empty. Without memory it stays
// unset and the English files serve.
void settle_language_directory() {
    if (msg_langdir != nullptr)
        return;
    const char *value = idx_ggetenv("DBLANG", kestrion::variable_index("DBLANG"));
    if (value == nullptr && DBNLSset() != 0)
        value = idx_ggetenv("LANG", kestrion::variable_index("LANG"));
    msg_langdir = kestrion::joined_text(value != nullptr ? value : "");
}

// The directory name that the locale engine gives to a specifier, or the empty text.
void directory_name(const char *spec, char (&name)[gl_composite_spec_size]) {
    if (spec == nullptr || *spec == '\0' ||
        gl_lc_spec2msg_dname(nullptr, spec, name, nullptr, nullptr) != 0)
        name[0] = '\0';
}

// Names come from the caller. They are looked up below the installation directory, and where the caller
// must not choose the file they do not lead out of it.
bool is_usable(const char *middle) {
    return middle != nullptr && *middle != '\0' &&
           !(strstr(middle, "..") != nullptr && kestrion::has_raised_privileges());
}

// Returns false when the attempt needs a name that is absent, or does not fit.
bool build_path(char (&path)[gen_path_size], const char *base, const attempt &row,
                const char *middle, const char *leaf) {
    const bool has_middle = is_usable(middle);
    if (!has_middle && row.middle != NO_NAME)
        return false;
    const int length = snprintf(path, sizeof path, "%s/%s%s%s%s", base, row.above,
                                has_middle ? middle : "", has_middle ? "/" : "", leaf);
    return length >= 0 && static_cast<size_t>(length) < sizeof path;
}

} // namespace

constinit char *msg_langdir = nullptr;

int _ofreadable(const char *path) {
    struct stat status;
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode) || access(path, R_OK) != 0)
        return 0;
    errno = 0;
    return 1;
}

char *rmsgfname(const char *leaf) { return rmsgfname_gls(leaf, nullptr); }

char *rmsgfname_gls(const char *leaf, const char *locale) {
    gentcb *block = CheckGenInit();
    const char *base = block == nullptr ? nullptr : install_dir(block);
    if (base == nullptr || strlen(base) + strlen(leaf) + room_for_directories > gen_path_size)
        return nullptr;
    settle_language_directory();
    // A lookup that names its locale ends the user's own directory, for later lookups too.
    if (msg_langdir != nullptr && (locale != nullptr || strlen(msg_langdir) >= locale_name_limit))
        *msg_langdir = '\0';
    if (locale == nullptr)
        locale = idx_ggetenv("CLIENT_LOCALE", kestrion::variable_index("CLIENT_LOCALE"));
    if (locale != nullptr && strlen(locale) >= locale_name_limit)
        locale = nullptr;

    char language_name[gl_composite_spec_size];
    char locale_name[gl_composite_spec_size];
    directory_name(msg_langdir, language_name);
    directory_name(locale, locale_name);
    const char *middles[MIDDLE_NAMES] = {};
    middles[LANGUAGE_DIR] = msg_langdir;
    middles[LANGUAGE_NAME] = language_name;
    middles[LOCALE_DIR] = locale;
    middles[LOCALE_NAME] = locale_name;
    middles[ENGLISH_NAME] = "en_us/0333";
    middles[ENGLISH_LOCALE] = kestrion::default_locale;
    middles[ENGLISH_WORD] = "english";
    for (const attempt &row : attempts)
        if (build_path(block->path, base, row, middles[row.middle], leaf) &&
            _ofreadable(block->path) != 0)
            return block->path;
    block->path[0] = '\0';
    return block->path;
}
