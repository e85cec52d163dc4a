// Fake filters and textures that write every call into a shared journal, so
// tests can compare the exact sequence a composite produces.
#ifndef IFC_TESTS_ENGINE_RECORDING_FILTER_H
#define IFC_TESTS_ENGINE_RECORDING_FILTER_H

#include <string>
#include <vector>

#include "engine/filter.h"

using Journal = std::vector<std::string>;

// A texture known by a label.
class LabelTexture : public IHFTexture {
public:
    explicit LabelTexture(std::string label) : label(std::move(label)) {}
    void setImage(_Image*) override {}
    _Image* image() override { return nullptr; }
    void* userData() override { return nullptr; }

    std::string label;
};

inline std::string labelOf(const shared_ptr<IHFTexture>& texture) {
    const LabelTexture* labelled = dynamic_cast<const LabelTexture*>(texture.get());
    return labelled != nullptr ? labelled->label : std::string(texture ? "?" : "none");
}

class RecordingFilter : public IHFFilter {
public:
    RecordingFilter(std::string name, Journal* journal, HFSize size = HFSize{4, 2})
        : name(std::move(name)), journal(journal), size(size),
          output(new LabelTexture(this->name + ".out")) {}
    ~RecordingFilter() override {
        if (destroyed != nullptr) destroyed->push_back(name);
    }

    static shared_ptr<IHFFilter> make(const std::string& name, Journal* journal, HFSize size = HFSize{4, 2}) {
        return shared_ptr<IHFFilter>(new RecordingFilter(name, journal, size));
    }

    void setInputTextureSize(HFSize s) override {
        log("size " + std::to_string(s.width) + "x" + std::to_string(s.height));
    }
    void setInputTextureImage(_Image* image, int index) override {
        log(std::string("image ") + (image ? "set" : "null") + " @" + std::to_string(index));
    }
    void setInputTexture(shared_ptr<IHFTexture> texture, int index) override {
        log("input " + labelOf(texture) + " @" + std::to_string(index));
        if (index >= 0 && index < 4) inputs[index] = texture;
    }
    shared_ptr<IHFTexture> getInputTexture(int index) override { return inputs[index]; }
    void setProperty(const char* key, float value) override {
        log(std::string("property ") + key + "=" + std::to_string(value));
    }
    void setFilterFBO() override { log("fbo"); }
    void render(_Image* image) override { log(std::string("render ") + (image ? "image" : "null")); }
    void setFrameBufferBlendMode(int, int) override { log("blend"); }
    HFSize outputTextureSize() override { return size; }
    shared_ptr<IHFTexture> outputTexture() override { return output; }
    void readOutput(_Image*) override { log("readOutput"); }
    void clearMemoryData() override { log("clear"); }
    void cpuCodeSlot() override {}

    std::string name;
    Journal* journal;
    HFSize size;
    shared_ptr<IHFTexture> output;
    shared_ptr<IHFTexture> inputs[4];
    Journal* destroyed = nullptr;

private:
    void log(const std::string& what) { journal->push_back(name + ": " + what); }
};

#endif  // IFC_TESTS_ENGINE_RECORDING_FILTER_H
