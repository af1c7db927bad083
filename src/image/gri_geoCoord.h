/// @file
/// GRIGeoCoord, where an image lies on the ground.
#pragma once

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

class GRIMetadataDatabase;
class GRIScene;

/// An affine map from pixels to the ground and, optionally, the coordinate system as WKT text. The
/// origin is the centre of the upper left pixel at magnification 1.
///
/// Copying, assignment and setWKT throw GRUtilException(8) when memory runs out.
class GRIGeoCoord {
 public:
  /// Origin (0, 0), resolution (1, -1), no rotation, no WKT.
  GRIGeoCoord() = default;
  GRIGeoCoord(double xOrigin, double yOrigin, double xResolution, double yResolution,
              double xRotation, double yRotation);
  GRIGeoCoord(const GRIGeoCoord& other);
  GRIGeoCoord& operator=(const GRIGeoCoord& other);
  ~GRIGeoCoord() = default;

  /// Equal up to what text and rounding lose: origins within 5e-11 of their sum or 1e-6,
  /// resolutions and rotations within 1e-6 of their ratio, WKT to the letter.
  bool operator==(const GRIGeoCoord& other) const;

  double getXOrigin() const { return m_xOrigin; }
  double getYOrigin() const { return m_yOrigin; }
  double getXResolution() const { return m_xResolution; }
  double getYResolution() const { return m_yResolution; }  ///< negative when north is up
  double getXRot() const { return m_xRotation; }
  double getYRot() const { return m_yRotation; }
  void getAll(double& xOrigin, double& yOrigin, double& xResolution, double& yResolution,
              double& xRotation, double& yRotation) const;
  void setXOrigin(double value) { m_xOrigin = value; }
  void setYOrigin(double value) { m_yOrigin = value; }
  void setXResolution(double value) { m_xResolution = value; }
  void setYResolution(double value) { m_yResolution = value; }
  void setXRot(double value) { m_xRotation = value; }
  void setYRot(double value) { m_yRotation = value; }
  /// The coordinate system, or null.
  const char* getWKT() const { return m_wkt.empty() ? nullptr : m_wkt.data(); }
  /// Keeps a copy; null for none.
  void setWKT(const char* wkt);

  /// The ground position of a pixel at a magnification:
  ///     x = (col * xResolution + row * xRotation) / mag + xOrigin
  ///     y = (col * yRotation + row * yResolution) / mag + yOrigin
  /// @return 0
  GR_STATUS pixelToGeo(double col, double row, double mag, double& x, double& y) const;
  /// The reverse.
  /// @return 0; 1, with nothing written, when the map can't be inverted
  GR_STATUS geoToPixel(double x, double y, double mag, double& col, double& row) const;
  /// The coordinate of a scene of the image, as if the scene were an image of its own.
  GRIGeoCoord getGeoCoord(const GRIScene& scene) const;

  // World files: six numbers as text, in the order x resolution, x rotation, y rotation, y
  // resolution, x origin, y origin.

  /// The name of the world file of an image: its suffix becomes its first and last letter and
  /// "w", or "W" when both are capitals; "xxx" for a suffix of fewer than two letters.
  /// @return 0; 50010 for the empty specification; 8
  static GR_STATUS getWorldFileName(const GRFileSpec& path, GRFileSpec& worldFile);
  /// @param deriveName  whether `path` is the image's name
  /// @return 0; 50005 when the file can't be written; 50010; 8
  [[nodiscard]] GR_STATUS writeWorldFile(const GRFileSpec& path, bool deriveName) const;
  /// Reads an open stream from its begin, without regard to the locale. The WKT stays.
  /// @return 0; 50006 for fewer than six numbers or 2 GiB and more; the stream's last error for a
  ///         short read; 8. After a failure nothing has changed.
  [[nodiscard]] GR_STATUS readWorldFile(GRIOStreamInf& stream);
  /// @param found  whether there is such a file; none is no failure
  /// @return as above; 50006 when it can't be opened; 50010; 8
  [[nodiscard]] GR_STATUS readWorldFile(const GRFileSpec& path, bool deriveName, bool& found);

  // The records IMAGE::XY_ORIGIN, X_RESOLUTION, Y_RESOLUTION, X_ROTATION, Y_ROTATION and WKT.
  // (Defined in metadata/, which knows the records.)

  /// @param found  false, with nothing changed, when the origin or a resolution isn't there
  /// @return 0; 50507 when a record has another form; 8
  [[nodiscard]] GR_STATUS readFromMetadata(const GRIMetadataDatabase& metadata, bool& found);
  /// Replaces the records. @return 0 or 8
  [[nodiscard]] GR_STATUS writeToMetadata(GRIMetadataDatabase& metadata) const;

 private:
  double m_xOrigin = 0.0;
  double m_yOrigin = 0.0;
  double m_xResolution = 1.0;
  double m_yResolution = -1.0;
  double m_xRotation = 0.0;
  double m_yRotation = 0.0;
  GRArray<char> m_wkt;  // with its zero; empty for none
};
