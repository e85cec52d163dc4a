// `filterpack serve` in a build without cpp-httplib and nlohmann-json (the
// cross builds): the command says so instead of serving.
#include <cstdio>

#include "preview_server.h"

namespace filterpack {

int servePreview(const std::string& bundleRoot, int) {
    std::fprintf(stderr, "filterpack: serve %s: this build has no HTTP server (needs libcpp-httplib-dev and nlohmann-json3-dev)\n",
                 bundleRoot.c_str());
    return 1;
}

}  // namespace filterpack
