#include "hosts/common/gri_hostPassword.h"

#include <string.h>  // explicit_bzero is no function of C++

GRIHostPassword::GRIHostPassword(std::string_view text) {
  for (const char byte : text) append(byte);
}

void GRIHostPassword::append(char byte) {
  if (m_length < MOST_BYTES) m_text[m_length++] = byte;
}

void GRIHostPassword::clear() {
  explicit_bzero(m_text.data(), m_text.size());
  m_length = 0;
}
