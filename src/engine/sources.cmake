# Sources of the filter engine (graph, textures, packages) and its leaves.
target_sources(ifc_objects PRIVATE
  engine/interfaces.cc
  engine/resource_loader.cc
  engine/texture.cc)
include(engine/cpu/sources.cmake)
include(engine/gl/sources.cmake)
