# Builds for 32-bit Intel macOS 10.6 and later, on any machine with clang and Python: the language's
# headers are in include/, the linker is here (link), and no SDK is needed.
#
# Where a real linker for this target and an SDK that still has 32-bit Intel are at hand, name both in
# VARNELL_MACOS_LINKER and VARNELL_MACOS_SDK: the same objects are then joined by them instead. This has
# NOT been tried, for want of them.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR i386)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_CXX_COMPILER clang++)

set(VARNELL_MACOS ON)
set(VARNELL_MACOS_LINKER "" CACHE FILEPATH "A real linker for 32-bit Intel macOS (untried); else our own")
set(VARNELL_MACOS_SDK "" CACHE PATH "The SDK that VARNELL_MACOS_LINKER finds the libraries in (untried)")

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH root)
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  --target=i386-apple-macosx10.6
  # The compiler's own headers stay, those of this machine go.
  -nostdlibinc -nostdinc++ -isystem "\"${CMAKE_CURRENT_LIST_DIR}/include\""
  -msse2 -mfpmath=sse -ffp-contract=off
  -fno-stack-protector
  # The same bytes wherever the sources lie.
  "\"-ffile-prefix-map=${root}/=\"")
unset(root)
