/// @file
/// GRINavigator, a scene that moves and zooms over an image.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_scene.h"

class GRIGeoCoord;
class GRIImage;

/// What happens to a scene that may not fit the image.
enum GRINavigatorStyle : gr_int32 {
  GRI_NAVIGATOR_STRICT = 1,  ///< it is taken as it is
  GRI_NAVIGATOR_CHECK = 2,   ///< it is taken, and the result tells whether it is valid
  GRI_NAVIGATOR_CLIP = 3,    ///< it is cut to the image, and the result tells whether any is left
};

/// Operations with a style take the new scene in any case; their result is 0, or 1 where the style
/// has an objection.
class GRINavigator : public GRIScene {
 public:
  /// The whole image at magnification 1. The image is the caller's and outlives the navigator.
  explicit GRINavigator(const GRIImage& image);
  GRINavigator(const GRIImage& image, const GRIScene& scene);

  GR_STATUS setScene(const GRIScene& scene, GRINavigatorStyle style);

  GR_STATUS setSceneAsULWH(double x, double y, double width, double height, double mag);
  /// By both corners, the lower right one included.
  GR_STATUS setSceneAsULLR(double ulx, double uly, double lrx, double lry, double mag);
  GR_STATUS setSceneAsCWH(double cx, double cy, double width, double height, double mag);
  GR_STATUS setSceneAsFullImage();
  /// The whole image at its smallest magnification. @return 0 or the status of getDimsAtMag
  GR_STATUS setSceneAsMinMag();
  GR_STATUS moveBy(double dx, double dy, GRINavigatorStyle style);
  GR_STATUS moveTo(double x, double y, GRINavigatorStyle style);
  /// Changes the magnification alone: upper left and size stay.
  GR_STATUS zoomBy(double factor, GRINavigatorStyle style);
  GR_STATUS zoomTo(double mag, GRINavigatorStyle style);
  /// Rounds the four edges in place.
  void roundScene();
  /// The whole image at the largest power-of-two magnification (from the image's largest, but at
  /// most 256, on) at which its columns don't pass `maxWidth` and its rows stay below `maxHeight`.
  /// @return 0; 1, with the scene left alone, when there is none; the status of getDimsAtMag
  GR_STATUS setSceneAsFitInside(gr_uint32 maxWidth, gr_uint32 maxHeight);

  /// The ground coordinate of the scene, as if it were an image of its own.
  void getGeoCoord(GRIGeoCoord& geoCoord) const;
  // By ground coordinates. @return 0; 1 when the image's map can't be inverted
  /// Of an image without rotation.
  GR_STATUS setSceneAsGeoULWH(double x, double y, double width, double height, double mag);
  /// By the pixels of both corners, the lower right one included.
  GR_STATUS setSceneAsGeoULLR(double ulx, double uly, double lrx, double lry, double mag);
  /// Of an image without rotation; takes north to be up.
  GR_STATUS setSceneAsGeoCWH(double cx, double cy, double width, double height, double mag);

 private:
  bool isValid() const;
  bool clipToImage();
  void assign(double column, double row, double width, double height, double mag);

  const GRIImage* m_image;
};
