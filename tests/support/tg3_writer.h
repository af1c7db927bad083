/// @file
/// TG3Writer, which writes TG3 files for tests: every option of the format, and on request files
/// that no writer should make. It shares no code with the reader.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_types.h"
#include "tests/support/tg3_forwardWavelet.h"
#include "tests/support/tg3_testGeometry.h"

/// A coded plane of a subblock.
struct TG3TestPlane {
  gr_uint16 component = 0;
  gr_uint8 plane = 0;
  bool bypass = false;
  std::vector<gr_uint8> bytes;
  bool operator==(const TG3TestPlane&) const = default;
};

/// The planes of a subblock, by component and plane. Subblocks without any need not be listed.
struct TG3TestSubblock {
  gr_uint32 subband = 0;
  gr_uint64 subblock = 0;
  std::vector<TG3TestPlane> planes;
};

/// The header of a packet.
struct TG3TestPacket {
  gr_uint8 type = 0;
  gr_uint32 subType = 0;
  gr_uint32 subSubType = 0;
  gr_uint32 image = 0;
  gr_uint32 sequence = 0;
  gr_uint8 versionMajor = 0;
  gr_uint8 versionMinor = 0;
  gr_uint32 lengthBytes = 8;          ///< width of the length field: 1, 2, 4 or 8
  bool isOpenEnded = false;           ///< a length of all ones
  std::optional<gr_uint64> length{};  ///< a lie in place of the body's length
};

/// What the header packet of an image says, and how its planes are coded and laid out.
struct TG3TestImage {
  gr_uint32 image = 0;
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  gr_uint8 numLevels = 0;
  gr_uint16 numComponents = 1;
  gr_uint8 numPlanes = 32;
  gr_uint16 blockSize = 64;
  gr_uint8 domainBits = 8;
  gr_int32 dynamicRangeMin = 0;
  gr_int32 dynamicRangeMax = 255;
  gr_uint8 imageColorSpace = 1;
  gr_uint8 waveletColorSpace = 1;
  gr_uint8 colorTransform = 1;
  gr_uint32 boundary = 0;
  gr_uint8 wavelet = 0;
  gr_uint8 lastByte = 1;
  gr_uint64 flags = 0x2;  ///< to which those are added that follow from what stands below
  bool hasMse = false;
  bool isLocked = false;
  gr_uint8 keyWidth = 0;  ///< 0, 1, 2 or 4 bytes; needs a lock
  /// The visible part, all sides included, and the finest levels that are left out.
  struct VirtualSupport {
    gr_int32 left = 0;
    gr_int32 top = 0;
    gr_int32 right = 0;
    gr_int32 bottom = 0;
    gr_uint8 numLevelsRemoved = 0;
  };
  std::optional<VirtualSupport> virtualSupport{};

  gr_uint32 lastPlane = 31;    ///< planes behind it are left out
  gr_uint32 bypassPlanes = 0;  ///< bit p: plane p as raw bits
  /// In place of it, the last plane of each subband.
  std::function<gr_uint32(gr_uint32 subband)> lastPlaneOf{};
  TG3TestCorrection correction{};               ///< empty: correction bands are zero
  gr_uint8 ordering = 1;                        ///< 1 pipeline, 5 subband by subband
  gr_uint8 storage = 0;                         ///< 0 interleaved, 2 data first, 3 raster blocks
  bool is64Bit = false;                         ///< planeset version 0.1
  gr_uint32 numRegions = 1;                     ///< of raster blocks
  gr_uint64 longestSkip = ~gr_uint64{0};        ///< shorter: skips are split
  std::optional<gr_uint64> claimedNumPlanes{};  ///< a lie in place of the number of planes
  gr_uint32 planesetLengthBytes = 8;            ///< width of the planeset packet's length field
  /// Enciphers a plane in place.
  std::function<void(const TG3TestSubblock&, TG3TestPlane&)> cipher{};

  TG3TestGeometry geometry() const { return {width, height, numLevels, blockSize}; }
};

/// The columns or rows of a subband that are coded, both ends included; empty when the first is
/// behind the last.
struct TG3TestRange {
  gr_int64 first = 0;
  gr_int64 last = -1;
};
TG3TestRange tg3_codedColumns(const TG3TestImage& image, gr_uint32 subband);
TG3TestRange tg3_codedRows(const TG3TestImage& image, gr_uint32 subband);

/// The coefficients of an image: wavelet, then colour transform, band by band.
/// @param samples  one plane of width x height per component
std::vector<TG3TestBands> tg3_transform(const TG3TestImage& image,
                                        const std::vector<std::vector<gr_int32>>& samples);
/// Codes one subblock from its samples, component after component.
TG3TestSubblock tg3_encodeSubblock(const TG3TestImage& image, gr_uint32 subband, gr_uint64 subblock,
                                   const std::vector<std::vector<gr_int32>>& samples);
/// Codes all subblocks of an image.
std::vector<TG3TestSubblock> tg3_encode(const TG3TestImage& image,
                                        const std::vector<TG3TestBands>& components);

/// Writes a file, packet by packet.
class TG3Writer {
 public:
  explicit TG3Writer(std::span<const gr_uint8> version = {});

  void addPacket(const TG3TestPacket& packet, std::span<const gr_uint8> body);
  void addHeader(const TG3TestImage& image);
  /// Subblocks may stand in any order.
  void addPlaneset(const TG3TestImage& image, const std::vector<TG3TestSubblock>& subblocks);
  /// A block of metadata, with its length in front.
  void addMetadata(gr_uint32 subType, gr_uint32 subSubType, gr_uint32 image,
                   std::span<const gr_uint8> block);
  /// Header and planeset of a whole image.
  void addImage(const TG3TestImage& image, const std::vector<std::vector<gr_int32>>& samples);

  const std::vector<gr_uint8>& bytes() const { return m_bytes; }

 private:
  std::vector<gr_uint8> m_bytes;
};

/// The bytes of a file with one image.
std::vector<gr_uint8> tg3_writeImage(const TG3TestImage& image,
                                     const std::vector<std::vector<gr_int32>>& samples);

/// Big-endian numbers, for the bodies of packets.
class TG3TestBytes {
 public:
  TG3TestBytes& put(gr_uint64 value, gr_uint32 numBytes);
  TG3TestBytes& put(double value);
  TG3TestBytes& put(const std::string& text);  ///< with a zero behind it
  TG3TestBytes& put(std::span<const gr_uint8> bytes);
  const std::vector<gr_uint8>& bytes() const { return m_bytes; }

 private:
  std::vector<gr_uint8> m_bytes;
};

/// The body of a georeference: six numbers, then a height number and pixels where they are given.
struct TG3TestGeoref {
  std::optional<std::vector<double>> geo{};  ///< xUL, yUL, xLR, yLR, xRes, yRes
  std::optional<gr_uint32> zNumber{};
  gr_uint8 pixelDatatype = 5;  ///< 5 to 8
  std::optional<std::vector<gr_int32>> noData{};
  std::optional<std::vector<gr_int32>> background{};
};
std::vector<gr_uint8> tg3_georefBlock(const TG3TestGeoref& georef);

/// The record of a plane (isLength) or of empty slots, as planesets have it.
std::vector<gr_uint8> tg3_planeRecord(bool isLength, bool useBypass, gr_uint64 value, bool is64Bit);
