#include "image/gri_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "image/gri_maskRowBuilder.h"

namespace {

using Picture = std::vector<std::string>;

/// The mask of a picture whose '#' are its pixels.
GRIMask maskOf(const Picture& picture) {
  GRIMask mask;
  EXPECT_EQ(mask.setNumRows(static_cast<gr_uint32>(picture.size())), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < picture.size(); ++row) {
    GRIMaskRowBuilder builder;
    const std::string& line = picture[row];
    for (size_t col = line.find('#'); col != std::string::npos;) {
      const size_t end = std::min(line.find('.', col), line.size());
      builder.add(static_cast<gr_int32>(col), static_cast<gr_int32>(end) - 1);
      col = line.find('#', end);
    }
    mask.setRow(row, builder.take());
  }
  return mask;
}

/// The reverse, asking pixel by pixel.
Picture pictureOf(const GRIMask& mask, size_t width) {
  Picture picture(mask.getNumRows(), std::string(width, '.'));
  for (size_t row = 0; row < picture.size(); ++row) {
    for (size_t col = 0; col < width; ++col) {
      if (mask.contains(static_cast<gr_int32>(col), static_cast<gr_int32>(row))) {
        picture[row][col] = '#';
      }
    }
  }
  return picture;
}

Picture randomPicture(size_t rows, size_t width, std::mt19937& random) {
  Picture picture(rows, std::string(width, '.'));
  for (std::string& line : picture) {
    for (char& pixel : line) pixel = random() % 2 == 0 ? '#' : '.';
  }
  return picture;
}

gr_uint32 numPartsOf(const GRIMask& mask) {
  GRIMaskRunLabels labels;
  gr_uint32 numLabels = 0;
  EXPECT_EQ(mask.getRunLabels(labels, numLabels), GR_STATUS_OK);
  return numLabels;
}

/// Paints over one connected part, pixel by pixel. @return its size
size_t floodFill(Picture& picture, size_t row, size_t col) {
  if (row >= picture.size() || col >= picture[row].size() || picture[row][col] != '#') return 0;
  picture[row][col] = 'x';
  // A row's neighbours count too: the runs of a picture are as long as they can be.
  return 1 + floodFill(picture, row - 1, col) + floodFill(picture, row + 1, col) +
         floodFill(picture, row, col - 1) + floodFill(picture, row, col + 1);
}

TEST(GRIMaskTest, AMaskOfNoRowsHasNoAreaAndAnInvertedRectangle) {
  GRIMask mask;
  ASSERT_EQ(mask.setNumRows(0), GR_STATUS_OK);
  EXPECT_EQ(mask.getNumRows(), 0u);
  EXPECT_EQ(mask.getArea(), 0.0);
  EXPECT_EQ(mask.getBounds(), (GRIMaskBounds{0x7FFFFFFF, 0x7FFFFFFF, INT32_MIN, INT32_MIN}));
}

TEST(GRIMaskTest, NewRowsAreEmpty) {
  GRIMask mask = maskOf({"##", "##"});
  ASSERT_EQ(mask.setNumRows(3), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < 3; ++row) EXPECT_EQ(mask.getRow(row), nullptr);
}

TEST(GRIMaskTest, ARowWithoutRunsIsNull) {
  GRIMask mask = maskOf({"##"});
  GRIMaskRowBuilder builder;
  mask.setRow(0, builder.take());
  EXPECT_EQ(mask.getRow(0), nullptr);
}

TEST(GRIMaskTest, AreaCountsPixels) { EXPECT_EQ(maskOf({"##.#", "....", ".###"}).getArea(), 6.0); }

TEST(GRIMaskTest, BoundsEndAtTheLastRowThatHasRuns) {
  EXPECT_EQ(maskOf({".....", "..#..", ".#.#.", "....."}).getBounds(), (GRIMaskBounds{1, 1, 3, 2}));
}

TEST(GRIMaskTest, ContainsNothingOutsideOfItsRows) {
  const GRIMask mask = maskOf({"#.##"});
  EXPECT_FALSE(mask.contains(0, -1));
  EXPECT_FALSE(mask.contains(0, 1));
  EXPECT_FALSE(mask.contains(-1, 0));
  EXPECT_FALSE(mask.contains(4, 0));
  EXPECT_TRUE(mask.contains(3, 0));
  EXPECT_FALSE(mask.contains(1, 0));
}

TEST(GRIMaskTest, ACopyOutlivesTheOriginal) {
  GRIMask copy;
  {
    GRIMask original = maskOf({"#.#", "...", ".##"});
    ASSERT_EQ(copy.copyFrom(original), GR_STATUS_OK);
    ASSERT_EQ(original.setNumRows(0), GR_STATUS_OK);
  }
  EXPECT_EQ(pictureOf(copy, 3), (Picture{"#.#", "...", ".##"}));
}

TEST(GRIMaskTest, IntersectionOf3And5RowsHas5RowsOfWhichTheLastTwoAreEmpty) {
  const GRIMask three = maskOf({"##", "##", "##"});
  const GRIMask five = maskOf({"##", "#.", "##", "##", "##"});
  GRIMask result;

  ASSERT_EQ(result.intersect(three, five), GR_STATUS_OK);

  EXPECT_EQ(pictureOf(result, 2), (Picture{"##", "#.", "##", "..", ".."}));
  EXPECT_EQ(result.getRow(3), nullptr);
  EXPECT_EQ(result.getRow(4), nullptr);
}

TEST(GRIMaskTest, UnionTakesTheRowsThatOnlyOneMaskHas) {
  const GRIMask shorter = maskOf({"#...", "...."});
  const GRIMask longer = maskOf({"...#", "....", ".##."});
  GRIMask result;

  ASSERT_EQ(result.unite(shorter, longer), GR_STATUS_OK);

  EXPECT_EQ(pictureOf(result, 4), (Picture{"#..#", "....", ".##."}));
  EXPECT_EQ(result.getRow(1), nullptr);
}

TEST(GRIMaskTest, UnionAndIntersectionMayReplaceOneOfTheirMasks) {
  GRIMask mask = maskOf({"##..", ".##."});
  ASSERT_EQ(mask.unite(mask, maskOf({"..#.", "#..."})), GR_STATUS_OK);
  EXPECT_EQ(pictureOf(mask, 4), (Picture{"###.", "###."}));
  ASSERT_EQ(mask.intersect(maskOf({".#..", "..##"}), mask), GR_STATUS_OK);
  EXPECT_EQ(pictureOf(mask, 4), (Picture{".#..", "..#."}));
}

TEST(GRIMaskTest, SetOperationsAgreeWithThePixelwiseOnes) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    const Picture a = randomPicture(random() % 4, 12, random);
    const Picture b = randomPicture(random() % 4, 12, random);
    const size_t rows = std::max(a.size(), b.size());
    Picture both(rows, std::string(12, '.')), either = both;
    for (size_t row = 0; row < rows; ++row) {
      for (size_t col = 0; col < 12; ++col) {
        const bool inA = row < a.size() && a[row][col] == '#';
        const bool inB = row < b.size() && b[row][col] == '#';
        if (inA && inB) both[row][col] = '#';
        if (inA || inB) either[row][col] = '#';
      }
    }

