#include "engine/engine_problems.h"

#include "jni/bridge/log.h"

namespace {

thread_local HFProblemCollector* openCollector = nullptr;

}  // namespace

HFProblemCollector::HFProblemCollector() : outer(openCollector) { openCollector = this; }

HFProblemCollector::~HFProblemCollector() { openCollector = outer; }

void HFProblem_report(const std::string& text) {
    log_printE("%s", text.c_str());
    for (HFProblemCollector* collector = openCollector; collector != nullptr; collector = collector->outer) {
        if (collector->reported == 0) collector->earliest = text;
        collector->latest = text;
        ++collector->reported;
    }
}

std::string HFProblemCollector::summary() const {
    if (reported <= 1) return earliest;
    return earliest + " (" + std::to_string(reported - 1) + " more in the log)";
}
