// HFFilterWraper: a filter package running on a caller's GL texture.
#ifndef IFC_ENGINE_FILTER_WRAPER_H
#define IFC_ENGINE_FILTER_WRAPER_H

#include <string>

#include "engine/filter.h"
#include "engine/runtime_params.h"
#include "engine/texture.h"

class IFC_API HFFilterWraper {
public:
    explicit HFFilterWraper(const char* name);
    ~HFFilterWraper();
    HFFilterWraper(const HFFilterWraper&) = delete;
    HFFilterWraper& operator=(const HFFilterWraper&) = delete;

    // Runs the package with the caller's texture (borrowed) as input 0,
    // after pushing the parameter values set since the last render. Without
    // a current EGL context on this thread it draws nothing and says so.
    void renderTexture(int texture, int width, int height);
    // GL name of the package's output; 0 without a filter or when the last
    // filter's output is not a GL texture.
    int outputTexture();

    // A new live filter built from the cached package; empty when the package
    // cannot be built.
    static shared_ptr<IHFFilter> loadFilterPackage(std::string name);

    bool hasFilter() const { return static_cast<bool>(filter); }

    // Queues a runtime value (see HFRuntimeParams); false, with the reason as
    // the last problem, when the package declares no such parameter.
    bool setParameter(const shared_ptr<HFFilterParam>& value);

    // The most recent build, render or parameter problem, kept until a later
    // one replaces it; empty when there has been none.
    const std::string& lastProblem() const { return problem; }
    // Logs the problem at error level, naming the package, and keeps it.
    void reportProblem(const std::string& text);

    shared_ptr<IHFFilter> filter;
    HFRuntimeParams params;

private:
    std::string packageName;
    std::string problem;
    // The caller's texture as wrapped last frame, kept while its name and
    // size stay the same.
    shared_ptr<HFGLTexture> input;
};

#endif  // IFC_ENGINE_FILTER_WRAPER_H
