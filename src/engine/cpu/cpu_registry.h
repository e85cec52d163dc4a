// The process-wide registry of named CPU filter functions.
#ifndef IFC_ENGINE_CPU_CPU_REGISTRY_H
#define IFC_ENGINE_CPU_CPU_REGISTRY_H

#include <map>
#include <string>

#include "engine/cpu/cpu_param.h"
#include "engine/shared_ptr.h"

using HFCPUParamMap = std::map<std::string, shared_ptr<ICPUInnerParam>>;

// Edits the working image (an _Image*) in place; the map is the filter's
// parameters, copied for the call.
using HFCPUFilterFunction = void (*)(void* image, HFCPUParamMap params);

// Null for a name that is not registered, and for the empty name.
IFC_API HFCPUFilterFunction HFCPUFilterRegistry_lookup(const std::string& name);
IFC_API bool HFCPUFilterRegistry_contains(const std::string& name);

#endif  // IFC_ENGINE_CPU_CPU_REGISTRY_H
