// Two pictures of a test's host, one to be drawn or copied into the other.
#pragma once

#include "pixels/picture_copy.h"
#include "tests/pixels/linked_host.h"

namespace pixels_test {

// Picture#1 is drawn or copied into Picture#2.
struct Pair {
  explicit Pair(LinkedHost& host, host::PictureSpec from = Buffer(3, 2),
                host::PictureSpec to = Buffer(3, 2)) {
    src = host.runtime.NewPicture(from);
    Number(*src);
    dst = host.Make(to);
  }
  bool Copy(int w, int h, int sw, int sh) const {
    return OwnCopy(HandleOf(dst), HandleOf(src), 0, 0, w, h, 0, 0, sw, sh);
  }
  void Draw(int w, int h, int sw, int sh) const {
    GraphicsDrawPicture(HandleOf(dst), HandleOf(src), 0, 0, w, h, 0, 0, sw, sh);
  }
  bool Copied() const {
    return dst->Word(0, 0) == NumberAt(0, 0) && dst->Word(2, 1) == NumberAt(2, 1);
  }
  bool Untouched() const {
    for (int y = 0; y < dst->Height(); ++y) {
      for (int x = 0; x < dst->Width(); ++x) {
        if (dst->Word(x, y) != 0x00FFFFFFu) return false;
      }
    }
    return true;
  }
  host::Picture* src;
  host::Picture* dst;
};

// The calls of a copy whose pictures could both be locked.
inline const Lines kBothLocked = {
    "REALLockPictureDescription(Picture#1, 10) = 1",
    "REALLockPictureDescription(Picture#2, 10) = 1", "unlockPictureDescription(Picture#2)",
    "unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#2)"};

}  // namespace pixels_test
