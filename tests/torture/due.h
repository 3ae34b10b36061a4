// What the methods are documented to give in a scenario: undisturbed, and in the other ways that
// remain when something fails.
#pragma once

#include <optional>
#include <vector>

#include "tests/torture/stage.h"

namespace torture {

struct Due {
  Answer answer = Answer::kNil;
  bool hasAlpha = false;
  std::optional<oracle::Image> image;  // of a new picture
  std::optional<oracle::Image> mask;
  oracle::Image receiver;  // afterwards

  // Empty when the outcome is this one; else what differs. Of masks, colours are compared.
  std::string DifferenceTo(const Outcome& outcome) const;
};

class DueOutcomes {
 public:
  explicit DueOutcomes(Stage& stage);

  const Due& Undisturbed() const { return undisturbed_; }
  const oracle::Image& Before() const { return receiver_; }  // the receiver
  // Every picture or drawing that may come out when host calls fail. `alphaUnread`: whether the
  // source has an alpha channel could not be read.
  bool Allows(const Outcome& outcome, bool alphaUnread) const;
  // When that allocation fails, or that and all later ones.
  Due WithoutAllocation(int number, bool andLater) const;

 private:
  struct Format {
    int format;
    bool hasAlpha;
  };
  Due Picture(const oracle::Image& image, Format format,
              std::optional<oracle::Image> mask = std::nullopt) const;
  oracle::Image Scaled(const oracle::Image& source, bool smooth, int format) const;
  void AddScaled(bool masks);
  void AddOthers();
  void FindUndisturbed();
  Due ShortOfTaps(int number, bool andLater) const;

  Scenario scenario_;
  Format opaque_, alpha_;
  oracle::Image source_, receiver_;
  oracle::Image copy_, blank_;                // a private copy of the source, and one undrawn
  oracle::Image convertedCopy_;               // that, drawn through its mask
  oracle::Image converted_, blankConverted_;  // of an alpha picture, of the requested size
  std::optional<oracle::Image> mask_;         // of the source, or made of its alpha channel
  std::optional<oracle::Image> maskCopy_;     // a private copy of the mask
  oracle::Image whiteMask_;
  std::vector<Due> due_;
  Due undisturbed_;
};

}  // namespace torture
