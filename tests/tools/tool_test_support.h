// Scratch bundles on disk and a way to run the filterpack command itself.
#ifndef IFC_TESTS_TOOLS_TOOL_TEST_SUPPORT_H
#define IFC_TESTS_TOOLS_TOOL_TEST_SUPPORT_H

#include <string>

namespace tooltest {

// A fresh directory laid out as a bundle, removed with the object.
class ScratchBundle {
public:
    ScratchBundle();
    ~ScratchBundle();
    ScratchBundle(const ScratchBundle&) = delete;
    ScratchBundle& operator=(const ScratchBundle&) = delete;

    // Writes `content` to "<root>/<path>", making directories on the way.
    void write(const std::string& path, const std::string& content) const;
    const std::string& root() const { return rootPath; }

private:
    std::string rootPath;
};

struct CommandResult {
    int status;          // exit status, -1 when it did not exit normally
    std::string output;  // stdout and stderr together
};

// Runs `filterpack` with the given argument text.
CommandResult runFilterpack(const std::string& arguments);

// A one-pass GL description over a pass-through vertex shader, whose
// fragment source is `fragment` as written.
std::string glDescription(const std::string& fragment);

}  // namespace tooltest

#endif  // IFC_TESTS_TOOLS_TOOL_TEST_SUPPORT_H
