# bridge: the Java bridge core.
target_sources(ifc_objects PRIVATE
  jni/bridge/bridge_bitmap.cc
  jni/bridge/bridge_env.cc
  jni/bridge/bridge_exceptions.cc
  jni/bridge/bridge_qimage.cc
  jni/bridge/bridge_rect.cc
  jni/bridge/bridge_resources.cc
  jni/bridge/coffee_jni.cc
  jni/bridge/format_string.cc
  jni/bridge/jni_guards.cc
  jni/bridge/log.cc
  jni/bridge/native_guard.cc
  jni/bridge/packed_string.cc
  jni/bridge/time_utils.cc)
