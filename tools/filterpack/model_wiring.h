// The wiring a model gets in the engine: every child takes the previous
// child's output at input 0, then each relation moves or adds one link.
// Mirrors HFFilterObject::addMap so lint can say what actually reaches each
// child, and which relations the engine ignores.
#ifndef FILTERPACK_MODEL_WIRING_H
#define FILTERPACK_MODEL_WIRING_H

#include <string>
#include <utility>
#include <vector>

namespace filterpack {

class ModelWiring {
public:
    using Slot = std::pair<int, int>;  // (child, input index)

    explicit ModelWiring(int children);

    struct Verdict {
        bool error;           // ignored or harmful; else at most doubtful
        std::string message;  // empty when the relation is fine
    };
    // Applies one relation as the engine would and says what is wrong with it.
    Verdict relate(int output, int input, int index);

    // Who feeds child `child` at `slot`: a child index, -1 - k for the
    // model's input k, or kNobody.
    int sourceOf(int child, int slot) const;
    // Destinations fed by child `child`'s output.
    const std::vector<Slot>& destinationsOf(int child) const { return outputs[child]; }

    static constexpr int kNobody = -100;

private:
    int children;
    std::vector<std::vector<Slot>> outputs;
    std::vector<Slot> modelInputs[4];
};

}  // namespace filterpack

#endif  // FILTERPACK_MODEL_WIRING_H
