/// @file
/// What the tests of the NITF readers share: a directory for their files, opening and decoding.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/src/gr_testUtils.h"
#include "image/gri_sceneBuffer.h"
#include "nitf/nitf_imageManager.h"
#include "nitf/nitf_imageReader.h"
#include "nitf/nitf_imageSegment.h"
#include "tests/support/nitf_writer.h"

using NITFManagerPointer = GRUtilSmartPointer<NITFImageManager>;
using NITFReaderPointer = GRUtilSmartPointer<NITFImageReader>;
using NITFBands = std::vector<Bytes>;  // samples of each band

/// Writes a file and opens it.
class NITFFileTest : public testing::Test {
 protected:
  std::string write(const std::string& content, const std::string& name = "file.ntf") {
    return m_directory.fileOf(name, Bytes(content.begin(), content.end()));
  }
  std::string path(const std::string& name) const { return m_directory.path(name); }

  /// Opens what has these bytes; the result is in m_manager.
  GR_STATUS open(const std::string& content) { return openFile(write(content)); }
  GR_STATUS open(const NITFTestFile& file) { return open(file.bytes()); }
  GR_STATUS openFile(const std::string& name, bool useWorldFile = true) {
    m_manager = NITFManagerPointer(new NITFImageManager);
    return m_manager->initialize(GRFileSpec(name.c_str()), useWorldFile);
  }
  /// Opens a file of one image, which must work, and makes its reader.
  GR_STATUS openImage(const NITFTestSegment& image, const std::string& version = NITF_TEST_21) {
    return openImage(nitfTestFileOf(image, version));
  }
  GR_STATUS openImage(const NITFTestFile& file) {
    const GR_STATUS status = open(file);
    return GR_SUCCESS(status) ? m_manager->createReader(m_reader, 1) : status;
  }
  const NITFImageSegment& image(gr_uint32 number = 1) const {
    return m_manager->getImageSegment(number);
  }

  /// Decodes a rectangle; `bands` are packed.
  static GR_STATUS decode(GRIImageStage& reader, gr_uint32 col, gr_uint32 row, gr_uint32 numCols,
                          gr_uint32 numRows, NITFBands& bands) {
    const size_t size = size_t{numCols} * numRows * reader.getPixelProps().getMaxBytesPerSample();
    bands.assign(reader.getNumBands(), Bytes(size, 0xA5));
    std::vector<void*> planes;
    for (Bytes& band : bands) planes.push_back(band.data());
    GRISceneBuffer buffer(reader.getPixelProps(), numCols, numRows, planes.data());
    return reader.read(GRIScene(col, row, numCols, numRows, 1.0), buffer);
  }
  GR_STATUS decode(NITFBands& bands) {
    return decode(*m_reader, 0, 0, m_reader->getWidth(), m_reader->getHeight(), bands);
  }
  /// Opens a file and decodes parts of all its images, as far as that goes.
  /// @return the statuses of opening the file, of each reader, and of each part
  std::vector<GR_STATUS> openAndDecodeParts(const std::string& name) {
    std::vector<GR_STATUS> statuses = {openFile(name)};
    if (!GR_SUCCESS(statuses[0])) return statuses;
    for (gr_uint32 number = 1; number <= m_manager->getNumImages(); ++number) {
      NITFReaderPointer reader;
      statuses.push_back(m_manager->createReader(reader, number));
      if (!GR_SUCCESS(statuses.back())) continue;
      const gr_uint32 numCols = std::min(reader->getWidth(), 64U);
      const gr_uint32 numRows = std::min(reader->getHeight(), 64U);
      NITFBands bands;
      statuses.push_back(decode(*reader, 0, 0, numCols, numRows, bands));
      statuses.push_back(
          decode(*reader, reader->getWidth() - 1, reader->getHeight() - 1, 1, 1, bands));
    }
    return statuses;
  }
  /// Holds the decoded image equal to the pixels that were written.
  void expectPixels(const NITFTestPixels& pixels) {
    NITFBands bands;
    ASSERT_EQ(decode(bands), GR_STATUS_OK);
    ASSERT_EQ(bands.size(), pixels.numBands);
    for (gr_uint32 band = 0; band < pixels.numBands; ++band) {
      EXPECT_EQ(bands[band], pixels.decoded(band)) << "band " << band;
    }
  }

  TemporaryDirectory m_directory;
  NITFManagerPointer m_manager;
  NITFReaderPointer m_reader;
};
