// The method BlurZVQ. Not available yet: always nil.
#include "plugin/methods.h"

REALpictureStruct* BlurZVQ(REALpictureStruct* /*self*/, double /*Radius*/, std::int32_t /*yield*/) {
  return nullptr;
}
