/// @file
/// TG2Subband, the tree of subbands of one rectangle of an image.
#pragma once

#include <array>
#include <memory>

#include "gr_lib_tg2kernel/src/decode/tg2_array2D.h"
#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_tg2kernel/src/decode/tg2_synthesisFilter.h"
#include "gr_lib_utils/include/gr_types.h"

class GRIInterruptDelegate;
class TG2DBInfo;
class TG2HuffmanTableCache;
class TG2RestartList;

using TG2PlanePool = Array2DPool<float>;

/// Takes the rows of a synthesised root, a part of each row at a time.
class TG2RowSink {
 public:
  virtual ~TG2RowSink() = default;
  /// @param x, y   the place of the first sample in the root's window, from its upper left corner
  /// @param rows   `count` samples of each plane; they stay until the call returns
  virtual void takeRow(gr_int64 x, gr_int64 y, size_t count, const float* const* rows) = 0;
};

/// A node of the tree: a window of a subband, with a plane of samples per band. Its four children
/// are the subbands of the next lower resolution that make it. Leaves are filled from the file;
/// the other nodes come from their children.
///
/// Operations throw GRUtilException with a status, which stands with each: those of a window or a
/// level only for what the caller asks, the others for trees that don't belong together; and 8
/// when memory runs out.
class TG2Subband : public Array2D<float> {
 public:
  /// Builds a root with all below it, still without samples.
  /// @param width, height  the size of the image at level 0
  /// @param numBands   planes of a node, 1 to 4
  /// @param numLevels  the level of the lowest resolution
  /// @param level      the root's, negative for one that is larger than the image
  /// @param rect       the root's window, in the coordinates of its level
  /// @param pool       where planes come from; outlives the tree; or null
  /// Throws 8008 for a window that is empty or not inside; 8009 for a level above `numLevels`.
  TG2Subband(gr_uint32 width, gr_uint32 height, gr_uint32 numBands, gr_int32 numLevels,
             gr_int32 level, const TG2Rect& rect, TG2PlanePool* pool = nullptr);
  ~TG2Subband();

  /// Builds the root of a rectangle of an image; throws as the constructor does.
  static std::unique_ptr<TG2Subband> make(const TG2DBInfo& db, const TG2Rect& rect, gr_int32 level,
                                          TG2PlanePool* pool = nullptr);

  /// Fills the leaves from the file, one after the other in the order of their indices.
  /// @param level  the decoder's, which is the root's
  /// @param restartList  where records go on that an earlier strip began
  /// @param tables  keeps the tables of the bands' codes from strip to strip
  /// @param interrupt  is asked around every record; or null
  /// Throws the status of a read that failed; 8021 and 8022 for a bad record; 8040 when
  /// interrupted.
  void decodeAll(const TG2DBInfo& db, gr_int32 level, TG2RestartList& restartList,
                 TG2HuffmanTableCache& tables, GRIInterruptDelegate* interrupt);
  /// The same for one leaf.
  void decodeLeaf(const TG2DBInfo& db, gr_int32 level, TG2RestartList& restartList,
                  TG2HuffmanTableCache& tables, GRIInterruptDelegate* interrupt);

  /// Makes the planes of all nodes from those of the leaves, and does away with every child as soon
  /// as its parent has its planes.
  /// @param interrupt  is asked at every row; or null
  /// Throws 8040 when interrupted; 8024 to 8028 for children that don't fit each other.
  void synthesize(GRIInterruptDelegate* interrupt);
  /// The same without making the root's planes, for all whose rows go to `sink`: parts of rows,
  /// from top to bottom and part for part from left to right.
  void synthesize(GRIInterruptDelegate* interrupt, TG2RowSink& sink);

  /// A tree of what two trees have in common, with copies of what the leaves of `a` hold.
  /// @return null when the trees are a leaf each and have nothing in common
  /// Throws 8012 when they differ in bands, 8013 in shape, 8014 when two nodes below the roots have
  /// nothing in common.
  static std::unique_ptr<TG2Subband> sharedPart(const TG2Subband& a, const TG2Subband& b);
  /// A tree of the rows of `a` that `overlap` doesn't hold, which are below those that it does.
  /// What its leaves are filled with goes to the leaves of `a`, which outlives it.
  /// @return null when there are none
  /// Throws 8014 when a leaf of `overlap` isn't the upper part of that of `a`, 8015 when they
  /// differ in bands, 8016 in shape.
  static std::unique_ptr<TG2Subband> remainder(TG2Subband& a, const TG2Subband& overlap);
  /// Takes the samples of the leaves of `src` into this tree's leaves.
  /// Throws 8011 when the trees differ in shape, 8023 when a leaf's window isn't inside this one's.
  void merge(const TG2Subband& src);

  /// Its position in the walk over the tree's leaves, which is the file's index of its subband.
  gr_int32 getIndex() const { return m_index; }
  gr_int64 getFullWidth() const { return m_fullWidth; }  ///< of the subband in the whole image
  gr_int64 getFullHeight() const { return m_fullHeight; }
  float getGain() const { return m_gain; }
  const TG2Rect& getWindow() const { return m_window; }  ///< (0, 1, -1, 0) when empty
  gr_uint32 getNumBands() const { return m_numBands; }
  bool isLeaf() const { return m_children[0] == nullptr; }
  /// @param xHigh, yHigh  0 for the low half, 1 for the high one
  TG2Subband* getChild(size_t xHigh, size_t yHigh) const {
    return m_children[2 * yHigh + xHigh].get();
  }
  TG2Subband* getParent() const { return m_parent; }

  /// The first leaf of the walk, and the one after this leaf; null behind the last.
  TG2Subband* getFirstLeaf();
  TG2Subband* getNextLeaf();

  // For the class alone, whose operations hold the only keys.
  class Key {
    friend class TG2Subband;
    Key() = default;
  };
  /// A child with all below it.
  TG2Subband(Key, TG2Subband& parent, gr_int32 numLevels, gr_int32 level, bool xHigh, bool yHigh);
  /// A node without children, like `other` but for the window.
  TG2Subband(Key, const TG2Subband& other, const TG2Rect& window, TG2Subband* parent);

 private:
  void makeChildren(gr_int32 numLevels, gr_int32 level);
  static std::unique_ptr<TG2Subband> like(const TG2Subband& other, const TG2Rect& window,
                                          TG2Subband* parent);
  void makePlanes(bool clear);
  void synthesizeChildren(GRIInterruptDelegate* interrupt);
  void synthesizePlanes(GRIInterruptDelegate* interrupt);
  TG2Channels getChannels(gr_uint32 band) const;
  TG2Channel getChannel(gr_uint32 band) const;
  static std::unique_ptr<TG2Subband> sharedNode(const TG2Subband& a, const TG2Subband& b,
                                                TG2Subband* parent);
  static std::unique_ptr<TG2Subband> remainingNode(TG2Subband& a, const TG2Subband& overlap,
                                                   TG2Subband* parent);
  void copyFrom(const TG2Subband& src);

  gr_int32 m_index = 0;
  gr_int64 m_fullWidth = -1;
  gr_int64 m_fullHeight = -1;
  float m_gain = 1.0F;
  gr_uint32 m_numBands;
  TG2Rect m_window;
  std::array<std::unique_ptr<TG2Subband>, 4> m_children;  // by 2 * yHigh + xHigh
  TG2Subband* m_parent = nullptr;
  TG2Subband* m_target = nullptr;  // the leaf that gets what this one is filled with, or null
  TG2PlanePool* m_pool;
};
