#include "hosts/gri/gri_convertPlan.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/fake_gri.h"

namespace {

/// A plan for a picture, and what is wrong with it.
struct Planned {
  GRIConvertPlan plan;
  std::string wrong;
};

Planned planFor(const FakePicture& picture, const GRIConvertOptions& options) {
  const FakeDirectory directory;
  picture.writeTo(directory / "picture");
  GRIHostImage image;
  EXPECT_FALSE(image.open(directory / "picture"));
  Planned planned;
  planned.wrong = gri_planConversion(image, options, planned.plan);
  return planned;
}

GRIConvertOptions with(auto set) {
  GRIConvertOptions options;
  set(options);
  return options;
}

const FakePicture LARGE{.width = 1001, .height = 801};  // magnifications 1 to 1/8

}  // namespace

TEST(GRIConvertPlanTest, WithoutOptionsThePictureComesOverWhole) {
  const auto [plan, wrong] = planFor(LARGE, {});
  EXPECT_EQ(wrong, "");
  EXPECT_EQ(plan.width, 1001);
  EXPECT_EQ(plan.height, 801);
  EXPECT_EQ(plan.view.window, GRIHostWindow());  // the whole, with overviews
  EXPECT_FALSE(plan.isResampled);
}

TEST(GRIConvertPlanTest, AStoredMagnificationIsDecodedAsItIs) {
  const auto plan = planFor(LARGE, with([](auto& o) { o.magnification = 0.25; })).plan;
  EXPECT_EQ(plan.view.magnification, 0.25);
  EXPECT_EQ(plan.width, 251);
  EXPECT_EQ(plan.height, 201);
  EXPECT_FALSE(plan.isResampled);
}

TEST(GRIConvertPlanTest, AnyOtherMagnificationIsResampledFromTheNextLargerOne) {
  const auto third = planFor(LARGE, with([](auto& o) { o.magnification = 0.3; })).plan;
  EXPECT_EQ(third.view.magnification, 0.5);
  EXPECT_EQ(third.width, 301);
  EXPECT_EQ(third.height, 241);
  EXPECT_TRUE(third.isResampled);
  // Smaller than the picture is stored, and larger.
  EXPECT_EQ(planFor(LARGE, with([](auto& o) { o.magnification = 0.01; })).plan.view.magnification,
            0.125);
  const auto doubled = planFor(LARGE, with([](auto& o) { o.magnification = 2; })).plan;
  EXPECT_EQ(doubled.view.magnification, 1);
  EXPECT_EQ(doubled.width, 2002);
}

TEST(GRIConvertPlanTest, AMagnificationAboveOneIsDecodedWhereThePictureServesIt) {
  FakePicture picture = LARGE;
  picture.maxMagnification = 4;
  const auto plan = planFor(picture, with([](auto& o) { o.magnification = 2; })).plan;
  EXPECT_EQ(plan.view.magnification, 2);
  EXPECT_FALSE(plan.isResampled);
}

TEST(GRIConvertPlanTest, AMissingSideFollowsTheShapeOfTheWindow) {
  const auto plan = planFor(LARGE, with([](auto& o) {
                              o.window = {0, 0, 400, 200};
                              o.size = GRISize{0, 30};
                            }))
                        .plan;
  EXPECT_EQ(plan.width, 60);
  EXPECT_EQ(plan.height, 30);
  EXPECT_EQ(plan.view.magnification, 0.25);  // 100 x 50 there
}

TEST(GRIConvertPlanTest, AWindowIsCoveredAtEveryMagnification) {
  const auto plan = planFor(LARGE, with([](auto& o) {
                              o.window = {101, 3, 10, 5};
                              o.magnification = 0.5;
                            }))
                        .plan;
  EXPECT_EQ(plan.view.window, (GRIHostWindow{50, 1, 6, 3}));
}

TEST(GRIConvertPlanTest, TheLastPixelsAreReachedAtEveryMagnification) {
  for (const double magnification : {1.0, 0.5, 0.25, 0.125}) {
    SCOPED_TRACE(magnification);
    const auto [plan, wrong] = planFor(LARGE, with([&](auto& o) {
                                         o.window = {1000, 800, 1, 1};
                                         o.magnification = magnification;
                                       }));
    EXPECT_EQ(wrong, "");
    EXPECT_EQ(plan.view.window.width, 1u);
    EXPECT_EQ(plan.view.window.column, static_cast<gr_uint32>(1000 * magnification));
  }
}

TEST(GRIConvertPlanTest, ResamplingTakesTheWindowToTheFractionOfAPixel) {
  const auto plan = planFor(LARGE, with([](auto& o) {
                              o.window = {101, 0, 10, 8};
                              o.size = GRISize{5, 4};
                            }))
                        .plan;
  EXPECT_EQ(plan.view.magnification, 0.5);
  EXPECT_EQ(plan.view.window.column, 50u);
  EXPECT_TRUE(plan.isResampled);
  EXPECT_EQ(plan.source, (std::array<double, 4>{0.5, 0, 5, 4}));
}

