/// @file
/// GRISceneBuffer, the memory that a decode fills: a plane of samples per band, with a window.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

class GRIMask;
class GRIPixel;
class GRIScene;

/// What GRISceneBuffer::merge takes from the other buffer. `a` is a sample of this buffer, `b` the
/// one of the other at the same place.
enum GRIMergeMode : gr_int32 {
  GRI_MERGE_EXACT = 0,           ///< pixels that differ from no data in at least one band
  GRI_MERGE_FUZZY = 1,           ///< pixels that are farther from no data, all bands together
  GRI_MERGE_LESSER = 2,          ///< in each band by itself: `b` where `a` > `b`
  GRI_MERGE_GREATER = 3,         ///< in each band by itself: `b` where `a` < `b`
  GRI_MERGE_EXACT_PER_BAND = 4,  ///< in each band by itself: `b` where it differs from no data
  GRI_MERGE_FUZZY_PER_BAND = 5,  ///< in each band by itself: `b` that is farther from no data
};

/// Something that knows which pixels of a scene count, for GRISceneBuffer::merge.
class GRIMaskSource {
 public:
  virtual ~GRIMaskSource() = default;

  /// Makes `mask` the set of pixels of `scene` that count; column and row 0 are its upper left.
  virtual GR_STATUS getMask(const GRIScene& scene, GRIMask& mask) = 0;

 protected:
  GRIMaskSource() = default;
  GRIMaskSource(const GRIMaskSource&) = default;
  GRIMaskSource& operator=(const GRIMaskSource&) = default;
};

/// One plane of samples per band, row after row of `getTotalNumCols()` samples without padding,
/// and a window inside, which all operations cover that don't say "total". The planes belong to
/// the caller or to the buffer. A second buffer can be made as a window on a first, for the price
/// of a few small arrays: no pixel is copied.
///
/// A buffer has no lock. Threads may fill windows on one buffer that don't overlap.
class GRISceneBuffer {
 public:
  /// A buffer whose window is all of it.
  /// @param pixelProps    band count and data types; copied
  /// @param totalNumCols, totalNumRows  size of the planes, in samples
  /// @param data  one pointer per band, each to a plane. Neither the pointers nor the planes are
  ///              copied, so both must outlive the buffer. Null: the buffer makes its own planes,
  ///              filled with 0.
  /// Throws GRUtilException(8) when memory runs out.
  GRISceneBuffer(const GRIPixel& pixelProps, gr_uint32 totalNumCols, gr_uint32 totalNumRows,
                 void** data);
  /// The same with a window at (`colOffset`, `rowOffset`), inside the planes.
  GRISceneBuffer(const GRIPixel& pixelProps, gr_uint32 totalNumCols, gr_uint32 totalNumRows,
                 gr_uint32 colOffset, gr_uint32 rowOffset, gr_uint32 windowNumCols,
                 gr_uint32 windowNumRows, void** data);
  /// A window on the planes of `parent`, which must outlive it: from (`colOffset`, `rowOffset`)
  /// within the parent's window to that window's end. Throws GRUtilException(8).
  GRISceneBuffer(const GRISceneBuffer& parent, gr_uint32 colOffset, gr_uint32 rowOffset);
  /// The same, of the given size.
  GRISceneBuffer(const GRISceneBuffer& parent, gr_uint32 colOffset, gr_uint32 rowOffset,
                 gr_uint32 windowNumCols, gr_uint32 windowNumRows);
  ~GRISceneBuffer();
  GRISceneBuffer(const GRISceneBuffer&) = delete;
  GRISceneBuffer& operator=(const GRISceneBuffer&) = delete;

  gr_uint16 getNumBands() const { return m_numBands; }
  gr_uint32 getTotalNumCols() const { return m_totalNumCols; }
  gr_uint32 getTotalNumRows() const { return m_totalNumRows; }
  gr_uint32 getWindowColOffset() const { return m_windowColOffset; }
  gr_uint32 getWindowRowOffset() const { return m_windowRowOffset; }
  gr_uint32 getWindowNumCols() const { return m_windowNumCols; }
  gr_uint32 getWindowNumRows() const { return m_windowNumRows; }
  /// Columns times rows, modulo 2^32.
  gr_uint32 getTotalSize() const { return m_totalNumCols * m_totalNumRows; }
  gr_uint32 getWindowSize() const { return m_windowNumCols * m_windowNumRows; }
  const GRIPixel& getPixelProps() const { return *m_pixelProps; }
  /// Bytes of one sample of a band, and of one row of its plane.
  gr_uint32 getBytesPerSample(gr_uint16 band) const;
  size_t getRowBytes(gr_uint16 band) const;

