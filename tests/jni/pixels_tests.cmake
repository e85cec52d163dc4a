# pixels: kernels against their reference, frames, filters, blur.
ifc_add_gtest(pixels_tests
  pixel_kernels_test.cc
  pixel_frames_test.cc
  cpu_filters_test.cc)
