# Shared part of the cross toolchain files. Debian's cross compiler brings
# libc and libstdc++ for the target; everything else (Mesa's EGL/GLES,
# tinyxml2, liblog, GoogleTest, OpenSSL, stb, the JVM) comes from the sysroot
# that scripts/sysroot unpacks from Debian packages, passed as IFC_SYSROOT.
# Without IFC_SYSROOT only the cross compiler's own root is searched. Tests
# run through scripts/run-abi, which starts them on the sysroot's loader
# (natively or under qemu-user).
# Expects IFC_CROSS_TRIPLE (compiler prefix), IFC_CROSS_MULTIARCH (Debian's
# library folder name), IFC_CROSS_ABI (i386, arm64, armhf) and, for runs
# without a sysroot, IFC_CROSS_QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${IFC_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${IFC_CROSS_TRIPLE}-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

if(NOT IFC_SYSROOT AND DEFINED ENV{IFC_SYSROOT})
  set(IFC_SYSROOT $ENV{IFC_SYSROOT})
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES IFC_SYSROOT)

if(IFC_SYSROOT)
  set(CMAKE_LIBRARY_ARCHITECTURE ${IFC_CROSS_MULTIARCH})
  set(CMAKE_FIND_ROOT_PATH ${IFC_SYSROOT} /usr/${IFC_CROSS_TRIPLE})
  set(_ifc_libs ${IFC_SYSROOT}/usr/lib/${IFC_CROSS_MULTIARCH})
  # Sysroot headers come after the cross compiler's libc and libstdc++ ones.
  string(JOIN " " _ifc_flags
    -idirafter ${IFC_SYSROOT}/usr/include/${IFC_CROSS_MULTIARCH}
    -idirafter ${IFC_SYSROOT}/usr/include)
  set(CMAKE_C_FLAGS_INIT "${_ifc_flags}")
  set(CMAKE_CXX_FLAGS_INIT "${_ifc_flags}")
  foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-L${_ifc_libs} -Wl,-rpath-link,${_ifc_libs}:${_ifc_libs}/android")
  endforeach()
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-abi ${IFC_CROSS_ABI} ${IFC_SYSROOT})
else()
  set(CMAKE_FIND_ROOT_PATH /usr/${IFC_CROSS_TRIPLE})
  if(IFC_CROSS_QEMU)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${IFC_CROSS_QEMU} -L /usr/${IFC_CROSS_TRIPLE})
  endif()
endif()
