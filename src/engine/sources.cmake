# Sources of src/engine (listed explicitly).
target_sources(ifc_objects PRIVATE
  engine/placeholder.cc)
