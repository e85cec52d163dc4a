# CPU leaf filters (listed explicitly).
target_sources(ifc_objects PRIVATE
  engine/cpu/cpu_filter.cc
  engine/cpu/cpu_param.cc
  engine/cpu/cpu_registry.cc
  engine/cpu/cpu_texture.cc)
