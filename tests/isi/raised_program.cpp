// Binds the provider, but only with raised privileges: without them it ends with 77.

#include <kestrion/isi_api.h>

#include <sys/auxv.h>

int main() { return getauxval(AT_SECURE) != 0 ? isi_init() : 77; }
