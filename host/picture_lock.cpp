// What a lock of a picture's description hands out.
#include <cstring>
#include <iterator>
#include <new>

#include "host/noise.h"
#include "host/picture.h"

namespace host {

namespace {

// Everything but the own-buffer word, which says that there is none.
void FillWithNoise(REALpictureDescription& description) {
  for (std::size_t i = 0; i < std::size(description.hostWords); ++i) {
    description.hostWords[i] = NoiseWord(i);
  }
  for (std::size_t i = 0; i < std::size(description.moreHostWords); ++i) {
    description.moreHostWords[i] = NoiseWord(100 + i);
  }
  description.ownBuffer = nullptr;
}

}  // namespace

bool Picture::Describe(std::int32_t type, REALpictureDescription& description) {
  const bool isBuffer = spec_.storage == Storage::kHostBuffer;
  if (refuseLocks || !HasPixels()) return false;
  if (type != (isBuffer ? kDescriptionHostBuffer : kDescriptionBitmapContext)) return false;
  FillWithNoise(description);
  description.type = type;
  description.width = spec_.width;
  description.height = spec_.height;
  if (isBuffer) {
    DescribeBuffer(description);
  } else {
    DescribeContext(description);
  }
  return true;
}

void Picture::DescribeContext(REALpictureDescription& description) {
  context_.data = rows_[0];
  context_.width = static_cast<std::size_t>(spec_.width);
  context_.height = static_cast<std::size_t>(spec_.height);
  context_.bytesPerRow = context_.width * 4 + padding_;
  context_.bitsPerPixel = static_cast<std::size_t>(spec_.bitsPerPixel);
  context_.alphaInfo =
      static_cast<std::uint32_t>(WithNoiseAbove(static_cast<std::uintptr_t>(spec_.pixelFormat), 3));
  description.handle = &context_;
  if (!distort) return;
  REALhostBuffer unused{};
  distort({description, context_, unused});
}

void Picture::DescribeBuffer(REALpictureDescription& description) {
  auto* buffer = std::launder(reinterpret_cast<REALhostBuffer*>(buffer_.Data()));
  buffer->kind = 0;
  buffer->width = static_cast<std::uintptr_t>(spec_.width);
  buffer->height = static_cast<std::uintptr_t>(spec_.height);
  for (std::size_t i = 0; i < std::size(buffer->hostWords); ++i) {
    buffer->hostWords[i] = NoiseWord(i);
  }
  buffer->valid = NoiseWord(std::size(buffer->hostWords));
  std::memcpy(rowTable_.Data(), rows_.data(), rowTable_.Size());
  buffer->rowTable = std::launder(reinterpret_cast<unsigned char**>(rowTable_.Data()));
  description.handle = buffer;
  if (!distort) return;
  CGContext unused;
  distort({description, unused, *buffer});
}

}  // namespace host
