#include <kestrion/env_registry.h>

#include "base/installation.h"
#include "base/locale_hooks.h"
#include "base/owned_text.h"
#include "env/place_variables.h"
#include "env/variable_table.h"
#include <kestrion/error_numbers.h>
#include <kestrion/first_load.h>
#include <kestrion/strings.h>

#include <stdlib.h>
#include <string.h>

namespace {

constinit char empty_text[1] = {};

// Starts a lookup: clears gerrno, refuses a null name, loads the registry at the first one.
bool lookup_ready(const char *name) {
    gerrno = 0;
    if (name == nullptr) {
        gerrno = err_env_null_name;
        return false;
    }
    if (Kes_EVars != nullptr)
        return true;
    const int status = greadenv();
    if (status != 0 && gerrno == 0)
        gerrno = status;
    return status == 0;
}

bool longer_than(const char *text, int32_t limit) {
    const auto most = static_cast<size_t>(limit);
    return strnlen(text, most + 1) > most;
}

consteval int32_t least_limit() {
    int32_t least = INT32_MAX;
    for (const env_variable &row : kestrion::variable_rows) {
        if (row.max_length >= 1 && row.max_length < least)
            least = row.max_length;
    }
    return least;
}

// Holds a value from the environment against the limit of its row. An index in range names the row
// without a look at the name; by name, most values are within every limit and the row need not be
// found.
bool over_limit(const char *value, const char *name, int32_t index) {
    if (index < 0 || index >= Num_DVals) {
        index = longer_than(value, least_limit()) ? kestrion::find_variable(name) : -1;
        if (index < 0)
            return false;
    }
    const int32_t limit = Kes_DVals[index].max_length;
    return limit >= 1 && longer_than(value, limit);
}

// The body of idx_getenv, here so that the lookups, which begin with it, have it inlined.
char *environment_value(const char *name, int32_t index) {
    char *value = getenv(name);
    if (value == nullptr)
        return nullptr;
    if (kestrion::has_raised_privileges() && kestrion::is_place_variable(name))
        return nullptr;
    char *converted = kestrion::locale_hooks.text_from_system(value);
    if (converted != nullptr)
        value = converted;
    if (over_limit(value, name, index)) {
        free(converted);
        gerrno = err_env_value_size;
        return nullptr;
    }
    return value;
}

} // namespace

constinit env_entry *Kes_EVars = nullptr;
constinit int32_t Num_EVars = 0;
constinit const env_variable *Kes_UDVars = nullptr;
constinit char *const EnvEmptyVal = empty_text;
constinit int32_t gerrno = 0;

char *idx_ggetenv(const char *name, int32_t index) {
    if (!lookup_ready(name))
        return nullptr;
    if (char *value = environment_value(name, index))
        return value;
    if (char *value = ggetglsenv(name))
        return value;
    return idx_getdefault(name, index);
}

char *ggetenv(const char *name) { return idx_ggetenv(name, -1); }
char *getsesenv(const char *name) { return idx_ggetenv(name, -1); }
char *ggetenv_oledb(const char *name) { return idx_ggetenv(name, -1); }

char *idx_ggetenv2(const char *name, int32_t index) {
    if (!lookup_ready(name))
        return nullptr;
    if (char *value = environment_value(name, index))
        return value;
    return idx_getdefault(name, index);
}

char *ggetenv2(const char *name) { return idx_ggetenv2(name, -1); }

char *idx_getenv(const char *name, int32_t index) {
    gerrno = name == nullptr ? err_env_null_name : 0;
    return name == nullptr ? nullptr : environment_value(name, index);
}

char *ggetglsenv(const char *name) {
    return name == nullptr ? nullptr : kestrion::locale_hooks.setting(name);
}

char *idx_getdefault(const char *name, int32_t index) {
    if (Kes_EVars == nullptr)
        return nullptr;
    const env_entry *entry = index == -1 ? search_evar(name, Kes_EVars, Num_EVars)
                                         : search_evar_enum(index, name, Kes_EVars, Num_EVars);
    if (entry != nullptr)
        return entry->value;
    gerrno = err_env_unknown_name;
    return nullptr;
}

int gdefenv(const char *name, const char **text) {
    const int32_t row = name == nullptr ? -1 : kestrion::find_variable(name);
    if (row < 0)
        return -1;
    *text = Kes_DVals[row].default_value;
    return 0;
}

env_entry *search_evar(const char *name, env_entry *table, int32_t count) {
    if (name == nullptr || table == nullptr)
        return nullptr;
    int32_t from = 0;
    if (table == Kes_EVars) { // begins with the rows of Kes_DVals, whose index saves the walk
        const int32_t row = kestrion::find_variable(name);
        if (row >= 0)
            return row < count ? &table[row] : nullptr;
        from = Num_DVals;
    }
    for (int32_t i = from; i < count && table[i].name != nullptr; ++i) {
        if (stcmpr(table[i].name, name) == 0)
            return &table[i];
    }
    return nullptr;
}

env_entry *search_evar_enum(int32_t index, const char *name, env_entry *table, int32_t count) {
    if (table == nullptr || index < 0 || index >= count)
        return nullptr;
    if (table[index].name != nullptr && table[index].index == index)
        return &table[index];
    return search_evar(name, table, count);
}

int32_t idx_get_timeout_value(void) { return -1; }

int ginsenv(const char *name, const char *value, env_entry *entry) {
    if (name == nullptr)
        return err_env_null_name;
    if (entry == nullptr)
        entry = search_evar(name, Kes_EVars, Num_EVars);
    if (entry == nullptr)
        return err_env_unknown_name;
    if (value != nullptr && entry->max_length >= 1 && longer_than(value, entry->max_length))
        return err_env_value_size;
    if (entry->value == nullptr && value == nullptr)
        return 0;
    if (entry->value != nullptr && value != nullptr && stcmpr(entry->value, value) == 0)
        return 0;

    // Set and empty counts as having no old value: a null then leaves it set and empty, and without
    // memory for a new text it becomes unset.
    char *old = entry->value == EnvEmptyVal ? nullptr : entry->value;
    entry->value = nullptr;
    if (value != nullptr && *value != '\0' && entry->max_length != -1) {
        entry->value = kestrion::joined_text(value);
        if (entry->value == nullptr) {
            entry->value = old;
            return err_env_no_memory;
        }
    } else if (value != nullptr || old == nullptr) {
        entry->value = EnvEmptyVal;
    }
    free(old);
    return 0;
}

int gfeputenv(const char *name, const char *value) {
    if (name == nullptr)
        return err_env_null_name;
    char *text = kestrion::joined_text(name, "=", value == nullptr ? "" : value);
    if (text == nullptr)
        return err_env_no_memory;
    if (putenv(text) == 0)
        return 0;
    free(text);
    return err_env_no_memory;
}

int gputenv(const char *name, const char *value) { return gfeputenv(name, value); }

void gsetudenv(const env_variable *list) { Kes_UDVars = list; }

void gFreeEVars(void) {
    for (int32_t i = 0; i < Num_EVars; ++i) {
        free(Kes_EVars[i].name);
        if (Kes_EVars[i].value != EnvEmptyVal)
            free(Kes_EVars[i].value);
    }
    free(Kes_EVars);
    Kes_EVars = nullptr;
    Num_EVars = 0;
}
