#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTableCache.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_exception.h"

namespace {

// FNV-1a, eight bytes at a time.
gr_uint64 hashOf(gr_uint64 hash, std::span<const gr_uint8> bytes) {
  constexpr gr_uint64 PRIME = 0x100000001B3u;
  for (; bytes.size() >= sizeof(gr_uint64); bytes = bytes.subspan(sizeof(gr_uint64))) {
    gr_uint64 word = 0;
    for (size_t i = 0; i < sizeof(word); ++i) word = word << 8 | bytes[i];
    hash = (hash ^ word) * PRIME;
    hash ^= hash >> 32;  // a product carries nothing downwards
  }
  for (const gr_uint8 byte : bytes) hash = (hash ^ byte) * PRIME;
  return hash ^ (hash >> 32);
}

}  // namespace

TG2HuffmanTableCache::Entry::Entry(gr_uint64 itsHash,
                                   std::span<const gr_uint8, TG2HuffmanTable::LONGEST_CODE> itsBits,
                                   std::span<const gr_uint8> itsHuffval)
    : hash(itsHash), table(itsBits, itsHuffval), numSymbols(itsHuffval.size()) {
  // The table has refused any other number of symbols.
  std::ranges::copy(itsBits, bits.begin());
  std::ranges::copy(itsHuffval, huffval.begin());
}

bool TG2HuffmanTableCache::Entry::isOf(
    gr_uint64 otherHash, std::span<const gr_uint8, TG2HuffmanTable::LONGEST_CODE> otherBits,
    std::span<const gr_uint8> otherHuffval) const {
  return hash == otherHash && std::ranges::equal(bits, otherBits) &&
         std::ranges::equal(std::span(huffval).first(numSymbols), otherHuffval);
}

const TG2HuffmanTable& TG2HuffmanTableCache::get(
    std::span<const gr_uint8, TG2HuffmanTable::LONGEST_CODE> bits,
    std::span<const gr_uint8> huffval) {
  constexpr gr_uint64 FNV_BASIS = 0xCBF29CE484222325u;
  const gr_uint64 hash = hashOf(hashOf(FNV_BASIS, bits), huffval);
  Set& set = m_sets[hash % NUM_SETS];
  auto found = std::ranges::find_if(
      set, [&](const auto& entry) { return entry && entry->isOf(hash, bits, huffval); });
  if (found == set.end()) {
    auto made = gr_makeUnique<Entry>(hash, bits, huffval);
    if (made == nullptr) throw GRUtilException(GR_STATUS_NO_MEMORY);
    found = set.end() - 1;
    *found = std::move(made);
  }
  std::rotate(set.begin(), found, found + 1);
  return set.front()->table;
}

void TG2HuffmanTableCache::clear() {
  for (Set& set : m_sets) {
    for (auto& entry : set) entry.reset();
  }
}
