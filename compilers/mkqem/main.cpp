#include "compilers/mkqem/mkqem.h"

int main(int argc, char **argv) { return kestrion::mkqem_main(argc, argv); }
