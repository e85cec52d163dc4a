// HFFilterObject: a composite filter. Children render front to back; a wiring
// table hands each child's output texture to input slots of other children,
// and the last child's output is the composite's output.
#ifndef IFC_ENGINE_FILTER_OBJECT_H
#define IFC_ENGINE_FILTER_OBJECT_H

#include <cstddef>
#include <utility>
#include <vector>

#include "engine/filter.h"

class IFC_API HFFilterObject : public IHFFilter {
public:
    // (child index, child input index)
    using Destination = std::pair<int32_t, int32_t>;
    using DestinationList = std::vector<Destination>;

    static shared_ptr<HFFilterObject> createFilter();

    HFFilterObject();
    ~HFFilterObject() override;

    // Appends a child and chains it after the previous one at input 0.
    void addFilter(shared_ptr<IHFFilter> filter);
    // Output of `output` (a child, or for negative values the composite's own
    // input -output-1) becomes input `index` of child `input`.
    void addMap(int output, int input, int index);
    // Drops all output wiring; composite input wiring stays.
    void clearMap();

    void setReleaseIntermediates(bool release) { releaseIntermediates = release; }
    bool releasesIntermediates() const { return releaseIntermediates; }

    size_t filterCount() const { return filters.size(); }
    // Child `index` in the order added; empty when out of range.
    shared_ptr<IHFFilter> filterAt(size_t index) const {
        return index < filters.size() ? filters[index] : shared_ptr<IHFFilter>();
    }
    const std::vector<DestinationList>& outputWiring() const { return outputMaps; }
    const DestinationList& inputWiring(int index) const { return inputMaps[index]; }

    void setInputTextureSize(HFSize size) override;
    void setInputTextureImage(_Image* image, int index) override;
    void setInputTexture(shared_ptr<IHFTexture> texture, int index) override;
    shared_ptr<IHFTexture> getInputTexture(int index) override;
    void setProperty(const char* name, float value) override;
    void setFilterFBO() override;
    void render(_Image* image) override;
    void setFrameBufferBlendMode(int source, int destination) override;
    HFSize outputTextureSize() override;
    shared_ptr<IHFTexture> outputTexture() override;
    void readOutput(_Image* image) override;
    void clearMemoryData() override;
    void cpuCodeSlot() override;

private:
    shared_ptr<IHFFilter> firstChild() const;
    shared_ptr<IHFFilter> lastChild() const;
    shared_ptr<IHFFilter> child(int index) const;

    bool releaseIntermediates;
    std::vector<shared_ptr<IHFFilter>> filters;
    DestinationList inputMaps[4];
    std::vector<DestinationList> outputMaps;
};

#endif  // IFC_ENGINE_FILTER_OBJECT_H
