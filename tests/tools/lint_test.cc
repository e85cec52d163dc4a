// lint on small scratch bundles: a clean package passes without a finding,
// and each kind of breakage is reported against the right file and line,
// with the same verdict whatever GL driver runs the test.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "glsl_check.h"
#include "image_files.h"
#include "package_lint.h"
#include "seal.h"
#include "support/gl_fixture.h"
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

std::string cdata(const std::string& text) { return "<![CDATA[" + text + "]]>"; }

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
        {"filter/gl/copy.xml", tooltest::glDescription(cdata(kPlainFragment))},
        {"filter/dots/filter.xml", kBlendLeaf},
        {"filter/look/filter.xml",
         "<model><filter include=\"dots\"/><filter implement=\"copy\"/>"
         "<relation output=\"0\" input=\"1\" index=\"0\"/></model>"},
    };
}

std::string leafWith(const std::string& param) {
    std::string leaf = kBlendLeaf;
    return leaf.insert(leaf.find("</filter>"), param);
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
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

    // The findings must hold one of `severity` in `file` at `line` (any line
    // when negative) whose formatted text has `words`.
    static void expectFinding(const std::vector<Finding>& findings, Severity severity, const std::string& file,
                              int line, const std::string& words) {
        std::string all;
        for (const Finding& finding : findings) {
            if (finding.severity == severity && finding.file == file && (line < 0 || finding.line == line) &&
                filterpack::formatFinding(finding).find(words) != std::string::npos) {
                return;
            }
            all += filterpack::formatFinding(finding) + "\n";
        }
        ADD_FAILURE() << "no finding in " << file << ":" << line << " with \"" << words << "\"; findings:\n" << all;
    }
};

TEST_F(LintTest, CleanModelHasNoFinding) {
    for (const Finding& finding : lint(cleanBundle())) {
        if (finding.message.find("built without glslang") == std::string::npos) {
            ADD_FAILURE() << filterpack::formatFinding(finding);
        }
    }
}

// Each case replaces one file of the clean bundle ("" deletes it) and expects
// a finding at `line` (-1: any) whose text holds `words`, in `file` or else
// in the replaced file. glDescription puts <fragment> and the first line of
// its text on line 3.
struct Breakage {
    const char* path;
    std::string content;
    int line;
    const char* words;
    const char* file = nullptr;
    Severity severity = Severity::kError;
};

