# Sources of src/image (listed explicitly).
target_sources(ifc_objects PRIVATE
  image/borrowed_pixels.cc
  image/image.cc
  image/image_copy.cc
  image/image_crop.cc
  image/image_gray.cc
  image/image_pyramid.cc
  image/image_rotate.cc
  image/image_scale.cc
  image/marker.cc
  image/rect.cc)
