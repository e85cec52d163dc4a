// Every XML example of docs/package-format.md, written into one bundle at
// the path its first line names, must lint clean and render: the reference
// cannot drift from what the engine does.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "image_files.h"
#include "tools/tool_test_support.h"

namespace {

TEST(FormatReference, EveryXmlExampleLintsCleanAndRenders) {
    std::ifstream file(PACKAGE_FORMAT_DOC);
    ASSERT_TRUE(file) << PACKAGE_FORMAT_DOC;
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());

    tooltest::ScratchBundle bundle;
    std::set<std::string> paths;
    const std::regex block("```xml\n<!-- file: ([^ ]+) -->\n([^`]*)```");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), block); it != std::sregex_iterator(); ++it) {
        const std::string path = (*it)[1];
        const std::string content = (*it)[2];
        EXPECT_TRUE(paths.insert(path).second) << "two examples write " << path;
        bundle.write(path, content);
        // Image params get a small picture under their package.
        const std::regex image("<image>([^<]+)</image>");
        for (auto m = std::sregex_iterator(content.begin(), content.end(), image); m != std::sregex_iterator(); ++m) {
            const std::string directory = path.substr(0, path.rfind('/') + 1);
            std::string error;
            ASSERT_TRUE(filterpack::writePngFile(bundle.root() + "/" + directory + (*m)[1].str(),
                                                 {2, 2, std::vector<uint8_t>(16, 90)}, &error));
        }
    }
    size_t fences = 0;
    for (size_t at = text.find("```xml"); at != std::string::npos; at = text.find("```xml", at + 1)) ++fences;
    EXPECT_EQ(fences, paths.size()) << "every XML example starts with <!-- file: PATH -->";
    EXPECT_GE(paths.size(), 8u);

    const tooltest::CommandResult result = tooltest::runFilterpack("lint " + bundle.root());
    EXPECT_EQ(result.status, 0) << result.output;
    // The curve example shows the loop the text warns about; nothing else warns.
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("warning:") != std::string::npos && line.find("a loop reads uniform toneCurve") == std::string::npos &&
            line.find("built without glslang") == std::string::npos) {
            ADD_FAILURE() << line;
        }
    }
}

}  // namespace
