#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

// This program calls none of them; a plug-in that it loads must find them all the same.
TEST(PlatformExports, EveryProgramWithTheHostOffersThePlatform) {
  for (const char* name :
       {"CGBitmapContextGetData", "CGBitmapContextGetWidth", "CGBitmapContextGetHeight",
        "CGBitmapContextGetBytesPerRow", "CGBitmapContextGetBitsPerPixel",
        "CGBitmapContextGetAlphaInfo", "TickCount", "AudioGetCurrentHostTime",
        "AudioConvertHostTimeToNanos", "FSFindFolder", "CFURLCreateFromFSRef",
        "CFURLCreateCopyAppendingPathComponent", "CFBundleCreate", "CFBundleLoadExecutable",
        "CFBundleGetFunctionPointerForName", "CFRelease", "kCFAllocatorSystemDefault",
        "__CFConstantStringClassReference", "pthread_self"}) {
    EXPECT_NE(dlsym(RTLD_DEFAULT, name), nullptr) << name;
  }
}

}  // namespace
