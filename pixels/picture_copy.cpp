#include "pixels/picture_copy.h"

#include <cstring>

#include "pixels/description_lock.h"
#include "pixels/row_table.h"
#include "plugin/held_object.h"
#include "plugin/host_state.h"

namespace {

// Copies every row; false, with nothing copied, when the two are not whole 32-bit buffers of one
// size.
bool CopyRows(const REALpictureDescription& dst, const REALpictureDescription& src) {
  if (dst.type != kDescriptionHostBuffer || src.type != kDescriptionHostBuffer) return false;
  const auto* to = static_cast<const REALhostBuffer*>(dst.handle);
  const auto* from = static_cast<const REALhostBuffer*>(src.handle);
  if (to == nullptr || from == nullptr || to->kind != 0 || from->kind != 0) return false;
  if (to->width != from->width || to->height != from->height) return false;
  if (to->rowTable == nullptr || from->rowTable == nullptr) return false;
  const auto width = static_cast<std::int32_t>(from->width);
  const auto height = static_cast<std::int32_t>(from->height);
  if (width < 0 || !HasRows(to->rowTable, height) || !HasRows(from->rowTable, height)) return false;
  const std::size_t rowBytes = static_cast<std::size_t>(width) * 4;
  for (std::int32_t row = 0; row < height; ++row) {
    std::memmove(to->rowTable[row], from->rowTable[row], rowBytes);
  }
  return true;
}

bool CopyLocked(REALpicture dst, REALpicture src) {
  REALpictureDescription srcDescription = {};
  if (!LockPictureDescription(src, srcDescription, kDescriptionHostBuffer)) return false;
  bool copied = false;
  {
    const DescriptionLock srcLock(src);
    REALpictureDescription dstDescription = {};
    if (LockPictureDescription(dst, dstDescription, kDescriptionHostBuffer)) {
      const DescriptionLock dstLock(dst);
      copied = CopyRows(dstDescription, srcDescription);
    }
  }
  REALPictureClearCache(dst);
  return copied;
}

}  // namespace

void DrawWithGraphics(REALgraphics graphics, REALpicture dst, REALpicture src, int w, int h, int sw,
                      int sh) {
  REALroutine routine = REALLoadObjectMethod(graphics, kDrawPictureDeclaration);
  if (routine != nullptr) {
    reinterpret_cast<DrawPictureMethod*>(routine)(graphics, src, 0, 0, w, h, 0, 0, sw, sh);
    return;
  }
  // Deliberate: old hosts are asked for their drawing routine, and the answer is not used.
  if (rbversion_rbversion < 2012.0) LookUpEntry("RuntimeGraphicsDrawPicture");
  OwnCopy(dst, src, 0, 0, w, h, 0, 0, sw, sh);
}

void GraphicsDrawPicture(REALpictureStruct* dst, REALpictureStruct* src, int /*x*/, int /*y*/,
                         int w, int h, int /*sx*/, int /*sy*/, int sw, int sh) {
  REALgraphics graphics = REALGetPictureGraphics(dst);
  const HeldObject heldGraphics(graphics);
  if (src != nullptr && graphics != nullptr) {
    DrawWithGraphics(graphics, dst, src, w, h, sw, sh);
  } else {
    OwnCopy(dst, src, 0, 0, w, h, 0, 0, sw, sh);
  }
}

bool OwnCopy(REALpictureStruct* dst, REALpictureStruct* src, int /*x*/, int /*y*/, int w, int h,
             int /*sx*/, int /*sy*/, int sw, int sh) {
  if (dst == nullptr || src == nullptr || sw != w || sh != h) return false;
  return CopyLocked(dst, src);
}
