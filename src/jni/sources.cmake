# Sources of src/jni, one list per piece so each can grow on its own.
target_sources(ifc_objects PRIVATE
  jni/jni_guards.cc
  jni/native_guard.cc
  jni/log.cc)
include(jni/bridge_sources.cmake)
include(jni/qimage_sources.cmake)
include(jni/pixels_sources.cmake)
