# Sources of src/render (listed explicitly).
target_sources(ifc_objects PRIVATE
  render/base_filte_render.cc
  render/gl_utils.cc
  render/magic_engine.cc)
