/// @file
/// Places inside records, where decoding goes on when the next strip needs lower rows.
#pragma once

#include <optional>

#include "gr_lib_utils/include/gr_growingArray.h"
#include "gr_lib_utils/include/gr_types.h"

/// The place behind a symbol of a record. A fresh byte is taken as soon as the last bit of the one
/// in hand is used, so there's always a bit left in it.
struct TG2RestartState {
  gr_uint64 offset = 0;     ///< of the byte that is read next, in bytes from the record's start
  gr_uint64 position = 0;   ///< coefficients passed, in raster order from the record's first one
  gr_uint8 byteInHand = 0;  ///< the byte that holds the next bit
  gr_uint8 phase = 0;       ///< 0 to 7, the next bit of it, from the most significant one

  bool operator==(const TG2RestartState&) const = default;
};

/// Which record a place belongs to, and the place.
struct HDRestartInfo {
  struct Key {
    gr_uint32 band = 0;
    gr_uint32 block = 0;
    gr_uint32 subband = 0;
    gr_uint32 record = 0;

    bool operator==(const Key&) const = default;
  };

  Key key;
  TG2RestartState state;
};

/// The records of a scene that are decoded in part, each with its place. Looking one up takes the
/// same time however many there are.
class TG2RestartList {
 public:
  /// The place in a record, null when it has none: it's to be decoded from its start. Good until
  /// the next call of an operation that isn't const.
  const TG2RestartState* find(const HDRestartInfo::Key& key) const;
  /// Takes what decoding the record gave back: keeps or replaces its place, or without one forgets
  /// the record. Throws GRUtilException(8) when memory runs out; the list is then as it was.
  void update(const HDRestartInfo::Key& key, const std::optional<TG2RestartState>& state);
  void clear();
  size_t size() const { return m_entries.size(); }

 private:
  static constexpr gr_uint32 NONE = 0xFFFFFFFF;

  static gr_uint64 hash(const HDRestartInfo::Key& key);
  /// The slot that names the record's entry, or the free one where it would stand.
  size_t slotOf(const HDRestartInfo::Key& key) const;
  void makeSlots(size_t count);
  /// Frees a slot and moves up those behind it that could not stand where they belong.
  void freeSlot(size_t slot);

  GRGrowingArray<HDRestartInfo> m_entries;
  GRArray<gr_uint32> m_slots;  ///< indices of entries, or NONE; a power of two, half of it free
};
