#include "tool/picture_files.h"

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tool/exit_status.h"
#include "tool/output_file.h"

namespace tool {
namespace {

constexpr int kJpegQuality = 95;  // of 100; full colour resolution

enum class Format { kPng, kJpeg };

Format FormatOf(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  if (ending == ".png") return Format::kPng;
  if (ending == ".jpg" || ending == ".jpeg") return Format::kJpeg;
  throw UsageError("cannot write '" + path + "': its name must end in .png, .jpg or .jpeg");
}

std::vector<unsigned char> ReadBytes(const std::string& path) {
  const std::string prefix = "cannot read '" + path + "': ";
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) throw UsageError(prefix + "it is a folder");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  if (!file) throw UsageError(prefix + std::strerror(errno));
  std::vector<unsigned char> bytes;
  unsigned char block[65536];
  while (const std::size_t count = std::fread(block, 1, sizeof block, file.get())) {
    if (bytes.size() + count > std::size_t(INT_MAX)) throw UsageError(prefix + "it is too large");
    bytes.insert(bytes.end(), block, block + count);
  }
  if (std::ferror(file.get()) != 0) throw UsageError(prefix + std::strerror(errno));
  return bytes;
}

// The samples in the order that the writers want: 3 per pixel, or 4 with alpha.
std::vector<unsigned char> Interleave(const Bitmap& picture, int samples) {
  std::vector<unsigned char> bytes;
  bytes.reserve(picture.pixels.size() * std::size_t(samples));
  for (const host::Rgba& pixel : picture.pixels) {
    bytes.insert(bytes.end(), {pixel.r, pixel.g, pixel.b});
    if (samples == 4) bytes.push_back(pixel.a);
  }
  return bytes;
}

Bitmap OnWhite(Bitmap picture) {
  for (host::Rgba& pixel : picture.pixels) {
    const auto blend = [&](int channel) {
      return std::uint8_t((channel * pixel.a + 255 * (255 - pixel.a) + 127) / 255);
    };
    pixel = {blend(pixel.r), blend(pixel.g), blend(pixel.b), 255};
  }
  picture.hasAlpha = false;
  return picture;
}

void Append(void* context, void* data, int size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  auto* out = static_cast<std::vector<unsigned char>*>(context);
  out->insert(out->end(), bytes, bytes + size);
}

std::vector<unsigned char> Encode(const Bitmap& picture, Format format) {
  const int samples = picture.hasAlpha ? 4 : 3;
  if (picture.pixels.empty()) throw Failure("the picture has no pixels");
  // The PNG writer counts in 32-bit integers, one filter byte before each row.
  if ((std::int64_t(picture.width) * samples + 1) * picture.height > INT_MAX) {
    throw Failure("the picture is too large for the writer");
  }
  const std::vector<unsigned char> pixels = Interleave(picture, samples);
  std::vector<unsigned char> file;
  const int written = format == Format::kPng
                          ? stbi_write_png_to_func(Append, &file, picture.width, picture.height,
                                                   samples, pixels.data(), picture.width * samples)
                          : stbi_write_jpg_to_func(Append, &file, picture.width, picture.height,
                                                   samples, pixels.data(), kJpegQuality);
  if (written == 0) throw Failure("the picture could not be encoded");
  return file;
}

}  // namespace

Bitmap LoadPicture(const std::string& path) {
  const std::vector<unsigned char> bytes = ReadBytes(path);
  int width = 0, height = 0, samples = 0;
  const std::unique_ptr<stbi_uc, void (*)(void*)> data(
      stbi_load_from_memory(bytes.data(), int(bytes.size()), &width, &height, &samples,
                            STBI_rgb_alpha),
      stbi_image_free);
  if (!data) {
    throw UsageError("'" + path + "' is not a PNG, JPEG or BMP picture that can be read (" +
                     stbi_failure_reason() + ")");
  }
  Bitmap picture(width, height, samples == 2 || samples == 4);
  const stbi_uc* source = data.get();
  for (host::Rgba& pixel : picture.pixels) {
    pixel = {source[0], source[1], source[2], source[3]};
    source += 4;
  }
  return picture;
}

void CheckOutput(const std::string& path) {
  FormatOf(path);
  OutputFile(path).Check();
}

std::vector<unsigned char> EncodePng(const Bitmap& picture) {
  return Encode(picture, Format::kPng);
}

void SavePicture(const Bitmap& picture, const std::string& path) {
  const Format format = FormatOf(path);
  const Bitmap flat = format == Format::kJpeg && picture.hasAlpha ? OnWhite(picture) : Bitmap();
  std::vector<unsigned char> file;
  try {
    file = Encode(flat.pixels.empty() ? picture : flat, format);
  } catch (const Failure& failure) {
    throw Failure("cannot write '" + path + "': " + failure.what());
  }
  OutputFile(path).Write(file);
}

}  // namespace tool
