// The only way to a host picture's pixels: locks a picture, tells where its pixels lie and in which
// format, and holds picture and lock until it is released.
//
// An editor is a local object of the operation that uses it. It owns one reference to the picture
// it holds and the lock of that picture's description; both end with it, also when an exception
// passes. For the host's thread only. A host routine that throws while an editor is released ends
// the process.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/pixel_format.h"
#include "pixels/unlock_pixels.h"
#include "plugin/host_interface.h"

class PictureEditor {
 public:
  PictureEditor() = default;
  virtual ~PictureEditor();
  PictureEditor(const PictureEditor&) = delete;
  PictureEditor& operator=(const PictureEditor&) = delete;

  // Releases what the editor held and locks `pic`: as a bitmap context, or else as a host buffer. 1
  // on success; 0 on failure, which leaves the editor released. A host that cannot count references
  // gets no lock. Never raises.
  //
  // mayCopy: an opaque picture that cannot be locked on a desktop host is read through a private
  // copy; never done when `writable`. writable: pixels will be changed, so the host's cached
  // rendering is dropped on release. Deliberate: a bitmap context whose alpha info is refused stays
  // locked.
  signed char GetPictureEditor(REALpictureStruct* pic, signed char mayCopy, signed char writable);

  // Hands the written picture to the caller, with one reference, and releases the editor. Null when
  // the editor holds nothing and has no buffer of its own. Deliberate: the picture's cache is
  // cleared here and once more by the release.
  REALpictureStruct* RenderPictureWriter();

  // Gives up what the editor holds: pixel map, description lock, cached rendering, reference.
  // Nothing is left for the destructor then. A host routine that throws meanwhile ends the process.
  void Release() noexcept;

  // The address of a row's first pixel. Deliberate: rows from `height` on are row 0.
  unsigned char* RowAddress(std::int32_t row) const {
    if (row >= height) return base;
    if (pixelFormat == kFormatHostBuffer) return rowTable[row];
    return base + static_cast<std::size_t>(row) * static_cast<std::size_t>(rowBytes);
  }

  void GoToRow(std::int32_t row) {
    x = 0;
    y = row;
    cursor = reinterpret_cast<std::uint32_t*>(RowAddress(row));
  }

  PixelLayout Layout() const { return LayoutOf(pixelFormat); }

  std::int32_t rowBytes = 0;        // from one row to the next
  std::int32_t width = 0;           // pixels
  std::int32_t height = 0;          // pixels
  std::int32_t bytesPerPixel = 0;   // always 4 once locked
  std::int32_t status = 0;          // 0 whenever locked or released
  std::int32_t pixelFormat = 0;     // 1..6 or 8
  std::uint32_t* cursor = nullptr;  // the pixel that the next read or write touches
  REALpictureDescription description = {};
  unsigned char* base = nullptr;  // first pixel of row 0
  std::int32_t x = 0;
  std::int32_t y = 0;
  REALpictureStruct* picture = nullptr;  // held with one reference, or null
  PixMap** pixMap = nullptr;             // released with UnlockPixels when set
  unsigned char** rowTable = nullptr;    // host buffers only: address of each row
  bool hasAlpha = false;                 // the picture has an alpha channel
  bool alphaLocked = false;              // locked as a picture with an alpha channel
  bool mayCopy = false;
  bool writable = false;
  bool descriptionLocked = false;
  std::int32_t spare = 0;

 private:
  enum class Outcome { kLocked, kNotLocked, kRefused };

  bool Lock(REALpicture pic, bool mayCopyPicture, bool writablePicture, int copiesMade);
  bool LockDescription(REALpicture pic, std::int32_t type);
  Outcome LockBitmapContext(REALpicture pic);
  Outcome LockPrivateCopy(REALpicture pic, int copiesMade);
  bool LockHostBuffer(REALpicture pic);
  bool Hold(REALpicture pic);
};

// Reads a source picture.
class PictureReader : public PictureEditor {
 public:
  ~PictureReader() override;
};

// Fills a new picture.
class PictureWriter : public PictureEditor {
 public:
  ~PictureWriter() override;

  // On a fresh writer: makes a picture of width × height pixels, with an alpha channel exactly when
  // the reader's picture has one, and locks it. False for sizes below 1, above 32767 for opaque
  // pictures, on hosts below 2011.04 for pictures with an alpha channel, and when the host makes
  // none, none that can be locked, or a narrower one. Deliberate: pictures with an alpha channel
  // have no upper limit of size.
  bool NewPictureWriter(PictureReader& reader, int width, int height);

  // The same, always opaque.
  bool NewOpaqueWriter(int width, int height);

 private:
  // Locks a picture just made, taking over its reference; null fails.
  bool LockNew(REALpicture made, int width);
};
