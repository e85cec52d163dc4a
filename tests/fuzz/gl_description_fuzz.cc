// GL description XML: the input served as "filter/gl/fz.xml" and loaded, its
// sources deciphered; the same text read as a leaf "filter" element with its
// parameters, which a CPU leaf then receives.
#include <tinyxml2.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/gl/filter_desc_node.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/gl/shader_decipher.h"
#include "fuzz_bundle.h"

namespace {

void decipherAll(const std::vector<std::string>& sources) {
    for (const std::string& source : sources) free(decipherShaderSource(source.c_str()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FuzzBundle bundle;
    bundle.reset();
    const std::string text(reinterpret_cast<const char*>(data), size);
    bundle.files["filter/gl/fz.xml"] = text;

    shared_ptr<HFGLFilterImpl> impl = HFGLFilterImpl_lookup("fz");
    if (!impl) abort();
    if (impl->vertexSources.size() > 1 && impl->vertexSources.size() != impl->fragmentSources.size()) abort();
    decipherAll(impl->vertexSources);
    decipherAll(impl->fragmentSources);

    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) return 0;
    for (tinyxml2::XMLElement* element = document.FirstChildElement(); element != nullptr;
         element = element->NextSiblingElement()) {
        shared_ptr<HFFilterDescNode> node(new HFFilterDescNode());
        node->name = "fz";
        node->parse(element);
        // A GPU leaf needs a GL context: the package target builds those.
        if (node->preferCPU) node->createFilter();
    }
    return 0;
}
