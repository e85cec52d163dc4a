# Sources of the filter engine (graph, textures, packages) and its leaves.
target_sources(ifc_objects PRIVATE
  engine/engine_problems.cc
  engine/filter_model_node.cc
  engine/filter_object.cc
  engine/filter_package.cc
  engine/filter_wraper.cc
  engine/filter_wraper_jni.cc
  engine/filter_wraper_params_jni.cc
  engine/gl_frame_state.cc
  engine/interfaces.cc
  engine/package_lock.cc
  engine/resource_loader.cc
  engine/runtime_params.cc
  engine/texture.cc)
include(engine/cpu/sources.cmake)
include(engine/gl/sources.cmake)
