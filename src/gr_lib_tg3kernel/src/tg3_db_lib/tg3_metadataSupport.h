/// @file
/// TG3MetadataSupport, edits of a container's metadata, and the writing of a container with them.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_container.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_list.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataDelegates.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataDesc.h"
#include "gr_lib_utils/include/gr_ioStream.h"

/// What becomes of blocks that no edit names.
enum TG3MetadataCopyMode : gr_int32 {
  TG3_METADATA_COPY_NOTHING = 0,  ///< they are left out
  TG3_METADATA_COPY_ALL = 1,      ///< they are copied
};

/// The edits. There is at most one for each block: a later one takes the place of an earlier one.
class TG3MetadataSupport {
 public:
  /// @param container  initialized; the caller's, and it outlives the edits
  TG3MetadataSupport(TG3Container& container, TG3MetadataCopyMode mode)
      : m_container(container), m_mode(mode) {}

  /// Whether a block would be there after the edits so far, as far as it isn't left out.
  bool isCurrent(const TG3MetadataDesc& desc) const;
  /// Whether the block's contents come from an edit alone, and so have no place in the file.
  bool isAdded(const TG3MetadataDesc& desc) const;

  // Each is 0, also where it has nothing to do; 2012 for memory. Delegates are the caller's and
  // outlive the edits.
  /// A new block, unless there is one with these keys.
  [[nodiscard]] GR_STATUS add(const TG3MetadataDesc& desc, TG3MetadataAdderDelegate& delegate);
  /// A block of the file that was removed, as it was.
  [[nodiscard]] GR_STATUS copy(const TG3MetadataDesc& desc);
  /// A block of the file with other bytes.
  [[nodiscard]] GR_STATUS modify(const TG3MetadataDesc& desc,
                                 TG3MetadataModifierDelegate& delegate);
  /// No block with these keys, where there is one.
  [[nodiscard]] GR_STATUS remove(const TG3MetadataDesc& desc);

  /// Writes the container with the edits: packets that they don't change are copied byte for byte,
  /// in their order; new blocks come last, but in front of a packet that ends with the stream.
  /// @param target  open, not the container's own stream; from its position on
  /// @return 0; 2002 for a short write, or a delegate that doesn't write as many bytes as it said;
  ///         2001 when the container's stream ends early; 2004 for a temporary stream; 2009 for two
  ///         blocks with the keys of one that is to be modified; else the status of a delegate, of
  ///         a block or of a stream
  [[nodiscard]] GR_STATUS apply(GRIOStreamInf& target);

 private:
  enum class Kind { ADD, COPY, MODIFY, REMOVE };
  struct Action {
    Kind kind = Kind::COPY;
    TG3MetadataDesc desc;
    TG3MetadataAdderDelegate* adder = nullptr;
    TG3MetadataModifierDelegate* modifier = nullptr;
  };

  const Action* find(const TG3MetadataDesc& desc) const;
  bool isInFile(const TG3MetadataDesc& desc) const;
  GR_STATUS put(const Action& action);
  GR_STATUS writeAdded(GRIOStreamInf& target);
  GR_STATUS writePacket(const DBObjectProxy& proxy, GRIOStreamInf& target);
  GR_STATUS writeModified(const TG3PacketType& type, TG3MetadataModifierDelegate& delegate,
                          GRIOStreamInf& target);
  GR_STATUS copyPacket(const DBObjectProxy& proxy, GRIOStreamInf& target);

  TG3Container& m_container;
  TG3MetadataCopyMode m_mode;
  TG3List<Action> m_actions;
};
