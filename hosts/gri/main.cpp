#include <iostream>

#include "hosts/gri/gri_command.h"

int main(int argc, char** argv) { return gri_run(argc, argv, std::cout, std::cerr); }
