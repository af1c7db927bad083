#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataSupport.h"

#include <algorithm>
#include <optional>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint64 LENGTH_BYTES = 4;  // in front of a block

GR_STATUS writeBytes(GRIOStreamInf& stream, const gr_uint8* bytes, gr_uint32 length) {
  return stream.write(bytes, length) == length ? GR_STATUS_OK : TG3_STATUS_WRITE_ERROR;
}

// The header of a packet with a block, and the block's length.
GR_STATUS writeFront(const TG3PacketType& type, gr_uint32 length, GRIOStreamInf& target) {
  GR_RETURN_IF_FAILED(type.write(target, LENGTH_BYTES + length));
  const gr_uint8 field[LENGTH_BYTES] = {
      static_cast<gr_uint8>(length >> 24), static_cast<gr_uint8>(length >> 16),
      static_cast<gr_uint8>(length >> 8), static_cast<gr_uint8>(length)};
  return writeBytes(target, field, LENGTH_BYTES);
}

// Writes a packet whose block somebody makes, at once where its length is known.
template <typename WriteBlock>
GR_STATUS writeBlock(const TG3PacketType& type, std::optional<gr_uint32> length,
                     const WriteBlock& write, GRIOStreamInf& target) {
  if (length) {
    GR_RETURN_IF_FAILED(writeFront(type, *length, target));
    const gr_int64 before = target.tell();
    GR_RETURN_IF_FAILED(write(target));
    return before >= 0 && target.tell() - before == *length ? GR_STATUS_OK : TG3_STATUS_WRITE_ERROR;
  }
  const std::unique_ptr<GRIODynamicMemStream> memory = GRIOStreamUtils::openMemStream();
  if (memory == nullptr) return TG3_STATUS_IO_ERROR;
  GR_RETURN_IF_FAILED(write(*memory));
  GR_RETURN_IF_FAILED(writeFront(type, memory->getSize(), target));
  return writeBytes(target, memory->getData(), memory->getSize());
}

TG3MetadataDesc descOf(const TG3PacketType& type) {
  return {type.subType, type.subSubType, type.image};
}

// Whether nothing can follow a packet, because it takes all that is left of a stream.
bool takesTheRest(const TG3PacketPlace& place) {
  return place.isOpenEnded ||
         gr_saturatingAdd(place.bodyOffset, place.bodyLength) > place.streamEnd;
}

}  // namespace

const TG3MetadataSupport::Action* TG3MetadataSupport::find(const TG3MetadataDesc& desc) const {
  const auto found = std::find_if(m_actions.begin(), m_actions.end(),
                                  [&](const Action& action) { return action.desc == desc; });
  return found == m_actions.end() ? nullptr : &*found;
}

bool TG3MetadataSupport::isInFile(const TG3MetadataDesc& desc) const {
  return m_container.hasMetadata(desc.subType, desc.subSubType, desc.image);
}

bool TG3MetadataSupport::isCurrent(const TG3MetadataDesc& desc) const {
  const Action* const action = find(desc);
  return action == nullptr ? isInFile(desc) : action->kind != Kind::REMOVE;
}

bool TG3MetadataSupport::isAdded(const TG3MetadataDesc& desc) const {
  const Action* const action = find(desc);
  return action != nullptr && action->kind == Kind::ADD;
}

GR_STATUS TG3MetadataSupport::put(const Action& action) {
  for (Action& earlier : m_actions) {
    if (earlier.desc != action.desc) continue;
    earlier = action;
    return GR_STATUS_OK;
  }
  return m_actions.append(action) == nullptr ? TG3_STATUS_NO_MEMORY : GR_STATUS_OK;
}

GR_STATUS TG3MetadataSupport::add(const TG3MetadataDesc& desc, TG3MetadataAdderDelegate& delegate) {
  if (isCurrent(desc)) return GR_STATUS_OK;
  return put({.kind = Kind::ADD, .desc = desc, .adder = &delegate});
}

