# Sources of src/jni (listed explicitly).
target_sources(ifc_objects PRIVATE
  jni/log.cc)
