# bridge tests.
ifc_add_gtest(packed_string_test packed_string_test.cc)
