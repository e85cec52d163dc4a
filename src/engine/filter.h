// The one interface of every filter of the graph engine. The slot order is
// part of the design; implementations append their own operations after it.
#ifndef IFC_ENGINE_FILTER_H
#define IFC_ENGINE_FILTER_H

#include "engine/shared_ptr.h"
#include "engine/texture.h"
#include "image_filter/image.h"

class IFC_API IHFFilter {
public:
    virtual ~IHFFilter();
    virtual void setInputTextureSize(HFSize size) = 0;
    virtual void setInputTextureImage(_Image* image, int index) = 0;
    virtual void setInputTexture(shared_ptr<IHFTexture> texture, int index) = 0;
    virtual shared_ptr<IHFTexture> getInputTexture(int index) = 0;
    virtual void setProperty(const char* name, float value) = 0;
    virtual void setFilterFBO() = 0;
    // image may be null: the result then stays in the output texture.
    virtual void render(_Image* image) = 0;
    virtual void setFrameBufferBlendMode(int source, int destination) = 0;
    virtual HFSize outputTextureSize() = 0;
    virtual shared_ptr<IHFTexture> outputTexture() = 0;
    virtual void readOutput(_Image* image) = 0;
    virtual void clearMemoryData() = 0;
    virtual void cpuCodeSlot() = 0;
};

#endif  // IFC_ENGINE_FILTER_H
