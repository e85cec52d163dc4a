#include "engine/cpu/cpu_registry.h"

namespace {

// "Curve2D" passes its input through unchanged, by design.
void curve2D(void*, HFCPUParamMap) {}

const std::map<std::string, HFCPUFilterFunction>& registry() {
    static const std::map<std::string, HFCPUFilterFunction> functions = {
        {"Curve2D", &curve2D},
        {"", nullptr},
    };
    return functions;
}

// Filled at load time like the rest of the static tables.
const bool registryReady = !registry().empty();

}  // namespace

HFCPUFilterFunction HFCPUFilterRegistry_lookup(const std::string& name) {
    const auto& functions = registry();
    auto found = functions.find(name);
    return found == functions.end() ? nullptr : found->second;
}

bool HFCPUFilterRegistry_contains(const std::string& name) {
    (void)registryReady;
    return registry().count(name) != 0;
}
