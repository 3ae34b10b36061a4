#include "tests/support/pictures.h"

#include <sstream>

#include "platform/linux/clocks.h"

namespace support {

host::Picture* PictureOf(host::Runtime& runtime, const oracle::Image& image,
                         host::PictureSpec spec) {
  spec.width = image.width;
  spec.height = image.height;
  spec.pixelFormat = image.format;
  if (image.format == oracle::kHostBuffer) spec.storage = host::Storage::kHostBuffer;
  host::Picture* picture = runtime.NewPicture(spec);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) picture->SetWord(x, y, image.At(x, y));
  }
  return picture;
}

oracle::Image ImageOf(const host::Picture& picture) {
  oracle::Image image = oracle::NewImage(picture.Width(), picture.Height(), picture.PixelFormat());
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) image.At(x, y) = picture.Word(x, y);
  }
  return image;
}

oracle::Image Words(int format, const std::vector<std::vector<std::uint32_t>>& rows) {
  oracle::Image image =
      oracle::NewImage(static_cast<int>(rows.at(0).size()), static_cast<int>(rows.size()), format);
  image.words.clear();
  for (const auto& row : rows) image.words.insert(image.words.end(), row.begin(), row.end());
  return image;
}

std::string Difference(const oracle::Image& expected, const oracle::Image& actual) {
  std::ostringstream text;
  text << std::hex;
  if (expected.width != actual.width || expected.height != actual.height ||
      expected.format != actual.format) {
    text << std::dec << "expected " << expected.width << "x" << expected.height << " of format "
         << expected.format << ", got " << actual.width << "x" << actual.height << " of format "
         << actual.format;
    return text.str();
  }
  for (int y = 0; y < expected.height; ++y) {
    for (int x = 0; x < expected.width; ++x) {
      if (expected.At(x, y) == actual.At(x, y)) continue;
      text << "at (" << std::dec << x << ", " << y << ") expected " << std::hex << expected.At(x, y)
           << ", got " << actual.At(x, y);
      return text.str();
    }
  }
  return "";
}

std::string Complaints(const host::CallReport& report) {
  std::string text;
  for (const auto& sentence : report.leftOver) text += sentence + "\n";
  for (const auto& sentence : report.violations) text += sentence + "\n";
  return text;
}

RushingClock::RushingClock() {
  platform::SetClockScript({[ticks = 0U]() mutable { return ticks += 60; },
                            [time = std::uint64_t{0}]() mutable { return time += 1000000000; }});
}

RushingClock::~RushingClock() { platform::ClearClockScript(); }

}  // namespace support
