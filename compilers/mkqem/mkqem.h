// The message catalogue compiler, as one record for the frame of the compilers.

#pragma once

#include "compilers/compiler.h"

namespace kestrion {

int mkqem_main(int argc, char **argv, FILE *messages = stderr);

} // namespace kestrion
