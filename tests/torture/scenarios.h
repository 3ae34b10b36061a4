// What is tortured: every method in its variants, in every kind of application, at host versions on
// both sides of every version that the plug-in asks about.
#pragma once

#include <string>
#include <vector>

#include "host/runtime.h"

namespace torture {

enum class Method { kScale, kScaleBoth, kResample, kDraw, kBlur };

enum class Special {
  kNone,
  kOwnSize,      // the request is the receiver itself
  kNilReceiver,  // the method is called on nil
  kNilPicture,   // nil is drawn
  kRefused,      // a bitmap context whose alpha info is refused; its lock stays
};

struct Variant {
  const char* name;  // letters and digits only
  Method method;
  bool alpha = false;   // the source has an alpha channel
  bool mask = false;    // the source has a mask
  bool hidden = false;  // the source cannot be locked: hosts with bitmap contexts draw a copy of it
  bool smooth = false;  // enlarged smoothly
  Special special = Special::kNone;
  int width = 2;  // of the request
  int height = 3;
};

struct Scenario {
  Variant variant;
  host::ApplicationKind kind;
  double version;
  bool padded;  // rows are padded and pixels guarded in front at most; else guarded behind

  bool HasBuffers() const;  // pictures lie in host buffers
  std::string Text() const;
};

// Size of every source picture.
inline constexpr int kSourceWidth = 3;
inline constexpr int kSourceHeight = 2;

const char* NameOf(Method method);
std::vector<Variant> VariantsOf(Method method);

// Each version that the plug-in compares with, and one between any two, below all and above all.
extern const std::vector<double> kVersions;
extern const std::vector<host::ApplicationKind> kKinds;
std::vector<Scenario> ScenariosOf(Method method);

host::RuntimeOptions OptionsOf(const Scenario& scenario);
std::vector<double> Thresholds();

}  // namespace torture
