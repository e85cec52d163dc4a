# qimage sources (listed explicitly).
target_sources(ifc_objects PRIVATE
  jni/qimage_bitmap.cc
  jni/qimage_copy_pixels.cc
  jni/qimage_geometry.cc
  jni/qimage_lifecycle.cc
  jni/qimage_ops.cc)
