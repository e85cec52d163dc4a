# qimage tests: the pixel work behind the QImage natives, without a JVM.
ifc_add_gtest(qimage_ops_test qimage_ops_test.cc)
target_link_libraries(qimage_ops_test PRIVATE GTest::gmock)
