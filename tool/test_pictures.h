// The project's own test pictures. They are computed with additions, multiplications, divisions and
// square roots only, so that every machine draws the same bytes.
#pragma once

#include <vector>

#include "tool/bitmap.h"

namespace tool {

struct TestPicture {
  const char* name;
  const char* description;
  Bitmap (*draw)();
};

const std::vector<TestPicture>& TestPictures();

Bitmap DrawScene();  // 640x480, opaque: a landscape with fine detail and a test chart
Bitmap DrawRings();  // 256x256, opaque: a zone plate, rings that grow finer outwards to 2 pixels
Bitmap DrawStamp();  // 64x64, with an alpha channel: a star with a soft edge and a shadow

}  // namespace tool
