# pixels: camera-frame conversions and CPU filters, and the SIMD kernels, each
# instruction set in its own files with its own flags.
include(${CMAKE_CURRENT_LIST_DIR}/pixels_kernels.cmake)
ifc_add_pixel_kernels(ifc_objects)
target_sources(ifc_objects PRIVATE
  jni/pixels/frame_checks.cc)
