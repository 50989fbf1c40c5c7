#include <kestrion/language_slots.h>

#include "env/variable_table.h"
#include <kestrion/env_registry.h>
#include <kestrion/error_numbers.h>
#include <kestrion/process_characters.h>
#include <kestrion/strings.h>

#include <locale.h>
#include <string.h>

constinit database_language Kes_DBVars = {};

namespace {

struct language_slot {
    const char *name;
    int32_t index;
    char *text;
    size_t size;
    int (*apply)(const char *value); // null: nothing follows from the value
};

constexpr language_slot dbnls_slot = {"DBNLS", kestrion::variable_index("DBNLS"), Kes_DBVars.dbnls,
                                      sizeof Kes_DBVars.dbnls, nullptr};
constexpr language_slot ctype_slot = {"LC_CTYPE", kestrion::variable_index("LC_CTYPE"),
                                      Kes_DBVars.lc_ctype, sizeof Kes_DBVars.lc_ctype, rldnlsctype};
constexpr language_slot collate_slot = {"LC_COLLATE", kestrion::variable_index("LC_COLLATE"),
                                        Kes_DBVars.lc_collate, sizeof Kes_DBVars.lc_collate,
                                        _osetcollate};

const language_slot *slot_named(const char *name) {
    for (const language_slot *slot : {&collate_slot, &ctype_slot, &dbnls_slot}) {
        if (name != nullptr && stcmpr(name, slot->name) == 0)
            return slot;
    }
    return nullptr;
}

const char *registry_value(const language_slot &slot, const char *otherwise) {
    const char *value = idx_ggetenv(slot.name, slot.index);
    return value == nullptr ? otherwise : value;
}

bool fits(const language_slot &slot, const char *value) { return strlen(value) < slot.size; }

int store(const language_slot &slot, const char *value) {
    if (!fits(slot, value))
        return err_env_value_size;
    memmove(slot.text, value, strlen(value) + 1); // the value may be the slot's own text
    return 0;
}

int load(const language_slot &slot, int apply) {
    const char *value = registry_value(slot, "");
    if (apply == 0)
        return store(slot, value);
    if (stcmpr(slot.text, value) == 0)
        return 0;
    const int status = store(slot, value);
    return status == 0 ? slot.apply(slot.text) : status;
}

} // namespace

int OS_setlang(const char *name, const char *value) {
    const language_slot *slot = slot_named(name);
    if (slot == nullptr)
        return 0;
    if (value == nullptr)
        value = "";
    if (slot == &collate_slot && fits(*slot, value)) {
        if (const int status = _osetcollate(value); status != 0)
            return status;
        return store(*slot, value);
    }
    const int status = store(*slot, value);
    return status == 0 && slot->apply != nullptr ? slot->apply(slot->text) : status;
}

char *OS_getlangvar(const char *name) {
    const language_slot *slot = slot_named(name);
    return slot == nullptr ? nullptr : slot->text;
}

int OS_IsDbEnvSet(void) { return Kes_DBVars.lc_ctype[0] == '\0' ? 0 : 1; }

int OS_resetlang(int apply) {
    int status = store(dbnls_slot, registry_value(dbnls_slot, "0"));
    if (status == 0)
        status = load(ctype_slot, apply);
    if (status == 0)
        status = load(collate_slot, apply);
    return status;
}

int _osetcollate(const char *locale_name) {
    return setlocale(LC_COLLATE, locale_name) == nullptr ? err_process_locale : 0;
}
