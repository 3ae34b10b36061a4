// What draws into a picture. It holds no reference to the picture.
#pragma once

#include "host/picture.h"

namespace host {

class Graphics : public Object {
 public:
  explicit Graphics(Picture* target) : Object("Graphics"), target_(target) {}
  Picture* Target() const { return target_; }

 private:
  Picture* target_;
};

}  // namespace host
