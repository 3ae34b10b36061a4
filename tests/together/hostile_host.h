// A host with guarded pictures that can lie about them, and what the methods make of them.
#pragma once

#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace together {

inline constexpr int kWidth = 5;  // of receiver, picture and mask
inline constexpr int kHeight = 4;
inline constexpr int kNewWidth = 7;  // of requests
inline constexpr int kNewHeight = 6;

struct Method {
  const char* name;
  bool smooth = false;
  const char* Text() const { return smooth ? "smooth enlargement" : name; }
};
inline constexpr Method kFast = {"ScaleZVQ"};
inline constexpr Method kSmooth = {"ScaleZVQ", true};
inline constexpr Method kBothFast = {"ScaleImageAndMaskZVQ"};
inline constexpr Method kBothSmooth = {"ScaleImageAndMaskZVQ", true};
inline constexpr Method kResample = {"ScalingZVQ"};
inline constexpr Method kBlur = {"BlurZVQ"};
inline constexpr Method kDraw = {"DrawPictureFZVQ"};
inline constexpr Method kMethods[] = {kFast,     kSmooth, kBothFast, kBothSmooth,
                                      kResample, kBlur,   kDraw};
// Those whose first new picture is their result, whatever the receiver.
inline constexpr Method kPictureMakers[] = {kFast, kSmooth, kResample, kBlur};

inline constexpr host::ApplicationKind kKinds[] = {host::ApplicationKind::kDesktop,
                                                   host::ApplicationKind::kConsole};

// Nil or false.
bool Failed(const host::CallReport& report);

class HostileHost {
 public:
  // The receiver has the alpha channel; picture and mask have none and belong to nothing yet.
  HostileHost(host::ApplicationKind kind, bool hasAlpha);

  host::CallReport Call(const Method& method);

  // Every picture that is made from here on lies when it is locked.
  void DistortNewPictures(void (*tell)(host::Picture::LockedView));
  // New pictures get other sizes than are asked for: all of them, or only the nth from here on.
  void ResizeNewPictures(int moreColumns, int moreRows, int nth = 0);
  // Locks of the receiver hand out only its right bottom corner, which is returned.
  oracle::Image LockCornerOnly(int width, int height);
  oracle::Image Corner(int width, int height) const;

  int NewFormat() const;                                // of new opaque pictures
  std::uint32_t Fill(const host::Picture& made) const;  // every word of a new picture

  // What the method makes of an image, in a result of that locked size.
  oracle::Image ExpectedOf(const oracle::Image& source, const Method& method, int format, int width,
                           int height, std::uint32_t fill) const;
  oracle::Image ExpectedOf(const oracle::Image& source, const Method& method, int format, int width,
                           int height) const;
  // Of the receiver.
  oracle::Image Expected(const Method& method, int format, int width, int height,
                         std::uint32_t fill = 0) const {
    return ExpectedOf(receiverImage, method, format, width, height, fill);
  }

  // A new opaque picture of width × height into which the host has drawn the receiver's top left
  // regionWidth × regionHeight.
  host::Picture* DrawnCopy(int width, int height, int regionWidth, int regionHeight);

  void ExpectReceiverUnchanged() const;

  support::LoadedPlugin plugin;
  host::Picture* receiver;
  host::Picture* picture;
  host::Picture* mask;
  oracle::Image receiverImage, pictureImage, maskImage;

 private:
  bool isConsole_;
  std::vector<unsigned char*> cornerRows_;
};

}  // namespace together
