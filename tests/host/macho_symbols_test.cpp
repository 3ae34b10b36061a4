#include "host/macho_symbols.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "tests/host/macho_trial.h"

namespace host {
namespace {

TEST(MachoSymbols, AreTheProcessesByTheirNamesInC) {
  EXPECT_EQ(ProcessAddress("_gMachoTrialEnded"), &gMachoTrialEnded);
  EXPECT_EQ(ProcessAddress("_MachoTrialCallee"), reinterpret_cast<void*>(MachoTrialCallee));
  EXPECT_NE(ProcessAddress("_strlen"), nullptr);
  EXPECT_EQ(ProcessAddress("_strlen$UNIX2003"), ProcessAddress("_strlen"));
  EXPECT_NE(ProcessAddress("___gxx_personality_v0"), nullptr);
  EXPECT_NE(ProcessAddress("__ZTISt11range_error"), nullptr);
}

TEST(MachoSymbols, AreNullWhenTheProcessHasNone) {
  for (const char* symbol : {"", "_", "strlen", "_nobody_has_this", "_$UNIX2003"}) {
    EXPECT_EQ(ProcessAddress(symbol), nullptr) << symbol;
  }
}

TEST(MachoSymbols, DifferentNamesOfTheSameFunctionsAreKnown) {
  EXPECT_EQ(ProcessAddress("___bzero"), dlsym(RTLD_DEFAULT, "bzero"));
#if defined(__i386__)
  const struct {
    const char* there;
    const char* here;
  } cases[] = {
      {"__Znwm", "_Znwj"},
      {"__Znam", "_Znaj"},
      {"__ZdlPvm", "_ZdlPvj"},
      {"__ZdaPvm", "_ZdaPvj"},
      {"__ZdlPv", "_ZdlPv"},
      {"__ZnwmRKSt9nothrow_t", "_ZnwjRKSt9nothrow_t"},
      {"__ZnamRKSt9nothrow_t", "_ZnajRKSt9nothrow_t"},
      {"__ZnwmSt11align_val_t", "_ZnwjSt11align_val_t"},
      {"__ZnamSt11align_val_t", "_ZnajSt11align_val_t"},
      {"__ZdlPvmSt11align_val_t", "_ZdlPvjSt11align_val_t"},
      {"__ZdaPvmSt11align_val_t", "_ZdaPvjSt11align_val_t"},
  };
  for (const auto& one : cases) {
    EXPECT_NE(ProcessAddress(one.there), nullptr) << one.there;
    EXPECT_EQ(ProcessAddress(one.there), dlsym(RTLD_DEFAULT, one.here)) << one.there;
  }
#endif
}

TEST(MachoSymbols, PatternsFillExactlyTheirRoom) {
  const struct {
    const char* symbol;
    std::size_t bytes;
  } cases[] = {{"_memset_pattern4", 4}, {"_memset_pattern8", 8}, {"_memset_pattern16", 16}};
  const char pattern[] = "0123456789ABCDEF";
  for (const auto& one : cases) {
    const auto fill =
        reinterpret_cast<void (*)(void*, const void*, std::size_t)>(ProcessAddress(one.symbol));
    for (std::size_t size = 0; size <= 37; ++size) {
      std::string expected(40, '.'), filled(40, '.');
      for (std::size_t i = 0; i < size; ++i) expected[i] = pattern[i % one.bytes];
      fill(filled.data(), pattern, size);
      EXPECT_EQ(filled, expected) << one.symbol << " " << size;
    }
  }
}

TEST(MachoSymbols, TheStackGuardStaysTheSame) {
  const auto* guard = static_cast<std::uintptr_t*>(ProcessAddress("___stack_chk_guard"));
  ASSERT_NE(guard, nullptr);
  EXPECT_NE(*guard, 0u);
  EXPECT_EQ(ProcessAddress("___stack_chk_guard"), guard);
}

TEST(MachoSymbols, NothingIsBoundLater) {
  const auto binder = reinterpret_cast<void (*)()>(ProcessAddress("dyld_stub_binder"));
  ASSERT_NE(binder, nullptr);
  EXPECT_DEATH(binder(), "");
}

}  // namespace
}  // namespace host
