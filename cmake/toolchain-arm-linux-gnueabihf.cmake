# Cross build for 32-bit ARM (armv7-a, hard float) with Debian's cross
# compiler; the NEON files add -mfpu=neon. Tests run under qemu-user, from the
# sysroot of scripts/sysroot armhf when one is given.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(IFC_CROSS_TRIPLE arm-linux-gnueabihf)
set(IFC_CROSS_MULTIARCH arm-linux-gnueabihf)
set(IFC_CROSS_ABI armhf)
set(IFC_CROSS_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/cross-sysroot.cmake)
