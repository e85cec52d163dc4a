# Sources of src/render (listed explicitly).
target_sources(ifc_objects PRIVATE
  render/placeholder.cc)
