# Sources of src/gl: GL helpers shared by src/render and src/engine.
target_sources(ifc_objects PRIVATE
  gl/tight_rgba_rows.cc)
