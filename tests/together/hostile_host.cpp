#include "tests/together/hostile_host.h"

#include <gtest/gtest.h>

#include <string_view>

#include "tests/oracles/blur.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/resample.h"
#include "tests/oracles/smooth_enlarge.h"
#include "tests/support/random.h"

namespace together {

namespace {

constexpr int kMode = 3;
constexpr double kRadius = 2;

host::RuntimeOptions OptionsOf(host::ApplicationKind kind) {
  host::RuntimeOptions options;
  options.kind = kind;
  options.newGuard = host::Guard::kAfter;
  options.newRowPadding = 4;
  return options;
}

// An image in the top left of a larger one.
oracle::Image Widened(const oracle::Image& image, int width, std::uint32_t fill) {
  oracle::Image wide = oracle::NewImage(width, image.height, image.format, fill);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) wide.At(x, y) = image.At(x, y);
  }
  return wide;
}

}  // namespace

bool Failed(const host::CallReport& report) {
  return report.result == host::Value() || report.result == host::Value(false);
}

HostileHost::HostileHost(host::ApplicationKind kind, bool hasAlpha)
    : plugin(OptionsOf(kind)), isConsole_(kind == host::ApplicationKind::kConsole) {
  support::Random random(404);
  const auto format = [&](int context) { return isConsole_ ? 8 : context; };
  receiverImage = random.Noise(kWidth, kHeight, format(hasAlpha ? 1 : 5));
  pictureImage = random.Noise(kWidth, kHeight, format(3));
  maskImage = random.Noise(kWidth, kHeight, format(6));
  const host::Guard guard = host::Guard::kAfter;
  receiver = support::PictureOf(plugin.Host(), receiverImage,
                                {.hasAlphaChannel = hasAlpha, .guard = guard});
  picture = support::PictureOf(plugin.Host(), pictureImage, {.guard = guard});
  mask = support::PictureOf(plugin.Host(), maskImage, {.guard = guard});
}

host::CallReport HostileHost::Call(const Method& method) {
  const std::string_view name = method.name;
  std::vector<host::Value> values = {kNewWidth, kNewHeight, method.smooth};
  if (name == "ScalingZVQ") values = {kMode, kNewWidth, kNewHeight};
  if (name == "BlurZVQ") values = {kRadius};
  if (name == "DrawPictureFZVQ") values = {picture, 0.5, 0.25, 0.75};
  return plugin.Library().Call(method.name, receiver, values);
}

void HostileHost::DistortNewPictures(void (*tell)(host::Picture::LockedView)) {
  const std::size_t old = plugin.Host().Book().Objects().size();
  plugin.Host().intercept = [this, tell, old](const host::EntryCall&) {
    const auto& objects = plugin.Host().Book().Objects();
    for (std::size_t i = old; i < objects.size(); ++i) {
      if (auto* made = dynamic_cast<host::Picture*>(objects[i].get())) made->distort = tell;
    }
    return host::Verdict::kProceed;
  };
}

void HostileHost::ResizeNewPictures(int moreColumns, int moreRows, int nth) {
  plugin.Host().adjustNewPicture = [=, count = 0](host::PictureSpec& spec) mutable {
    ++count;
    if (nth != 0 && count != nth) return;
    spec.width += moreColumns;
    spec.height += moreRows;
  };
}

oracle::Image HostileHost::LockCornerOnly(int width, int height) {
  cornerRows_.clear();
  for (int y = kHeight - height; y < kHeight; ++y) {
    cornerRows_.push_back(receiver->Row(y) + 4 * (kWidth - width));
  }
  receiver->distort = [this, width, height](host::Picture::LockedView view) {
    view.context.data = cornerRows_[0];
    view.context.width = static_cast<std::size_t>(width);
    view.context.height = static_cast<std::size_t>(height);
    view.description.width = width;
    view.description.height = height;
    view.buffer.rowTable = cornerRows_.data();
  };
  return Corner(width, height);
}

oracle::Image HostileHost::Corner(int width, int height) const {
  oracle::Image corner = oracle::NewImage(width, height, receiverImage.format);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      corner.At(x, y) = receiver->Word(x + kWidth - width, y + kHeight - height);
    }
  }
  return corner;
}

int HostileHost::NewFormat() const { return isConsole_ ? 8 : 6; }

std::uint32_t HostileHost::Fill(const host::Picture& made) const {
  const host::RuntimeOptions options;
  return host::WordOfColour(made.HasAlphaChannel() ? options.newAlphaFill : options.newFill,
                            made.PixelFormat(), made.HasAlphaChannel());
}

oracle::Image HostileHost::ExpectedOf(const oracle::Image& source, const Method& method, int format,
                                      int width, int height, std::uint32_t fill) const {
  const std::string_view name = method.name;
  if (name == "BlurZVQ") return oracle::Blur(source, kRadius, format, fill, width, height).image;
  if (name == "ScalingZVQ") {
    return Widened(oracle::Resample(source, kMode, kNewWidth, kNewHeight, format, fill, height),
                   width, fill);
  }
  const auto scale = method.smooth ? oracle::SmoothEnlarge : oracle::FastScale;
  return Widened(scale(source, kNewWidth, kNewHeight, format, fill, height), width, fill);
}

oracle::Image HostileHost::ExpectedOf(const oracle::Image& source, const Method& method, int format,
                                      int width, int height) const {
  return ExpectedOf(source, method, format, width, height, isConsole_ ? 0x00FFFFFF : 0xFFFFFFFF);
}

host::Picture* HostileHost::DrawnCopy(int width, int height, int regionWidth, int regionHeight) {
  host::Runtime& runtime = plugin.Host();
  host::Picture* drawn = runtime.NewPicture(runtime.NewPictureSpec(width, height));
  runtime.Draw(drawn, receiver, 0, 0, regionWidth, regionHeight, 0, 0, regionWidth, regionHeight);
  return drawn;
}

void HostileHost::ExpectReceiverUnchanged() const {
  EXPECT_EQ(support::Difference(receiverImage, support::ImageOf(*receiver)), "");
}

}  // namespace together
