// Entries that make, lock and mask pictures and give graphics objects for them.
#include <cstring>
#include <memory>
#include <new>

#include "host/entry_tables.h"
#include "host/graphics.h"
#include "host/noise.h"

namespace host {

namespace {

using Kind = EntryScope::Kind;

// Hosts below this version leave a half-made lock behind when a description cannot be locked.
constexpr double kFirstVersionWithCleanLocks = 2012.0;
constexpr std::int32_t kOnlyDepth = 32;

// Null when the pixels cannot be had.
Picture* Make(EntryScope& call, const PictureSpec& spec) {
  if (spec.width < 1 || spec.height < 1) return nullptr;
  try {
    return call.Book().Add(std::make_unique<Picture>(spec), call.Taker());
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

REALpicture NewPicture(std::int32_t width, std::int32_t height, std::int32_t depth) {
  EntryScope call("newPicture", Kind::kHasResult,
                  Listed("newPicture", {Shown(width), Shown(height), Shown(depth)}));
  if (call.Failed() || width < 1 || height < 1 || depth != kOnlyDepth) {
    return call.AnswerObject<REALpicture>(nullptr);
  }
  PictureSpec spec = call.Host().NewPictureSpec(width, height);
  if (call.Host().adjustNewPicture) call.Host().adjustNewPicture(spec);
  return call.AnswerObject<REALpicture>(Make(call, spec));
}

// A failed lock leaves noise in the record, but never the address of an own buffer.
std::uint8_t FailLock(EntryScope& call, Object* picture, REALpictureDescription* description) {
  if (description != nullptr) {
    std::memset(description, kNoiseByte, sizeof *description);
    description->ownBuffer = nullptr;
  }
  if (picture != nullptr && call.Host().ReportedVersion() < kFirstVersionWithCleanLocks) {
    call.Book().LeaveHalfMadeLock(picture, call.Taker());
  }
  return call.Answer(false);
}

std::uint8_t LockPictureDescription(REALpicture picture, REALpictureDescription* description,
                                    std::int32_t type) {
  EntryScope call("REALLockPictureDescription", Kind::kHasResult,
                  Listed("REALLockPictureDescription", {Shown(picture), Shown(type)}));
  auto* found = call.Find<Picture>(picture);
  if (description == nullptr) call.AddViolation("there is no record to fill.");
  if (found == nullptr || description == nullptr || call.Failed() ||
      !found->Describe(type, *description)) {
    return FailLock(call, found, description);
  }
  call.Book().LockDescription(found, call.Taker());
  return call.Answer(true);
}

void UnlockPictureDescription(REALpicture picture) {
  EntryScope call("unlockPictureDescription", Kind::kNoResult,
                  Listed("unlockPictureDescription", {Shown(picture)}));
  if (call.Failed()) return;
  if (auto* found = call.Find<Picture>(picture)) {
    call.Book().UnlockDescription(found, call.Taker(), false);
  }
}

REALgraphics PictureGraphicsGetter(REALpicture picture) {
  EntryScope call("pluginPictureGraphicsGetter", Kind::kHasResult,
                  Listed("pluginPictureGraphicsGetter", {Shown(picture)}));
  if (call.Failed()) return nullptr;
  auto* found = call.Find<Picture>(picture);
  if (found == nullptr) return nullptr;
  return call.AnswerObject<REALgraphics>(
      call.Book().Add(std::make_unique<Graphics>(found), call.Taker()));
}

REALpicture GetPictureMask(REALpicture picture, std::int32_t create) {
  EntryScope call("REALGetPictureMask", Kind::kHasResult,
                  Listed("REALGetPictureMask", {Shown(picture), Shown(create)}));
  if (call.Failed()) return nullptr;
  auto* found = call.Find<Picture>(picture);
  if (found == nullptr) return nullptr;
  if (found->Mask() == nullptr && create != 0) {
    const PictureSpec spec = call.Host().NewMaskSpec(found->Width(), found->Height());
    if (Picture* made = Make(call, spec)) call.Host().SetMask(found, made);
  }
  if (found->Mask() != nullptr) call.Book().Lock(found->Mask(), call.Taker());
  return call.AnswerObject<REALpicture>(found->Mask());
}

void PictureClearCache(REALpicture picture) {
  EntryScope call("REALPictureClearCache", Kind::kNoResult,
                  Listed("REALPictureClearCache", {Shown(picture)}));
  if (call.Failed()) return;
  if (auto* found = call.Find<Picture>(picture)) found->ClearCache();
}

// A new opaque picture whose words are those of the buffer.
REALpicture BuildPictureFromBuffer(std::int32_t width, std::int32_t height, std::int32_t one,
                                   void* buffer, std::int32_t rowBytes) {
  EntryScope call("REALBuildPictureFromBuffer", Kind::kHasResult,
                  Listed("REALBuildPictureFromBuffer",
                         {Shown(width), Shown(height), Shown(one),
                          buffer == nullptr ? "nil" : "buffer", Shown(rowBytes)}));
  if (call.Failed()) return nullptr;
  const bool usable =
      one == 1 && buffer != nullptr && width >= 1 && height >= 1 && rowBytes / 4 >= width;
  if (!usable) {
    call.AddViolation("it was given a buffer that it cannot read.");
    return nullptr;
  }
  Picture* made = Make(call, call.Host().NewPictureSpec(width, height));
  const auto* row = static_cast<const unsigned char*>(buffer);
  for (int y = 0; made != nullptr && y < height; ++y, row += rowBytes) {
    std::memcpy(made->Row(y), row, static_cast<std::size_t>(width) * 4);
  }
  return call.AnswerObject<REALpicture>(made);
}

const EntryRow kRows[] = {
    {"newPicture", RoutineOf<NewPictureEntry>(NewPicture)},
    {"REALLockPictureDescription",
     RoutineOf<REALLockPictureDescriptionEntry>(LockPictureDescription)},
    {"unlockPictureDescription",
     RoutineOf<UnlockPictureDescriptionEntry>(UnlockPictureDescription)},
    {"pluginPictureGraphicsGetter",
     RoutineOf<PluginPictureGraphicsGetterEntry>(PictureGraphicsGetter)},
    {"REALGetPictureMask", RoutineOf<REALGetPictureMaskEntry>(GetPictureMask)},
    {"REALPictureClearCache", RoutineOf<REALPictureClearCacheEntry>(PictureClearCache)},
    {"REALBuildPictureFromBuffer",
     RoutineOf<REALBuildPictureFromBufferEntry>(BuildPictureFromBuffer)},
};

}  // namespace

std::span<const EntryRow> PictureEntries() { return kRows; }

}  // namespace host