  /// The start of a band's plane, and the first sample of its window.
  void* getTotalBandData(gr_uint16 band) const;
  void* getWindowBandData(gr_uint16 band) const;
  /// The same for all bands: getNumBands() pointers.
  void** getTotalBSQData() const { return m_data; }
  void** getWindowBSQData() { return m_windowData.data(); }
  void* const* getWindowBSQData() const { return m_windowData.data(); }

  /// Whether a sample of the plane, counted from the plane's start, lies in the window.
  bool inWindow(gr_uint32 col, gr_uint32 row) const;
  /// The place of a sample, counted from the plane's start, and from the window's.
  void* getSample(gr_uint32 col, gr_uint32 row, gr_uint16 band) const;
  void* getSampleInWindow(gr_uint32 col, gr_uint32 row, gr_uint16 band) const;

  /// `value`, or the next multiple of `byteAlignment`, which is above 0.
  static gr_uint32 addAlignment(gr_uint32 value, gr_uint32 byteAlignment);

  // Copies between the window and flat memory: BSQ is band-sequential, BIP pixel-interleaved.

  /// Fills the window from one packed plane of the window's size per band.
  [[nodiscard]] GR_STATUS importDataBSQ(void* const* data);
  /// The same from one block in which the bands follow one after the other.
  [[nodiscard]] GR_STATUS importDataBSQ(const void* data);
  /// The same from a stream. Reads getWindowSize() * bytes per pixel * getNumBands() bytes at
  /// once, which is getNumBands() times what the window holds: a stream needs to hold that much.
  /// @return 0; the stream's last error when it holds less; 8 for memory
  [[nodiscard]] GR_STATUS importDataBSQ(GRIOStreamInf& stream);
  [[nodiscard]] GR_STATUS importDataBIP(const void* data);
  [[nodiscard]] GR_STATUS importDataBIP(GRIOStreamInf& stream);

  /// Writes the window to one packed plane per band. Null `data` is replaced by new pointers and
  /// planes, which the caller gives back with freeExported.
  /// @return 0; 8 for memory, and then `data` is as it was
  [[nodiscard]] GR_STATUS exportDataBSQ(void**& data) const;
  /// The same to one block in which the bands follow one after the other.
  [[nodiscard]] GR_STATUS exportDataBSQ(void*& data) const;
  /// @return 0; the stream's last error after a short write; 8 for memory
  [[nodiscard]] GR_STATUS exportDataBSQ(GRIOStreamInf& stream) const;
  /// Pixel-interleaved. Copies nothing, and gives 0, unless those of the first band are 1, 2 or 4
  /// bytes wide.
  /// @return 0; 50001 when the bands' samples differ in width; 8 for memory
  [[nodiscard]] GR_STATUS exportDataBIP(void*& data) const;
  /// The same row by row, for any width.
  [[nodiscard]] GR_STATUS exportDataBIP(GRIOStreamInf& stream) const;
  /// Any layout: sample (col, row) of band b goes to
  /// `dest` + b * bandBytes + row * rowBytes + col * pixelBytes.
  [[nodiscard]] GR_STATUS exportData(void* dest, gr_uint32 pixelBytes, gr_uint32 rowBytes,
                                     gr_uint32 bandBytes) const;
  /// Gives back what an export with null `data` made, and sets it to null.
  static void freeExported(void**& data, gr_uint16 numBands);
  static void freeExported(void*& data);

  // Operations on the window.

  /// Writes `pixel`, which has this buffer's bands and types, to the whole window.
  /// @return 0; 50001 when a sample isn't 1, 2, 4 or 8 bytes wide
  [[nodiscard]] GR_STATUS fill(const GRIPixel& pixel);
  /// The same in the runs of `mask` alone, as far as they lie in the window.
  /// @param pixel  null: the largest value of each band's type
  /// @return 0; 50001 as above; the status of checkImpedance
  [[nodiscard]] GR_STATUS fill(const GRIMask& mask, const GRIPixel* pixel);
  /// Sets all bytes of the window to 0.
  void zero();
  /// Reverses the bytes of every sample.
  /// @return 0; 50001 when a sample isn't 2, 4 or 8 bytes wide, and then nothing is swapped
  [[nodiscard]] GR_STATUS byteSwap();

