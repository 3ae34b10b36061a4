// A host picture: pixels in a bitmap context or in a host buffer, an optional alpha channel, an
// optional mask. The host's own reading and writing goes through 8-bit RGBA, whatever the storage.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "host/object.h"
#include "host/pixel_memory.h"
#include "platform/linux/bitmap_context.h"
#include "plugin/host_interface.h"

namespace host {

struct Rgba {
  std::uint8_t r = 0, g = 0, b = 0, a = 255;
  friend bool operator==(const Rgba&, const Rgba&) = default;
};

enum class Storage { kBitmapContext, kHostBuffer };

struct PictureSpec {
  int width = 1;
  int height = 1;
  Storage storage = Storage::kBitmapContext;
  // Bitmap context: the alpha info 0..7 (1..6 have pixels). A host buffer always has format 8.
  int pixelFormat = 6;
  int bitsPerPixel = 32;
  int rowPadding = 0;  // bytes behind each row, for bitmap contexts
  bool hasAlphaChannel = false;
  Guard guard = Guard::kNone;  // of the whole memory (bitmap context) or of each row (host buffer)
  Rgba fill = {255, 255, 255, 255};  // every pixel at the start
};

class Picture : public Object {
 public:
  // Host buffers: rows lie in one block each, in shuffled order, with gaps.
  explicit Picture(const PictureSpec& spec);
  ~Picture() override;

  int Width() const { return spec_.width; }
  int Height() const { return spec_.height; }
  Storage GetStorage() const { return spec_.storage; }
  int PixelFormat() const;  // 0..7, or 8 for a host buffer
  bool HasAlphaChannel() const { return spec_.hasAlphaChannel; }
  const PictureSpec& Spec() const { return spec_; }

  // The address of a row's first pixel; the 32-bit word of a pixel as it is stored.
  unsigned char* Row(int y) const;
  std::uint32_t Word(int x, int y) const;
  void SetWord(int x, int y, std::uint32_t word);

  // Straight (not premultiplied) colour. Formats 1 and 2 divide when read and multiply when
  // written, both rounded to nearest; formats 5, 6, 0 and 7 and opaque pictures read alpha as 255.
  // A host buffer holds straight alpha when the picture has an alpha channel. What is written to an
  // unused byte: 255 in formats 5 and 6, 0 in format 8.
  Rgba Get(int x, int y) const;
  void Set(int x, int y, Rgba colour);

  // The mask, owned by the picture (one reference), or null. Black is opaque, white transparent.
  Picture* Mask() const { return mask_; }
  void AttachMask(Picture* mask) { mask_ = mask; }

  // What a lock hands out instead of the truth, for tests of hostile hosts. Called on the filled
  // record (and context or buffer copy) of every successful lock.
  struct LockedView {
    REALpictureDescription& description;
    CGContext& context;      // type 8
    REALhostBuffer& buffer;  // type 10
  };
  std::function<void(LockedView)> distort;

  // Which lock types succeed; by default the one that fits the storage.
  bool refuseLocks = false;

  // Fills `description` for one more lock of `type`; false when that type does not fit. Every word
  // the host owns is filled with noise. The context and the buffer record live as long as the
  // picture.
  bool Describe(std::int32_t type, REALpictureDescription& description);

  int CacheClears() const { return cacheClears_; }
  void ClearCache() { ++cacheClears_; }

  bool GetInteger(const std::string& property, int& value) const override;   // "Width", "Height"
  bool GetBoolean(const std::string& property, bool& value) const override;  // "HasAlphaChannel"
  void OnDeath() override;

 private:
  friend class Runtime;
  void Allocate();  // spec_ -> memory, rows, context, buffer

  PictureSpec spec_;
  std::vector<PixelMemory> memory_;  // one block, or one per row
  std::vector<unsigned char*> rows_;
  CGContext context_;
  std::unique_ptr<REALhostBuffer> buffer_;
  Picture* mask_ = nullptr;
  int cacheClears_ = 0;
};

}  // namespace host
