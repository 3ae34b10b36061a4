// The runtime's own operations, apart from what its entries do.
#include "host/runtime.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

Runtime* gCurrent = nullptr;

}  // namespace

Runtime::Runtime(RuntimeOptions options) : options_(options), reportedVersion_(options_.version) {
  if (gCurrent != nullptr) throw std::logic_error("there is a host runtime already");
  gCurrent = this;
}

Runtime::~Runtime() { gCurrent = nullptr; }

Runtime& Runtime::Current() {
  if (gCurrent == nullptr) throw std::logic_error("there is no host runtime");
  return *gCurrent;
}

Picture* Runtime::NewPicture(const PictureSpec& spec, const std::string& taker) {
  return ledger_.Add(std::make_unique<Picture>(spec), taker);
}

void Runtime::SetMask(Picture* picture, Picture* mask) {
  Picture* earlier = picture->Mask();
  if (mask != nullptr) ledger_.HandOver(mask, picture);
  picture->AttachMask(mask);
  if (earlier != nullptr) ledger_.UnlockOwned(earlier, picture);
}

void Runtime::Release(Object* object, const std::string& taker) { ledger_.Unlock(object, taker); }

PictureSpec Runtime::NewPictureSpec(int width, int height) const {
  const bool buffers =
      options_.kind == ApplicationKind::kConsole || options_.kind == ApplicationKind::kWeb;
  PictureSpec spec;
  spec.width = width;
  spec.height = height;
  spec.storage = buffers ? Storage::kHostBuffer : Storage::kBitmapContext;
  spec.pixelFormat = options_.newPixelFormat;
  spec.rowPadding = options_.newRowPadding;
  spec.guard = options_.newGuard;
  spec.fill = options_.newFill;
  return spec;
}

PictureSpec Runtime::NewAlphaPictureSpec(int width, int height) const {
  PictureSpec spec = NewPictureSpec(width, height);
  spec.hasAlphaChannel = true;
  spec.pixelFormat = options_.alphaPixelFormat;
  spec.fill = options_.newAlphaFill;
  return spec;
}

PictureSpec Runtime::NewMaskSpec(int width, int height) const {
  PictureSpec spec = NewPictureSpec(width, height);
  spec.fill = {0, 0, 0, 255};
  return spec;
}

std::string Runtime::Taker(const char* entry) const {
  const std::string call = std::string(entry) + ", call " + std::to_string(callNumber_);
  return methodStack_.empty() ? call : methodStack_.back() + ": " + call;
}

void Runtime::EnterMethod(const std::string& name) { methodStack_.push_back(name); }

void Runtime::LeaveMethod() { methodStack_.pop_back(); }

}  // namespace host
