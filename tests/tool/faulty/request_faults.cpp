// Faults in what the methods make of their arguments.
#include <algorithm>
#include <cmath>

#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

void CopyAtOwnSize(MethodCall& call) {
  const bool own =
      Size(call.self, "Width") == call.width && Size(call.self, "Height") == call.height;
  if (call.Scales() && own) {
    call.result = RealCopy(call.self, 0);
  } else {
    call.Proceed();
  }
}

void WidenSize(MethodCall& call) {
  if (call.Scales()) ++call.width;
  call.Proceed();
}

void ClampSize(MethodCall& call) {
  if (call.Scales()) {
    call.width = std::clamp(call.width, 1, 32767);
    call.height = std::clamp(call.height, 1, 32767);
  }
  call.Proceed();
}

void AcceptAnyMode(MethodCall& call) {
  call.mode = (call.mode & 7) % 7 + 1;
  call.Proceed();
}

void ForgetSharpModes(MethodCall& call) {
  if (call.mode >= 3 && call.mode <= 7) call.mode = 1;
  call.Proceed();
}

void RoundRadius(MethodCall& call) {
  call.radius += 0.5;
  call.Proceed();
}

void KeepAlphaInBlur(MethodCall& call) {
  if (call.method == Method::kBlur && call.self != nullptr && HasAlpha(call.self)) {
    call.result = RealCopy(call.self, call.period);
  } else {
    call.Proceed();
  }
}

void DrawBeside(MethodCall& call) {
  call.x += 1;
  call.Proceed();
}

void DrawAtWholePixels(MethodCall& call) {
  call.x = std::floor(call.x);
  call.Proceed();
}

void ClampOpacity(MethodCall& call) {
  call.alpha = std::clamp(call.alpha, 0.0, 1.0);
  call.Proceed();
}

void RespectAlphaChannel(MethodCall& call) {
  if (call.drawn != nullptr && HasAlpha(call.drawn)) call.alpha = 0;
  call.Proceed();
}

const Fault kFaults[] = {
    {"own-size-copies", CopyAtOwnSize},
    {"wrong-size", WidenSize},
    {"clamps-size", ClampSize},
    {"any-mode", AcceptAnyMode},
    {"no-sharp-modes", ForgetSharpModes},
    {"rounds-radius", RoundRadius},
    {"blur-keeps-alpha", KeepAlphaInBlur},
    {"draws-beside", DrawBeside},
    {"draws-at-whole-pixels", DrawAtWholePixels},
    {"clamps-opacity", ClampOpacity},
    {"respects-alpha-channel", RespectAlphaChannel},
};

}  // namespace

std::span<const Fault> RequestFaults() { return kFaults; }

}  // namespace faulty
