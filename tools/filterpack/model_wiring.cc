#include "model_wiring.h"

#include <algorithm>

namespace filterpack {

ModelWiring::ModelWiring(int childCount) : children(childCount), outputs(childCount > 0 ? childCount : 0) {
    for (int i = 1; i < children; ++i) outputs[i - 1].push_back(Slot(i, 0));
}

ModelWiring::Verdict ModelWiring::relate(int output, int input, int index) {
    const std::string where = "child " + std::to_string(input) + " input " + std::to_string(index);
    if (index < 0 || index > 3) return Verdict{true, "input index " + std::to_string(index) + " is not 0 to 3"};
    if (output < 0) {
        if (output < -4) return Verdict{true, "output " + std::to_string(output) + " names no model input (-1 to -4)"};
        if (input < 0 || input >= children) return Verdict{true, "input " + std::to_string(input) + " names no child"};
        modelInputs[-output - 1].push_back(Slot(input, index));
        if (input == 0 && index == 0) return Verdict{false, "child 0 input 0 already receives the model's input 0"};
        // Model inputs arrive before rendering; a child's output handed on
        // during rendering replaces them.
        if (sourceOf(input, index) >= 0) {
            return Verdict{false, where + " is also fed by child " + std::to_string(sourceOf(input, index)) +
                                      ", whose output replaces the model's input there"};
        }
        return Verdict{false, std::string()};
    }
    if (output >= children) return Verdict{true, "output " + std::to_string(output) + " names no child; the engine ignores it"};
    if (input < 0 || input > children) return Verdict{true, "input " + std::to_string(input) + " names no child; the engine ignores it"};
    if (input == children) return Verdict{true, "input " + std::to_string(input) + " is one past the last child; the engine would address a missing filter"};
    // A destination has one source: the newest relation to it wins.
    for (std::vector<Slot>& list : outputs) {
        list.erase(std::remove(list.begin(), list.end(), Slot(input, index)), list.end());
    }
    outputs[output].push_back(Slot(input, index));
    if (output >= input) {
        return Verdict{false, "child " + std::to_string(output) + " renders after " + where +
                                  ", which reads an output of a former frame"};
    }
    return Verdict{false, std::string()};
}

int ModelWiring::sourceOf(int child, int slot) const {
    for (int i = 0; i < children; ++i) {
        for (const Slot& s : outputs[i]) {
            if (s == Slot(child, slot)) return i;
        }
    }
    for (int k = 0; k < 4; ++k) {
        for (const Slot& s : modelInputs[k]) {
            if (s == Slot(child, slot)) return -1 - k;
        }
    }
    if (child == 0 && slot == 0) return -1;
    return kNobody;
}

}  // namespace filterpack
