/// @file
/// TG3FileSimpleContainer, the container in a stream.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_container.h"
#include "gr_lib_utils/include/gr_ioStream.h"

/// A container in a stream, which is only open while it is used unless it is to stay open.
class TG3FileSimpleContainer final : public TG3Container {
 public:
  /// @param stream  at the preamble, or closed with the preamble at its begin; it stays the
  ///                caller's and outlives the container
  /// @param leaveOpen  whether the stream stays open once it has been opened
  TG3FileSimpleContainer(GRIOStreamInf& stream, bool leaveOpen)
      : m_stream(stream), m_leaveOpen(leaveOpen) {}

  GRIOStreamInf& getStream() { return m_stream; }
  bool leavesOpen() const { return m_leaveOpen; }
  gr_uint64 getEndPosition() const { return m_endPosition; }  ///< where the chain ends, bytes

  /// A stream of its own for a reader, closed; null when that fails.
  std::unique_ptr<GRIOStreamInf> duplicateStream();
  /// The embedded file of an image of the older generation, as a closed stream of its own.
  /// @return 0; 2010 when the image has no such packet, or several; 50607 when the file isn't all
  ///         in the stream; 2012 for memory; else the stream's status
  [[nodiscard]] GR_STATUS makeTG2Stream(gr_uint32 image, std::unique_ptr<GRIOStreamInf>& stream);

  [[nodiscard]] GR_STATUS copyBytes(gr_uint64 offset, gr_uint64 length,
                                    GRIOStreamInf& target) override;

 protected:
  GR_STATUS readPackets(TG3PacketDB& packets) override;
  GR_STATUS fetch(DBObjectProxy& proxy, const TG3Packet*& packet) override;

 private:
  GR_STATUS copyFromPosition(gr_uint64 length, GRIOStreamInf& target);

  GRIOStreamInf& m_stream;
  bool m_leaveOpen;
  gr_uint64 m_endPosition = 0;
};
