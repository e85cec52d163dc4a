#include "engine/filter_wraper.h"

#include <EGL/egl.h>

#include <utility>

#include "engine/engine_problems.h"
#include "engine/filter_package.h"
#include "engine/gl_frame_state.h"
#include "engine/texture.h"

// Problems met while the package loads and its shaders compile are kept as
// the wrapper's last problem as well as logged.
HFFilterWraper::HFFilterWraper(const char* name) : packageName(name != nullptr ? name : "") {
    HFProblemCollector problems;
    filter = loadFilterPackage(packageName);
    if (filter) params.collect(HFFilterPackage_node(packageName), filter.get());
    problem = problems.summary();
    // A package that failed before is cached as failed and logs nothing new.
    if (!filter && problem.empty()) problem = "filter package " + packageName + " cannot be built (see the log)";
}

HFFilterWraper::~HFFilterWraper() {
    shared_ptr<IHFFilter> tree(std::move(filter));
    tree.release();
}

shared_ptr<IHFFilter> HFFilterWraper::loadFilterPackage(std::string name) {
    shared_ptr<IHFFilterNode> node = HFFilterPackage_node(name);
    if (!node) return shared_ptr<IHFFilter>();
    shared_ptr<IHFFilter> filter = node->createFilter();
    if (!filter) HFFilterPackage_logError(name, "builds no filter");
    return filter;
}

// Wrapping applies the default sampling options to the caller's texture; the
// wrapper only borrows the name, so the texture outlives it. A texture seen
// last frame under the same name and size keeps its wrapper, and its options
// are not applied again: a caller that deletes a texture and makes another
// under the same name and size sets the new one's sampling itself.
void HFFilterWraper::renderTexture(int texture, int width, int height) {
    if (eglGetCurrentContext() == EGL_NO_CONTEXT) {
        reportProblem("render called on a thread without a current EGL context; nothing was drawn");
        return;
    }
    if (!filter) return;
    if (params.hasPending()) {
        HFProblemCollector problems;
        params.applyPending();
        if (problems.count() > 0) problem = problems.summary();
    }
    const unsigned int name = static_cast<unsigned int>(texture);
    if (!input || input->glTexture() != name || input->size() != HFSize{width, height}) {
        input.release();
        input = HFGLTexture::createTexture(name, defaultTextureOptions);
        input->resize(width, height);
    }
    GLFrameState::Frame frame;
    filter->setInputTexture(input, 0);
    filter->setFilterFBO();
    filter->render(nullptr);
}

int HFFilterWraper::outputTexture() {
    if (!filter) return 0;
    shared_ptr<IHFTexture> output = filter->outputTexture();
    const HFGLTexture* texture = dynamic_cast<const HFGLTexture*>(output.get());
    return texture != nullptr ? static_cast<int>(texture->glTexture()) : 0;
}

bool HFFilterWraper::setParameter(const shared_ptr<HFFilterParam>& value) {
    const std::string reason = params.set(value);
    if (!reason.empty()) reportProblem(reason);
    return reason.empty();
}

void HFFilterWraper::reportProblem(const std::string& text) {
    problem = "filter package " + packageName + ": " + text;
    HFProblem_report(problem);
}
