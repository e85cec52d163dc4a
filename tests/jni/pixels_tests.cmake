# pixels: SIMD kernels against their reference, then whole images.
ifc_add_gtest(pixels_tests
  pixel_kernels_test.cc
  pixel_images_test.cc
  hostile_sizes_test.cc)
