#include "findings.h"

#include <tinyxml2.h>

namespace filterpack {

std::string formatFinding(const Finding& finding) {
    std::string text = finding.file;
    if (finding.line > 0) text += ":" + std::to_string(finding.line);
    if (finding.line > 0 && finding.column > 0) text += ":" + std::to_string(finding.column);
    text += finding.severity == Severity::kError ? ": error: " : ": warning: ";
    if (!finding.element.empty()) text += finding.element + ": ";
    return text + finding.message;
}

std::string describeElement(const tinyxml2::XMLElement* element) {
    if (element == nullptr) return std::string();
    std::string text = "<";
    text += element->Name();
    for (const tinyxml2::XMLAttribute* a = element->FirstAttribute(); a != nullptr; a = a->Next()) {
        text += std::string(" ") + a->Name() + "=\"" + a->Value() + "\"";
    }
    return text + ">";
}

void Findings::add(Severity severity, const std::string& file, const tinyxml2::XMLElement* element,
                   const std::string& message) {
    addAt(severity, file, element != nullptr ? element->GetLineNum() : 0, element, message);
}

void Findings::addAt(Severity severity, const std::string& file, int line, const tinyxml2::XMLElement* element,
                     const std::string& message) {
    list.push_back(Finding{severity, file, line, 0, describeElement(element), message});
}

void Findings::addForFile(Severity severity, const std::string& file, int line, const std::string& message,
                          int column) {
    list.push_back(Finding{severity, file, line, column, std::string(), message});
}

int Findings::errorCount() const {
    int count = 0;
    for (const Finding& finding : list) count += finding.severity == Severity::kError ? 1 : 0;
    return count;
}

void Findings::print(std::FILE* out) const {
    for (const Finding& finding : list) std::fprintf(out, "%s\n", formatFinding(finding).c_str());
}

}  // namespace filterpack
