// Environments beside the default one: requests, comparison, creation and release.
//
// A connection says what it wants in a request; an environment that already means the same is
// reused, otherwise a new one is made. Results are 0 for success or a match, negative otherwise.

#pragma once

#include <kestrion/gls_env.h>

#ifdef __cplusplus
extern "C" {
#endif

// Builds a request from the environment variables. CLIENT_LOCALE and DB_LOCALE are normalised
// copies; the other texts stay the environment's. Returns null without memory for the record.
GlsEnvLocale *CreateGlsEnvLocale(void);

// Frees a request and the two texts that it owns; null is ignored.
void freeGlsEnvLocale(GlsEnvLocale *request);

// Compares one setting: `value` of an environment, with its `defaulted` bit, and `wanted` of a
// request. Returns 0 when they match. A value that the runtime derived does not count against a
// silent request.
int CompareLocaleField(const char *value, int defaulted, const char *wanted);

// Returns 0 when `env` is what `request` asks for, else -1. A null request matches any environment.
int CompareLocale(const GlsEnv *env, const GlsEnvLocale *request);

// Stores the first environment that matches in *out (null when none does). Returns 0 or -1.
int CheckExistingGlsEnv(const GlsEnvLocale *request, GlsEnv **out);

// Makes an environment for `request` (null: from the variables alone) and appends it to the list.
// The start of an environment looks its settings up again, and there DB_LOCALE, DBDATE and GL_DATE
// of the process environment go over those of the request: an environment that was made for other
// ones never matches the request that it was made for.
// init    non-zero: InitGlsEnv at once; a failure leaves the list and the current environment as
//         they were and is returned as a 16-bit value. The texts of the record's settings stay
//         allocated then, and the count of environments stays raised.
// Returns 0, or err_no_block without memory.
int CreateGlsEnv(const GlsEnvLocale *request, GlsEnv **out, int init);

// Makes `env` current and starts it. On failure the environment before it is current again, with a
// CLIENT_LOCALE of its own, and the error of the start is returned, or err_env_no_memory without
// memory for that text.
int InitGlsEnv(GlsEnv *env);

// The entry for a connection: reuses a matching environment or makes one, and makes it current.
// Returns 0, -1 when no request could be built, or the result of CreateGlsEnv.
int cdrInitGlsEnv(void);

// Empties the current environment: names, date format, locales, conversions; and drops the cache of
// code-set names, which all environments share and the next look-up fills again.
void freegls(void);

// Releases every created environment and empties the default one, which is current afterwards.
// Returns 0.
int FreeAllGlsEnv(void);

// Kept for programs that release their control blocks by one call: there is nothing to release.
void AllDestructor(void);
void FreeAllTcbs(void);

#ifdef __cplusplus
}
#endif
