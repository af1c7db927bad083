#include "tests/support/gr_sha256.h"

#include <array>
#include <bit>
#include <vector>

namespace {

// The first 32 bits of the fractions of the cube roots of the first 64 primes.
constexpr std::array<gr_uint32, 64> K = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

constexpr size_t BLOCK_BYTES = 64;

using State = std::array<gr_uint32, 8>;

void addBlock(State& state, const gr_uint8* block) {
  std::array<gr_uint32, 64> w = {};
  for (size_t i = 0; i < 16; ++i) {
    for (size_t byte = 0; byte < 4; ++byte) w[i] = (w[i] << 8) | block[4 * i + byte];
  }
  for (size_t i = 16; i < 64; ++i) {
    const gr_uint32 s0 = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
    const gr_uint32 s1 = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
    w[i] = w[i - 16] + s0 + w[i - 7] + s1;
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (size_t i = 0; i < 64; ++i) {
    const gr_uint32 s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const gr_uint32 t1 = h + s1 + ((e & f) ^ (~e & g)) + K[i] + w[i];
    const gr_uint32 s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const gr_uint32 t2 = s0 + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + t1;
    d = c;
    c = b;
    b = a;
    a = t1 + t2;
  }
  const State sum = {a, b, c, d, e, f, g, h};
  for (size_t i = 0; i < state.size(); ++i) state[i] += sum[i];
}

}  // namespace

std::string gr_sha256(std::span<const gr_uint8> bytes) {
  State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  const size_t whole = bytes.size() / BLOCK_BYTES * BLOCK_BYTES;
  for (size_t at = 0; at < whole; at += BLOCK_BYTES) addBlock(state, bytes.data() + at);
  // The rest, a bit of 1, zeros, and the length in bits.
  std::vector<gr_uint8> rest(bytes.begin() + static_cast<std::ptrdiff_t>(whole), bytes.end());
  rest.push_back(0x80);
  while (rest.size() % BLOCK_BYTES != BLOCK_BYTES - 8) rest.push_back(0);
  const gr_uint64 bits = gr_uint64{bytes.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8) {
    rest.push_back(static_cast<gr_uint8>(bits >> shift));
  }
  for (size_t at = 0; at < rest.size(); at += BLOCK_BYTES) addBlock(state, rest.data() + at);

  std::string text;
  for (const gr_uint32 word : state) {
    for (int shift = 28; shift >= 0; shift -= 4) text += "0123456789abcdef"[(word >> shift) & 15];
  }
  return text;
}
