// Fuzzes whole method calls: kind of application, version, formats, sizes, arguments, masks and one
// failing host entry come from the input. Judged by the host's ledger, by guarded pixel memory,
// and, where nothing failed, by the oracles.
#include <optional>

#include "fuzz/input.h"
#include "host/runtime.h"
#include "plugin/methods.h"
#include "tests/oracles/blur.h"
#include "tests/oracles/draw_picture.h"
#include "tests/oracles/image_and_mask.h"
#include "tests/oracles/resample.h"
#include "tests/oracles/scale_method.h"
#include "tests/support/linked_plugin.h"
#include "tests/support/pictures.h"
#include "tests/support/random.h"

namespace {

using host::ApplicationKind;
using oracle::Image;

constexpr ApplicationKind kKinds[] = {ApplicationKind::kDesktop, ApplicationKind::kWeb,
                                      ApplicationKind::kConsole, ApplicationKind::kNone};
constexpr double kVersions[] = {2012.0, 2013.0, 2013.04, 3000.0};
constexpr int kLargestSide = 24;

REALpicture HandleOf(host::Picture* picture) {
  return picture == nullptr ? nullptr : host::HandleOf<REALpicture>(picture);
}

// One call, decoded from the input.
class Call {
 public:
  Call(host::Runtime& runtime, fuzz::Input& input, bool buffers)
      : runtime_(runtime), input_(input), buffers_(buffers), noise_(input.Word()) {}

  // Runs the method; afterwards what is expected, where nothing was to fail, has been compared.
  void Run(bool disturbed) {
    const int method = input_.Between(1, 5);
    const bool alpha = method != 3 && input_.Coin();
    const Image image = AnyImage(alpha);
    source_ = MakePicture(image, alpha);
    switch (method) {
      case 1:
        Scale(image, alpha);
        break;
      case 2:
        ScaleByMode(image, alpha);
        break;
      case 3:
        ScaleWithMask(image);
        break;
      case 4:
        Draw(image);
        break;
      default:
        Blur(image);
        break;
    }
    Judge(image, method == 4, disturbed);
  }

 private:
  int ResultFormat(bool alpha) const {
    if (buffers_) return 8;
    return alpha ? runtime_.Options().alphaPixelFormat : runtime_.Options().newPixelFormat;
  }

  Image AnyImage(bool alpha) {
    const int format = buffers_ ? 8 : input_.Between(1, alpha ? 2 : 6);
    return noise_.Noise(input_.Between(1, kLargestSide), input_.Between(1, kLargestSide), format);
  }

  host::Picture* MakePicture(const Image& image, bool alpha) {
    host::PictureSpec spec;
    spec.rowPadding = 4 * input_.Between(0, 3);
    spec.guard = input_.Coin() ? host::Guard::kAfter : host::Guard::kBefore;
    spec.hasAlphaChannel = alpha;
    return support::PictureOf(runtime_, image, spec);
  }

  struct Size {
    std::int32_t width, height;
  };

  // Mostly small, sometimes long on one side; never more than a host can hold, which the oracles do
  // not know.
  Size AnySize() {
    Size size = {input_.Between(-1, 60), input_.Between(-1, 60)};
    if (input_.Between(0, 15) == 0) {
      // Guarded host buffers take a mapping for each row, of which a process has some 65,000.
      if (input_.Coin()) {
        size.width = input_.Between(-100, 69900);
      } else {
        size.height = input_.Between(-100, 12000);
      }
    }
    return size;
  }

  void Scale(const Image& image, bool alpha) {
    oracle::ScaleRequest request;
    const Size size = AnySize();
    request.width = size.width;
    request.height = size.height;
    request.antiAlias = input_.Coin();
    request.resultFormat = ResultFormat(alpha);
    request.hasAlpha = alpha;
    Take([&] {
      return ScaleZVQ(HandleOf(source_), request.width, request.height, request.antiAlias ? 1 : 0,
                      Period());
    });
    if (const auto expected = oracle::ScaleMethod(image, request)) expected_ = expected->image;
  }

  void ScaleByMode(const Image& image, bool alpha) {
    oracle::ScalingRequest request;
    request.mode = input_.Between(0, 8);
    const Size size = AnySize();
    request.width = size.width;
    request.height = size.height;
    request.hasAlpha = alpha;
    request.hostVersion = runtime_.Options().version;
    request.resultFormat = ResultFormat(alpha);
    Take([&] {
      return ScalingZVQ(HandleOf(source_), request.mode, request.width, request.height, Period());
    });
    expected_ = oracle::ScalingMethod(&image, request);
  }

  void ScaleWithMask(const Image& image) {
    Image maskImage;
    const bool masked = input_.Coin();
    if (masked) {
      maskImage = AnyImage(false);
      runtime_.SetMask(source_, MakePicture(maskImage, false));
    }
    oracle::ImageAndMaskRequest request;
    const Size size = AnySize();
    request.width = size.width;
    request.height = size.height;
    request.antiAlias = input_.Coin();
    request.picture.format = ResultFormat(false);
    request.mask.format = ResultFormat(false);
    Take([&] {
      return ScaleImageAndMaskZVQ(HandleOf(source_), request.width, request.height,
                                  request.antiAlias ? 1 : 0, Period());
    });
    const auto expected = oracle::ScaleImageAndMask(image, masked ? &maskImage : nullptr, request);
    if (expected) expected_ = expected->image;
  }

