#include "engine/filter_object.h"

#include <algorithm>

#include "jni/bridge/log.h"

shared_ptr<HFFilterObject> HFFilterObject::createFilter() { return shared_ptr<HFFilterObject>(new HFFilterObject()); }

HFFilterObject::HFFilterObject() : releaseIntermediates(false) {}

// Wiring first, then the children in list order.
HFFilterObject::~HFFilterObject() {
    outputMaps.clear();
    for (DestinationList& list : inputMaps) list.clear();
    for (shared_ptr<IHFFilter>& filter : filters) filter.release();
}

void HFFilterObject::addFilter(shared_ptr<IHFFilter> filter) {
    filters.push_back(filter);
    const int n = static_cast<int>(filters.size());
    if (n > 1) addMap(n - 2, n - 1, 0);
}

void HFFilterObject::addMap(int output, int input, int index) {
    if (output < 0) {
        // The composite's own input -output-1; deliberately unchecked apart
        // from the four slots that exist.
        // In 64 bits: a relation's "output" may be INT32_MIN.
        const int64_t slot = -static_cast<int64_t>(output) - 1;
        if (slot < 4) inputMaps[slot].emplace_back(input, index);
        return;
    }
    const uint32_t n = static_cast<uint32_t>(filters.size());
    // Unsigned on purpose: a negative input is ignored, and input == n (one
    // past the last child) is stored; render skips it.
    if (static_cast<uint32_t>(output) >= n || static_cast<uint32_t>(input) > n) return;

    // Grows by counting r down while the list count goes up.
    for (uint32_t r = n; r >= outputMaps.size(); --r) {
        outputMaps.emplace_back();
        if (r == 0) break;
    }

    const Destination destination(input, index);
    for (DestinationList& list : outputMaps) {
        list.erase(std::remove(list.begin(), list.end(), destination), list.end());
    }
    outputMaps[static_cast<size_t>(output)].push_back(destination);
}

void HFFilterObject::clearMap() {
    outputMaps.clear();
    outputMaps.resize(filters.size());
}

shared_ptr<IHFFilter> HFFilterObject::child(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= filters.size()) return shared_ptr<IHFFilter>();
    return filters[static_cast<size_t>(index)];
}

shared_ptr<IHFFilter> HFFilterObject::firstChild() const { return child(0); }

shared_ptr<IHFFilter> HFFilterObject::lastChild() const { return child(static_cast<int>(filters.size()) - 1); }

// An empty composite, and an empty child handle, are no-ops everywhere below.
void HFFilterObject::setInputTextureSize(HFSize size) {
    if (shared_ptr<IHFFilter> first = firstChild()) first->setInputTextureSize(size);
}

void HFFilterObject::setInputTextureImage(_Image* image, int index) {
    if (shared_ptr<IHFFilter> first = firstChild()) first->setInputTextureImage(image, index);
}

void HFFilterObject::setInputTexture(shared_ptr<IHFTexture> texture, int index) {
    shared_ptr<IHFFilter> first = firstChild();
    if (!first) return;
    first->setInputTexture(texture, index);
    if (index < 0 || index >= 4) return;
    for (const Destination& destination : inputMaps[index]) {
        if (shared_ptr<IHFFilter> target = child(destination.first)) {
            target->setInputTexture(texture, destination.second);
        }
    }
}

shared_ptr<IHFTexture> HFFilterObject::getInputTexture(int index) {
    shared_ptr<IHFFilter> first = firstChild();
    return first ? first->getInputTexture(index) : shared_ptr<IHFTexture>();
}

void HFFilterObject::setProperty(const char* name, float value) {
    for (size_t i = 0; i < filters.size(); ++i) {
        shared_ptr<IHFFilter> filter = filters[i];
        if (filter) filter->setProperty(name, value);
    }
}

void HFFilterObject::setFilterFBO() {
    if (shared_ptr<IHFFilter> last = lastChild()) last->setFilterFBO();
}

// Children render front to back; each hands its output on along its wiring
// right after rendering, so only forward links see this pass's result.
void HFFilterObject::render(_Image* image) {
    const int n = static_cast<int>(filters.size());
    if (n == 0) return;
    if (image != nullptr && filters[0]) filters[0]->setInputTextureImage(image, 0);
    if (n != 1) {
        for (int i = 0; i < n - 1; ++i) {
            shared_ptr<IHFFilter> source = filters[static_cast<size_t>(i)];
            if (!source) continue;
            source->render(nullptr);
            if (static_cast<size_t>(i) < outputMaps.size()) {
                for (const Destination& destination : outputMaps[static_cast<size_t>(i)]) {
                    log_printD("output: %d, input: %d, index: %d\n", i, destination.first, destination.second);
                    shared_ptr<IHFFilter> target = child(destination.first);
                    if (!target) continue;
                    target->setInputTextureSize(source->outputTextureSize());
                    target->setInputTexture(source->outputTexture(), destination.second);
                }
            }
            if (releaseIntermediates) source->clearMemoryData();
        }
    }
    if (shared_ptr<IHFFilter> last = lastChild()) last->render(image);
}

void HFFilterObject::setFrameBufferBlendMode(int, int) {}

HFSize HFFilterObject::outputTextureSize() {
    shared_ptr<IHFFilter> last = lastChild();
    return last ? last->outputTextureSize() : HFSize{0, 0};
}

shared_ptr<IHFTexture> HFFilterObject::outputTexture() {
    shared_ptr<IHFFilter> last = lastChild();
    return last ? last->outputTexture() : shared_ptr<IHFTexture>();
}

void HFFilterObject::readOutput(_Image* image) {
    if (shared_ptr<IHFFilter> last = lastChild()) last->readOutput(image);
}

// The last child holds the composite's output and keeps its memory.
void HFFilterObject::clearMemoryData() {
    const size_t n = filters.size();
    if (n <= 1) return;
    for (size_t i = 0; i + 1 < n; ++i) {
        shared_ptr<IHFFilter> filter = filters[i];
        if (filter) filter->clearMemoryData();
    }
}

void HFFilterObject::cpuCodeSlot() {}
