// Whether the program is built with the address sanitizer: GCC and clang say it differently.
#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VARNELL_ADDRESS_SANITIZER 1
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VARNELL_ADDRESS_SANITIZER 1
#endif
