/// @file
/// GRIGeoImageReader, a reader whose image may have a world file.
#pragma once

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "image/gri_imageReader.h"

class GRIGeoImageReader : public GRIImageReader {
 public:
  /// Whether a world file counts, for the readWorldFile that respect it.
  bool usesWorldFile() const { return m_useWorldFile; }
  void setUseWorldFile(bool useWorldFile) { m_useWorldFile = useWorldFile; }

  /// Reads the position from a world file.
  /// @param stream  open
  /// @param changed  whether the position is now the file's
  /// @param respectFlag  whether nothing is read, with 0, unless usesWorldFile()
  /// @return 0; 50006, 8 or the stream's error, with the position as it was
  [[nodiscard]] GR_STATUS readWorldFile(GRIOStreamInf& stream, bool& changed, bool respectFlag);
  /// The same from the file beside `imagePath`, if there is one.
  [[nodiscard]] GR_STATUS readWorldFile(const GRFileSpec& imagePath, bool& changed,
                                        bool respectFlag);

 private:
  bool m_useWorldFile = false;
};
