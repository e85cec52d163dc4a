#include "engine_session.h"

#include <GLES2/gl2.h>

#include <chrono>
#include <cstdlib>
#include <utility>

#include "engine/gl/filter_desc_node.h"
#include "engine/gl/gl_filter.h"

namespace filterpack {
namespace {

constexpr int kCurveSize = 256;
constexpr float kCurveUnit = 1.0f / 256.0f;

// The session of the command now running; leaves built without one (after
// it ends, from the engine's cache) behave as the engine's own.
EngineSession* activeSession = nullptr;

// Forwards every operation; render is timed while the session times.
class TimedFilter : public IHFFilter {
public:
    TimedFilter(shared_ptr<IHFFilter> inner, size_t pass) : inner(std::move(inner)), pass(pass) {}

    void setInputTextureSize(HFSize size) override { inner->setInputTextureSize(size); }
    void setInputTextureImage(_Image* image, int index) override { inner->setInputTextureImage(image, index); }
    void setInputTexture(shared_ptr<IHFTexture> texture, int index) override { inner->setInputTexture(texture, index); }
    shared_ptr<IHFTexture> getInputTexture(int index) override { return inner->getInputTexture(index); }
    void setProperty(const char* name, float value) override { inner->setProperty(name, value); }
    void setFilterFBO() override { inner->setFilterFBO(); }
    void setFrameBufferBlendMode(int source, int destination) override {
        inner->setFrameBufferBlendMode(source, destination);
    }
    HFSize outputTextureSize() override { return inner->outputTextureSize(); }
    shared_ptr<IHFTexture> outputTexture() override { return inner->outputTexture(); }
    void readOutput(_Image* image) override { inner->readOutput(image); }
    void clearMemoryData() override { inner->clearMemoryData(); }
    void cpuCodeSlot() override { inner->cpuCodeSlot(); }

    void render(_Image* image) override {
        EngineSession* session = activeSession;
        if (session == nullptr || !session->isTiming() || pass >= session->passes().size()) {
            inner->render(image);
            return;
        }
        glFinish();
        const auto start = std::chrono::steady_clock::now();
        inner->render(image);
        glFinish();
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        PassTime& time = session->passes()[pass];
        time.milliseconds += elapsed.count();
        ++time.frames;
    }

private:
    shared_ptr<IHFFilter> inner;
    size_t pass;
};

class SessionLeafNode : public HFFilterDescNode {
public:
    shared_ptr<IHFFilter> createFilter() override {
        shared_ptr<IHFFilter> filter = HFFilterDescNode::createFilter();
        EngineSession* session = activeSession;
        if (!filter || session == nullptr) return filter;
        for (const ParamOverride& override : session->overrides()) applyParamOverride(filter.get(), override);
        PassTime pass;
        pass.label = (name.empty() ? std::string() : name + "/") + implement + (preferCPU ? " (CPU)" : "");
        session->passes().push_back(pass);
        return shared_ptr<IHFFilter>(new TimedFilter(filter, session->passes().size() - 1));
    }
};

shared_ptr<IHFFilterNode> sessionLeafNode() { return shared_ptr<IHFFilterNode>(new SessionLeafNode()); }

}  // namespace

bool parseParamOverride(const std::string& text, ParamOverride* override, std::string* error) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        *error = "--param takes name=value, not \"" + text + "\"";
        return false;
    }
    override->name = text.substr(0, equals);
    override->values.clear();
    const char* at = text.c_str() + equals + 1;
    while (true) {
        char* end = nullptr;
        const float value = std::strtof(at, &end);
        if (end == at || (*end != ',' && *end != '\0')) {
            *error = "--param " + override->name + ": \"" + (text.c_str() + equals + 1) + "\" is not a list of numbers";
            return false;
        }
        override->values.push_back(value);
        if (*end == '\0') break;
        at = end + 1;
    }
    const size_t count = override->values.size();
    if (count != 1 && count != 4 && count != 16 && count != kCurveSize) {
        *error = "--param " + override->name + " has " + std::to_string(count) +
                 " numbers; give 1 (float), 4 (vector4f), 16 (matrix4f) or 256 (curve)";
        return false;
    }
    return true;
}

void applyParamOverride(IHFFilter* leaf, const ParamOverride& override) {
    auto* gl = dynamic_cast<HFGLFilter*>(leaf);
    if (gl == nullptr) return;
    std::vector<float> values = override.values;
    const char* name = override.name.c_str();
    switch (values.size()) {
        case 1: gl->setFloat(name, values[0]); break;
        case 4: gl->setVec4(name, values.data()); break;
        case 16: gl->setMatrix4(name, values.data()); break;
        default:
            for (float& value : values) value *= kCurveUnit;
            gl->setFloatArray(name, values.data(), kCurveSize);
            break;
    }
}

EngineSession::EngineSession(std::vector<ParamOverride> overrides)
    : overrideList(std::move(overrides)), previous(HFFilterPackage_setLeafNodeFactory(&sessionLeafNode)) {
    activeSession = this;
}

EngineSession::~EngineSession() {
    activeSession = nullptr;
    HFFilterPackage_setLeafNodeFactory(previous);
}

}  // namespace filterpack