GR_STATUS TG3MetadataSupport::copy(const TG3MetadataDesc& desc) {
  // Where nothing is copied by itself, also a block that no edit has named yet.
  const bool isLeftOut = find(desc) == nullptr && m_mode == TG3_METADATA_COPY_NOTHING;
  if (!isInFile(desc) || (isCurrent(desc) && !isLeftOut)) return GR_STATUS_OK;
  return put({.kind = Kind::COPY, .desc = desc});
}

GR_STATUS TG3MetadataSupport::modify(const TG3MetadataDesc& desc,
                                     TG3MetadataModifierDelegate& delegate) {
  if (!isInFile(desc)) return GR_STATUS_OK;
  return put({.kind = Kind::MODIFY, .desc = desc, .modifier = &delegate});
}

GR_STATUS TG3MetadataSupport::remove(const TG3MetadataDesc& desc) {
  if (!isCurrent(desc)) return GR_STATUS_OK;
  return put({.kind = Kind::REMOVE, .desc = desc});
}

GR_STATUS TG3MetadataSupport::apply(GRIOStreamInf& target) {
  GR_RETURN_IF_FAILED(m_container.getVersion().write(target));
  bool isAddedWritten = false;
  for (const DBObjectProxy& proxy : m_container.getPackets()) {
    if (!isAddedWritten && takesTheRest(proxy.getPlace())) {
      GR_RETURN_IF_FAILED(writeAdded(target));
      isAddedWritten = true;
    }
    GR_RETURN_IF_FAILED(writePacket(proxy, target));
  }
  return isAddedWritten ? GR_STATUS_OK : writeAdded(target);
}

GR_STATUS TG3MetadataSupport::writeAdded(GRIOStreamInf& target) {
  for (const Action& action : m_actions) {
    if (action.kind != Kind::ADD) continue;
    TG3PacketType type;
    type.type = TG3_PACKET_TYPE_METADATA;
    type.subType = action.desc.subType;
    type.subSubType = action.desc.subSubType;
    type.image = action.desc.image;
    GR_RETURN_IF_FAILED(writeBlock(
        type, action.adder->getLength(),
        [&](GRIOStreamInf& stream) { return action.adder->write(stream); }, target));
  }
  return GR_STATUS_OK;
}

GR_STATUS TG3MetadataSupport::writePacket(const DBObjectProxy& proxy, GRIOStreamInf& target) {
  const TG3PacketType& type = proxy.getType();
  if (type.type != TG3_PACKET_TYPE_METADATA) return copyPacket(proxy, target);
  const Action* const action = find(descOf(type));
  if (action == nullptr) {
    return m_mode == TG3_METADATA_COPY_ALL ? copyPacket(proxy, target) : GR_STATUS_OK;
  }
  switch (action->kind) {
    case Kind::COPY:
      return copyPacket(proxy, target);
    case Kind::MODIFY:
      return writeModified(type, *action->modifier, target);
    case Kind::ADD:  // in place of one that was removed
    case Kind::REMOVE:
      return GR_STATUS_OK;
  }
  return TG3_STATUS_NOT_REACHED;
}

GR_STATUS TG3MetadataSupport::writeModified(const TG3PacketType& type,
                                            TG3MetadataModifierDelegate& delegate,
                                            GRIOStreamInf& target) {
  const TG3MetadataPacket* packet = nullptr;
  GR_RETURN_IF_FAILED(m_container.getMetadata(type.subType, type.subSubType, type.image, packet));
  if (packet == nullptr) return TG3_STATUS_BAD_ARGUMENT;
  const std::span<const gr_uint8> old = packet->getData();
  return writeBlock(
      type, delegate.getLength(old),
      [&](GRIOStreamInf& stream) { return delegate.write(old, stream); }, target);
}

GR_STATUS TG3MetadataSupport::copyPacket(const DBObjectProxy& proxy, GRIOStreamInf& target) {
  const TG3PacketPlace& place = proxy.getPlace();
  return m_container.copyBytes(place.headerOffset, place.getEnd() - place.headerOffset, target);
}
