#include "engine/gl/gl_filter_impl.h"

#include <tinyxml2.h>

#include <mutex>

#include "engine/gl/xml_text.h"
#include "engine/resource_loader.h"

namespace {

// The line on which the element's text (or CDATA section) begins.
int textLineOf(const tinyxml2::XMLElement* element) {
    const tinyxml2::XMLNode* text = element->FirstChild();
    return text != nullptr ? text->GetLineNum() : element->GetLineNum();
}

}  // namespace

HFGLFilterImpl::~HFGLFilterImpl() = default;

std::string HFGLFilterImpl::pathOf(const std::string& name) { return "filter/gl/" + name + ".xml"; }

void HFGLFilterImpl::load(const std::string& name) {
    fragmentSources.clear();
    vertexSources.clear();
    fragmentLines.clear();
    vertexLines.clear();
    readProblem.clear();

    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    _Image* blob = HFResourceLoader_loadDataResource(pathOf(name).c_str());
    if (blob == nullptr) {
        readProblem = "is missing from the bundle";
        return;
    }
    document.Parse(reinterpret_cast<const char*>(blob->data), static_cast<size_t>(blob->width));
    free_image(&blob);
    if (document.Error()) {
        readProblem = std::string("is not well-formed XML (line ") + std::to_string(document.ErrorLineNum()) +
                      "): " + document.ErrorStr();
        return;
    }

    const tinyxml2::XMLElement* root = document.FirstChildElement();
    if (root == nullptr) return;
    // Sources are kept exactly as written, whitespace included.
    const tinyxml2::XMLElement* vertexElement = root->FirstChildElement("vertex");
    if (const char* vertex = xmlTextOf(vertexElement)) {
        vertexSources.push_back(vertex);
        vertexLines.push_back(textLineOf(vertexElement));
    }
    for (const tinyxml2::XMLElement* fragment = root->FirstChildElement("fragment"); fragment != nullptr;
         fragment = fragment->NextSiblingElement("fragment")) {
        const char* text = xmlTextOf(fragment);
        fragmentSources.push_back(text != nullptr ? text : "");
        fragmentLines.push_back(textLineOf(fragment));
    }
    if (vertexSources.size() == 1 && fragmentSources.size() >= 2) {
        vertexSources.resize(fragmentSources.size(), vertexSources[0]);
        vertexLines.resize(fragmentSources.size(), vertexLines[0]);
    }
}

HFGLFilterImplCache& glFilterImplCache() {
    static HFGLFilterImplCache cache;
    return cache;
}

namespace {

std::mutex& cacheLock() {
    static std::mutex lock;
    return lock;
}

}  // namespace

// The map is locked only to look up and to insert; the file is read outside
// the lock. Two threads missing the same name at once both read it and the
// first insert wins, so every caller gets the one cached description, which
// is never changed once loaded.
shared_ptr<HFGLFilterImpl> HFGLFilterImpl_lookup(const std::string& name) {
    HFGLFilterImplCache& cache = glFilterImplCache();
    {
        const std::lock_guard<std::mutex> lock(cacheLock());
        auto found = cache.find(name);
        if (found != cache.end()) return found->second;
    }
    shared_ptr<HFGLFilterImpl> impl(new HFGLFilterImpl());
    impl->load(name);
    const std::lock_guard<std::mutex> lock(cacheLock());
    return cache.insert(HFGLFilterImplCache::value_type(name, impl)).first->second;
}
