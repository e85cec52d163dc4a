# pixels: kernels against their reference, frames, filters, blur.
ifc_add_gtest(pixels_tests
  pixel_kernels_test.cc
  pixel_frames_test.cc
  cpu_filters_test.cc)

# JNI library of the Java pixel tests; links the shared library the JVM loads.
add_library(ifc_pixels_probe SHARED pixels_probe.cc)
target_include_directories(ifc_pixels_probe PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(ifc_pixels_probe PRIVATE image_filter_common ifc::jni)
set_target_properties(ifc_pixels_probe PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/host)

function(ifc_pixels_probe_before_java_tests)
  if(TARGET image_filter_tests)
    add_dependencies(image_filter_tests ifc_pixels_probe)
  endif()
endfunction()
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR}/tests CALL ifc_pixels_probe_before_java_tests)
