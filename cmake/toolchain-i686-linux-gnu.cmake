# Cross build for 32-bit x86 with Debian's cross compiler (SSE2 baseline, as
# Android's x86 ABI); tests run from the sysroot of scripts/sysroot i386.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(IFC_CROSS_TRIPLE i686-linux-gnu)
set(IFC_CROSS_MULTIARCH i386-linux-gnu)
set(IFC_CROSS_ABI i386)
include(${CMAKE_CURRENT_LIST_DIR}/cross-sysroot.cmake)
string(APPEND CMAKE_C_FLAGS_INIT " -msse2 -mfpmath=sse")
string(APPEND CMAKE_CXX_FLAGS_INIT " -msse2 -mfpmath=sse")
