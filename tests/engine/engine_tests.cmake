# Filter engine: handles, composite wiring and CPU filters (no GL needed), and
# GL textures.
ifc_add_gtest(engine_tests
  cpu_filter_test.cc
  filter_object_test.cc
  shared_ptr_test.cc)
ifc_add_gtest(engine_gl_tests GL
  texture_test.cc)
