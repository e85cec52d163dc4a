# qimage sources (listed explicitly).
target_sources(ifc_objects PRIVATE)
