# Linux host platform: the real parts the product code runs against in tests.
#   ifc::jni         OpenJDK's jni.h
#   ifc::log         Debian's android-liblog-dev (__android_log_print)
#   ifc::gles/egl    Mesa's libGLESv2 and libEGL
#   ifc::tinyxml2    the system tinyxml2
#   ifc::jnigraphics the host-only AndroidBitmap_* library built from host/

# Only jni.h is needed: the JVM loads the library, not the other way round.
find_package(Java 17 REQUIRED COMPONENTS Development)
get_filename_component(IFC_JAVAC_REAL ${Java_JAVAC_EXECUTABLE} REALPATH)
get_filename_component(IFC_JAVA_HOME ${IFC_JAVAC_REAL} DIRECTORY)
get_filename_component(IFC_JAVA_HOME ${IFC_JAVA_HOME} DIRECTORY)
# The host JDK's jni.h serves cross builds too (jni_md.h picks jlong per ABI).
find_path(IFC_JNI_INCLUDE jni.h HINTS ${IFC_JAVA_HOME}/include REQUIRED NO_DEFAULT_PATH
  NO_CMAKE_FIND_ROOT_PATH)
add_library(ifc_jni INTERFACE)
target_include_directories(ifc_jni SYSTEM INTERFACE ${IFC_JNI_INCLUDE} ${IFC_JNI_INCLUDE}/linux)
add_library(ifc::jni ALIAS ifc_jni)

# The JVM that runs the JUnit suite and the demo: the host's, or in a cross
# build the sysroot's own JVM through the test emulator. Classes are compiled
# once by the host JDK either way. The JVM then spawns children directly
# (jspawnhelper would be a target program).
if(CMAKE_CROSSCOMPILING)
  file(GLOB IFC_TARGET_JAVA ${IFC_SYSROOT}/usr/lib/jvm/java-17-openjdk-*/bin/java)
  if(IFC_TARGET_JAVA)
    set(IFC_JAVA_COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${IFC_TARGET_JAVA}
      -Djdk.lang.Process.launchMechanism=VFORK)
  endif()
else()
  set(IFC_JAVA_COMMAND ${Java_JAVA_EXECUTABLE})
endif()

find_library(IFC_ANDROID_LOG log
  PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android NO_DEFAULT_PATH REQUIRED)
add_library(ifc_log INTERFACE)
target_include_directories(ifc_log SYSTEM INTERFACE /usr/include/android)
target_link_libraries(ifc_log INTERFACE ${IFC_ANDROID_LOG})
target_link_options(ifc_log INTERFACE "-Wl,-rpath,/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android")
add_library(ifc::log ALIAS ifc_log)

find_library(IFC_GLES GLESv2 REQUIRED)
find_library(IFC_EGL EGL REQUIRED)
add_library(ifc_gles INTERFACE)
target_link_libraries(ifc_gles INTERFACE ${IFC_GLES})
add_library(ifc::gles ALIAS ifc_gles)
add_library(ifc_egl INTERFACE)
target_link_libraries(ifc_egl INTERFACE ${IFC_EGL})
add_library(ifc::egl ALIAS ifc_egl)

find_package(tinyxml2 CONFIG REQUIRED)
add_library(ifc_tinyxml2 INTERFACE)
target_link_libraries(ifc_tinyxml2 INTERFACE tinyxml2::tinyxml2)
add_library(ifc::tinyxml2 ALIAS ifc_tinyxml2)

add_subdirectory(${PROJECT_SOURCE_DIR}/host ${PROJECT_BINARY_DIR}/host)
add_library(ifc::jnigraphics ALIAS jnigraphics)
