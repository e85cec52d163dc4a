# CPU leaf filters (listed explicitly).
target_sources(ifc_objects PRIVATE)
