# Cross build for arm64 with Debian's cross compiler; tests run under
# qemu-user, from the sysroot of scripts/sysroot arm64 when one is given.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(IFC_CROSS_TRIPLE aarch64-linux-gnu)
set(IFC_CROSS_MULTIARCH aarch64-linux-gnu)
set(IFC_CROSS_ABI arm64)
set(IFC_CROSS_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/cross-sysroot.cmake)
