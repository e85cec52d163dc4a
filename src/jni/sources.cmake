# src/jni in three rooms, each with its own list:
#   bridge/  the Java bridge core: load hook, per-thread env, QImage and MRect
#            binding, resource callbacks, logging, guards, packed strings
#   qimage/  the QImage natives: life cycle, bitmaps, geometry, pixel copies,
#            and the natives of the conversions and CPU filters
#   pixels/  camera-frame conversions and CPU filters in plain C++, each row
#            kernel beside its SSE2, AVX2 and NEON twins, and their dispatch
include(jni/bridge/sources.cmake)
include(jni/qimage/sources.cmake)
include(jni/pixels/sources.cmake)
