// Picture files: PNG, JPEG and BMP in, PNG and JPEG out.
#pragma once

#include <string>
#include <vector>

#include "tool/bitmap.h"

namespace tool {

// Reads a picture as it is stored: orientation tags and colour profiles are not applied, 16-bit
// samples are cut to 8. It has an alpha channel when the file stores one (or a transparent
// colour), however its values turn out. Throws UsageError with one line that names the file.
Bitmap LoadPicture(const std::string& path);

// Throws UsageError when the ending of `path` is not one that SavePicture writes, and Failure when
// it is already clear that no file can be written there.
void CheckOutput(const std::string& path);

// The bytes of a PNG file, with alpha where the picture has it. Throws Failure with the reason
// alone when the picture has no pixels or is too large for the writer.
std::vector<unsigned char> EncodePng(const Bitmap& picture);

// Writes .png, .jpg or .jpeg (any case). JPEG has no transparency: such pictures are laid on white.
// The file appears whole or not at all; what was there before stays until then. Throws Failure.
void SavePicture(const Bitmap& picture, const std::string& path);

}  // namespace tool
