#include "compilers/mkcvo/mkcvo.h"

int main(int argc, char **argv) { return kestrion::mkcvo_main(argc, argv); }
