// Registration hands memory over for good, and leaves behind what it made when it fails half-way.
#pragma once

#include "tests/support/sanitizers.h"

#if defined(VARNELL_ADDRESS_SANITIZER)
#include <sanitizer/lsan_interface.h>
#endif

namespace plugin_test {

// What is allocated while it lives is not reported as leaked.
class DeliberateLeftovers {
 public:
  // NOLINTNEXTLINE(modernize-use-equals-default): with the sanitizer it is none.
  DeliberateLeftovers() {
#if defined(VARNELL_ADDRESS_SANITIZER)
    __lsan_disable();
#endif
  }
  // NOLINTNEXTLINE(modernize-use-equals-default): with the sanitizer it is none.
  ~DeliberateLeftovers() {
#if defined(VARNELL_ADDRESS_SANITIZER)
    __lsan_enable();
#endif
  }
  DeliberateLeftovers(const DeliberateLeftovers&) = delete;
  DeliberateLeftovers& operator=(const DeliberateLeftovers&) = delete;
};

}  // namespace plugin_test
