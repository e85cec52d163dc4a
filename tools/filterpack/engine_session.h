// What the tool adds around the engine while a command runs: parameter
// values given on the command line, and a clock on every leaf filter for
// per-pass times. It installs a leaf node factory, so the engine builds the
// package exactly as the app would, with these leaves in place of its own.
#ifndef FILTERPACK_ENGINE_SESSION_H
#define FILTERPACK_ENGINE_SESSION_H

#include <string>
#include <vector>

#include "engine/filter.h"
#include "engine/filter_package.h"

namespace filterpack {

// "--param name=v1,v2,...": 1 number sets a float, 4 a vector4f, 16 a
// matrix4f, 256 a curve (integers in 1/256 units, as in the XML).
struct ParamOverride {
    std::string name;
    std::vector<float> values;
};

bool parseParamOverride(const std::string& text, ParamOverride* override, std::string* error);

// Sets the values on one live leaf filter, after its declared parameters.
// The tool's own stand-in for the engine's run-time parameter setters.
void applyParamOverride(IHFFilter* leaf, const ParamOverride& override);

struct PassTime {
    std::string label;  // "blur/box_blur", "Curve2D (CPU)" ...
    double milliseconds = 0.0;
    int frames = 0;
};

class EngineSession {
public:
    explicit EngineSession(std::vector<ParamOverride> overrides);
    ~EngineSession();
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;

    // While timing, each leaf's render is fenced with glFinish and timed.
    void setTiming(bool on) { timing = on; }
    bool isTiming() const { return timing; }
    // Passes in the order their filters were built (document order).
    const std::vector<PassTime>& passes() const { return passList; }
    std::vector<PassTime>& passes() { return passList; }
    const std::vector<ParamOverride>& overrides() const { return overrideList; }

private:
    std::vector<ParamOverride> overrideList;
    std::vector<PassTime> passList;
    bool timing = false;
    HFLeafNodeFactory previous;
};

}  // namespace filterpack

#endif  // FILTERPACK_ENGINE_SESSION_H