TEST(GRIConvertPlanTest, ABoxOnTheGroundIsCutToThePicture) {
  FakePicture picture = LARGE;
  picture.position = {1000, 2000, 2, -2, 0, 0};  // the outer corner lies at 999, 2001
  const auto inside = planFor(picture, with([](auto& o) {
                                o.bbox = {1019, 1941, 1059, 1981};
                              }))
                          .plan;
  EXPECT_EQ(inside.view.window, (GRIHostWindow{10, 10, 20, 20}));
  const auto cut = planFor(picture, with([](auto& o) { o.bbox = {0, 1981, 1019, 9000}; })).plan;
  EXPECT_EQ(cut.view.window, (GRIHostWindow{0, 0, 10, 10}));
}

TEST(GRIConvertPlanTest, ABoxCoversEveryPixelThatItTouches) {
  FakePicture picture = LARGE;
  picture.position = {1000, 2000, 2, -2, 0, 0};
  const auto plan = planFor(picture, with([](auto& o) {
                              o.bbox = {1020, 1950, 1020.5, 1950.5};
                            }))
                        .plan;
  EXPECT_EQ(plan.view.window, (GRIHostWindow{10, 25, 1, 1}));
}

TEST(GRIConvertPlanTest, ABoxOverATurnedPictureTakesItsBounds) {
  FakePicture picture = LARGE;
  picture.position = {0, 0, 0, 0, 1, 1};  // x runs with the rows, y with the columns
  const auto plan = planFor(picture, with([](auto& o) { o.bbox = {9.5, 19.5, 12.5, 24.5}; })).plan;
  EXPECT_EQ(plan.view.window, (GRIHostWindow{20, 10, 5, 3}));
}

TEST(GRIConvertPlanTest, WhatDoesntFitIsToldInWords) {
  const auto wrongOf = [](auto set) { return planFor(LARGE, with(set)).wrong; };
  EXPECT_EQ(wrongOf([](auto& o) {
              o.window = {1000, 0, 2, 1};
            }),
            "the window reaches beyond the picture of 1001 x 801 pixels");
  EXPECT_EQ(wrongOf([](auto& o) { o.window = {0, 0, 0, 1}; }), "the window is empty");
  EXPECT_EQ(wrongOf([](auto& o) {
              o.window = {0.5, 0, 1, 1};
            }),
            "--window takes whole numbers of pixels");
  EXPECT_EQ(wrongOf([](auto& o) {
              o.window = {-1, 0, 1, 1};
            }),
            "--window takes whole numbers of pixels");
  EXPECT_EQ(wrongOf([](auto& o) {
              o.bbox = {0, 0, 1, 1};
            }),
            "--bbox needs a picture with a position, and this one states none");
  EXPECT_EQ(wrongOf([](auto& o) { o.bands = {4}; }), "the picture has no band 4, only 3");
  EXPECT_EQ(wrongOf([](auto& o) { o.magnification = 1e9; }), "the magnification is too large");
}

TEST(GRIConvertPlanTest, ABoxThatIsNoneIsToldInWords) {
  FakePicture picture = LARGE;
  picture.position = {1000, 2000, 2, -2, 0, 0};
  EXPECT_EQ(planFor(picture, with([](auto& o) {
                      o.bbox = {0, 0, 1, 1};
                    }))
                .wrong,
            "the box lies outside of the picture");
  EXPECT_EQ(planFor(picture, with([](auto& o) {
                      o.bbox = {5, 0, 1, 1};
                    }))
                .wrong,
            "--bbox takes west, south, east and north");
  picture.position = {1000, 2000, 0, 0, 0, 0};
  EXPECT_EQ(planFor(picture, with([](auto& o) {
                      o.bbox = {0, 0, 1, 1};
                    }))
                .wrong,
            "the picture's position is degenerate");
}

TEST(GRIConvertPlanTest, APictureWithoutPixelsIsRefused) {
  EXPECT_EQ(planFor({.width = 0}, {}).wrong, "the picture is empty");
}

TEST(GRIConvertPlanTest, AProductThatIsNearlyWholeIsWhole) {
  const FakePicture picture{.width = 1100, .height = 1000};
  const auto plan = planFor(picture, with([](auto& o) { o.magnification = 1.1; })).plan;
  EXPECT_EQ(plan.width, 1210);  // 1100 * 1.1 is a little more
  EXPECT_EQ(plan.height, 1100);
}

TEST(GRIConvertPlanTest, AWindowOfAPictureThatIsTooLargeAtAMagnificationIsResampled) {
  const FakePicture picture{.width = 1001, .height = 801, .maxMagnification = 0x1p40};
  const auto all = with([](auto& o) { o.magnification = 0x1p30; });
  EXPECT_EQ(planFor(picture, all).wrong, "the magnification is too large");
  auto corner = with([](auto& o) { o.magnification = 0x1p22; });
  corner.window = {{1000, 800, 1, 1}};
  const auto [plan, wrong] = planFor(picture, corner);
  EXPECT_EQ(wrong, "");
  EXPECT_EQ(plan.view.magnification, 1);
  EXPECT_EQ(plan.view.window, (GRIHostWindow{1000, 800, 1, 1}));
  EXPECT_EQ(plan.width, 1 << 22);
}

TEST(GRIConvertPlanTest, ABoxHasFiniteSides) {
  const FakePicture picture{.position = {0, 0, 1, -1, 0, 0}};
  GRIConvertOptions options;
  options.bbox = {{-5, -5, std::numeric_limits<double>::infinity(), 5}};
  EXPECT_EQ(planFor(picture, options).wrong, "--bbox takes west, south, east and north");
}
