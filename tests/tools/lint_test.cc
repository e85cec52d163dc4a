// lint on small scratch bundles: a clean package passes without a finding,
// and each kind of breakage is reported against the right file.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/gl_fixture.h"
#include "image_files.h"
#include "package_lint.h"
#include "seal.h"
#include "tools/tool_test_support.h"

namespace {

using filterpack::Finding;
using filterpack::Severity;
using Files = std::map<std::string, std::string>;

// Input 0 toned by a vec4, blended with input 1 by a float.
const char kBlendFragment[] =
    "precision mediump float;\n"
    "varying vec2 uv;\n"
    "uniform sampler2D inputImageTexture;\n"
    "uniform sampler2D inputImageTexture2;\n"
    "uniform vec4 tone;\n"
    "uniform float amount;\n"
    "void main() {\n"
    "  vec4 c = texture2D(inputImageTexture, uv) * tone;\n"
    "  gl_FragColor = mix(c, texture2D(inputImageTexture2, uv), amount);\n"
    "}\n";

const char kPlainFragment[] =
    "precision mediump float;\n"
    "varying vec2 uv;\n"
    "uniform sampler2D inputImageTexture;\n"
    "void main() { gl_FragColor = texture2D(inputImageTexture, uv); }\n";

std::string sealedHfe(const std::string& plain) {
    std::string text;
    std::string error;
    filterpack::sealShaderSource(filterpack::SealForm::kHfe, plain, &text, &error);
    return text;
}

const char kBlendLeaf[] =
    "<filter implement=\"blend\">"
    "<param><name>tone</name><vector4f><number>1</number><number>1</number><number>1</number>"
    "<number>1</number></vector4f></param>"
    "<param><name>amount</name><float>0.5</float></param>"
    "<param><name>1</name><image>dots.png</image></param>"
    "</filter>";

// A model over an included leaf package with an image and an inline leaf.
Files cleanBundle() {
    return Files{
        {"filter/gl/blend.xml", tooltest::glDescription(sealedHfe(kBlendFragment))},
        {"filter/gl/copy.xml", tooltest::glDescription(std::string("<![CDATA[") + kPlainFragment + "]]>")},
        {"filter/dots/filter.xml", kBlendLeaf},
        {"filter/look/filter.xml",
         "<model><filter include=\"dots\"/><filter implement=\"copy\"/>"
         "<relation output=\"0\" input=\"1\" index=\"0\"/></model>"},
    };
}

class LintTest : public GLTest {
protected:
    std::vector<Finding> lint(const Files& files, const std::string& package = "look") {
        tooltest::ScratchBundle bundle;
        for (const auto& file : files) bundle.write(file.first, file.second);
        filterpack::RgbaImage dots{2, 2, std::vector<uint8_t>(16, 200)};
        std::string error;
        filterpack::writePngFile(bundle.root() + "/filter/dots/dots.png", dots, &error);
        filterpack::BundleDirectory directory(bundle.root());
        filterpack::PackageLinter linter(directory);
        linter.lintPackage(package);
        return linter.findings().all();
    }

    // The findings must hold an error in `file` whose text has `words`.
    static void expectError(const std::vector<Finding>& findings, const std::string& file, const std::string& words) {
        std::string all;
        for (const Finding& finding : findings) {
            if (finding.severity == Severity::kError && finding.file == file &&
                filterpack::formatFinding(finding).find(words) != std::string::npos) {
                return;
            }
            all += filterpack::formatFinding(finding) + "\n";
        }
        ADD_FAILURE() << "no error in " << file << " with \"" << words << "\"; findings:\n" << all;
    }

