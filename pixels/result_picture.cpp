// Makes result pictures and hands them back to the host.
#include "pixels/picture_editor.h"
#include "plugin/held_object.h"
#include "plugin/host_state.h"

namespace {

constexpr int kLargestOpaqueSide = 32767;

// A new picture with an alpha channel, with one reference for the caller; null when the host makes
// none.
REALpicture NewAlphaPicture(int width, int height) {
  if (width < 1 || height < 1 || rbversion_rbversion < 2011.04) return nullptr;
  auto* picture = static_cast<REALpicture>(REALnewInstance("Picture"));
  if (picture == nullptr) return nullptr;
  HeldObject held(picture);
  REALroutine constructor = REALLoadObjectMethod(picture, kConstructorDeclaration);
  if (constructor == nullptr) return nullptr;
  reinterpret_cast<ConstructorMethod*>(constructor)(picture, width, height);
  held.Keep();
  return picture;
}

REALpicture NewOpaquePicture(int width, int height) {
  if (width < 1 || width > kLargestOpaqueSide || height < 1 || height > kLargestOpaqueSide) {
    return nullptr;
  }
  return REALNewPicture(width, height, 32);
}

}  // namespace

bool PictureWriter::NewPictureWriter(PictureReader& reader, int newWidth, int newHeight) {
  if (!reader.hasAlpha) return NewOpaqueWriter(newWidth, newHeight);
  return LockNew(NewAlphaPicture(newWidth, newHeight), newWidth);
}

bool PictureWriter::NewOpaqueWriter(int newWidth, int newHeight) {
  return LockNew(NewOpaquePicture(newWidth, newHeight), newWidth);
}

bool PictureWriter::LockNew(REALpicture made, int newWidth) {
  const HeldObject held(made);
  return made != nullptr && GetPictureEditor(made, 0, 1) != 0 && width >= newWidth;
}

REALpictureStruct* PictureEditor::RenderPictureWriter() {
  REALpicture result = nullptr;
  if (picture != nullptr) {
    REALLockObject(picture);
    HeldObject held(picture);
    REALPictureClearCache(picture);
    held.Keep();
    result = picture;
  } else if (description.ownBuffer != nullptr) {
    result = REALBuildPictureFromBuffer(width, height, 1, description.ownBuffer, rowBytes);
  }
  Release();
  return result;
}
