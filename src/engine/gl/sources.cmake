# GL leaf filters, descriptions, programs, decipher (listed explicitly).
target_sources(ifc_objects PRIVATE
  engine/gl/aes128_decipher.cc
  engine/gl/filter_desc_node.cc
  engine/gl/filter_param.cc
  engine/gl/gl_filter.cc
  engine/gl/gl_filter_fbo.cc
  engine/gl/gl_filter_impl.cc
  engine/gl/gl_filter_program.cc
  engine/gl/gl_uniform_cache.cc
  engine/gl/matrix3.cc
  engine/gl/shader_decipher.cc
  engine/gl/shader_origin.cc)
