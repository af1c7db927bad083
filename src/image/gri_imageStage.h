/// @file
/// GRIImageStage, an image that can be decoded in strips: the contract of every reader and filter.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_image.h"
#include "image/gri_scene.h"
#include "image/gri_stripMarcher.h"

class GRIInterruptDelegate;
class GRIProgressDelegate;
class GRISceneBuffer;

/// A stage is made by a constructor that can't fail, becomes usable through the `initialize` of its
/// class, and then serves any number of decodes: readBegin, readStrip for each strip from top to
/// bottom, readEnd. A concrete stage implements decodeBegin, decodeStrip and decodeEnd.
///
/// A stage has no lock: it serves one decode at a time.
class GRIImageStage : public GRIImage {
 public:
  ~GRIImageStage() override;

  /// Whether the stage can decode a part of the image without the whole.
  virtual bool isSelective() const = 0;
  virtual gr_uint32 getSourceInfo() const = 0;
  virtual void setProgressDelegate(GRIProgressDelegate* delegate) = 0;
  virtual GRIProgressDelegate* getProgressDelegate() const = 0;
  virtual void setInterruptDelegate(GRIInterruptDelegate* delegate) = 0;
  virtual GRIInterruptDelegate* getInterruptDelegate() const = 0;

  /// Starts a decode: tests the scene, cuts it into strips, and runs decodeBegin.
  /// @return 0; 50015, 50013 or 50014 for a scene that the image can't serve; 50012 for one that
  ///         reaches past column or row 0x7FFFFFFF; 50003 for a strip height of 0 or more than
  ///         0x7FFFFFFF; 8; the status of decodeBegin or of a delegate
  virtual GR_STATUS readBegin(const GRIScene& scene);
  /// Decodes one strip into the window of `buffer`.
  /// @return 0; the status of decodeStrip or of a delegate
  virtual GR_STATUS readStrip(GRISceneBuffer& buffer, const GRIScene& stripScene);
  /// Ends a decode, also one that failed.
  /// @return 0; the status of decodeEnd or of a delegate
  virtual GR_STATUS readEnd();

  virtual gr_uint32 getStripHeight() const = 0;  ///< rows
  virtual GR_STATUS setStripHeight(gr_uint32 stripHeight) = 0;
  /// An estimate of the work for a scene, in KiB of samples.
  virtual gr_int64 getSceneCost(const GRIScene& scene) const = 0;
  /// The scene cut to the image. @return whether anything is left
  virtual bool getClippedScene(const GRIScene& scene, GRIScene& out) const = 0;

  // Each replaces a property by a copy; null for none. @return 0 or 8
  virtual GR_STATUS setBackgroundPixel(const GRIPixel* pixel) = 0;
  virtual GR_STATUS setNoDataPixel(const GRIPixel* pixel) = 0;
  virtual GR_STATUS setGeoCoord(const GRIGeoCoord& geoCoord) = 0;
  virtual GR_STATUS setDynamicRange(const GRIPixel& min, const GRIPixel& max) = 0;
  /// @param bits  of every band; 0 changes nothing
  virtual GR_STATUS setPrecision(gr_uint8 bits) = 0;
  virtual GR_STATUS setPixelLookupTable(const GRIPixelLookupTable* table) = 0;
  virtual GR_STATUS setMetadata(const GRIMetadataDatabase* metadata) = 0;

  /// What a stage does at the start of a decode. The scene has been tested: it lies in the image,
  /// and the magnification in its range.
  virtual GR_STATUS decodeBegin(const GRIScene& scene) = 0;
  /// Fills exactly the window of `buffer` for `stripScene`; strips come from top to bottom, each
  /// once.
  virtual GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) = 0;
  /// Gives back what decodeBegin took; also after a failure, and without a decodeBegin that
  /// succeeded.
  virtual GR_STATUS decodeEnd() = 0;

  /// Decodes a whole scene, strip by strip, into the upper left of the buffer's window, which may
  /// be larger.
  /// @return 0; 50027 when the window is smaller; 50016, 50017 or 50018 when the buffer's pixel
  ///         isn't the stage's; 50012 when a strip's columns times rows are 0 modulo 2^32; the
  ///         status of readBegin, readStrip or readEnd
  [[nodiscard]] GR_STATUS read(const GRIScene& scene, GRISceneBuffer& buffer);

 protected:
  GRIImageStage() = default;

  /// Writes the background pixel, if the stage has one, over the scene's size at the upper left
  /// of the buffer's window. @return 0; 50001 for a sample width that can't be filled; 8
  [[nodiscard]] GR_STATUS fillBackground(const GRIScene& scene, GRISceneBuffer& buffer) const;

 private:
  GR_STATUS checkImpedance(const GRIScene& scene, const GRISceneBuffer& buffer) const;
  GR_STATUS checkScene(const GRIScene& scene) const;
  GR_STATUS readStrips(GRISceneBuffer& buffer);
  GR_STATUS reportProgress(float progress);

  std::unique_ptr<GRIStripMarcher> m_stripMarcher;  // of the current decode
};
