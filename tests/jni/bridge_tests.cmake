# bridge tests.
ifc_add_gtest(packed_string_test packed_string_test.cc)
ifc_add_gtest(bridge_test bridge_test.cc)
ifc_add_gtest(native_guard_test native_guard_test.cc)
target_compile_definitions(native_guard_test PRIVATE IFC_SOURCE_DIR="${PROJECT_SOURCE_DIR}")

# JNI library of the Java bridge tests. It links the shared library itself
# (never the static archive) so that it drives the functions the JVM loaded.
add_library(ifc_bridge_probe SHARED bridge_probe.cc)
target_include_directories(ifc_bridge_probe PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(ifc_bridge_probe PRIVATE image_filter_common ifc::jni)
set_target_properties(ifc_bridge_probe PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/host)

# The Java test jar is defined later (tests/java); wire the probe in once it exists.
function(ifc_bridge_probe_before_java_tests)
  if(TARGET image_filter_tests)
    add_dependencies(image_filter_tests ifc_bridge_probe)
  endif()
endfunction()
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR}/tests CALL ifc_bridge_probe_before_java_tests)
