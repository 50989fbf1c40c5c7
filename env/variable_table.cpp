#include "env/variable_table.h"

#include <kestrion/strings.h>

#include <array>
#include <span>

constinit const env_variable Kes_DVals[] = {
#include "env/variable_rows.inc"
};

// clang-format off
// Sent to a server for the session.
constexpr const char *Kes_SVarList[Num_SVars] = {
    "DBTIME", "DBLANG", "DBMAXPROC", "DBTEMP", "DEBUG", "DUMPCORE", "DUMPDIR", "DUMPMEM",
    "DUMPSHMEM", "GCORE", "QVT_NOZEROMDY", "NOSHMSG", "PSORT_DBTEMP", "PSORT_NPROCS", "SHELL", "TZ",
    "W1", "W2", "NOSORTINDEX", "SORTINDEX", "DBUPSPACE", "SUBQCACHESZ", "NO_KEYFIRST",
    "NO_KEYSTART", "NO_PREDPROMOTE", "NO_SUBQF", "QVT_FLAT_UCSQ", "ANSIOWNER", "UVIEW_CRTTMP",
    "PDQPRIORITY", "QVT_DIRECTIVES", "QVT_DW_OPT", "QVT_NO_OROPT", "QVT_UPDDESC", "OPTCOMPIND",
    "OPTOFC", "KESTRIONCONRETRY", "KESTRIONCONTIME", "KESTRIONOPCACHE", "GL_DATETIME", "GL_MATCHES",
    "SQLSTATS", "DBCENTURY", "PLCONFIG", "DBANSIWARN", "PATH", "CR_LOCKBLOB", "LOCKSSFU",
    "LIGHT_SCANS", "SQL_FROM_DBIMPORT", "PLOAD_LO_PATH", "DBTODAY", "NODEFDAC", "OPT_GOAL",
    "DEFAULT_ATTACH", "USE_DTENV", "TRACECUDRARG", "FORCE_DB_DROP", "DC_SESSION_MAX",
    "QVT_DEF_TABLE_LOCKMODE", "QVT_IMPLICIT_TRANSACTION", "QVT_NOT_STRICT_THOUS_SEP", "DBSPACETEMP",
    "FET_BUF_SIZE", "BIG_FET_BUF_SIZE", "QVT_MULTIPREPSTMT", "GL_USEGLU", "DBXCLI",
    "QVT_EXTDIRECTIVES", "QVT_XASTDCOMPLIANCE_XAEND", "QVT_DIRTY_WAIT", "QVT_NODBPROC",
    "CLIENT_LABEL",
};

// The locale of the database.
constexpr const char *Kes_LVarList[Num_LVars] = {
    "DB_LOCALE", "DBNLS", "LC_CTYPE", "LC_COLLATE", "LC_NUMERIC", "LC_MONETARY", "LC_TIME",
};

// Sent besides these.
constexpr const char *Kes_MVarList[Num_MVars] = {
    "DBDATE", "DBMONEY", "DBALSBC", "DBCONNECT", "DBCSCONV", "CLIENT_LOCALE", "KESTRIONSTACKSIZE",
    "DBSPACETEMP", "GL_DATE", "COLLCHAR", "SLABEL", "NODEFDAC", "DELIMIDENT", "RASHELP",
    "STMT_CACHE", "STMT_CACHE_DEBUG", "QVT_LONGID", "QVT_PAD_VARCHAR", "CLNT_PAM_CAPABLE",
    "KESTRIONSERVER", "KESTRIONCONTIME", "QVT_NODBPROC", "NORVEL_XPS_PARAMS",
    "QVT_NOT_STRICT_THOUS_SEP", "CLIENT_LABEL",
};
// clang-format on

using kestrion::variable_rows;

namespace {

// Open addressing over a table three times the rows: a name is found in 1.2 probes, and half of the
// unknown ones meet an empty slot at once. The compiler fills it, so that there is nothing to build
// at start and nothing to drop with the registry.
constexpr uint32_t slot_count = 1024;
constexpr int16_t empty_slot = -1;

constexpr uint32_t first_slot(const char *name) {
    uint32_t hash = 0;
    for (; *name != '\0'; ++name)
        hash = hash * 31 + static_cast<unsigned char>(*name);
    return (hash * 2654435769U) >> 22; // Fibonacci hashing: the upper 10 bits are the best mixed
}

constexpr uint32_t next_slot(uint32_t slot) { return (slot + 1) % slot_count; }

struct name_slots {
    std::array<int16_t, slot_count> row;
    bool names_unique;
};

consteval name_slots fill_slots() {
    name_slots slots{.row = {}, .names_unique = true};
    slots.row.fill(empty_slot);
    for (int16_t row = 0; row < Num_DVals; ++row) {
        const std::string_view name = variable_rows[row].name;
        uint32_t slot = first_slot(variable_rows[row].name);
        for (; slots.row[slot] != empty_slot; slot = next_slot(slot)) {
            if (name == variable_rows[slots.row[slot]].name)
                slots.names_unique = false;
        }
        slots.row[slot] = row;
    }
    return slots;
}

constexpr name_slots slots = fill_slots();
static_assert(slots.names_unique, "a name is in variable_rows twice");

consteval bool all_known(std::span<const char *const> names) {
    for (const char *name : names) {
        uint32_t slot = first_slot(name);
        while (slots.row[slot] != empty_slot &&
               std::string_view(name) != variable_rows[slots.row[slot]].name)
            slot = next_slot(slot);
        if (slots.row[slot] == empty_slot)
            return false;
    }
    return true;
}
static_assert(all_known(Kes_SVarList) && all_known(Kes_LVarList) && all_known(Kes_MVarList));

} // namespace

namespace kestrion {

int32_t find_variable(const char *name) {
    for (uint32_t slot = first_slot(name); slots.row[slot] != empty_slot; slot = next_slot(slot)) {
        if (stcmpr(name, Kes_DVals[slots.row[slot]].name) == 0)
            return slots.row[slot];
    }
    return -1;
}

} // namespace kestrion
