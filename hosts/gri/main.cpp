#include <fcntl.h>
#include <string.h>  // explicit_bzero is no function of C++
#include <unistd.h>

#include <iostream>

#include "hosts/gri/gri_command.h"
#include "hosts/gri/gri_passwords.h"

namespace {

/// A program may be started with standard input, output or error closed. The next files that it
/// opens would then take their numbers, and what is meant for the closed ones.
void holdStandardDescriptors() {
  constexpr int UNUSABLE[] = {O_WRONLY, O_RDONLY, O_WRONLY};  // input can't be read, output written
  for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
    // The lowest free number is the one that is closed.
    if (::fcntl(number, F_GETFD) < 0) (void)::open("/dev/null", UNUSABLE[number]);
  }
}

}  // namespace

int main(int argc, char** argv) {
  holdStandardDescriptors();
  std::vector<std::string> arguments = gri_takeArguments(argc, argv);
  std::vector<const char*> pointers;
  pointers.reserve(arguments.size());
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
  const int exitCode = gri_run(argc, pointers.data(), std::cout, std::cerr);
  for (std::string& argument : arguments) explicit_bzero(argument.data(), argument.size());
  return exitCode;
}
