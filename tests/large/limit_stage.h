// Pictures whose sides lie at the limit of 32767 pixels: few pixels, so the oracles judge them
// whole.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/large/measured_call.h"
#include "tests/support/pictures.h"

namespace large {

struct Size {
  int width = 0, height = 0;
};

// The largest side of an opaque result and the next one.
inline constexpr int kSidesAtTheLimit[] = {32767, 32768};
inline constexpr host::ApplicationKind kBothKinds[] = {host::ApplicationKind::kDesktop,
                                                       host::ApplicationKind::kConsole};

// Memory is guarded where a process has enough mappings: a console guards each row by itself.
class LimitStage : public Stage {
 public:
  explicit LimitStage(host::ApplicationKind kind)
      : Stage(kind, [](host::Runtime& runtime) {
          runtime.adjustNewPicture = [](host::PictureSpec& spec) { spec.guard = GuardFor(spec); };
        }) {}

  host::Picture* Make(Size size, std::uint32_t seed, bool hasAlpha = false) {
    host::PictureSpec spec;
    spec.height = size.height;
    spec.storage = IsDesktop() ? host::Storage::kBitmapContext : host::Storage::kHostBuffer;
    return NewPicture(size.width, size.height, Pattern(seed), hasAlpha ? 1 : 5, hasAlpha,
                      GuardFor(spec));
  }

  // What the method gave; `expected` as words of the result, none for nil.
  void Expect(const host::CallReport& report, const std::optional<oracle::Image>& expected) {
    EXPECT_EQ(support::Complaints(report), "");
    host::Picture* result = report.ResultPicture();
    ASSERT_EQ(result != nullptr, expected.has_value());
    if (result == nullptr) return;
    EXPECT_EQ(support::Difference(*expected, support::ImageOf(*result)), "");
    EXPECT_EQ(result->DamagedPadding(), 0u);
  }

 private:
  static host::Guard GuardFor(const host::PictureSpec& spec) {
    const bool isOneBlock = spec.storage == host::Storage::kBitmapContext;
    return isOneBlock || spec.height <= 1000 ? host::Guard::kAfter : host::Guard::kNone;
  }
};

inline std::string Text(Size size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace large
