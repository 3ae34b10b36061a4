// One call of a method, on its way from the host to the real plug-in and back.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

namespace faulty {

enum class Method { kScale, kScaleImageAndMask, kResample, kBlur, kDraw };

// What the host asked for and what it will get. A fault changes either, or does without Proceed,
// which is a refusal.
struct MethodCall {
  Method method;
  REALpicture self = nullptr;
  std::int32_t width = 0, height = 0;  // of the three methods that ask for a size
  std::uintptr_t smooth = 0;           // handed on as the word it came in
  std::int32_t mode = 0;
  double radius = 0;
  REALpicture drawn = nullptr;
  double x = 0, y = 0, alpha = 0;
  std::int32_t period = 0;

  REALpicture result = nullptr;  // of all methods but DrawPictureFZVQ,
  bool done = false;             // whose result this is

  // Lets the real plug-in answer, with the arguments as they now are.
  void Proceed();

  bool Scales() const { return method == Method::kScale || method == Method::kScaleImageAndMask; }
  bool Draws() const { return method == Method::kDraw; }
  bool Refused() const { return Draws() ? !done : result == nullptr; }
  // The picture that the method wrote, and the one it read meanwhile; null when there is none.
  REALpicture Written() const;
  REALpicture Source() const;
};

// Same-size ScalingZVQ of the real plug-in, for faults that copy where they should not.
REALpicture RealCopy(REALpicture picture, std::int32_t period);

// Stands before that method from now on, if it is one of the five.
void Wrap(REALmethodDefinition& method);

// Whether the declaration is of the method with that name.
bool Declares(const REALmethodDefinition& method, const char* name);

}  // namespace faulty
