/// @file
/// The decoder of records word by word as the format describes it: a tree, and bit by bit. The
/// definition that tests hold the fast one to.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"

/// The tree of a Huffman code.
class TG2LiteralTable {
 public:
  /// Throws GRUtilException(8022) for a code that isn't one, and for more than 256 nodes.
  TG2LiteralTable(std::span<const gr_uint8, 16> bits, std::span<const gr_uint8> huffval);

  /// Children of each node: a node below 256, 256 + symbol for a leaf, 666 for an unused branch.
  std::array<gr_uint16, 256> zero{};
  std::array<gr_uint16, 256> one{};
};

/// As tg2_huffmanDecode, of what the format says.
std::unique_ptr<TG2RestartState> tg2_literalHuffmanDecode(const TG2LiteralTable& table,
                                                          std::span<const gr_uint8> record,
                                                          gr_int32* out, const TG2Rect& recordRect,
                                                          const TG2Rect& wantedRect,
                                                          const TG2RestartState* restart);
