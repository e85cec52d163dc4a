// Parameters declared by a leaf filter description ("param" elements), each
// pushed into a freshly built filter through its typed setters.
#ifndef IFC_ENGINE_GL_FILTER_PARAM_H
#define IFC_ENGINE_GL_FILTER_PARAM_H

#include <string>

#include "engine/filter.h"
#include "engine/shared_ptr.h"

namespace tinyxml2 {
class XMLElement;
}

class IFC_API HFFilterParam {
public:
    virtual ~HFFilterParam();
    virtual void apply(IHFFilter* filter, const std::string& packageName) = 0;

    // One "param" element: a "name" element, then an element whose tag is the
    // type. Empty for a malformed param (logged) or an unsupported type.
    static shared_ptr<HFFilterParam> parse(const tinyxml2::XMLElement* param);

    std::string name;
};

class IFC_API HFFloatParam : public HFFilterParam {
public:
    void apply(IHFFilter* filter, const std::string& packageName) override;
    float value = 0.0f;
};

class IFC_API HFVec4Param : public HFFilterParam {
public:
    void apply(IHFFilter* filter, const std::string& packageName) override;
    float values[4] = {};
};

class IFC_API HFMatrix4Param : public HFFilterParam {
public:
    void apply(IHFFilter* filter, const std::string& packageName) override;
    float values[16] = {};
};

// A lookup curve: integer entries scaled by 1/256, sent as a uniform array.
class IFC_API HFCurveParam : public HFFilterParam {
public:
    static constexpr int kSize = 256;
    void apply(IHFFilter* filter, const std::string& packageName) override;
    float values[kSize] = {};
};

// An image of the package; the param's name is the input slot it feeds.
class IFC_API HFImageParam : public HFFilterParam {
public:
    void apply(IHFFilter* filter, const std::string& packageName) override;
    std::string file;
};

#endif  // IFC_ENGINE_GL_FILTER_PARAM_H
