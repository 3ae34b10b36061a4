// A drawing through the loaded plug-in, from plain images, for tests of DrawPictureFZVQ.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

// The pictures of one drawing. They belong to the plug-in's runtime, the mask to the source.
struct DrawnPictures {
  host::Picture* dest;
  host::Picture* source;
  host::Picture* mask;  // null: none

  DrawnPictures(host::Runtime& runtime, const oracle::Image& destImage,
                const oracle::Image& sourceImage,
                const std::optional<oracle::Image>& maskImage = std::nullopt,
                const host::PictureSpec& maskSpec = {})
      : dest(support::PictureOf(runtime, destImage)),
        source(support::PictureOf(runtime, sourceImage)),
        mask(maskImage ? support::PictureOf(runtime, *maskImage, maskSpec) : nullptr) {
    if (mask != nullptr) runtime.SetMask(source, mask);
  }
};

struct Placement {
  double x = 0;
  double y = 0;
  double alpha = 1;
};

// The value of a Boolean result; a failure when the result is of another kind.
inline bool Flag(const host::CallReport& report) {
  const bool* flag = std::get_if<bool>(&report.result);
  EXPECT_NE(flag, nullptr) << "the result is no Boolean";
  return flag != nullptr && *flag;
}

// Draws and gives what the receiver then holds. Fails unless the drawing is made, leaves nothing
// behind and changes neither source nor mask.
inline oracle::Image Drawn(const oracle::Image& dest, const oracle::Image& source,
                           const Placement& at,
                           const std::optional<oracle::Image>& mask = std::nullopt,
                           host::ApplicationKind kind = host::ApplicationKind::kDesktop) {
  support::LoadedPlugin plugin({.kind = kind});
  const DrawnPictures pictures(plugin.Host(), dest, source, mask);
  const host::CallReport report = plugin.Library().Call("DrawPictureFZVQ", pictures.dest,
                                                        {pictures.source, at.x, at.y, at.alpha, 0});
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_TRUE(Flag(report));
  EXPECT_EQ(support::Difference(source, support::ImageOf(*pictures.source)), "");
  if (mask) {
    EXPECT_EQ(support::Difference(*mask, support::ImageOf(*pictures.mask)), "");
  }
  return support::ImageOf(*pictures.dest);
}
