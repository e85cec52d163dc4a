# qimage: the QImage natives.
target_sources(ifc_objects PRIVATE
  jni/qimage/qimage_bitmap.cc
  jni/qimage/qimage_copy_pixels.cc
  jni/qimage/qimage_filter_natives.cc
  jni/qimage/qimage_geometry.cc
  jni/qimage/qimage_lifecycle.cc
  jni/qimage/qimage_ops.cc
  jni/qimage/qimage_pixels_natives.cc)
