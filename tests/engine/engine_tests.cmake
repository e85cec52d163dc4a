# Filter engine: handles, composite wiring, CPU filters (no GL needed) and
# textures and packages (GL).
ifc_add_gtest(engine_tests
  cpu_filter_test.cc
  filter_object_test.cc
  recording_filter.cc
  shared_ptr_test.cc)
ifc_add_gtest(engine_gl_tests GL
  filter_package_test.cc
  recording_filter.cc
  texture_test.cc)
