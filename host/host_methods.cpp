// The host methods that are found by declaration: they belong to pictures and graphics objects and
// take the object they are called on as first argument.
#include <memory>
#include <new>

#include "host/entry_tables.h"
#include "host/graphics.h"

namespace host {

namespace {

using Kind = EntryScope::Kind;

std::string OnObject(const void* self, const char* method,
                     std::initializer_list<std::string> arguments) {
  return Listed(ShownHandle(self) + "." + method, arguments);
}

void DrawPicture(REALgraphics self, REALpicture image, std::int32_t x, std::int32_t y,
                 std::int32_t w, std::int32_t h, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                 std::int32_t sh) {
  EntryScope call("DrawPicture", Kind::kNoResult,
                  OnObject(self, "DrawPicture",
                           {Shown(image), Shown(x), Shown(y), Shown(w), Shown(h), Shown(sx),
                            Shown(sy), Shown(sw), Shown(sh)}));
  if (call.Failed()) return;
  auto* graphics = call.Find<Graphics>(self);
  auto* source = call.Find<Picture>(image);
  if (graphics == nullptr || source == nullptr) return;
  if (!graphics->Target()->Alive()) {
    call.AddViolation(graphics->Target()->Name() + ", which it draws into, is gone.");
    return;
  }
  call.Host().Draw(graphics->Target(), source, x, y, w, h, sx, sy, sw, sh);
}

// Deliberate: a size that the host cannot make leaves the picture without pixels; nothing is
// raised.
void Constructor(REALpicture self, std::int32_t width, std::int32_t height) {
  EntryScope call("Constructor", Kind::kNoResult,
                  OnObject(self, "Constructor", {Shown(width), Shown(height)}));
  if (call.Failed()) return;
  auto* picture = call.Find<Picture>(self);
  if (picture == nullptr) return;
  if (picture->HasPixels()) {
    call.AddViolation(picture->Name() + " has been constructed before.");
    return;
  }
  if (width < 1 || height < 1) return;
  PictureSpec spec = call.Host().NewAlphaPictureSpec(width, height);
  if (call.Host().adjustNewPicture) call.Host().adjustNewPicture(spec);
  try {
    picture->Construct(spec);
  } catch (const std::bad_alloc&) {
    return;
  }
}

// The alpha channel as a picture: black where the picture is opaque, white where it is transparent.
// Without an alpha channel, a copy of the mask. Nil without either.
REALpicture CopyMask(REALpicture self) {
  EntryScope call("CopyMask", Kind::kHasResult, OnObject(self, "CopyMask", {}));
  if (call.Failed()) return nullptr;
  auto* picture = call.Find<Picture>(self);
  if (picture == nullptr) return nullptr;
  const Picture* from = picture->HasAlphaChannel() ? picture : picture->Mask();
  if (from == nullptr || !from->HasPixels()) return nullptr;
  std::unique_ptr<Picture> copy;
  try {
    copy = std::make_unique<Picture>(call.Host().NewMaskSpec(from->Width(), from->Height()));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  for (int y = 0; y < from->Height(); ++y) {
    for (int x = 0; x < from->Width(); ++x) {
      const Rgba pixel = from->Get(x, y);
      const auto level = static_cast<std::uint8_t>(255 - pixel.a);
      copy->Set(x, y, picture->HasAlphaChannel() ? Rgba{level, level, level, 255} : pixel);
    }
  }
  return call.AnswerObject<REALpicture>(call.Book().Add(std::move(copy), call.Taker()));
}

void AssignMask(REALpicture self, REALpicture mask) {
  EntryScope call("Mask", Kind::kNoResult, OnObject(self, "Mask", {Shown(mask)}));
  if (call.Failed()) return;
  auto* picture = call.Find<Picture>(self);
  auto* newMask = mask == nullptr ? nullptr : call.Find<Picture>(mask);
  if (picture == nullptr || (mask != nullptr && newMask == nullptr)) return;
  if (newMask == picture) {
    call.AddViolation(picture->Name() + " cannot be its own mask.");
    return;
  }
  if (newMask != nullptr) call.Book().Lock(newMask, call.Taker());
  call.Host().SetMask(picture, newMask);
}

struct Row {
  const char* className;
  const char* declaration;
  REALroutine routine;
};

const Row kRows[] = {
    {"Graphics", kDrawPictureDeclaration, RoutineOf<DrawPictureMethod>(DrawPicture)},
    {"Picture", kConstructorDeclaration, RoutineOf<ConstructorMethod>(Constructor)},
    {"Picture", kCopyMaskDeclaration, RoutineOf<CopyMaskMethod>(CopyMask)},
    {"Picture", kAssignMaskDeclaration, RoutineOf<AssignMaskMethod>(AssignMask)},
};

}  // namespace

REALroutine HostMethod(const Object& object, const std::string& declaration) {
  for (const Row& row : kRows) {
    if (object.ClassName() == row.className && declaration == row.declaration) return row.routine;
  }
  return nullptr;
}

}  // namespace host
