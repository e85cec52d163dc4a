# Sources of the filter engine (graph, textures, packages) and its leaves.
target_sources(ifc_objects PRIVATE
  engine/placeholder.cc)
include(engine/cpu/sources.cmake)
include(engine/gl/sources.cmake)
