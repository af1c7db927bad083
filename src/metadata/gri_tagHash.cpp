#include "metadata/gri_tagHash.h"

#include <bit>

namespace {

struct State {
  gr_uint64 v0;
  gr_uint64 v1;
  gr_uint64 v2;
  gr_uint64 v3;

  void round() {
    v0 += v1;
    v2 += v3;
    v1 = std::rotl(v1, 13) ^ v0;
    v3 = std::rotl(v3, 16) ^ v2;
    v0 = std::rotl(v0, 32);
    v2 += v1;
    v0 += v3;
    v1 = std::rotl(v1, 17) ^ v2;
    v3 = std::rotl(v3, 21) ^ v0;
    v2 = std::rotl(v2, 32);
  }
  void take(gr_uint64 word) {
    v3 ^= word;
    round();
    round();
    v0 ^= word;
  }
};

/// Up to eight characters as a little-endian number.
gr_uint64 wordOf(std::string_view characters) {
  gr_uint64 word = 0;
  for (size_t i = characters.size(); i-- > 0;) {
    word = word << 8 | static_cast<gr_uint8>(characters[i]);
  }
  return word;
}

}  // namespace

gr_uint64 gri_tagHash(gr_uint64 key0, gr_uint64 key1, std::string_view text) {
  constexpr size_t WORD = 8;
  State state = {0x736F6D6570736575 ^ key0, 0x646F72616E646F6D ^ key1, 0x6C7967656E657261 ^ key0,
                 0x7465646279746573 ^ key1};
  const gr_uint64 length = gr_uint64{text.size()} << 56;
  for (; text.size() >= WORD; text.remove_prefix(WORD)) state.take(wordOf(text.substr(0, WORD)));
  state.take(length | wordOf(text));
  state.v2 ^= 0xFF;
  for (int i = 0; i < 4; ++i) state.round();
  return state.v0 ^ state.v1 ^ state.v2 ^ state.v3;
}
