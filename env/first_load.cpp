#include <kestrion/first_load.h>

#include "base/default_locale.h"
#include "base/installation.h"
#include "base/owned_text.h"
#include "env/language_setting.h"
#include "env/variable_table.h"
#include <kestrion/config_files.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/os_control.h>
#include <kestrion/strings.h>

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

// Appends an entry for a row to the registry, which has room for it.
int add_entry(const env_variable &row, int32_t index) {
    env_entry &entry = Kes_EVars[Num_EVars];
    entry = {.name = kestrion::joined_text(row.name),
             .value = nullptr,
             .index = index,
             .max_length = row.max_length};
    if (entry.name == nullptr)
        return err_env_no_memory;
    ++Num_EVars;
    return ginsenv(row.name, row.default_value, &entry);
}

// A program that cannot hold the built-in defaults has nothing to run on, nor to say it with.
void seed_built_in_rows() {
    Kes_EVars = static_cast<env_entry *>(calloc(Num_DVals, sizeof(env_entry)));
    if (Kes_EVars == nullptr)
        exit(1);
    for (int32_t i = 0; i < Num_DVals; ++i) {
        if (add_entry(Kes_DVals[i], i) != 0)
            exit(1);
    }
}

int add_program_rows() {
    if (Kes_UDVars == nullptr)
        return 0;
    size_t count = 0;
    while (Kes_UDVars[count].name != nullptr)
        ++count;
    const size_t room = static_cast<size_t>(Num_EVars) + count;
    void *grown = realloc(Kes_EVars, room * sizeof(env_entry));
    if (grown == nullptr)
        return err_env_no_memory;
    Kes_EVars = static_cast<env_entry *>(grown);
    int status = 0;
    for (size_t i = 0; i < count && status == 0; ++i)
        status = add_entry(Kes_UDVars[i], -1);
    return status;
}

int add_ignored_names(env_name_list *ignore) {
    const char *names = getenv("ENVIGNORE");
    if (names == nullptr || kestrion::has_raised_privileges())
        return 0;
    char *copy = kestrion::joined_text(names); // cut up here, not in the environment
    if (copy == nullptr)
        return err_env_no_memory;
    int status = 0;
    char *place = nullptr;
    for (char *name = qvt_strtok(copy, ":", &place); name != nullptr && status == 0;
         name = qvt_strtok(nullptr, ":", &place)) {
        if (_gaddnamelist(ignore, name) < 0)
            status = err_env_no_memory;
    }
    free(copy);
    return status;
}

int read_system_file(const env_name_list *ignore, uint32_t *flags) {
    const char *directory = kestrion::directory_from_environment();
    char *path = kestrion::joined_text(
        directory == nullptr ? kestrion::built_in_directory : directory, "/etc/kestrion.rc");
    if (path == nullptr)
        return err_env_no_memory;
    uint32_t line = 0;
    const int status = ldcffile(path, ignore, &line, flags);
    free(path);
    return status;
}

int read_user_file(const env_name_list *ignore, uint32_t *flags) {
    char home[home_path_size];
    if (ggethomepath(home) != 0)
        return err_env_no_memory;
    char path[home_path_size + sizeof "/.kestrion"];
    stcopy(home, path);
    stcat("/.kestrion", path);
    uint32_t line = 0;
    return ldcffile(path, ignore, &line, flags);
}

int settle_locale_variables(uint32_t flags) {
    const char *lang = getenv("LANG");
    if ((lang == nullptr || *lang == '\0') && (flags & LANGUAGE_LANG) != 0)
        lang = idx_getdefault("LANG", kestrion::variable_index("LANG"));

    struct locale_variable {
        const char *name;
        language_flag flag;
    };
    static constexpr locale_variable variables[] = {
        {"LC_COLLATE", LANGUAGE_LC_COLLATE},   {"LC_CTYPE", LANGUAGE_LC_CTYPE},
        {"LC_MONETARY", LANGUAGE_LC_MONETARY}, {"LC_NUMERIC", LANGUAGE_LC_NUMERIC},
        {"LC_TIME", LANGUAGE_LC_TIME},
    };
    int status = 0;
    for (const locale_variable &variable : variables) {
        status = gnlsenv(flags, variable.flag, variable.name, lang);
        if (status != 0)
            break;
    }
    return status;
}

// A file that failed with err_env_value_size is used as far as it was read. The result is then that
// of the user's file, and that of the locale variables where they are settled.
int read_settings(const env_name_list *ignore) {
    uint32_t flags = 0;
    int status = read_system_file(ignore, &flags);
    const bool goes_on = status == 0 || status == err_env_value_size;
    if (goes_on && !kestrion::has_raised_privileges())
        status = read_user_file(ignore, &flags);
    if (status != 0 && status != err_env_value_size)
        return err_env_no_memory;
    if (kestrion::language_mode(getenv("DBNLS")) != 0)
        flags |= LANGUAGE_DBNLS;
    if ((flags & LANGUAGE_DBNLS) != 0)
        status = settle_locale_variables(flags);
    return status;
}

} // namespace

int greadenv(void) {
    // The control block brings the locale up, and that looks settings up: the registry may be
    // loaded by the time the block is here. So the order of these two questions matters.
    const os_control *control = CheckOsInit();
    gerrno = 0; // those lookups left reasons of their own
    if (control == nullptr)
        return err_env_no_memory;
    if (Kes_EVars != nullptr)
        return 0;
    env_name_list *ignore = _ginitnamelist();
    if (ignore == nullptr)
        return err_env_no_memory;
    seed_built_in_rows();
    int status = add_program_rows();
    if (status == 0)
        status = add_ignored_names(ignore);
    if (status == 0)
        status = read_settings(ignore);
    _gfreenamelist(ignore);
    return status;
}

int gnlsenv(uint32_t flags, uint32_t bit, const char *name, const char *lang) {
    const char *present = getenv(name);
    const bool has_value = present != nullptr && *present != '\0';
    if (!has_value && (flags & bit) != 0) {
        const char *from_file = idx_getdefault(name, -1);
        if (from_file != nullptr && *from_file != '\0')
            return present == nullptr ? 0 : gfeputenv(name, from_file);
    }
    // A variable that is set in the environment is shadowed here too: its own value wins at lookup.
    const char *value =
        lang == nullptr || *lang == '\0' ? kestrion::default_locale_by_number : lang;
    const int status = ginsenv(name, value, nullptr);
    if (status != 0 || present == nullptr || has_value)
        return status;
    return gfeputenv(name, value);
}

int ggethomepath(char *path) {
    const char *login = getlogin();
    const passwd *user = login != nullptr && *login != '\0' ? getpwnam(login) : getpwuid(getuid());
    if (user == nullptr)
        return gerrno = err_env_no_user;
    if (user->pw_dir == nullptr || *user->pw_dir == '\0')
        return gerrno = err_env_value_size;
    stncopy(user->pw_dir, path, home_path_size);
    return 0;
}
