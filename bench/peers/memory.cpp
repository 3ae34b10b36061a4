// The least that any implementation must do: read once what it reads, and write once what it
// writes.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>

#include "bench/peers/peer.h"

namespace bench {

namespace {

std::uint32_t gSum = 0;  // so that nothing is read in vain

void Read(std::span<const std::uint32_t> words) {
  std::uint32_t sum = 0;
  for (const std::uint32_t word : words) sum += word;
  gSum += sum;
}

void Write(std::span<std::uint32_t> words) {
  std::memset(words.data(), static_cast<int>(gSum & 1), words.size_bytes());
}

Act Copy(const Work& work, Scene& scene) {
  const int pictures = work.kind == Kind::kBoth ? 2 : 1;
  return [&scene, pictures] {
    for (int i = 0; i < pictures; ++i) {
      Read(scene.source);
      Write(scene.result);
    }
  };
}

// The picture, and its mask where there is one, are read; of the result, the part that is drawn
// into is read and written.
Act Draw(const Work& work, Scene& scene) {
  return [&scene, work] {
    Read(scene.source);
    if (work.kind == Kind::kDrawMasked) Read(scene.source);
    const auto width = static_cast<std::size_t>(std::min(work.sourceWidth + 1, work.width));
    for (int y = 0; y < std::min(work.sourceHeight + 1, work.height); ++y) {
      const std::size_t start = static_cast<std::size_t>(y) * static_cast<std::size_t>(work.width);
      const std::span<std::uint32_t> row(&scene.result[start], width);
      Read(row);
      Write(row);
    }
  };
}

const bool kRegistered = Register({{"memory", [](const Work& work, Scene& scene) {
                                      return work.Draws() ? Draw(work, scene) : Copy(work, scene);
                                    }}});

}  // namespace

}  // namespace bench