  /// Copies the window of `other` into this one's, as far as both reach.
  /// @return 0; the status of checkImpedance when the pixels don't agree
  [[nodiscard]] GR_STATUS copyFrom(const GRISceneBuffer& other);
  /// The same in the runs of `mask` alone.
  [[nodiscard]] GR_STATUS copyFrom(const GRISceneBuffer& other, const GRIMask& mask);
  /// The same for one band of each.
  /// @return 0; 50016 when their samples differ in width
  [[nodiscard]] GR_STATUS copyBandFrom(gr_uint16 band, const GRISceneBuffer& other,
                                       gr_uint16 otherBand);
  [[nodiscard]] GR_STATUS copyBandFrom(gr_uint16 band, const GRISceneBuffer& other,
                                       gr_uint16 otherBand, const GRIMask& mask);
  /// Copies those pixels of `other` that differ from `noData` in at least one band, as
  /// GRI_MERGE_EXACT does, but for samples of every data type, and without building a mask.
  /// @return 0; the status of checkImpedance when the pixels don't agree; 8 for memory
  [[nodiscard]] GR_STATUS copyDataFrom(const GRISceneBuffer& other, const GRIPixel& noData);

  /// Writes those pixels of `other` into this buffer that should replace its own.
  /// @param magnification  of the scene in the buffers: the fuzzy modes forgive more at less
  /// @param noData         the no-data pixel; null: with modes 2 and 3 nothing is missing, with all
  ///                       others everything is copied
  /// @return 0; the status of checkImpedance; 3 for data types other than UINT8, UINT16, SINT16
  ///         and FLOAT32 (unless everything is copied), and for an unknown mode; 8 for memory
  [[nodiscard]] GR_STATUS merge(GRIMergeMode mode, double magnification,
                                const GRISceneBuffer& other, const GRIPixel* noData);
  /// The same at magnification 1.
  [[nodiscard]] GR_STATUS merge(GRIMergeMode mode, const GRISceneBuffer& other,
                                const GRIPixel* noData);
  /// The same for those pixels alone that `source` lets through.
  /// @param scene  the scene that `other` holds, of which `source` is asked
  /// @return as above, or the status of `source`
  [[nodiscard]] GR_STATUS merge(GRIMergeMode mode, double magnification,
                                const GRISceneBuffer& other, const GRIPixel* noData,
                                GRIMaskSource& source, const GRIScene& scene);

 private:
  void setWindow(const GRIPixel& pixelProps);
  void allocatePlanes(const GRIPixel& pixelProps);
  gr_uint64 windowBytes(gr_uint16 band) const;
  gr_uint64 allWindowBytes() const;
  GR_STATUS readWindow(GRIOStreamInf& stream, GRArray<gr_uint8>& block) const;
  bool bandsHaveOneWidth() const;
  void importBand(gr_uint16 band, const void* packed);
  void exportBand(gr_uint16 band, void* packed) const;
  void joinRow(gr_uint32 row, const void** rows, void* interleaved) const;
  GR_STATUS buildMergeMask(GRIMergeMode mode, double magnification, const GRISceneBuffer& other,
                           const GRIPixel* noData, gr_uint16 firstBand, gr_uint16 numBands,
                           GRIMask& mask) const;
  GR_STATUS mergeMasked(GRIMergeMode mode, double magnification, const GRISceneBuffer& other,
                        const GRIPixel* noData, const GRIMask* allowed);

  void** m_data = nullptr;                   // start of each plane
  GRArray<void*> m_windowData;               // first sample of the window in each plane
  GRArray<void*> m_ownedData;                // what m_data points to, when the planes are ours
  GRArray<GRArray<gr_uint8>> m_ownedPlanes;  // the planes, when they are ours
  GRArray<gr_uint32> m_bytesPerSample;       // one per band
  std::unique_ptr<GRIPixel> m_pixelProps;
  gr_uint16 m_numBands = 0;
  gr_uint32 m_totalNumCols = 0;
  gr_uint32 m_totalNumRows = 0;
  gr_uint32 m_windowColOffset = 0;
  gr_uint32 m_windowRowOffset = 0;
  gr_uint32 m_windowNumCols = 0;
  gr_uint32 m_windowNumRows = 0;
};
