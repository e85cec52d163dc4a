# bridge sources (listed explicitly).
target_sources(ifc_objects PRIVATE
  jni/bridge_bitmap.cc
  jni/bridge_env.cc
  jni/bridge_exceptions.cc
  jni/bridge_qimage.cc
  jni/bridge_rect.cc
  jni/bridge_resources.cc
  jni/coffee_jni.cc
  jni/format_string.cc
  jni/packed_string.cc
  jni/time_utils.cc)
