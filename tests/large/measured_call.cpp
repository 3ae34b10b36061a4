#include "tests/large/measured_call.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>

#include "tests/support/allocation_faults.h"
#include "tests/support/pictures.h"

namespace large {

namespace {

// What a call may take besides pictures and blocks: stacks, names, the book of the host.
constexpr double kSlackBytes = 16e6;

// A line "VmHWM:   1234 kB" of the process's status, in bytes.
double StatusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    if (word != field + ":") continue;
    double kilobytes = 0;
    status >> kilobytes;
    return kilobytes * 1024;
  }
  ADD_FAILURE() << "the system does not tell " << field;
  return 0;
}

// The peak of the process's memory starts anew from what it has now.
void ForgetPeak() {
  std::ofstream file("/proc/self/clear_refs");
  file << "5" << std::flush;
  EXPECT_TRUE(file.good()) << "the system does not let the peak start anew";
}

double PixelBytes(const host::Picture& picture) {
  return (picture.Width() * 4.0 + picture.Spec().rowPadding) * picture.Height();
}

// Of all pictures with numbers above `after`, those included that are gone again.
double PictureBytes(const host::Ledger& book, int after) {
  double bytes = 0;
  for (const auto& object : book.Objects()) {
    const auto* picture = dynamic_cast<const host::Picture*>(object.get());
    if (picture != nullptr && picture->Number() > after) bytes += PixelBytes(*picture);
  }
  return bytes;
}

double LivingBytes(const host::Ledger& book) {
  double bytes = 0;
  for (const auto& object : book.Objects()) {
    const auto* picture = dynamic_cast<const host::Picture*>(object.get());
    if (picture != nullptr && picture->Alive()) bytes += PixelBytes(*picture);
  }
  return bytes;
}

std::string ResultText(const host::CallReport& report) {
  if (report.ResultPicture() != nullptr) return "picture";
  if (const bool* truth = std::get_if<bool>(&report.result)) return *truth ? "true" : "false";
  return "nil";
}

void Print(const Stage& stage, const Call& call, const std::string& result, double seconds,
           double pictures, double blocks, double peak) {
  static bool hasHeading = false;
  if (!hasHeading) {
    std::printf("%-21s %-42s %-8s %-8s %7s %12s %10s %8s\n", "method", "sizes", "host", "result",
                "seconds", "pictures MB", "blocks MB", "peak MB");
  }
  hasHeading = true;
  std::printf("%-21s %-42s %-8s %-8s %7.2f %12.2f %10.3f %8.1f\n", call.method.c_str(),
              call.sizes.c_str(), stage.IsDesktop() ? "desktop" : "console", result.c_str(),
              seconds, pictures / 1e6, blocks / 1e6, peak / 1e6);
  std::fflush(stdout);
  const auto record = [](const char* name, const std::string& value) {
    testing::Test::RecordProperty(name, value);
  };
  record("call", call.method + ", " + call.sizes);
  record("result", result);
  record("seconds", std::to_string(seconds));
  record("picture_bytes", std::to_string(pictures));
  record("block_bytes", std::to_string(blocks));
  record("peak_bytes", std::to_string(peak));
}

host::RuntimeOptions OptionsOf(host::ApplicationKind kind) {
  host::RuntimeOptions options;
  options.kind = kind;
  options.newRowPadding = 12;
  return options;
}

}  // namespace

Stage::Stage(host::ApplicationKind kind, const std::function<void(host::Runtime&)>& prepare)
    : kind_(kind), plugin_(OptionsOf(kind), prepare) {}

host::Picture* Stage::NewPicture(int width, int height, const Pattern& pattern, int format,
                                 bool hasAlpha, host::Guard guard) {
  host::PictureSpec spec;
  spec.width = width;
  spec.height = height;
  spec.storage = IsDesktop() ? host::Storage::kBitmapContext : host::Storage::kHostBuffer;
  spec.pixelFormat = format;
  spec.hasAlphaChannel = hasAlpha;
  spec.guard = guard;
  host::Picture* picture = Host().NewPicture(spec);
  pattern.Fill(*picture);
  return picture;
}

int Stage::ResultFormat(bool hasAlpha) const {
  if (!IsDesktop()) return 8;
  return hasAlpha ? 2 : 6;
}

host::CallReport Measure(Stage& stage, const Call& call, const Blocks& blocks,
                         std::size_t hostBytes) {
  const host::Ledger& book = stage.Host().Book();
  const double livingBefore = LivingBytes(book);
  const int numberBefore = static_cast<int>(book.Objects().size());
  ForgetPeak();
  const double before = StatusBytes("VmRSS");
  host::CallReport report;
  double seconds = 0;
  double peak = 0;
  std::vector<std::size_t> sizes;
  std::size_t most = 0;
  int left = 0;
  {
    const support::AllocationWatch watch;
    const auto start = std::chrono::steady_clock::now();
    report = stage.Library().Call(call.method, call.receiver, call.arguments);
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    peak = StatusBytes("VmHWM");
    sizes = watch.Sizes();
    most = watch.MostBytes();
    left = watch.LiveBlocks();
  }
  const double made = PictureBytes(book, numberBefore);
  Print(stage, call, ResultText(report), seconds, livingBefore + made, static_cast<double>(most),
        peak);
  EXPECT_EQ(support::Complaints(report), "");
  const std::size_t further = TakeFurther(blocks, sizes);
  EXPECT_TRUE(sizes == blocks.sizes)
      << sizes.size() << " working blocks, expected " << blocks.sizes.size();
  EXPECT_EQ(most, blocks.most + further);
  if (const host::Picture* result = report.ResultPicture()) {
    EXPECT_EQ(result->DamagedPadding(), 0u) << "something was written between the rows";
  }
  EXPECT_EQ(left, 0) << "working blocks are left";
  EXPECT_LE(peak - before, made + static_cast<double>(blocks.most + hostBytes) + kSlackBytes)
      << "there is more memory than pictures and working blocks";
  return report;
}

}  // namespace large
