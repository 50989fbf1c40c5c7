// A configuration file of any bytes, held against a plain second reader of the same syntax.

#include <kestrion/config_files.h>
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/os_control.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <stdint.h>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using values = std::map<std::string, std::optional<std::string>>;

values registry_values() {
    values all;
    for (int32_t i = 0; i < Num_EVars; ++i) {
        const char *value = Kes_EVars[i].value;
        all[Kes_EVars[i].name] =
            value == nullptr ? std::nullopt : std::optional<std::string>(value);
    }
    return all;
}

void require(bool holds) {
    if (!holds)
        abort();
}

size_t limit_of(std::string_view name) {
    return name == "KESTRIONDIR" ? 256 : name == "KESTRIONSERVER" ? 128 : SIZE_MAX;
}

// Stores the line's value in `all`; returns what ginsenv would for it.
int take_line(const std::string &line, values &all) {
    static constexpr const char *space = " \t\n\v\f\r";
    static const std::set<std::string> language = {
        "LANG", "LC_COLLATE", "LC_CTYPE", "LC_MONETARY", "LC_NUMERIC", "LC_TIME", "DBNLS"};
    const size_t name_end = std::min(line.find_first_of(space), line.size());
    const size_t value_at = std::min(line.find_first_not_of(space, name_end), line.size());
    const std::string name = line.substr(0, name_end);
    const std::string value = line.substr(value_at);
    if (!all.contains(name))
        return err_env_unknown_name;
    if (value.size() > limit_of(name))
        return err_env_value_size;
    if (!value.empty() || !language.contains(name))
        all[name] = value;
    return 0;
}

// Reads a whole text into `all`; returns what ldcffile returns.
int read_plainly(std::string_view text, values &all) {
    int last = 0;
    while (!text.empty() && last != err_env_value_size) {
        const bool comment = text[0] == '#';
        const bool blank = text[0] == '\n';
        const size_t end = text.find_first_of(comment ? "\n" : "\n\xFF", blank ? 0 : 1);
        if (end == text.npos || text[end] != '\n')
            break;
        const std::string line = std::string(text.substr(0, end)).c_str(); // up to a zero byte
        text.remove_prefix(end + 1);
        if (!comment && !blank)
            last = take_line(line, all);
    }
    return last == 0 ? 0 : err_env_value_size;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static env_name_list *ignore = _ginitnamelist();
    setenv("KESTRIONDIR", "/nonexistent", 1);
    CheckOsInit();
    ggetenv("DBPATH");
    values expected = registry_values();

    const int file = memfd_create("config", 0);
    require(write(file, data, size) == static_cast<ssize_t>(size));
    uint32_t line = 0;
    uint32_t flags = 0;
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const int status = ldcffile(path.c_str(), ignore, &line, &flags);
    close(file);

    require(status == read_plainly({reinterpret_cast<const char *>(data), size}, expected));
    require(registry_values() == expected);
    gFreeEVars();
    return 0;
}
