// A host picture: pixels in a bitmap context or in a host buffer, an optional alpha channel, an
// optional mask. The host's own reading and writing goes through 8-bit RGBA, whatever the storage.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "host/object.h"
#include "host/pixel_memory.h"
#include "host/pixel_word.h"
#include "platform/linux/bitmap_context.h"
#include "plugin/host_interface.h"

namespace host {

enum class Storage { kBitmapContext, kHostBuffer };

struct PictureSpec {
  int width = 1;
  int height = 1;
  Storage storage = Storage::kBitmapContext;
  // Bitmap context: the alpha info 0..7 (1..6 have pixels). A host buffer always has format 8.
  int pixelFormat = 6;
  int bitsPerPixel = 32;  // what the context says; the memory always has 32
  int rowPadding = 0;     // bytes behind each row, for bitmap contexts
  bool hasAlphaChannel = false;
  Guard guard = Guard::kNone;  // of the whole memory (bitmap context) or of each row (host buffer)
  Rgba fill = {255, 255, 255, 255};  // every pixel at the start
};

class Picture : public Object {
 public:
  // Host buffers: rows lie in one block each, in shuffled order, with gaps. A width or height of 0
  // makes a picture without pixels, whose locks fail. Throws std::bad_alloc for pixels that cannot
  // be had (kMostPixelBytes and more never can) and std::invalid_argument for a negative size.
  explicit Picture(const PictureSpec& spec);
  ~Picture() override;

  // Gives a picture without pixels the size and pixels of `spec`; throws as the constructor does
  // and then leaves it as it was.
  void Construct(const PictureSpec& spec);

  int Width() const { return spec_.width; }
  int Height() const { return spec_.height; }
  bool HasPixels() const { return !rows_.empty(); }
  Storage GetStorage() const { return spec_.storage; }
  int PixelFormat() const;  // 0..7, or 8 for a host buffer
  bool HasAlphaChannel() const { return spec_.hasAlphaChannel; }
  const PictureSpec& Spec() const { return spec_; }

  // The address of a row's first pixel; the 32-bit word of a pixel as it is stored. Outside the
  // picture, and once it is dead, these and Get and Set throw std::out_of_range.
  unsigned char* Row(int y) const;
  std::uint32_t Word(int x, int y) const;
  void SetWord(int x, int y, std::uint32_t word);

  // Straight (not premultiplied) colour. Formats 1 and 2 divide when read and multiply when
  // written, both rounded to nearest; formats 5, 6, 0 and 7 and opaque pictures read alpha as 255.
  // A host buffer holds straight alpha when the picture has an alpha channel. What is written to an
  // unused byte: 255 in formats 5 and 6, 0 in format 8.
  Rgba Get(int x, int y) const;
  void Set(int x, int y, Rgba colour);

  // Bytes between the rows (padding and gaps) that no longer hold what they held at the start.
  std::size_t DamagedPadding() const;

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

  // Fills `description` for one more lock of `type`; false when that type does not fit or there are
  // no pixels. Every word the host owns is filled with noise; the own-buffer word is null. The
  // context and the buffer record live as long as the picture and are filled anew by every lock.
  bool Describe(std::int32_t type, REALpictureDescription& description);

  int CacheClears() const { return cacheClears_; }
  void ClearCache() { ++cacheClears_; }

  bool GetInteger(const std::string& property, int& value) const override;   // "Width", "Height"
  bool GetBoolean(const std::string& property, bool& value) const override;  // "HasAlphaChannel"
  void OnDeath(Ledger& ledger) override;

  static constexpr std::uint64_t kMostPixelBytes = std::uint64_t{1} << 30;

 private:
  void Allocate(const PictureSpec& spec);
  void DescribeContext(REALpictureDescription& description);
  void DescribeBuffer(REALpictureDescription& description);

  PictureSpec spec_;
  std::vector<PixelMemory> memory_;   // one block, or one per row
  std::vector<unsigned char*> rows_;  // empty without pixels
  std::size_t padding_ = 0;           // bytes behind each row that belong to no pixel
  CGContext context_;                 // as the last lock handed it out
  PixelMemory buffer_;                // a REALhostBuffer, as the last lock handed it out
  PixelMemory rowTable_;
  Picture* mask_ = nullptr;
  int cacheClears_ = 0;
};

}  // namespace host
