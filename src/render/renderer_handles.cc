#include "render/renderer_handles.h"

#include <mutex>
#include <unordered_set>

namespace {

struct Live {
    std::mutex lock;
    std::unordered_set<const BaseFilteRender*> renderers;
};

Live& live() {
    static Live* all = new Live;  // never destroyed: handles may be cleared at exit
    return *all;
}

}  // namespace

void rememberRenderer(const BaseFilteRender* render) {
    Live& all = live();
    std::lock_guard<std::mutex> guard(all.lock);
    all.renderers.insert(render);
}

bool forgetRenderer(const BaseFilteRender* render) {
    Live& all = live();
    std::lock_guard<std::mutex> guard(all.lock);
    return all.renderers.erase(render) != 0;
}

bool isLiveRenderer(const BaseFilteRender* render) {
    Live& all = live();
    std::lock_guard<std::mutex> guard(all.lock);
    return all.renderers.count(render) != 0;
}