  void Draw(const Image& image) {
    Image drawn = image;
    const Image stampImage = AnyImage(false);
    host::Picture* stamp = MakePicture(stampImage, false);
    Image maskImage;
    const bool masked = input_.Coin();
    if (masked) {
      maskImage = AnyImage(false);
      runtime_.SetMask(stamp, MakePicture(maskImage, false));
    }
    const double x = AnyOffset();
    const double y = AnyOffset();
    const double alpha = input_.Coin() ? input_.Number() : input_.Between(-2, 10) / 8.0;
    const auto before = runtime_.Book().Take();
    drawn_ = DrawPictureFZVQ(HandleOf(source_), HandleOf(stamp), x, y, alpha, Period());
    RequireBalance(before);
    oracle::DrawPicture(drawn, stampImage, masked ? &maskImage : nullptr, x, y, alpha);
    expected_ = drawn;
  }

  void Blur(const Image& image) {
    const double radius = input_.Coin() ? input_.Number() : input_.Between(-1, 90) / 2.0;
    // Tables of more than 64 MiB are slow to fill, and of nothing new.
    if (radius >= 32768 && radius < 1048575) return;
    Take([&] { return BlurZVQ(HandleOf(source_), radius, Period()); });
    const std::uint32_t white = ResultFormat(false) == 8 ? 0x00FFFFFF : 0xFFFFFFFF;
    const oracle::BlurResult expected = oracle::Blur(image, radius, ResultFormat(false), white);
    if (expected.outcome != oracle::BlurOutcome::kNil) expected_ = expected.image;
  }

  double AnyOffset() { return input_.Coin() ? input_.Number() : input_.Between(-200, 200) / 8.0; }
  std::int32_t Period() { return input_.Coin() ? 0 : input_.Between(-3, 3); }

  // Calls a method that answers with a picture; the ledger must then hold nothing more than its
  // result.
  template <typename Method>
  void Take(Method&& method) {
    const auto before = runtime_.Book().Take();
    REALpicture handle = method();
    host::Object* object = runtime_.Book().Find(handle);
    fuzz::Require(handle == nullptr || object != nullptr, "a result that the host did not make");
    result_ = dynamic_cast<host::Picture*>(object);
    RequireBalance(before);
  }

  void RequireBalance(const host::Ledger::Snapshot& before) {
    for (const std::string& sentence : runtime_.Book().Differences(before, result_)) {
      fuzz::Require(false, sentence);
    }
  }

  void Judge(const Image& image, bool drawn, bool disturbed) {
    if (!drawn) {
      fuzz::Require(support::Difference(image, support::ImageOf(*source_)).empty(),
                    "the source was changed");
    }
    fuzz::Require(source_->DamagedPadding() == 0, "padding was written");
    if (disturbed) return;
    if (drawn) {
      fuzz::Require(drawn_, "nothing was drawn");
      const std::string difference = support::Difference(*expected_, support::ImageOf(*source_));
      fuzz::Require(difference.empty(), difference);
      return;
    }
    if (!expected_ || result_ == nullptr) {
      fuzz::Require(!expected_ && result_ == nullptr, "a picture or nil");
      return;
    }
    const std::string difference = support::Difference(*expected_, support::ImageOf(*result_));
    fuzz::Require(difference.empty(), difference);
  }

  host::Runtime& runtime_;
  fuzz::Input& input_;
  bool buffers_;
  support::Random noise_;
  host::Picture* source_ = nullptr;
  host::Picture* result_ = nullptr;
  bool drawn_ = false;
  std::optional<Image> expected_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  host::RuntimeOptions options;
  options.kind = kKinds[input.Between(0, 3)];
  options.version = kVersions[input.Between(0, 3)];
  options.newPixelFormat = input.Between(1, 6);
  options.alphaPixelFormat = input.Between(1, 2);
  options.newRowPadding = 4 * input.Between(0, 3);
  options.newGuard = input.Coin() ? host::Guard::kAfter : host::Guard::kBefore;
  const bool buffers =
      options.kind == ApplicationKind::kWeb || options.kind == ApplicationKind::kConsole;
  host::Runtime runtime(options);
  support::StartLinkedPlugin(options.version);
  const int failing = input.Coin() ? input.Between(1, 40) : 0;
  runtime.intercept = [&](const host::EntryCall& call) {
    const std::string entry = call.entry;
    // References and locks must count, or the ledger could not judge.
    const bool counts = entry == "REALLockObject" || entry.find("nlock") != std::string::npos;
    return call.number == failing && !counts ? host::Verdict::kFail : host::Verdict::kProceed;
  };
  Call call(runtime, input, buffers);
  call.Run(failing != 0);
  for (const std::string& sentence : runtime.Book().Violations()) fuzz::Require(false, sentence);
  return 0;
}
