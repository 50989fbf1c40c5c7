// The compiler of conversion objects, as one record for the frame of the compilers.
#pragma once

#include "compilers/compiler.h"

namespace kestrion {

int mkcvo_main(int argc, char **argv, FILE *messages = stderr);

} // namespace kestrion
