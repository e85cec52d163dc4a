# Android platform: NDK system libraries; tinyxml2 from its source release.
include(FetchContent)

find_library(IFC_ANDROID_LOG log REQUIRED)
find_library(IFC_JNIGRAPHICS jnigraphics REQUIRED)
find_library(IFC_GLES GLESv2 REQUIRED)
find_library(IFC_EGL EGL REQUIRED)

add_library(ifc_jni INTERFACE)            # jni.h comes with the NDK sysroot
add_library(ifc::jni ALIAS ifc_jni)
add_library(ifc_log INTERFACE)
target_link_libraries(ifc_log INTERFACE ${IFC_ANDROID_LOG})
add_library(ifc::log ALIAS ifc_log)
add_library(ifc_jnigraphics INTERFACE)
target_link_libraries(ifc_jnigraphics INTERFACE ${IFC_JNIGRAPHICS})
add_library(ifc::jnigraphics ALIAS ifc_jnigraphics)
add_library(ifc_gles INTERFACE)
target_link_libraries(ifc_gles INTERFACE ${IFC_GLES})
add_library(ifc::gles ALIAS ifc_gles)
add_library(ifc_egl INTERFACE)
target_link_libraries(ifc_egl INTERFACE ${IFC_EGL})
add_library(ifc::egl ALIAS ifc_egl)

set(tinyxml2_BUILD_TESTING OFF CACHE BOOL "" FORCE)
set(BUILD_SHARED_LIBS OFF)
FetchContent_Declare(tinyxml2
  URL https://github.com/leethomason/tinyxml2/archive/refs/tags/9.0.0.tar.gz)
FetchContent_MakeAvailable(tinyxml2)
add_library(ifc_tinyxml2 INTERFACE)
target_link_libraries(ifc_tinyxml2 INTERFACE tinyxml2::tinyxml2)
add_library(ifc::tinyxml2 ALIAS ifc_tinyxml2)
