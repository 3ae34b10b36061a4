// The method DrawPictureFZVQ.
#include "effects/draw_picture.h"
#include "plugin/methods.h"

bool DrawPictureFZVQ(REALpictureStruct* self, REALpictureStruct* pic, double x, double y,
                     double alpha, std::int32_t yieldPeriod) {
  return DrawPictureF(self, pic, x, y, alpha, yieldPeriod);
}
