#include <string.h>  // explicit_bzero is no function of C++

#include <iostream>

#include "hosts/gri/gri_command.h"
#include "hosts/gri/gri_passwords.h"

int main(int argc, char** argv) {
  std::vector<std::string> arguments = gri_takeArguments(argc, argv);
  std::vector<const char*> pointers;
  pointers.reserve(arguments.size());
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  const int exitCode = gri_run(argc, pointers.data(), std::cout, std::cerr);
  for (std::string& argument : arguments) explicit_bzero(argument.data(), argument.size());
  return exitCode;
}
