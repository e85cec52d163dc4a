// Parameters a running package takes from its caller. A package's public
// parameters are the float, vector4f, matrix4f and curve params that its
// leaf descriptions declare; a value set at run time reaches every leaf
// filter of the wrapper's tree that declares that name with that kind, nested
// models and included packages alike, through the same setters the
// description's own values use.
#ifndef IFC_ENGINE_RUNTIME_PARAMS_H
#define IFC_ENGINE_RUNTIME_PARAMS_H

#include <string>
#include <vector>

#include "engine/filter_node.h"
#include "engine/gl/filter_param.h"

class HFFilterWraper;

enum class HFParamKind { Float, Vec4, Matrix4, Curve };

// The XML type tag of a kind: "float", "vector4f", "matrix4f", "curve".
IFC_API const char* HFParamKind_name(HFParamKind kind);

class IFC_API HFRuntimeParams {
public:
    // Pairs the leaves of `filter` with the descriptions of `node` that built
    // them (a model's child i built the composite's child i) and records each
    // declared float, vector4f, matrix4f and curve param.
    void collect(const shared_ptr<IHFFilterNode>& node, IHFFilter* filter);

    // Queues `value` (a float, vec4, matrix or curve param with its name) for
    // the next applyPending. Empty on success; otherwise the problem, and
    // nothing is queued.
    std::string set(const shared_ptr<HFFilterParam>& value);

    // Pushes the queued values into their filters, on the GL thread before
    // drawing. A value replaces the one the description gave: a CPU leaf's
    // parameter map keeps the first value stored under a name, so the old
    // entry is dropped first.
    void applyPending();

    // Kind declared under `name`; false when no leaf declares it.
    bool kindOf(const std::string& name, HFParamKind* kind) const;
    bool hasPending() const { return !pending.empty(); }

private:
    struct Target {
        IHFFilter* filter;  // borrowed: the wrapper's tree owns it
        std::string name;
        HFParamKind kind;
    };
    std::vector<Target> targets;
    // Latest value per name, in the order first set.
    std::vector<shared_ptr<HFFilterParam>> pending;
};

// Entry for tools: sets `name` on the wrapper from text written as in a
// package file, read by the kind the package declares: a float ("0.75"), 4
// comma-separated numbers for a vector4f, 16 for a matrix4f (column-major),
// 1 to 256 comma-separated integers n (n / 256) for a curve. Takes effect at
// the next render. False, with the reason in *problem (may be null) and as
// the wrapper's last problem, when the package declares no such parameter or
// the text does not fit its kind.
IFC_API bool HFFilterWraper_setParameter(HFFilterWraper* wraper, const char* name, const char* value,
                                         std::string* problem);

#endif  // IFC_ENGINE_RUNTIME_PARAMS_H
