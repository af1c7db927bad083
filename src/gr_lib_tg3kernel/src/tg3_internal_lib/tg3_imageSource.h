/// @file
/// TG3ImageSource, the description of one image of a container.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_georefData.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_utils/include/gr_types.h"

class TG3FileSimpleContainer;

/// What is known of an image without its coded data: its geometry and its position on the ground.
class TG3ImageSource {
 public:
  virtual ~TG3ImageSource() = default;
  TG3ImageSource(const TG3ImageSource&) = delete;
  TG3ImageSource& operator=(const TG3ImageSource&) = delete;

  [[nodiscard]] virtual GR_STATUS initialize() = 0;

  gr_uint32 getImageNumber() const { return m_imageNumber; }
  const TG3ImageInfo& getInfo() const { return m_info; }
  const TG3GeorefData& getGeoref() const { return m_georef; }  ///< empty when the file has none
  gr_uint32 getWidth() const { return m_info.getVisibleWidth(); }
  gr_uint32 getHeight() const { return m_info.getVisibleHeight(); }
  /// Levels by which the visible image can be reduced.
  gr_uint8 getNumVisibleLevels() const {
    return static_cast<gr_uint8>(m_info.numLevels - m_info.numLevelsRemoved);
  }

 protected:
  explicit TG3ImageSource(gr_uint32 imageNumber) : m_imageNumber(imageNumber) {}

  gr_uint32 m_imageNumber;
  TG3ImageInfo m_info;
  TG3GeorefData m_georef;
};

/// The image source of an image in a file.
class TG3FileSimpleImageSource : public TG3ImageSource {
 public:
  /// @param container  initialized; stays the caller's and outlives this
  TG3FileSimpleImageSource(TG3FileSimpleContainer& container, gr_uint32 imageNumber)
      : TG3ImageSource(imageNumber), m_container(container) {}

  /// Reads the image's header and georeference.
  /// @return 0; 2010 when the image has no header, or more than one; else the status of reading
  ///         them (2001, 2005, 2006, 2012)
  [[nodiscard]] GR_STATUS initialize() override;

 private:
  TG3FileSimpleContainer& m_container;
};
