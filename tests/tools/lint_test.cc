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
    "precision mediump float; varying vec2 uv;\n"
    "uniform sampler2D inputImageTexture; uniform sampler2D inputImageTexture2;\n"
    "uniform vec4 tone; uniform float amount;\n"
    "void main() {\n"
    "  vec4 c = texture2D(inputImageTexture, uv) * tone;\n"
    "  gl_FragColor = mix(c, texture2D(inputImageTexture2, uv), amount);\n"
    "}\n";

const char kPlainFragment[] =
    "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
    "void main() { gl_FragColor = texture2D(inputImageTexture, uv); }\n";

std::string sealedHfe(const std::string& plain) {
    std::string text, error;
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
};

TEST_F(LintTest, CleanModelHasNoFinding) {
    for (const Finding& finding : lint(cleanBundle())) ADD_FAILURE() << filterpack::formatFinding(finding);
}

std::string leafWith(const std::string& param) {
    std::string leaf = kBlendLeaf;
    return leaf.insert(leaf.find("</filter>"), param);
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

// Each case replaces one file of the clean bundle ("" deletes it) and expects
// an error whose text holds `words`, in `file` or else in the replaced file.
struct Breakage {
    const char* path;
    std::string content;
    const char* words;
    const char* file = nullptr;
};

TEST_F(LintTest, ReportsEachKindOfBrokenPackage) {
    const char* model = "filter/look/filter.xml";
    const char* leaf = "filter/dots/filter.xml";
    const char* copy = "filter/gl/copy.xml";
    std::string widthAsFloat = kBlendFragment;  // the engine sets width with glUniform1i
    widthAsFloat.insert(widthAsFloat.find("void main"), "uniform float width;\n");
    widthAsFloat.insert(widthAsFloat.rfind('}'), "gl_FragColor.a *= width;\n");
    const std::string twoChildren = "<model><filter include=\"dots\"/><filter implement=\"copy\"/>";
    const std::string cpu = "<filter implement=\"Curve2D\" prefer=\"CPU\"/>";
    const Breakage cases[] = {
        {model, "<model><filter include=\"dots\"></model>", "not well-formed XML"},
        {model, "<model><filter include=\"nowhere\"/></model>", "missing from the bundle", "filter/nowhere/filter.xml"},
        {model, "<looks/>", "the root must be <model> or <filter>"},
        {model, "<model/>", "at least one <filter>"},
        {copy, "<glfilter><fragment>x</fragment></glfilter>", "has no <vertex> source"},
        {copy, "<glfilter><vertex>x</vertex></glfilter>", "has no <fragment> source"},
        {copy, "", "missing from the bundle"},
        {copy, "", "filter/gl/copy.xml is not usable", model},
        {copy, tooltest::glDescription("mee12x"), "deciphers to nothing"},
        {copy, tooltest::glDescription("aes0a1"), "hex payload"},
        {copy, tooltest::glDescription("\n" + sealedHfe(kPlainFragment)), "white space before the protected text"},
        {copy, tooltest::glDescription(sealedHfe("void main() { oops; }")), "does not compile"},
        // The stages disagree on a varying's type: a link error on every
        // conforming compiler (an unwritten varying is not: some accept it).
        {copy,
         tooltest::glDescription("precision mediump float; varying vec3 uv; uniform sampler2D "
                                 "inputImageTexture; void main() { gl_FragColor = texture2D(inputImageTexture, "
                                 "uv.xy); }"),
         "do not link"},
        {"filter/gl/blend.xml", tooltest::glDescription(sealedHfe(widthAsFloat)), "uniform width must be a int"},
        {leaf, leafWith("<param><name>tint</name><float>1</float></param>"), "no uniform tint in filter/gl/blend.xml"},
        {leaf, leafWith("<param><name>amount</name><vector3f/></param>"), "type vector3f is not supported"},
        {leaf, leafWith("<param><name>amount</name><colour/></param>"), "unknown param type <colour>"},
        {leaf, leafWith("<param><value>1</value></param>"), "the first child must be <name>"},
        {leaf, leafWith("<param><name>tone</name><curve>1,2</curve></param>"), "uniform tone must be a float array"},
        {leaf, leafWith("<param><name>amount</name><float>half</float></param>"), "float value is not a number"},
        {leaf, replaced(kBlendLeaf, "dots.png", "gone.png"), "image filter/dots/gone.png cannot be read"},
        {leaf, replaced(kBlendLeaf, "<name>1<", "<name>grain<"), "the input slot it feeds"},
        {leaf, replaced(kBlendLeaf, "<name>1<", "<name>2<"), "no sampler2D inputImageTexture3"},
        {model, twoChildren + "<relation output=\"2\" input=\"1\" index=\"0\"/></model>", "output 2 names no child"},
        {model, twoChildren + "<relation output=\"0\" input=\"2\" index=\"0\"/></model>", "one past the last child"},
        {model, "<model><filter include=\"dots\"/><relation input=\"0\" index=\"1\"/></model>",
         "missing attribute output"},
        // A CPU filter leaves no GL texture: it may feed nobody and cannot come last.
        {model, "<model>" + cpu + "<filter implement=\"copy\"/></model>",
         "child 0 leaves no GL texture, yet feeds child 1 input 0"},
        {model, "<model><filter implement=\"copy\"/>" + cpu + "</model>",
         "the last filter of a model must leave a GL texture"},
        {model,
         "<model><filter implement=\"copy\"/><filter implement=\"Sharpen\" prefer=\"CPU\"/>"
         "<filter implement=\"copy\"/><relation output=\"0\" input=\"2\" index=\"0\"/></model>",
         "no CPU filter function is registered as \"Sharpen\""},
    };
    for (const Breakage& c : cases) {
        Files files = cleanBundle();
        if (c.content.empty()) {
            files.erase(c.path);
        } else {
            files[c.path] = c.content;
        }
        expectError(lint(files), c.file != nullptr ? c.file : c.path, c.words);
    }
}

TEST_F(LintTest, FollowsAnIncludeCycleOnceAndNamesIt) {
    Files files = cleanBundle();
    files["filter/look/filter.xml"] = "<model><filter include=\"loop_a\"/></model>";
    files["filter/loop_a/filter.xml"] = "<model><filter include=\"loop_b\"/></model>";
    files["filter/loop_b/filter.xml"] = "<model><filter include=\"loop_a\"/><filter implement=\"copy\"/></model>";
    expectError(lint(files), "filter/loop_b/filter.xml", "include cycle: loop_a -> loop_b -> loop_a");
}

// The commands print the engine's or the linter's reasons and exit with 1.
TEST(FilterpackCommand, LintAndRenderFailOnBrokenPackages) {
    tooltest::ScratchBundle bundle;
    bundle.write("filter/gl/copy.xml", "<glfilter><vertex>x</vertex></glfilter>");
    bundle.write("filter/broken/filter.xml",
                 "<model><filter implement=\"copy\"/><filter include=\"absent\"/>"
                 "<relation output=\"0\" input=\"7\" index=\"0\"/></model>");
    bundle.write("filter/half/filter.xml", "<model><filter implement=\"x\"/><relation output=\"0\"/></model>");
    std::string error;
    ASSERT_TRUE(filterpack::writePngFile(bundle.root() + "/in.png", {2, 2, std::vector<uint8_t>(16, 9)}, &error));
    const auto run = [&](const std::string& arguments, std::vector<std::string> lines) {
        const tooltest::CommandResult result = tooltest::runFilterpack(arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        for (const std::string& line : lines) EXPECT_NE(result.output.find(line), std::string::npos) << result.output;
    };
    run("lint " + bundle.root() + " broken",
        {"filter/gl/copy.xml:1: error: <glfilter>: has no <fragment> source",
         "filter/absent/filter.xml: error: missing from the bundle",
         "filter/broken/filter.xml:1: error: <relation output=\"0\" input=\"7\" index=\"0\">"});
    const std::string render = "render " + bundle.root() + " ";
    const std::string out = " " + bundle.root() + "/out.png";
    run(render + "absent " + bundle.root() + "/in.png" + out,
        {"filter package absent (filter/absent/filter.xml): cannot be read"});
    run(render + "half " + bundle.root() + "/in.png" + out, {"relation needs"});
    run("render " SAMPLE_BUNDLE " mono " + bundle.root() + "/none.png" + out, {});
}

}  // namespace
