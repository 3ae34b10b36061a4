#include "pixels/picture_editor.h"

#include <limits>
#include <utility>

#include "pixels/description_lock.h"
#include "pixels/picture_copy.h"
#include "pixels/row_table.h"
#include "platform/bitmap_context.h"
#include "plugin/application_kind.h"
#include "plugin/held_object.h"

namespace {

constexpr int kMostCopies = 4;
constexpr std::int32_t kBytesPerPixel = 4;
constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();

// Whether pixels of that size can be addressed at all, whatever the host says.
bool IsAddressable(std::size_t width, std::size_t height, std::size_t bytesPerRow) {
  return width >= 1 && height >= 1 && width <= kLargest / kBytesPerPixel && height <= kLargest &&
         bytesPerRow >= width * kBytesPerPixel && bytesPerRow <= kLargest;
}

bool IsAcceptedAlphaInfo(std::uint32_t alphaInfo, bool hasAlpha) {
  if (hasAlpha) {
    return alphaInfo == kCGImageAlphaPremultipliedFirst ||
           alphaInfo == kCGImageAlphaPremultipliedLast;
  }
  return alphaInfo >= kCGImageAlphaPremultipliedLast && alphaInfo <= kCGImageAlphaNoneSkipFirst;
}

}  // namespace

PictureEditor::~PictureEditor() { Release(); }
PictureReader::~PictureReader() = default;
PictureWriter::~PictureWriter() = default;

void PictureEditor::Release() noexcept {
  status = 0;
  if (pixMap != nullptr) UnlockPixels(std::exchange(pixMap, nullptr));
  if (descriptionLocked) {
    if (picture != nullptr) REALUnlockPictureDescription(picture);
    descriptionLocked = false;
  }
  if (picture == nullptr) return;
  if (writable) REALPictureClearCache(picture);
  REALUnlockObject(std::exchange(picture, nullptr));
}

signed char PictureEditor::GetPictureEditor(REALpictureStruct* pic, signed char mayCopyPicture,
                                            signed char writablePicture) {
  return Lock(pic, mayCopyPicture != 0, writablePicture != 0, 0) ? 1 : 0;
}

bool PictureEditor::Lock(REALpicture pic, bool mayCopyPicture, bool writablePicture,
                         int copiesMade) {
  Release();
  if (pic == nullptr) return false;
  writable = writablePicture;
  mayCopy = mayCopyPicture;
  ProbeApplicationKind();
  hasAlpha = REALGetPropValueBoolean(pic, "HasAlphaChannel");

  Outcome outcome = Outcome::kNotLocked;
  if (IsConsole == 0) {
    outcome = LockBitmapContext(pic);
    if (outcome == Outcome::kNotLocked && !hasAlpha && mayCopy && !writable) {
      outcome = LockPrivateCopy(pic, copiesMade);
    }
  }
  if (outcome != Outcome::kNotLocked) return outcome == Outcome::kLocked;
  return IsDesktop == 0 && LockHostBuffer(pic);
}

bool PictureEditor::LockDescription(REALpicture pic, std::int32_t type) {
  const bool locked = LockPictureDescription(pic, description, type);
  // The host's word of that place means nothing here; only the plug-in itself sets a buffer of its
  // own.
  description.ownBuffer = nullptr;
  return locked;
}

PictureEditor::Outcome PictureEditor::LockBitmapContext(REALpicture pic) {
  if (!LockDescription(pic, kDescriptionBitmapContext)) return Outcome::kNotLocked;
  DescriptionLock lock(pic);
  IsDesktop = 1;
  if (description.handle == nullptr || description.type != kDescriptionBitmapContext) {
    return Outcome::kRefused;
  }
  auto* context = static_cast<CGContextRef>(description.handle);
  void* data = CGBitmapContextGetData(context);
  const std::size_t bitsPerPixel = CGBitmapContextGetBitsPerPixel(context);
  const std::size_t contextWidth = CGBitmapContextGetWidth(context);
  const std::size_t contextHeight = CGBitmapContextGetHeight(context);
  const std::size_t bytesPerRow = CGBitmapContextGetBytesPerRow(context);
  const std::uint32_t alphaInfo = CGBitmapContextGetAlphaInfo(context) & 7;
  if (!IsAcceptedAlphaInfo(alphaInfo, hasAlpha)) {
    lock.Keep();  // Deliberate: this one lock stays.
    return Outcome::kRefused;
  }
  if (bitsPerPixel != 32 || data == nullptr ||
      !IsAddressable(contextWidth, contextHeight, bytesPerRow)) {
    return Outcome::kRefused;
  }
  if (!Hold(pic)) return Outcome::kRefused;
  lock.Keep();
  if (hasAlpha) alphaLocked = true;
  pixelFormat = static_cast<std::int32_t>(alphaInfo);
  rowBytes = static_cast<std::int32_t>(bytesPerRow);
  width = static_cast<std::int32_t>(contextWidth);
  height = static_cast<std::int32_t>(contextHeight);
  base = static_cast<unsigned char*>(data);
  GoToRow(0);
  return Outcome::kLocked;
}

PictureEditor::Outcome PictureEditor::LockPrivateCopy(REALpicture pic, int copiesMade) {
  const std::int32_t copyWidth = REALGetPropValueInteger(pic, "Width");
  const std::int32_t copyHeight = REALGetPropValueInteger(pic, "Height");
  if (copyWidth < 1 || copyHeight < 1 || copiesMade == kMostCopies) return Outcome::kNotLocked;
  REALpicture copy = REALNewPicture(copyWidth, copyHeight, 32);
  if (copy == nullptr) return Outcome::kNotLocked;
  const HeldObject heldCopy(copy);
  if (REALgraphics graphics = REALGetPictureGraphics(copy)) {
    const HeldObject heldGraphics(graphics);
    DrawWithGraphics(graphics, copy, pic, copyWidth, copyHeight, copyWidth, copyHeight);
  }
  return Lock(copy, mayCopy, false, copiesMade + 1) ? Outcome::kLocked : Outcome::kRefused;
}

bool PictureEditor::LockHostBuffer(REALpicture pic) {
  if (!LockDescription(pic, kDescriptionHostBuffer)) return false;
  DescriptionLock lock(pic);
  IsConsole = 1;
  if (description.handle == nullptr || description.type != kDescriptionHostBuffer) return false;
  const auto& buffer = *static_cast<const REALhostBuffer*>(description.handle);
  if (buffer.kind != 0 || buffer.valid == 0 || buffer.rowTable == nullptr) return false;
  if (description.width < 1 || description.height < 1) return false;
  const std::size_t bufferWidth = static_cast<std::size_t>(description.width);
  const std::size_t bufferHeight = static_cast<std::size_t>(description.height);
  if (!IsAddressable(bufferWidth, bufferHeight, bufferWidth * kBytesPerPixel) ||
      !HasRows(buffer.rowTable, description.height)) {
    return false;
  }
  if (!Hold(pic)) return false;
  lock.Keep();
  pixelFormat = kFormatHostBuffer;
  rowBytes = description.width * kBytesPerPixel;
  width = description.width;
  height = description.height;
  rowTable = buffer.rowTable;
  base = rowTable[0];
  GoToRow(0);
  return true;
}

// Takes a reference to the locked picture. False on a host without the
// routine for that: a new picture would be gone while it is written, and the caller's would lose a
// reference that was never taken.
bool PictureEditor::Hold(REALpicture pic) {
  REALLockObject(pic);
  if (pLockObject == nullptr) return false;
  descriptionLocked = true;
  bytesPerPixel = kBytesPerPixel;
  picture = pic;
  return true;
}
