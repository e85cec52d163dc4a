# GL leaf filters, descriptions, programs, decipher (listed explicitly).
target_sources(ifc_objects PRIVATE)
