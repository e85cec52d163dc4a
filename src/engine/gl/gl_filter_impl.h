// A parsed GL description "filter/gl/<name>.xml": the shader texts of each
// pass, still in whatever protected form they were shipped in.
#ifndef IFC_ENGINE_GL_GL_FILTER_IMPL_H
#define IFC_ENGINE_GL_GL_FILTER_IMPL_H

#include <map>
#include <string>
#include <vector>

#include "engine/shared_ptr.h"
#include "image_filter/image.h"

struct IFC_API HFGLFilterImpl {
    std::vector<std::string> fragmentSources;
    // The first "vertex" text, repeated once per fragment when there are
    // several fragments.
    std::vector<std::string> vertexSources;
    // Line of the description file on which each text begins (its line 1),
    // for messages about the shader's lines.
    std::vector<int> fragmentLines;
    std::vector<int> vertexLines;
    // Why the description has no shaders when the file could not be used
    // ("is missing from the bundle", "is not well-formed XML ..."); empty
    // when it was read.
    std::string readProblem;

    virtual ~HFGLFilterImpl();

    // A missing or unreadable file leaves both vectors empty.
    void load(const std::string& name);

    static std::string pathOf(const std::string& name);
};

using HFGLFilterImplCache = std::map<std::string, shared_ptr<HFGLFilterImpl>>;

// Process-wide, filled on first use of each name and never emptied; a
// description that failed to load stays cached as empty. Descriptions hold
// only text (no GL names), so threads with their own contexts share them;
// the lookup is safe from any thread.
IFC_API HFGLFilterImplCache& glFilterImplCache();
IFC_API shared_ptr<HFGLFilterImpl> HFGLFilterImpl_lookup(const std::string& name);

#endif  // IFC_ENGINE_GL_GL_FILTER_IMPL_H
