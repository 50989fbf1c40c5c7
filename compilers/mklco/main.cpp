#include "compilers/mklco/mklco.h"

int main(int argc, char **argv) { return kestrion::mklco_main(argc, argv); }
