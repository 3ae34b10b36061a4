// The method ScalingZVQ. Not available yet: always nil.
#include "plugin/methods.h"

REALpictureStruct* ScalingZVQ(REALpictureStruct* /*self*/, std::int32_t /*mode*/,
                              std::int32_t /*width*/, std::int32_t /*height*/,
                              std::int32_t /*yield*/) {
  return nullptr;
}
