// Locale environments: everything that the runtime derives from one client's locale settings.
//
// A default environment exists from the start of the process; further ones are made when a
// connection needs settings that no existing environment matches. All code reaches the locale
// through one pointer to the current environment, which CheckGlsEnv() returns. One thread at a
// time; nothing here locks.

#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

typedef struct locale_rec locale_rec; // <kestrion/locale_rec.h>
typedef struct cv_rec cv_rec;         // <kestrion/conversion.h>

// Locale categories in the order of the specifier slots.
enum gls_slot {
    GLS_SLOT_CTYPE,
    GLS_SLOT_COLLATE,
    GLS_SLOT_NUMERIC,
    GLS_SLOT_MONETARY,
    GLS_SLOT_TIME,
    GLS_SLOT_MESSAGES,
    GLS_SLOTS
};

// The settings of an environment, in the order of their fields; the value is also the number of the
// setting's bit in `defaulted`.
enum gls_setting {
    GLS_CLIENT_LOCALE,
    GLS_DB_LOCALE,
    GLS_DBNLS,
    GLS_DBLANG,
    GLS_LANG,
    GLS_LC_CTYPE,
    GLS_LC_COLLATE,
    GLS_LC_NUMERIC,
    GLS_LC_MONETARY,
    GLS_LC_TIME,
    GLS_DBTIME,
    GLS_DBMONEY,
    GLS_DBDATE,
    GLS_GL_DATE,
    GLS_GL_DATETIME,
    GLS_SETTINGS
};

enum {
    gls_spec_size = 37,     // a specifier of 36 characters and its terminator
    gls_currency_size = 65, // 64 characters and the terminator
    gls_dt_units = 11       // year .. second, then five fractions
};

// Numeric conventions of one environment; texts are terminated.
typedef struct lconv_rec {
    char radix[32];
    char thousands_sep[32];
    char positive_sign[32];
    char negative_sign[32];
    int32_t group_count;  // sizes in use; 0: digits are not grouped
    int32_t groups[15];   // digits in a group, from the right; 0 repeats, -1 ends grouping
    char money_radix[32]; // of amounts of money; empty until rmoninit has run
    char reserved[36];
} lconv_rec;
static_assert(sizeof(lconv_rec) == 260, "stated size");

typedef struct gls_name_list gls_name_list;
// One block of cached names; a new block goes to the head of the chain.
struct gls_name_list {
    int32_t count;       // names in this block
    gls_name_list *next; // older block, or null
    char *names[1];      // count of them; the texts follow, one after the other
};

// The inner record: the state of one environment.
typedef struct new_gls_env_rec {
    uint64_t reserved_head;
    int16_t mode;             // kind of initialisation wanted; 1 (client side) in every environment
    locale_rec *client_lc;    // copy of cur_lc after initialisation
    locale_rec *saved_lc;     // client locale parked by the caller
    locale_rec *db_lc;        // database locale; cur_lc when no conversion exists
    cv_rec *cv_clienttodb;    // client to database code set, null if none
    cv_rec *cv_dbtoclient;    // the reverse
    cv_rec *cv_app2os;        // text handed to the operating system, null if none
    cv_rec *cv_os2app;        // text that comes from the operating system, null if none
    cv_rec *saved_cv_app2os;  // parked copies of the two above
    cv_rec *saved_cv_os2app;  //
    int16_t init_flags;       // OR of the modes initialised; 0 not initialised
    int32_t initialising;     // 1 while initgls runs
    char *date_fmt;           // date format in GL_DATE notation
    int32_t date_fmt_known;   // 1 when date_fmt has been settled
    int32_t date_order[3];    // fields in order of appearance: 1 day, 2 month, 3 year, 0 none
    int32_t date_era_kind;    // 0 none, 1 by J or N, 2 by C1 or C2, 3 by E or G
    int32_t date_from_dbdate; // 1 from DBDATE or the default, 0 from GL_DATE or the locale
    gls_name_list *abmon_names; // cached names, lower case; owned
    gls_name_list *mon_names;
    gls_name_list *era_names_a;
    gls_name_list *era_names_b;
    int32_t gregorian; // 1 when the locale's calendar is "gregorian"
    int32_t dbnls;     // DBNLSset at the time of initialisation: 0, 1 or 2
    int32_t reserved_mid;
    int16_t lc_flags; // bit 0: both locales of mklocspec are one; bit 1: set by outside code
    char lc_spec[GLS_SLOTS][gls_spec_size]; // one locale specifier per category
    int32_t lc_is_gls[GLS_SLOTS];      // 1: a locale file of the engine, 0: an os/ category file
    char mon_front[gls_currency_size]; // currency symbol before an amount
    char mon_back[gls_currency_size];  // and after it
    int8_t mon_ready;                  // 1 after rmoninit has run
    lconv_rec *lconv;                  // the locale's conventions
    lconv_rec *net_lconv;              // the neutral ones of the network form
    int32_t defaulted;                 // bit n: setting n was derived here, not given by the user
    char *settings[GLS_SETTINGS];      // owned texts, or null
    char *owned_date_fmt; // date_fmt's allocation; null when a caller's buffer holds it
} new_gls_env_rec;

