// Failures of the filter engine that a caller should hear about: each is
// logged at error level and also handed to the collector that the current
// thread has open, so a wrapper can answer "what went wrong last".
#ifndef IFC_ENGINE_ENGINE_PROBLEMS_H
#define IFC_ENGINE_ENGINE_PROBLEMS_H

#include <string>

#include "image_filter/image.h"  // IFC_API

// Logs the text with log_printE and records it in the open collector, if any.
IFC_API void HFProblem_report(const std::string& text);

// Collects the problems reported on this thread while it lives. Collectors
// nest: an inner one sees only what happens inside it, and passes each
// problem on to the outer one as well.
class IFC_API HFProblemCollector {
public:
    HFProblemCollector();
    ~HFProblemCollector();
    HFProblemCollector(const HFProblemCollector&) = delete;
    HFProblemCollector& operator=(const HFProblemCollector&) = delete;

    // The first problem (usually the cause of the others) and the most
    // recent one; empty when none was reported.
    const std::string& first() const { return earliest; }
    const std::string& last() const { return latest; }
    int count() const { return reported; }
    // The first problem, with how many more followed it; empty when none.
    std::string summary() const;

private:
    friend void HFProblem_report(const std::string& text);

    HFProblemCollector* outer;
    std::string earliest;
    std::string latest;
    int reported = 0;
};

#endif  // IFC_ENGINE_ENGINE_PROBLEMS_H
