// Built when glslang is missing (a cross build without it): lint then has
// only the current driver's compiler and says so.
#include "glsl_check.h"

namespace filterpack {

struct GlslProgramCheck::Stages {};

GlslProgramCheck::GlslProgramCheck() = default;
GlslProgramCheck::~GlslProgramCheck() = default;

bool GlslProgramCheck::available() { return false; }

GlslStageReport GlslProgramCheck::compile(ShaderStage, const std::string&) { return GlslStageReport(); }

GlslLinkReport GlslProgramCheck::link() { return GlslLinkReport(); }

}  // namespace filterpack
