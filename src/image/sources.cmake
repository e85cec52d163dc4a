# Sources of src/image (listed explicitly).
target_sources(ifc_objects PRIVATE
  image/image.cc)