// The outer record: one environment.
typedef struct GlsEnv {
    locale_rec *cur_lc;   // the client's loaded locale; null until initialised
    uintptr_t is_default; // 1 in the default environment; nothing reads it
    uintptr_t reserved;
    new_gls_env_rec *state; // never null in a live environment
    uintptr_t reserved_tail[49];
    char *dt_fmt[gls_dt_units][gls_dt_units]; // datetime formats by [start unit][end unit]
} GlsEnv;

// A request for an environment: what a connection asks for.
typedef struct GlsEnvLocale {
    uintptr_t zero[3];
    const char
        *settings[GLS_SETTINGS]; // CLIENT_LOCALE and DB_LOCALE are owned, the others borrowed
    uintptr_t unused;
} GlsEnvLocale;

typedef struct gls_env_node gls_env_node;
// A node of the list of environments; in created nodes the environment follows it directly.
struct gls_env_node {
    gls_env_node *next;
    GlsEnv *env;
};

#ifdef __cplusplus
extern "C" {
#endif

extern GlsEnv gls_env;              // the default environment
extern new_gls_env_rec new_gls_env; // its state
extern GlsEnv *gls_env_global;      // the current environment, null until first use
extern int32_t
    glsenv_count; // environments made, the default one as soon as anything asks; never lowered
extern int32_t _8bitfsys;         // 1 when the file system accepts 8-bit names
extern gls_env_node defGlsEnv;    // the first node, of the default environment
extern gls_env_node *GlsEnv_List; // all environments, the default one first
extern GlsEnvLocale glsenv_savearea_global;
extern GlsEnvLocale *glsenv_savearea; // points at the block above

// The environment variable of each setting, in the order of gls_setting.
extern const char *const gls_setting_names[GLS_SETTINGS];

// Returns the current environment, never null. The one entry by which all code finds it, called at
// nearly every access: two tests.
GlsEnv *CheckGlsEnv(void);

GlsEnv *qvt_get_glsenv_thread(void); // the same

// Returns the current environment's locale, or null when none is loaded.
locale_rec *qvt_get_gl_locale_thread(void);

// Makes `env` current. While the default environment is the only one, a call that names it leaves a
// current environment alone: code that "resets" to the default must not undo a start in progress.
void SetGlsEnv(GlsEnv *env);

// Stores a copy of `text` as setting `which` of `state`, replacing the old one; null clears it and
// its bit in `defaulted`.
// Returns 0, or err_env_no_memory with the old value kept.
int gls_set_setting(new_gls_env_rec *state, enum gls_setting which, const char *text);

#ifdef __cplusplus
}
#endif
