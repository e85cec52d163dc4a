# ifc_add_pixel_kernels(target): the pixel kernels for the target's
# processor.
set(IFC_PIXELS_DIR ${CMAKE_CURRENT_LIST_DIR})

function(ifc_add_pixel_kernels target)
  set(dir ${IFC_PIXELS_DIR})
  target_sources(${target} PRIVATE
    ${dir}/yuv_tables.cc
    ${dir}/nv21_rows.cc
    ${dir}/yuv422_rows.cc
    ${dir}/rgb565_rows.cc
    ${dir}/filter_rows.cc
    ${dir}/blend_rows.cc
    ${dir}/histogram.cc
    ${dir}/cpu_filters.cc
    ${dir}/blur8.cc
    ${dir}/camera_frames.cc
    ${dir}/pixel_kernels.cc
    ${dir}/qimage_pixels.cc)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i.86)$")
    set(sse2 ${dir}/nv21_rows_sse2.cc ${dir}/yuv422_rows_sse2.cc ${dir}/rgb565_rows_sse2.cc
      ${dir}/filter_rows_sse2.cc ${dir}/blend_rows_sse2.cc)
    set(avx2 ${dir}/nv21_rows_avx2.cc ${dir}/yuv422_rows_avx2.cc ${dir}/rgb565_rows_avx2.cc
      ${dir}/filter_rows_avx2.cc ${dir}/blend_rows_avx2.cc ${dir}/blur8_avx2.cc)
    set(avx512 ${dir}/yuv422_rows_avx512.cc)
    target_sources(${target} PRIVATE ${sse2} ${avx2} ${avx512} ${dir}/kernel_select_x86.cc)
    set_source_files_properties(${sse2} PROPERTIES COMPILE_OPTIONS "-msse2")
    set_source_files_properties(${avx2} PROPERTIES COMPILE_OPTIONS "-mavx2")
    set_source_files_properties(${avx512} PROPERTIES COMPILE_OPTIONS "-mavx512f;-mavx512bw")
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64|armv7.*|arm)$" OR ANDROID_ABI MATCHES "^(arm64-v8a|armeabi-v7a)$")
    set(neon ${dir}/nv21_rows_neon.cc ${dir}/yuv422_rows_neon.cc ${dir}/rgb565_rows_neon.cc
      ${dir}/filter_rows_neon.cc ${dir}/blend_rows_neon.cc ${dir}/blur8_neon.cc)
    target_sources(${target} PRIVATE ${neon} ${dir}/kernel_select_arm.cc)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(armv7.*|arm)$" OR ANDROID_ABI STREQUAL "armeabi-v7a")
      set_source_files_properties(${neon} PROPERTIES COMPILE_OPTIONS "-mfpu=neon")
    endif()
  else()
    target_sources(${target} PRIVATE ${dir}/kernel_select_scalar.cc)
  endif()
endfunction()
