// The filterpack commands. Each returns the process exit status: 0 on
// success, 1 when a package fails to build, compile, link or render (or a
// file cannot be read or written), 2 for a usage error.
#ifndef FILTERPACK_COMMANDS_H
#define FILTERPACK_COMMANDS_H

#include <string>
#include <vector>

#include "engine_session.h"

namespace filterpack {

constexpr int kUsageError = 2;

int sealCommand(const std::string& form, const std::string& path);
// No names: every package of the bundle.
int lintCommand(const std::string& root, std::vector<std::string> names);
int renderCommand(const std::string& root, const std::string& name, const std::string& input,
                  const std::string& output, bool compare, const std::vector<ParamOverride>& overrides);
int benchCommand(const std::string& root, const std::string& name, int width, int height, int frames,
                 const std::vector<ParamOverride>& overrides);

}  // namespace filterpack

#endif  // FILTERPACK_COMMANDS_H
