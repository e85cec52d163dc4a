// The pieces behind lint's and the commands' messages: where malformed XML
// goes wrong, which name a misspelling means, and what --param accepts.
#include <gtest/gtest.h>

#include <string>

#include "engine_session.h"
#include "suggest.h"
#include "xml_locate.h"

namespace {

TEST(XmlLocate, NamesLineColumnAndRemedy) {
    const struct {
        const char* text;
        int line;
        int column;
        const char* message;
    } cases[] = {
        {"<a>\n<fragment>x < y</fragment></a>", 2, 13,
         "a '<' in the shader text of <fragment> ends the text early; wrap the source in <![CDATA[ ... ]]>"},
        {"<a>1 < 2</a>", 1, 6, "a '<' that starts no tag; write &lt;"},
        {"<a><fragment><![CDATA[x < y]]></fragment></a>", 0, 0, ""},
        {"<a>\n  <b></a>", 2, 6, "</a> closes <b> opened on line 2"},
        {"<a/></b>", 1, 5, "</b> closes nothing"},
        {"<a>\n<!-- open", 2, 1, "this comment is never closed"},
        {"<a><![CDATA[x</a>", 1, 4, "this CDATA section is never closed"},
        {"<?xml version=\"1.0\"?>\n<a>\n<b x=\"1\">", 3, 1, "<b> is never closed"},
        {"<a x=\"1\"", 1, 1, "the tag <a is never ended with '>'"},
    };
    for (const auto& c : cases) {
        const filterpack::XmlProblem problem = filterpack::locateXmlProblem(c.text);
        EXPECT_EQ(problem.line, c.line) << c.text;
        EXPECT_EQ(problem.column, c.column) << c.text;
        EXPECT_EQ(problem.message, c.message) << c.text;
    }
}

TEST(Suggest, PicksTheClosestLikelyMisspelling) {
    const std::vector<std::string> kinds = {"float", "vector4f", "matrix4f", "curve", "image"};
    EXPECT_EQ(filterpack::closestName("flaot", kinds), "float");
    EXPECT_EQ(filterpack::closestName("Vector4F", kinds), "vector4f");
    EXPECT_EQ(filterpack::closestName("curves", kinds), "curve");
    EXPECT_EQ(filterpack::closestName("colour", kinds), "");
    EXPECT_EQ(filterpack::closestName("x", {}), "");
    EXPECT_EQ(filterpack::didYouMean("parm", {"param"}, "<", ">"), "; did you mean <param>?");
    EXPECT_EQ(filterpack::didYouMean("brightness", {"param"}), "");
}

TEST(ParamOverride, TakesOneFourSixteenOr256Numbers) {
    filterpack::ParamOverride override;
    std::string error;
    ASSERT_TRUE(filterpack::parseParamOverride("amount=0.25", &override, &error)) << error;
    EXPECT_EQ(override.name, "amount");
    EXPECT_EQ(override.values, std::vector<float>{0.25f});
    ASSERT_TRUE(filterpack::parseParamOverride("tint=1,-0.5,2e-1,0", &override, &error)) << error;
    EXPECT_EQ(override.values, (std::vector<float>{1.0f, -0.5f, 0.2f, 0.0f}));
    std::string curve = "toneCurve=0";
    for (int i = 1; i < 256; ++i) curve += "," + std::to_string(i);
    ASSERT_TRUE(filterpack::parseParamOverride(curve, &override, &error)) << error;
    EXPECT_EQ(override.values.size(), 256u);
    const struct {
        const char* text;
        const char* error;
    } bad[] = {
        {"amount", "--param takes name=value, not \"amount\""},
        {"=1", "--param takes name=value, not \"=1\""},
        {"amount=", "--param amount: \"\" is not a list of numbers"},
        {"amount=half", "--param amount: \"half\" is not a list of numbers"},
        {"amount=1,,2", "--param amount: \"1,,2\" is not a list of numbers"},
        {"tint=1,2,3", "--param tint has 3 numbers; give 1 (float), 4 (vector4f), 16 (matrix4f) or 256 (curve)"},
    };
    for (const auto& b : bad) {
        EXPECT_FALSE(filterpack::parseParamOverride(b.text, &override, &error)) << b.text;
        EXPECT_EQ(error, b.error);
    }
}

}  // namespace
