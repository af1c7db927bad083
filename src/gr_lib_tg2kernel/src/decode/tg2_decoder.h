/// @file
/// TG2Decoder, which decodes a scene of an image of generation 2 strip by strip.
#pragma once

#include <memory>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTableCache.h"
#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"
#include "gr_lib_tg2kernel/src/decode/tg2_subband.h"
#include "gr_lib_utils/include/gr_types.h"

class GRIInterruptDelegate;
class GRISceneBuffer;
class TG2DBInfo;

/// Between its strips it keeps the coefficients that the next one needs too, and the places in
/// records that are decoded in part: no coefficient of a scene is read twice. It needs memory in
/// proportion to the strip.
class TG2Decoder {
 public:
  /// @param db  the image's index; stays the caller's and outlives the decoder
  explicit TG2Decoder(TG2DBInfo& db) : m_db(db) {}
  virtual ~TG2Decoder();
  TG2Decoder(const TG2Decoder&) = delete;
  TG2Decoder& operator=(const TG2Decoder&) = delete;

  /// @param interrupt  is asked during decodeStrip whether to go on; not owned; or null
  void setInterrupt(GRIInterruptDelegate* interrupt) { m_interrupt = interrupt; }

  /// Begins a scene; one that is still running is given up. A shared index is locked until the
  /// scene's end.
  /// @param rect   the scene in the coordinates of the whole image at `level`; what is beyond the
  ///               image is cut off
  /// @param level  halvings below the whole image's full size, negative for doublings
  /// @param stripHeight  rows of a strip, above 0
  /// @return 0; the status of a failed lock
  [[nodiscard]] GR_STATUS decodeBegin(const TG2Rect& rect, gr_int32 level, gr_uint32 stripHeight);

  /// Decodes the next strip into the window of `buffer`, from its upper left corner on. Behind the
  /// last one nothing happens. A strip that fails is passed over, unless the stream couldn't be
  /// opened for it: then it may be tried again.
  /// @param buffer  1, 3 or 4 bands like the image, all of 8 or 16 bits without sign or of single
  ///                precision. Four bands of single precision leave it as it was.
  /// @return 0; the status of what failed: of the stream, of damaged records (8021, 8022, 8101,
  ///         8103, 8106), 8040 when interrupted, 8 for memory, 8114 for an unknown exception
  [[nodiscard]] GR_STATUS decodeStrip(GRISceneBuffer& buffer);

  /// Ends the scene, decoded or not.
  GR_STATUS decodeEnd();

  gr_uint32 getCurrentStrip() const { return m_currentStrip; }
  gr_uint32 getNumStrips() const { return m_numStrips; }
  /// Whether it holds coefficients that the next strip needs too.
  bool keepsForNextStrip() const { return m_overlap != nullptr; }

 private:
  TG2Rect stripRect(gr_uint32 strip) const;
  void decodeStrip(const TG2Rect& rect, GRISceneBuffer& buffer);
  void freeScene();

  gr_uint32 m_currentStrip = 0;
  gr_uint32 m_numStrips = 0;
  gr_uint32 m_stripHeight = 1;
  GRIInterruptDelegate* m_interrupt = nullptr;
  gr_int32 m_level = 0;
  TG2Rect m_clippedRect;
  bool m_isRunning = false;  // a scene, for which the index is locked
  TG2RestartList m_restartList;
  TG2HuffmanTableCache m_tables;
  TG2PlanePool m_pool;  // before the trees, which return their planes to it
  std::unique_ptr<TG2Subband> m_current;
  std::unique_ptr<TG2Subband> m_next;
  std::unique_ptr<TG2Subband> m_overlap;
  TG2DBInfo& m_db;
};
