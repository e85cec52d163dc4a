// HFCPUFilter: a leaf filter whose work is a registered CPU function run on a
// private copy of input 0's image. Its output is an HFCPUTexture.
#ifndef IFC_ENGINE_CPU_CPU_FILTER_H
#define IFC_ENGINE_CPU_CPU_FILTER_H

#include "engine/cpu/cpu_registry.h"
#include "engine/filter.h"

class IFC_API HFCPUFilter : public IHFFilter {
public:
    static shared_ptr<IHFFilter> createFilter(const char* name);

    explicit HFCPUFilter(const char* name);
    ~HFCPUFilter() override;

    void setInputTextureSize(HFSize size) override;
    void setInputTextureImage(_Image* image, int index) override;
    void setInputTexture(shared_ptr<IHFTexture> texture, int index) override;
    shared_ptr<IHFTexture> getInputTexture(int index) override;
    void setProperty(const char* name, float value) override;
    void setFilterFBO() override;
    void render(_Image* image) override;
    void setFrameBufferBlendMode(int source, int destination) override;
    HFSize outputTextureSize() override;
    shared_ptr<IHFTexture> outputTexture() override;
    void readOutput(_Image* image) override;
    void clearMemoryData() override;
    void cpuCodeSlot() override;

    // Parameter setters: the first value stored under a name wins.
    virtual void setInt(const char* name, int value);
    virtual void setFloat(const char* name, float value);
    virtual void setVec2(const char* name, float* values);
    virtual void setVec3(const char* name, float* values);
    virtual void setVec4(const char* name, float* values);
    virtual void setMatrix4(const char* name, float* values);
    virtual void setFloatArray(const char* name, float* values, int count);
    virtual void setFloatArray(int location, float* values, int count);
    virtual void setVec2Array(const char* name, float* values, int count);
    virtual float getProperty(const char* name);

    const HFCPUParamMap& parameters() const { return params; }
    // Drops the value stored under `name`, so that the next setter stores
    // its own: how a value set at run time replaces the first one.
    void eraseParameter(const char* name) { params.erase(std::string(name != nullptr ? name : "")); }
    HFCPUFilterFunction filterFunction() const { return function; }

private:
    void insertParam(const char* name, shared_ptr<ICPUInnerParam> value);
    void setFloats(const char* name, const float* values, int count);

    shared_ptr<IHFTexture> output;
    HFCPUFilterFunction function;
    HFCPUParamMap params;
    shared_ptr<IHFTexture> inputs[4];
};

#endif  // IFC_ENGINE_CPU_CPU_FILTER_H
