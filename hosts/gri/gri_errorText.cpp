#include "hosts/gri/gri_errorText.h"

#include <ostream>

#include "hosts/common/gri_hostMetadata.h"

void gri_printError(std::ostream& err, const std::string& file, const GRIHostError& error) {
  std::string text = error.text;
  // Some of the library's messages end with the path, which stands in front already.
  const std::string path = ": " + file;
  if (text.size() > path.size() && text.ends_with(path)) text.resize(text.size() - path.size());
  err << "gri: " << gri_hostPrintable(gri_hostUtf8(file.c_str())) << ": "
      << gri_hostPrintable(gri_hostUtf8(text.c_str())) << " [" << error.status << "]\n";
  err.flush();
}
