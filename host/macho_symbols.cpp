#include "host/macho_symbols.h"

#include <dlfcn.h>
#include <sys/auxv.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace host {

namespace {

// The same functions by their names here. A size is an unsigned long there, an unsigned int here.
struct Alias {
  const char* there;
  const char* here;
};
constexpr Alias kAliases[] = {
    {"_Znwm", "_Znwj"},
    {"_Znam", "_Znaj"},
    {"_ZnwmRKSt9nothrow_t", "_ZnwjRKSt9nothrow_t"},
    {"_ZnamRKSt9nothrow_t", "_ZnajRKSt9nothrow_t"},
    {"_ZnwmSt11align_val_t", "_ZnwjSt11align_val_t"},
    {"_ZnamSt11align_val_t", "_ZnajSt11align_val_t"},
    {"_ZdlPvm", "_ZdlPvj"},
    {"_ZdaPvm", "_ZdaPvj"},
    {"_ZdlPvmSt11align_val_t", "_ZdlPvjSt11align_val_t"},
    {"_ZdaPvmSt11align_val_t", "_ZdaPvjSt11align_val_t"},
    {"__bzero", "bzero"},
    {"__exp10", "exp10"},
    {"__exp10f", "exp10f"},
};

// Fill `bytes` bytes with a pattern of kBytes bytes, the last time perhaps with its beginning only.
template <std::size_t kBytes>
void FillWithPattern(void* to, const void* pattern, std::size_t bytes) {
  auto* at = static_cast<unsigned char*>(to);
  for (; bytes >= kBytes; bytes -= kBytes, at += kBytes) std::memcpy(at, pattern, kBytes);
  std::memcpy(at, pattern, bytes);
}

// All pointers are bound when a library is loaded, so nothing is left for this to do.
[[noreturn]] void BindLater() { std::abort(); }

void* StackGuard() {
  static const std::uintptr_t guard = [] {
    std::uintptr_t random = 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(getauxval(AT_RANDOM));
    if (bytes != nullptr) std::memcpy(&random, bytes, sizeof random);
    return random;
  }();
  return const_cast<std::uintptr_t*>(&guard);
}

// What only macOS has; null for everything else.
void* Substitute(const std::string& symbol) {
  if (symbol == "dyld_stub_binder") return reinterpret_cast<void*>(BindLater);
  if (symbol == "___stack_chk_guard") return StackGuard();
  if (symbol == "_memset_pattern4") return reinterpret_cast<void*>(FillWithPattern<4>);
  if (symbol == "_memset_pattern8") return reinterpret_cast<void*>(FillWithPattern<8>);
  if (symbol == "_memset_pattern16") return reinterpret_cast<void*>(FillWithPattern<16>);
  return nullptr;
}

}  // namespace

void* ProcessAddress(const std::string& symbol) {
  void* substitute = Substitute(symbol);
  if (substitute != nullptr) return substitute;
  if (symbol.size() < 2 || symbol[0] != '_') return nullptr;
  // What follows a $ says which version of the system's interfaces is meant.
  const std::string name = symbol.substr(1, symbol.find("$UNIX2003") - 1);
  for (const Alias& alias : kAliases) {
    if (name == alias.there) return dlsym(RTLD_DEFAULT, alias.here);
  }
  return dlsym(RTLD_DEFAULT, name.c_str());
}

}  // namespace host
