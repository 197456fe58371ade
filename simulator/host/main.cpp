// The stand-in simulator as a program; everything is in its library.
#include "core/sim.h"

int main(int argc, char** argv) { return sim::SimMain(argc, argv); }
