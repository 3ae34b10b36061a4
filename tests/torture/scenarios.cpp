#include "tests/torture/scenarios.h"

#include <sstream>

namespace torture {

using host::ApplicationKind;

const std::vector<double> kVersions = {2010.028, 2010.029,  2011.0399, 2011.04,   2011.9999,
                                       2012.0,   2012.9999, 2013.0,    2013.0299, 2013.03,
                                       2013.035, 2013.04,   2999.9999, 3000.0,    3000.01};

const std::vector<ApplicationKind> kKinds = {ApplicationKind::kDesktop, ApplicationKind::kWeb,
                                             ApplicationKind::kConsole, ApplicationKind::kNone};

std::vector<double> Thresholds() {
  return {2010.029, 2011.04, 2012.0, 2013.0, 2013.03, 2013.04, 3000.0};
}

namespace {

using M = Method;
using S = Special;

const Variant kVariants[] = {
    {"FastOpaque", M::kScale},
    {"FastAlpha", M::kScale, true},
    {"FastHidden", M::kScale, false, false, true},
    {"SmoothOpaque", M::kScale, false, false, false, true, S::kNone, 4, 3},
    {"SmoothAlpha", M::kScale, true, false, false, true, S::kNone, 4, 3},
    {"SmoothHidden", M::kScale, false, false, true, true, S::kNone, 4, 3},
    {"OwnSize", M::kScale, false, false, false, false, S::kOwnSize, 3, 2},
    {"Refused", M::kScale, false, false, false, false, S::kRefused},
    {"NilReceiver", M::kScale, false, false, false, false, S::kNilReceiver},
    {"FastOpaque", M::kScaleBoth},
    {"FastMasked", M::kScaleBoth, false, true},
    {"FastAlpha", M::kScaleBoth, true},
    {"FastHidden", M::kScaleBoth, false, true, true},
    {"SmoothMasked", M::kScaleBoth, false, true, false, true, S::kNone, 4, 3},
    {"SmoothAlpha", M::kScaleBoth, true, false, false, true, S::kNone, 4, 3},
    {"OwnSize", M::kScaleBoth, false, true, false, false, S::kOwnSize, 3, 2},
    {"NilReceiver", M::kScaleBoth, false, false, false, false, S::kNilReceiver},
    {"HigherOpaque", M::kResample},
    {"WiderOpaque", M::kResample, false, false, false, false, S::kNone, 4, 2},
    {"HigherAlpha", M::kResample, true},
    {"HigherHidden", M::kResample, false, false, true},
    {"NilReceiver", M::kResample, false, false, false, false, S::kNilReceiver},
    {"Plain", M::kDraw},
    {"Masked", M::kDraw, false, true},
    {"Alpha", M::kDraw, true},
    {"Hidden", M::kDraw, false, true, true},
    {"NilPicture", M::kDraw, false, false, false, false, S::kNilPicture},
    {"NilReceiver", M::kDraw, false, false, false, false, S::kNilReceiver},
    {"Opaque", M::kBlur},
    {"Alpha", M::kBlur, true},
    {"Hidden", M::kBlur, false, false, true},
    {"NoRadius", M::kBlur, false, false, false, false, S::kOwnSize},
    {"NilReceiver", M::kBlur, false, false, false, false, S::kNilReceiver},
};

const char* KindName(ApplicationKind kind) {
  switch (kind) {
    case ApplicationKind::kDesktop:
      return "desktop";
    case ApplicationKind::kWeb:
      return "web";
    case ApplicationKind::kConsole:
      return "console";
    case ApplicationKind::kNone:
      break;
  }
  return "none";
}

}  // namespace

bool Scenario::HasBuffers() const {
  return kind == ApplicationKind::kWeb || kind == ApplicationKind::kConsole;
}

std::string Scenario::Text() const {
  std::ostringstream text;
  text.precision(9);
  text << NameOf(variant.method) << ' ' << variant.name << ", " << KindName(kind) << ' ' << version;
  return text.str();
}

const char* NameOf(Method method) {
  switch (method) {
    case Method::kScale:
      return "ScaleZVQ";
    case Method::kScaleBoth:
      return "ScaleImageAndMaskZVQ";
    case Method::kResample:
      return "ScalingZVQ";
    case Method::kDraw:
      return "DrawPictureFZVQ";
    case Method::kBlur:
      break;
  }
  return "BlurZVQ";
}

std::vector<Variant> VariantsOf(Method method) {
  std::vector<Variant> found;
  for (const Variant& variant : kVariants) {
    if (variant.method == method) found.push_back(variant);
  }
  return found;
}

std::vector<Scenario> ScenariosOf(Method method) {
  std::vector<Scenario> scenarios;
  for (const Variant& variant : VariantsOf(method)) {
    for (const ApplicationKind kind : kKinds) {
      bool padded = false;
      for (const double version : kVersions) {
        scenarios.push_back({variant, kind, version, padded});
        padded = !padded;
      }
    }
  }
  return scenarios;
}

host::RuntimeOptions OptionsOf(const Scenario& scenario) {
  host::RuntimeOptions options;
  options.version = scenario.version;
  options.kind = scenario.kind;
  // Rows of a host buffer have gaps between them, or pages around each, not both.
  const host::Guard withPadding = scenario.HasBuffers() ? host::Guard::kNone : host::Guard::kBefore;
  options.newGuard = scenario.padded ? withPadding : host::Guard::kAfter;
  options.newRowPadding = scenario.padded ? 8 : 0;
  return options;
}

}  // namespace torture
