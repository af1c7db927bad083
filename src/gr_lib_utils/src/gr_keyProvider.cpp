#include "gr_lib_utils/include/gr_keyProvider.h"

#include <istream>
#include <limits>
#include <ostream>

#include "gr_lib_utils/include/gr_encryption.h"

void KeyProviderPwdIStream::reportFailure() { m_questions << getFailureMessage() << std::endl; }

GR_STATUS KeyProviderPwdIStream::askForKey(const char* description, LockDirection /*direction*/,
                                           GRSecret& text) {
  m_questions << "Enter password for " << description << " " << std::flush;
  // One byte more than the longest key shows that a text is too long; the rest of it isn't needed.
  std::array<char, Encryption::LONGEST_KEY + 2> line{};
  m_answers.getline(line.data(), line.size());
  const auto extracted = static_cast<size_t>(m_answers.gcount());
  size_t length = extracted;
  if (m_answers.fail() && extracted > 0) {
    m_answers.clear(m_answers.rdstate() & ~std::ios::failbit);
    m_answers.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  } else if (!m_answers.eof() && extracted > 0) {
    --length;  // the end of the line counts as extracted, and isn't stored
  }
  const GR_STATUS status = text.assign({reinterpret_cast<const gr_uint8*>(line.data()), length});
  gr_wipe(line.data(), line.size());
  return status;
}