    GRIMask intersection, unionMask;
    ASSERT_EQ(intersection.intersect(maskOf(a), maskOf(b)), GR_STATUS_OK);
    ASSERT_EQ(unionMask.unite(maskOf(a), maskOf(b)), GR_STATUS_OK);

    EXPECT_EQ(pictureOf(intersection, 12), both);
    EXPECT_EQ(pictureOf(unionMask, 12), either);
  }
}

TEST(GRIMaskTest, TwoDiagonalPixelsAreTwoParts) { EXPECT_EQ(numPartsOf(maskOf({"#.", ".#"})), 2u); }

TEST(GRIMaskTest, TwoPixelsOneAboveTheOtherAreOnePart) {
  EXPECT_EQ(numPartsOf(maskOf({".#", ".#"})), 1u);
}

TEST(GRIMaskTest, RunsOfOneRowMeetOnlyThroughAnotherRow) {
  EXPECT_EQ(numPartsOf(maskOf({"#.#.#"})), 3u);
  EXPECT_EQ(numPartsOf(maskOf({"#.#.#", "###.#"})), 2u);
  EXPECT_EQ(numPartsOf(maskOf({"#.#.#", "#####"})), 1u);
}

TEST(GRIMaskTest, LabelsAreNumberedFromTheTop) {
  const GRIMask mask = maskOf({"#..#.#", "#..###", "......", "##...."});
  GRIMaskRunLabels labels;
  gr_uint32 numLabels = 0;

  ASSERT_EQ(mask.getRunLabels(labels, numLabels), GR_STATUS_OK);

  EXPECT_EQ(numLabels, 3u);
  EXPECT_EQ(labels.get(0, 0), 0u);
  EXPECT_EQ(labels.get(0, 1), 1u);
  EXPECT_EQ(labels.get(0, 2), 1u);
  EXPECT_EQ(labels.get(1, 0), 0u);
  EXPECT_EQ(labels.get(1, 1), 1u);
  EXPECT_EQ(labels.get(3, 0), 2u);
}

TEST(GRIMaskTest, APartOfThresholdPixelsGoesAndALargerOneStays) {
  GRIMask mask = maskOf({"##..#", "##..#", "....#", "....#", "....#"});
  ASSERT_EQ(mask.removeSmallParts(4), GR_STATUS_OK);
  EXPECT_EQ(pictureOf(mask, 5), (Picture{"....#", "....#", "....#", "....#", "....#"}));
  EXPECT_EQ(mask.getNumRows(), 5u);
}

TEST(GRIMaskTest, PartsAgreeWithThoseOfAFloodFill) {
  std::mt19937 random(11);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    const Picture picture = randomPicture(8, 10, random);
    const gr_uint32 threshold = random() % 8;
    Picture work = picture, expected(8, std::string(10, '.'));
    gr_uint32 numParts = 0;
    for (size_t row = 0; row < 8; ++row) {
      for (size_t col = 0; col < 10; ++col) {
        const size_t size = floodFill(work, row, col);
        if (size != 0) ++numParts;
        for (size_t i = 0; i < 80; ++i) {
          char& pixel = work[i / 10][i % 10];
          if (pixel != 'x') continue;
          pixel = 'o';
          if (size > threshold) expected[i / 10][i % 10] = '#';
        }
      }
    }

    GRIMask mask = maskOf(picture);
    EXPECT_EQ(numPartsOf(mask), numParts);
    ASSERT_EQ(mask.removeSmallParts(threshold), GR_STATUS_OK);
    EXPECT_EQ(pictureOf(mask, 10), expected);
  }
}

}  // namespace
