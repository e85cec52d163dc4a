# Sources of src/render (listed explicitly).
target_sources(ifc_objects PRIVATE
  render/base_filte_render.cc
  render/base_filter_jni.cc
  render/brightness_curve.cc
  render/gl_utils.cc
  render/glsl_render_image_jni.cc
  render/glsl_render_readback_jni.cc
  render/glsl_render_upload_jni.cc
  render/jni_guards.cc
  render/magic_engine.cc
  render/native_buffers.cc
  render/pixel_uploads.cc
  render/renderer_handles.cc
  render/tiles.cc)
