// Calls of every method from within a yield of another.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

// Two pictures of its own that every method is called on, always with the same results.
class InnerCalls {
 public:
  // Makes the pictures and remembers what the methods give outside any other call.
  explicit InnerCalls(support::LoadedPlugin& plugin)
      : plugin_(plugin),
        image_(oracle::NewImage(5, 4, 6)),
        first_(support::PictureOf(plugin.Host(), Noise(image_))),
        second_(plugin.Host().NewPicture({.width = 3, .height = 3, .fill = {9, 99, 199, 255}})) {
    plugin.Host().SetMask(second_, plugin.Host().NewPicture(plugin.Host().NewMaskSpec(3, 3)));
    expected_ = Results();
  }

  // Calls all five, none of which yields, and expects the same as before. Counts the rounds.
  void CallAll() {
    EXPECT_TRUE(Results() == expected_) << "an inner call gave something else";
    ++rounds_;
  }
  int Rounds() const { return rounds_; }

 private:
  static oracle::Image& Noise(oracle::Image& image) {
    std::uint32_t word = 0x12345678;
    for (auto& pixel : image.words) pixel = word = word * 1664525 + 1013904223;
    return image;
  }

  host::CallReport Call(const char* method, host::Picture* receiver,
                        const std::vector<host::Value>& arguments) {
    host::CallReport report = plugin_.Library().Call(method, receiver, arguments);
    EXPECT_EQ(support::Complaints(report), "") << method;
    return report;
  }

  std::vector<oracle::Image> Results() {
    std::vector<oracle::Image> results;
    const auto keep = [&](const host::CallReport& report) {
      host::Picture* made = report.ResultPicture();
      EXPECT_NE(made, nullptr);
      if (made == nullptr) return;
      results.push_back(support::ImageOf(*made));
      plugin_.Host().Release(made);
    };
    keep(Call("ScaleZVQ", first_, {3, 2, false, 0}));
    keep(Call("ScaleZVQ", first_, {7, 9, true, 0}));
    keep(Call("ScaleImageAndMaskZVQ", second_, {4, 5, true, 0}));
    keep(Call("ScalingZVQ", first_, {4, 6, 3, 0}));
    keep(Call("BlurZVQ", first_, {1.5, 0}));
    host::Picture* target = support::PictureOf(plugin_.Host(), image_);
    Call("DrawPictureFZVQ", target, {second_, 1.25, 0.5, 0.75, 0});
    results.push_back(support::ImageOf(*target));
    plugin_.Host().Release(target);
    return results;
  }

  support::LoadedPlugin& plugin_;
  oracle::Image image_;
  host::Picture* first_;
  host::Picture* second_;
  std::vector<oracle::Image> expected_;
  int rounds_ = 0;
};
