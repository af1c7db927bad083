#include "tests/streams/failing_files.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>

namespace {

bool isCounting = false;
std::size_t calls = 0;
std::size_t failing = 0;
bool failsAllBehind = false;
std::ptrdiff_t open = 0;

bool shallFail() {
  if (!isCounting) return false;
  ++calls;
  return failing != 0 && (calls == failing || (calls > failing && failsAllBehind));
}

/// The function of that name that this one stands in front of.
template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

FILE* openNext(const char* name, const char* path, const char* mode) {
  if (shallFail()) {
    errno = EMFILE;
    return nullptr;
  }
  FILE* const file = next<FILE*(const char*, const char*)>(name)(path, mode);
  if (file != nullptr) ++open;
  return file;
}

}  // namespace

namespace failing_files {

Period::Period(std::size_t failingNumber, Extent extent) {
  calls = 0;
  failing = failingNumber;
  failsAllBehind = extent == Extent::ALL_BEHIND;
  isCounting = true;
}

Period::~Period() { isCounting = false; }

std::size_t numCalls() { return calls; }
std::ptrdiff_t numOpen() { return open; }

}  // namespace failing_files

extern "C" {

FILE* fopen64(const char* path, const char* mode) { return openNext("fopen64", path, mode); }

int fclose(FILE* file) {
  const bool hasFailed = shallFail();
  --open;
  const int result = next<int(FILE*)>("fclose")(file);
  return hasFailed ? EOF : result;
}

size_t fread(void* to, size_t size, size_t count, FILE* file) {
  const size_t wanted = shallFail() ? count / 2 : count;
  return next<size_t(void*, size_t, size_t, FILE*)>("fread")(to, size, wanted, file);
}

int fseeko64(FILE* file, off_t offset, int whence) {
  return shallFail() ? -1 : next<int(FILE*, off_t, int)>("fseeko64")(file, offset, whence);
}

off_t ftello64(FILE* file) { return shallFail() ? -1 : next<off_t(FILE*)>("ftello64")(file); }

}  // extern "C"
