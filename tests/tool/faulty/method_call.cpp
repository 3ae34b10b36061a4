#include "tests/tool/faulty/method_call.h"

#include <cstring>

#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

using ScaleMethod = REALpicture(REALpicture, std::int32_t, std::int32_t, std::uintptr_t,
                                std::int32_t);
using ResampleMethod = REALpicture(REALpicture, std::int32_t, std::int32_t, std::int32_t,
                                   std::int32_t);
using BlurMethod = REALpicture(REALpicture, double, std::int32_t);
using DrawMethod = bool(REALpicture, REALpicture, double, double, double, std::int32_t);

ScaleMethod* gScale;
ScaleMethod* gScaleImageAndMask;
ResampleMethod* gResample;
BlurMethod* gBlur;
DrawMethod* gDraw;

MethodCall Answered(MethodCall call) {
  const Fault* fault = ChosenFault();
  if (fault != nullptr && fault->around != nullptr) {
    fault->around(call);
  } else {
    call.Proceed();
  }
  return call;
}

template <Method method>
REALpicture Scale(REALpicture self, std::int32_t width, std::int32_t height, std::uintptr_t smooth,
                  std::int32_t period) {
  return Answered({.method = method,
                   .self = self,
                   .width = width,
                   .height = height,
                   .smooth = smooth,
                   .period = period})
      .result;
}

REALpicture Resample(REALpicture self, std::int32_t mode, std::int32_t width, std::int32_t height,
                     std::int32_t period) {
  return Answered({.method = Method::kResample,
                   .self = self,
                   .width = width,
                   .height = height,
                   .mode = mode,
                   .period = period})
      .result;
}

REALpicture Blur(REALpicture self, double radius, std::int32_t period) {
  return Answered({.method = Method::kBlur, .self = self, .radius = radius, .period = period})
      .result;
}

bool Draw(REALpicture self, REALpicture picture, double x, double y, double alpha,
          std::int32_t period) {
  return Answered({.method = Method::kDraw,
                   .self = self,
                   .drawn = picture,
                   .x = x,
                   .y = y,
                   .alpha = alpha,
                   .period = period})
      .done;
}

template <typename Function>
void Replace(REALroutine& routine, Function*& real, Function* own) {
  real = reinterpret_cast<Function*>(routine);
  routine = reinterpret_cast<REALroutine>(own);
}

}  // namespace

void MethodCall::Proceed() {
  switch (method) {
    case Method::kScale:
      result = gScale(self, width, height, smooth, period);
      break;
    case Method::kScaleImageAndMask:
      result = gScaleImageAndMask(self, width, height, smooth, period);
      break;
    case Method::kResample:
      result = gResample(self, mode, width, height, period);
      break;
    case Method::kBlur:
      result = gBlur(self, radius, period);
      break;
    case Method::kDraw:
      done = gDraw(self, drawn, x, y, alpha, period);
      break;
  }
}

REALpicture MethodCall::Written() const {
  if (Draws()) return done ? self : nullptr;
  return result != self ? result : nullptr;
}

REALpicture MethodCall::Source() const {
  if (Draws()) return done ? drawn : nullptr;
  return result != self ? self : nullptr;
}

REALpicture RealCopy(REALpicture picture, std::int32_t period) {
  return gResample(picture, 2, Size(picture, "Width"), Size(picture, "Height"), period);
}

bool Declares(const REALmethodDefinition& method, const char* name) {
  // The declaration begins with the name.
  const std::size_t length = std::strlen(name);
  return std::strncmp(method.declaration, name, length) == 0 && method.declaration[length] == '(';
}

void Wrap(REALmethodDefinition& method) {
  REALroutine& routine = method.implementation;
  if (Declares(method, "ScaleZVQ")) Replace(routine, gScale, Scale<Method::kScale>);
  if (Declares(method, "ScaleImageAndMaskZVQ")) {
    Replace(routine, gScaleImageAndMask, Scale<Method::kScaleImageAndMask>);
  }
  if (Declares(method, "ScalingZVQ")) Replace(routine, gResample, Resample);
  if (Declares(method, "BlurZVQ")) Replace(routine, gBlur, Blur);
  if (Declares(method, "DrawPictureFZVQ")) Replace(routine, gDraw, Draw);
}

}  // namespace faulty
