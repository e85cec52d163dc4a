// The current GL driver's compiler and linker on one vertex and fragment
// pair: a second opinion after glslang, and what the driver keeps active.
// Needs a current GL ES 2.0 context.
#ifndef FILTERPACK_DRIVER_CHECK_H
#define FILTERPACK_DRIVER_CHECK_H

#include <map>
#include <set>
#include <string>

namespace filterpack {

struct DriverReport {
    std::string renderer;  // GL_RENDERER, e.g. "llvmpipe (LLVM 15.0.6, 256 bits)"
    bool vertexCompiled = false;
    bool fragmentCompiled = false;
    bool linked = false;
    std::string vertexLog;
    std::string fragmentLog;
    std::string linkLog;
    struct Uniform {
        unsigned int type;  // GL type enum
        int arraySize;      // 0 when not an array
    };
    std::map<std::string, Uniform> activeUniforms;  // arrays without "[0]"
    std::set<std::string> activeAttributes;
};

DriverReport checkOnDriver(const std::string& vertex, const std::string& fragment);

// "the GL driver (llvmpipe ...)"
std::string driverName(const DriverReport& report);

}  // namespace filterpack

#endif  // FILTERPACK_DRIVER_CHECK_H
