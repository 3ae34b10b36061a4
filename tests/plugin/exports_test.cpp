// What the plug-in's file gives to its host's process, and what it takes from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/plugin/elf_symbols.h"
#include "tests/support/plugin_under_test.h"
#include "tests/support/sanitizers.h"

namespace {

using plugin_test::DynamicSymbol;
using plugin_test::ReadDynamicSymbols;
using Names = std::set<std::string>;

Names Undefined() {
  Names names;
  for (const DynamicSymbol& symbol : ReadDynamicSymbols(support::PluginPath())) {
    if (!symbol.defined) names.insert(symbol.name);
  }
  return names;
}

const Names kPlatform = {
    "AudioConvertHostTimeToNanos",
    "AudioGetCurrentHostTime",
    "CFBundleCreate",
    "CFBundleGetFunctionPointerForName",
    "CFBundleLoadExecutable",
    "CFRelease",
    "CFURLCreateCopyAppendingPathComponent",
    "CFURLCreateFromFSRef",
    "CGBitmapContextGetAlphaInfo",
    "CGBitmapContextGetBitsPerPixel",
    "CGBitmapContextGetBytesPerRow",
    "CGBitmapContextGetData",
    "CGBitmapContextGetHeight",
    "CGBitmapContextGetWidth",
    "FSFindFolder",
    "TickCount",
    "__CFConstantStringClassReference",
    "kCFAllocatorSystemDefault",
    "pthread_self",
};

// Memory, texts and mathematics of the C library.
const Names kLibrary = {
    "calloc", "ceil",      "ceilf",  "exp",     "fabs",    "floor",  "floorf",
    "free",   "fmod",      "malloc", "memchr",  "memcmp",  "memcpy", "memmove",
    "memset", "nearbyint", "pow",    "rint",    "sin",     "sincos", "strchr",
    "strcmp", "strcspn",   "strlen", "strncmp", "strpbrk", "trunc",  "truncf",
};

// Start-up and shut-down of any shared object, stack protection, the processor's features, and
// 64-bit division on 32-bit machines.
const Names kToolchain = {
    "_ITM_deregisterTMCloneTable",
    "_ITM_registerTMCloneTable",
    "__cpu_indicator_init",
    "__cpu_model",
    "__gmon_start__",
    "__stack_chk_fail",
    "__tls_get_addr",
    "__divdi3",
    "__moddi3",
    "__udivdi3",
    "__umoddi3",
    "___tls_get_addr",
};

bool IsRuntime(const std::string& name) {
  // The C++ library's own, operators new and delete, exceptions, run-time types; sanitizers.
  const char* prefixes[] = {
    "_ZNSt",
    "_ZNKSt",
    "_ZSt",
    "_ZTVSt",
    "_ZTISt",
    "_ZTSSt",
    "_ZTVN10__cxxabiv1",
    "_ZTISt",
    "_Znw",
    "_Zna",
    "_Zdl",
    "_Zda",
    "__cxa_",
    "__gxx_personality_",
    "__dynamic_cast",
    "_Unwind_",
#if defined(VARNELL_ADDRESS_SANITIZER)
    "__asan_",
    "__ubsan_",
    "__sanitizer_",
    "__lsan_",
    "__sancov_",
#endif
  };
  return std::any_of(std::begin(prefixes), std::end(prefixes),
                     [&](const char* prefix) { return name.starts_with(prefix); });
}

TEST(PluginFile, ExportsItsStartFunctionAndNothingElse) {
  std::vector<std::string> defined;
  for (const DynamicSymbol& symbol : ReadDynamicSymbols(support::PluginPath())) {
    if (!symbol.defined) continue;
    defined.push_back(symbol.name);
    EXPECT_TRUE(symbol.isFunction) << symbol.name;
    EXPECT_FALSE(symbol.weak) << symbol.name;
  }
  EXPECT_EQ(defined, std::vector<std::string>{"REALPluginMain"});
}

TEST(PluginFile, TakesEveryPlatformInterfaceFromItsProcess) {
  const Names undefined = Undefined();
  for (const std::string& name : kPlatform) {
    EXPECT_TRUE(undefined.contains(name)) << name << " is not taken from the process";
  }
}

TEST(PluginFile, TakesNothingElseThanTheLibrariesOfItsLanguage) {
  for (const std::string& name : Undefined()) {
    EXPECT_TRUE(kPlatform.contains(name) || kLibrary.contains(name) || kToolchain.contains(name) ||
                IsRuntime(name))
        << name << " is not expected";
  }
}

TEST(PluginFile, AllocatesThroughTheProcess) {
  const Names undefined = Undefined();
  EXPECT_TRUE(undefined.contains("calloc"));
  EXPECT_TRUE(undefined.contains("free"));
  EXPECT_FALSE(undefined.contains("malloc"));
}

}  // namespace