    Files with(const std::string& path, const std::string& content) {
        Files files = cleanBundle();
        files[path] = content;
        return files;
    }
};

TEST_F(LintTest, CleanModelHasNoFinding) {
    const std::vector<Finding> findings = lint(cleanBundle());
    for (const Finding& finding : findings) ADD_FAILURE() << filterpack::formatFinding(finding);
}

TEST_F(LintTest, ReportsBrokenPackageFilesAndIncludes) {
    expectError(lint(with("filter/look/filter.xml", "<model><filter include=\"dots\"></model>")),
                "filter/look/filter.xml", "not well-formed XML");
    expectError(lint(with("filter/look/filter.xml", "<model><filter include=\"nowhere\"/></model>")),
                "filter/nowhere/filter.xml", "missing from the bundle");
    expectError(lint(with("filter/look/filter.xml", "<looks/>")), "filter/look/filter.xml",
                "the root must be <model> or <filter>");
    expectError(lint(with("filter/look/filter.xml", "<model/>")), "filter/look/filter.xml",
                "at least one <filter>");
}

TEST_F(LintTest, FollowsAnIncludeCycleOnceAndNamesIt) {
    Files files = cleanBundle();
    files["filter/look/filter.xml"] = "<model><filter include=\"loop_a\"/></model>";
    files["filter/loop_a/filter.xml"] = "<model><filter include=\"loop_b\"/></model>";
    files["filter/loop_b/filter.xml"] = "<model><filter include=\"loop_a\"/><filter implement=\"copy\"/></model>";
    const std::vector<Finding> findings = lint(files);
    expectError(findings, "filter/loop_b/filter.xml", "include cycle: loop_a -> loop_b -> loop_a");
}

TEST_F(LintTest, ReportsGLDescriptionsWithoutUsableShaders) {
    expectError(lint(with("filter/gl/copy.xml", "<glfilter><fragment>x</fragment></glfilter>")),
                "filter/gl/copy.xml", "has no <vertex> source");
    expectError(lint(with("filter/gl/copy.xml", std::string("<glfilter><vertex><![CDATA[") + tooltest::kQuadVertex +
                                                    "]]></vertex></glfilter>")),
                "filter/gl/copy.xml", "has no <fragment> source");
    Files files = cleanBundle();
    files.erase("filter/gl/copy.xml");
    expectError(lint(files), "filter/gl/copy.xml", "missing from the bundle");
    expectError(lint(files), "filter/look/filter.xml", "filter/gl/copy.xml is not usable");
}

TEST_F(LintTest, ReportsShadersThatDoNotDecipherCompileOrLink) {
    expectError(lint(with("filter/gl/copy.xml", tooltest::glDescription("mee12x"))), "filter/gl/copy.xml",
                "deciphers to nothing");
    expectError(lint(with("filter/gl/copy.xml", tooltest::glDescription("aes0a1"))), "filter/gl/copy.xml",
                "hex payload");
    expectError(lint(with("filter/gl/copy.xml", tooltest::glDescription("\n" + sealedHfe(kPlainFragment)))),
                "filter/gl/copy.xml", "white space before the protected text");
    expectError(lint(with("filter/gl/copy.xml", tooltest::glDescription(sealedHfe("void main() { oops; }")))),
                "filter/gl/copy.xml", "does not compile");
    // The fragment reads a varying the vertex shader never writes.
    const std::string unlinked =
        "precision mediump float; varying vec2 elsewhere; uniform sampler2D inputImageTexture;"
        "void main() { gl_FragColor = texture2D(inputImageTexture, elsewhere); }";
    expectError(lint(with("filter/gl/copy.xml", tooltest::glDescription(unlinked))), "filter/gl/copy.xml",
                "do not link");
}

TEST_F(LintTest, ReportsParamsTheShaderCannotTake) {
    auto leafWith = [](const std::string& param) {
        std::string leaf = kBlendLeaf;
        return leaf.insert(leaf.find("</filter>"), param);
    };
    expectError(lint(with("filter/dots/filter.xml", leafWith("<param><name>tint</name><float>1</float></param>"))),
                "filter/dots/filter.xml", "no uniform tint in filter/gl/blend.xml");
    expectError(lint(with("filter/dots/filter.xml", leafWith("<param><name>amount</name><vector3f/></param>"))),
                "filter/dots/filter.xml", "type vector3f is not supported");
    expectError(lint(with("filter/dots/filter.xml", leafWith("<param><name>amount</name><colour/></param>"))),
                "filter/dots/filter.xml", "unknown param type <colour>");
    expectError(lint(with("filter/dots/filter.xml", leafWith("<param><value>1</value></param>"))),
                "filter/dots/filter.xml", "the first child must be <name>");
    expectError(lint(with("filter/dots/filter.xml", leafWith("<param><name>tone</name><curve>1,2</curve></param>"))),
                "filter/dots/filter.xml", "uniform tone must be a float array");
    expectError(lint(with("filter/dots/filter.xml", leafWith("<param><name>amount</name><float>half</float></param>"))),
                "filter/dots/filter.xml", "float value is not a number");
    // The engine sets width with glUniform1i.
    std::string fragment = kBlendFragment;
    fragment.insert(fragment.find("void main"), "uniform float width;\n");
    fragment.insert(fragment.rfind('}'), "gl_FragColor.a *= width;\n");
    expectError(lint(with("filter/gl/blend.xml", tooltest::glDescription(sealedHfe(fragment)))), "filter/gl/blend.xml",
                "uniform width must be a int");
}

TEST_F(LintTest, ReportsImageParamsWithoutFileOrSlot) {
    std::string leaf = kBlendLeaf;
    const std::string file = "<image>dots.png</image>";
    expectError(lint(with("filter/dots/filter.xml", std::string(leaf).replace(leaf.find(file), file.size(),
                                                                              "<image>gone.png</image>"))),
                "filter/dots/filter.xml", "image filter/dots/gone.png cannot be read");
    expectError(lint(with("filter/dots/filter.xml", std::string(leaf).replace(leaf.find("<name>1<"), 8, "<name>grain<"))),
                "filter/dots/filter.xml", "the input slot it feeds");
    expectError(lint(with("filter/dots/filter.xml", std::string(leaf).replace(leaf.find("<name>1<"), 8, "<name>2<"))),
                "filter/dots/filter.xml", "no sampler2D inputImageTexture3");
}

TEST_F(LintTest, ReportsWiringTheEngineIgnoresOrCannotRender) {
    const std::string model = "filter/look/filter.xml";
    expectError(lint(with(model, "<model><filter include=\"dots\"/><filter implement=\"copy\"/>"
                                 "<relation output=\"2\" input=\"1\" index=\"0\"/></model>")),
                model, "output 2 names no child");
    expectError(lint(with(model, "<model><filter include=\"dots\"/><filter implement=\"copy\"/>"
                                 "<relation output=\"0\" input=\"2\" index=\"0\"/></model>")),
                model, "one past the last child");
    expectError(lint(with(model, "<model><filter include=\"dots\"/><relation input=\"0\" index=\"1\"/></model>")),
                model, "missing attribute output");
    // A CPU filter leaves no GL texture: it may feed nobody and cannot come last.
    expectError(lint(with(model, "<model><filter implement=\"Curve2D\" prefer=\"CPU\"/><filter implement=\"copy\"/>"
                                 "</model>")),
                model, "child 0 leaves no GL texture, yet feeds child 1 input 0");
    expectError(lint(with(model, "<model><filter implement=\"copy\"/><filter implement=\"Curve2D\" prefer=\"CPU\"/>"
                                 "</model>")),
                model, "the last filter of a model must leave a GL texture");
    expectError(lint(with(model, "<model><filter implement=\"copy\"/><filter implement=\"Sharpen\" prefer=\"CPU\"/>"
                                 "<filter implement=\"copy\"/><relation output=\"0\" input=\"2\" index=\"0\"/></model>")),
                model, "no CPU filter function is registered as \"Sharpen\"");
}

TEST_F(LintTest, CommandPrintsEveryFindingAndFailsOnErrors) {
    tooltest::ScratchBundle bundle;
    bundle.write("filter/gl/copy.xml", "<glfilter><vertex>x</vertex></glfilter>");
    bundle.write("filter/broken/filter.xml",
                 "<model><filter implement=\"copy\"/><filter include=\"absent\"/>"
                 "<relation output=\"0\" input=\"7\" index=\"0\"/></model>");
    const tooltest::CommandResult result = tooltest::runFilterpack("lint " + bundle.root() + " broken");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("filter/gl/copy.xml:1: error: <glfilter>: has no <fragment> source"),
              std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("filter/absent/filter.xml: error: missing from the bundle"), std::string::npos);
    EXPECT_NE(result.output.find("filter/broken/filter.xml:1: error: <relation output=\"0\" input=\"7\" index=\"0\">"),
              std::string::npos);
}

}  // namespace
