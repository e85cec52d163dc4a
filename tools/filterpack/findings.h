// What `lint` reports: one line per problem, naming the bundle file, the
// line and the element it is about.
#ifndef FILTERPACK_FINDINGS_H
#define FILTERPACK_FINDINGS_H

#include <cstdio>
#include <string>
#include <vector>

namespace tinyxml2 {
class XMLElement;
}

namespace filterpack {

enum class Severity { kWarning, kError };

struct Finding {
    Severity severity;
    std::string file;     // bundle path, e.g. "filter/dreamy/filter.xml"
    int line;             // 0 when the problem is the file as a whole
    int column;           // 0 when only the line is known
    std::string element;  // e.g. "<relation output=\"0\" input=\"2\" index=\"0\">"; may be empty
    std::string message;
};

// "file:line[:column]: error: <element>: message"
std::string formatFinding(const Finding& finding);

// The element's tag with its attributes as written, for findings.
std::string describeElement(const tinyxml2::XMLElement* element);

class Findings {
public:
    void add(Severity severity, const std::string& file, const tinyxml2::XMLElement* element,
             const std::string& message);
    // At `line` of the file, about `element` (a shader line inside it).
    void addAt(Severity severity, const std::string& file, int line, const tinyxml2::XMLElement* element,
               const std::string& message);
    void addForFile(Severity severity, const std::string& file, int line, const std::string& message, int column = 0);
    void append(const Findings& other) { list.insert(list.end(), other.list.begin(), other.list.end()); }

    const std::vector<Finding>& all() const { return list; }
    int errorCount() const;
    void print(std::FILE* out) const;

private:
    std::vector<Finding> list;
};

}  // namespace filterpack

#endif  // FILTERPACK_FINDINGS_H
