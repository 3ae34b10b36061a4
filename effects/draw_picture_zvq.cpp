// The method DrawPictureFZVQ. Not available yet: always false.
#include "plugin/methods.h"

bool DrawPictureFZVQ(REALpictureStruct* /*self*/, REALpictureStruct* /*pic*/, double /*x*/,
                     double /*y*/, double /*alpha*/, std::int32_t /*yield*/) {
  return false;
}
