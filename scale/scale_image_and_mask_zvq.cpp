// The method ScaleImageAndMaskZVQ. Not available yet: always nil.
#include "plugin/methods.h"

REALpictureStruct* ScaleImageAndMaskZVQ(REALpictureStruct* /*self*/, std::int32_t /*width*/,
                                        std::int32_t /*height*/, REALbooleanSlot /*AntiAlias*/,
                                        std::int32_t /*YieldTicks*/) {
  return nullptr;
}