TEST_F(LintTest, ReportsEachKindOfBrokenPackage) {
    const char* model = "filter/look/filter.xml";
    const char* leaf = "filter/dots/filter.xml";
    const char* copy = "filter/gl/copy.xml";
    const char* blend = "filter/gl/blend.xml";
    std::string widthAsFloat = kBlendFragment;  // the engine sets width with glUniform1i
    widthAsFloat.insert(widthAsFloat.find("void main"), "uniform float width;\n");
    widthAsFloat.insert(widthAsFloat.rfind('}'), "gl_FragColor.a *= width;\n");
    const std::string twoChildren = "<model><filter include=\"dots\"/><filter implement=\"copy\"/>";
    const std::string cpu = "<filter implement=\"Curve2D\" prefer=\"CPU\"/>";
    const std::string head = "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n";
    const Breakage cases[] = {
        // XML the engine cannot parse: line, column and what to write (each
        // kind of mistake is worded by the XML locator's own test).
        {model, "<model>\n<filter include=\"dots\">\n</model>", 3,
         ":3:1: error: not well-formed XML: </model> closes <filter> opened on line 2"},
        // Names the engine ignores, with the closest known one.
        {leaf, "<filter implement=\"blend\">\n<parm><name>amount</name><float>1</float></parm></filter>", 2,
         "<parm>: unknown element <parm> in <filter>: the engine ignores it; did you mean <param>?"},
        {leaf, "<filter implment=\"blend\"/>", 1,
         "unknown attribute implment on <filter>: the engine ignores it; did you mean implement?"},
        {model, "<model><filter include=\"dots\"/><relation output=\"0\" input=\"0\" indx=\"1\"/></model>", 1,
         "unknown attribute indx on <relation>: the engine ignores it; did you mean index?"},
        {copy, "<glfilter>\n<vertx>x</vertx><fragment>y</fragment></glfilter>", 2,
         "unknown element <vertx> in <glfilter>: the engine ignores it; did you mean <vertex>?"},
        {leaf, leafWith("\n<param><name>amount</name><flaot>1</flaot></param>"), 2,
         "unknown param type <flaot>; did you mean <float>?"},
        // Params and uniforms, worded from the param's side.
        {leaf, leafWith("\n<param><name>tnoe</name><float>1</float></param>"), 2,
         "param tnoe names no uniform of filter/gl/blend.xml; did you mean tone?"},
        {leaf, leafWith("\n<param><name>tone</name><float>1</float></param>"), 2,
         "param tone is a float, uniform tone is a vec4"},
        {leaf, leafWith("\n<param><name>amount</name><curve>1,2</curve></param>"), 2,
         "param amount is a curve (a float[256]), uniform amount is a float"},
        {leaf, replaced(kBlendLeaf, "<param><name>amount</name><float>0.5</float></param>", ""), 1,
         "uniform amount (float) is set by no param: it stays 0", nullptr, Severity::kWarning},
        {blend, tooltest::glDescription(sealedHfe(widthAsFloat)), 3,
         "uniform width is a float; the engine sets it as int (set with glUniform1i)"},
        // glslang's verdict at the XML line of the shader line; sealed texts
        // name the element and the shader line.
        {copy, tooltest::glDescription(cdata(head + "void main() {\n  oops; }")), 5,
         "<fragment>: glslang: 'oops' : undeclared identifier"},
        {copy, tooltest::glDescription("\n\n" + head + "void main() { gl_FragColor = texture(inputImageTexture, uv); }"), 6,
         "glslang: 'texture' : no matching overloaded function found"},
        {copy, tooltest::glDescription(sealedHfe(head + "void main() {\n  oops; }")), 3,
         "glslang: 'oops' : undeclared identifier (sealed \"hfe\" text, shader line 3)"},
        {copy,
         tooltest::glDescription(cdata(head + "void main() { int i = 0; while (i < 2) i++; gl_FragColor = vec4(0.0); }")), -1,
         "glslang: "},
        {copy,
         tooltest::glDescription("precision mediump float; varying vec2 elsewhere; uniform sampler2D "
                                 "inputImageTexture; void main() { gl_FragColor = texture2D(inputImageTexture, "
                                 "elsewhere); }"),
         1,
         "glslang: vertex and fragment do not link: varying elsewhere is read by the fragment shader but not "
         "declared by the vertex shader"},
        {copy,
         tooltest::glDescription(cdata(head + "uniform float lut[64];\nvoid main() {\n  vec4 c = vec4(0.0);\n"
                                              "  for (int k = 0; k < 64; k++) c.r += lut[k];\n"
                                              "  gl_FragColor = c * texture2D(inputImageTexture, uv); }")),
         7, "a loop reads uniform lut[64] for every pixel; a 256x1 curve image through an \"image\" param", nullptr,
         Severity::kWarning},
        // Packages and descriptions that are not there.
        {model, "<model><filter include=\"dotz\"/></model>", 1,
         "includes package dotz, which cannot be loaded; did you mean dots?"},
        {model, "<model><filter include=\"dotz\"/></model>", 0, "missing from the bundle: there is no /",
         "filter/dotz/filter.xml"},
        {model, "<filter include=\"dots\"/>", 1,
         "include works on a <filter> inside a <model>; at the top of a package the engine reads a leaf filter with "
         "no implement. Write <model><filter include=\"dots\"/></model>"},
        {model, "<model><filter implement=\"blnd\"/></model>", 1,
         "implement=\"blnd\" names no GL description: there is no /"},
        {model, "<model><filter implement=\"blnd\"/></model>", 1, "/filter/gl/blnd.xml; did you mean blend?"},
        {model, "<model><filter implement=\"copy\"/><filter implement=\"Curve2D\"/></model>", 1,
         "\"Curve2D\" is a CPU function: add prefer=\"CPU\""},
        {model, "<looks/>", 1, "the root must be <model> or <filter>"},
        {model, "<model/>", 1, "at least one <filter>"},
        // Shader sources the engine cannot use.
        {copy, "<glfilter><fragment>x</fragment></glfilter>", 1, "has no <vertex> source"},
        {copy, "<glfilter><vertex>x</vertex></glfilter>", 1, "has no <fragment> source"},
        {copy, tooltest::glDescription("mee12x"), 3, "deciphers to nothing"},
        {copy, tooltest::glDescription("aes0a1"), 3, "hex payload"},
        {copy, tooltest::glDescription("\n" + sealedHfe(kPlainFragment)), 3, "white space before the protected text"},
        // Param values.
        {leaf, leafWith("<param><name>amount</name><vector3f/></param>"), 1, "type vector3f is not supported"},
        {leaf, leafWith("<param><value>1</value></param>"), 1, "the first child must be <name>"},
        {leaf, leafWith("<param><name>amount</name><float>half</float></param>"), 1, "float value is not a number"},
        {leaf, replaced(kBlendLeaf, "dots.png", "gone.png"), 1, "image filter/dots/gone.png cannot be read"},
        {leaf, replaced(kBlendLeaf, "<name>1<", "<name>grain<"), 1, "the input slot it feeds"},
        {leaf, replaced(kBlendLeaf, "<name>1<", "<name>2<"), 1, "no sampler2D inputImageTexture3"},
        // Wiring.
        {model, twoChildren + "<relation output=\"2\" input=\"1\" index=\"0\"/></model>", 1, "output 2 names no child"},
        {model, twoChildren + "<relation output=\"0\" input=\"2\" index=\"0\"/></model>", 1, "one past the last child"},
        {model, "<model><filter include=\"dots\"/><relation input=\"0\" index=\"1\"/></model>", 1,
         "missing attribute output"},
        {model, "<model>" + cpu + "<filter implement=\"copy\"/></model>", 1,
         "child 0 leaves no GL texture, yet feeds child 1 input 0"},
        {model, "<model><filter implement=\"copy\"/>" + cpu + "</model>", 1,
         "the last filter of a model must leave a GL texture"},
        {model,
         "<model><filter implement=\"copy\"/><filter implement=\"Sharpen\" prefer=\"CPU\"/>"
         "<filter implement=\"copy\"/><relation output=\"0\" input=\"2\" index=\"0\"/></model>",
         1, "no CPU filter function is registered as \"Sharpen\""},
    };
    for (const Breakage& c : cases) {
        // A build without glslang (a cross build lacking it) has only the
        // driver's verdict and no loop survey.
        const std::string words = c.words;
        if (!filterpack::GlslProgramCheck::available() &&
            (words.find("glslang") != std::string::npos || words.find("a loop reads") != std::string::npos)) {
            continue;
        }
        Files files = cleanBundle();
        if (c.content.empty()) {
            files.erase(c.path);
        } else {
            files[c.path] = c.content;
        }
        expectFinding(lint(files), c.severity, c.file != nullptr ? c.file : c.path, c.line, c.words);
    }
}

TEST_F(LintTest, FollowsAnIncludeCycleOnceAndNamesIt) {
    Files files = cleanBundle();
    files["filter/look/filter.xml"] = "<model><filter include=\"loop_a\"/></model>";
    files["filter/loop_a/filter.xml"] = "<model><filter include=\"loop_b\"/></model>";
    files["filter/loop_b/filter.xml"] = "<model><filter include=\"loop_a\"/><filter implement=\"copy\"/></model>";
    expectFinding(lint(files), Severity::kError, "filter/loop_b/filter.xml", 1,
                  "include cycle: loop_a -> loop_b -> loop_a");
}

}  // namespace
