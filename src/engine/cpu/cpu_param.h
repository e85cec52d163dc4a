// Named parameter values handed to CPU filter functions. The base answers
// every query with a neutral value; each kind overrides what it holds.
#ifndef IFC_ENGINE_CPU_CPU_PARAM_H
#define IFC_ENGINE_CPU_CPU_PARAM_H

#include "engine/saturating_cast.h"
#include "image_filter/image.h"

class IFC_API ICPUInnerParam {
public:
    virtual ~ICPUInnerParam();
    virtual int getInt() { return 0; }
    virtual void setInt(int) {}
    virtual float getFloat() { return 0.0f; }
    virtual void setFloat(float) {}
    virtual _Image* getImage() { return nullptr; }
    virtual void setImage(_Image*) {}
    virtual void* getReserved() { return nullptr; }
    virtual void setReserved(void*) {}
    virtual float* getFloatArray() { return nullptr; }
    virtual void setFloatArray(float*) {}
    virtual int count() { return 1; }
};

class IFC_API CPUIntParam : public ICPUInnerParam {
public:
    explicit CPUIntParam(int value = 0) : value(value) {}
    int getInt() override { return value; }
    void setInt(int v) override { value = v; }
    float getFloat() override { return static_cast<float>(value); }
    // Out-of-range values saturate instead of being undefined.
    void setFloat(float v) override { value = saturatingTruncate(v); }

private:
    int32_t value;
};

class IFC_API CPUFloatParam : public ICPUInnerParam {
public:
    explicit CPUFloatParam(float value = 0.0f) : value(value) {}
    int getInt() override { return saturatingTruncate(value); }
    void setInt(int v) override { value = static_cast<float>(v); }
    float getFloat() override { return value; }
    void setFloat(float v) override { value = v; }

private:
    float value;
};

class IFC_API CPUFloatArrayParam : public ICPUInnerParam {
public:
    CPUFloatArrayParam() = default;
    ~CPUFloatArrayParam() override;
    CPUFloatArrayParam(const CPUFloatArrayParam&) = delete;
    CPUFloatArrayParam& operator=(const CPUFloatArrayParam&) = delete;

    float* getFloatArray() override { return values; }
    int count() override { return elementCount; }
    // Copies count floats (none when count <= 0).
    virtual void assign(int count, const float* data);

private:
    int32_t elementCount = 0;
    float* values = nullptr;
};

class IFC_API CPUImageParam : public ICPUInnerParam {
public:
    CPUImageParam() = default;
    ~CPUImageParam() override;
    CPUImageParam(const CPUImageParam&) = delete;
    CPUImageParam& operator=(const CPUImageParam&) = delete;

    _Image* getImage() override { return image; }
    // Holds a private copy of source.
    void setImage(_Image* source) override;

private:
    _Image* image = nullptr;
};

#endif  // IFC_ENGINE_CPU_CPU_PARAM_H
