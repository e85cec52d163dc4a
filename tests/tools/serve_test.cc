// The preview server through its HTTP API, on a scratch copy of the sample
// bundle so that edits to its files can be watched.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "preview_images.h"
#include "preview_server.h"
#include "tool_test_support.h"

namespace {

using nlohmann::json;

class PreviewServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy(SAMPLE_BUNDLE, bundle.root(), std::filesystem::copy_options::recursive);
        server = std::make_unique<filterpack::PreviewServer>(bundle.root());
        std::string error;
        ASSERT_TRUE(server->ready(&error)) << error;
        const int port = server->bind(0);
        ASSERT_GT(port, 0);
        serving = std::thread([this] { server->serve(); });
        client = std::make_unique<httplib::Client>("127.0.0.1", port);
        client->set_read_timeout(60, 0);
    }
    void TearDown() override {
        if (server) server->stop();
        if (serving.joinable()) serving.join();
    }

    json getJson(const std::string& path) {
        const httplib::Result result = client->Get(path.c_str());
        EXPECT_TRUE(result) << path;
        return result ? json::parse(result->body, nullptr, false) : json();
    }

    // Status and body of a render request.
    httplib::Result render(const json& request) {
        return client->Post("/api/render", request.dump(), "application/json");
    }

    static json with(json request, const json& more) {
        request.update(more);
        return request;
    }

    filterpack::RgbaImage picture(const httplib::Result& result) {
        filterpack::RgbaImage image;
        std::string error;
        EXPECT_TRUE(result && result->status == 200 && filterpack::decodeImage(result->body, &image, &error)) << error;
        return image;
    }

    tooltest::ScratchBundle bundle;
    std::unique_ptr<filterpack::PreviewServer> server;
    std::unique_ptr<httplib::Client> client;
    std::thread serving;
};

TEST_F(PreviewServerTest, ListsPackagesImagesAndEachPackagesParameters) {
    const json listing = getJson("/api/packages");
    EXPECT_EQ(listing["packages"], json({"blur", "dreamy", "fade_curve", "film_grain", "mono", "sepia", "soft_glow"}));
    EXPECT_EQ(listing["images"][0], "chart");
    EXPECT_NE(std::find(listing["images"].begin(), listing["images"].end(), "filter/film_grain/grain.png"),
              listing["images"].end());

    // dreamy includes blur and declares a vec4 and three floats on its own leaves.
    const json dreamy = getJson("/api/package?name=dreamy");
    EXPECT_EQ(dreamy["errors"], 0);
    EXPECT_EQ(dreamy["lint"], json::array());
    EXPECT_EQ(dreamy["params"], json::parse(R"([
        {"name":"tint","kind":"vector4f","value":"1.08,0.98,0.9,1"},
        {"name":"radius","kind":"float","value":"0.75"},
        {"name":"softness","kind":"float","value":"0.45"},
        {"name":"strength","kind":"float","value":"0.55"}])"));
}

TEST_F(PreviewServerTest, RendersWithRuntimeValuesInEveryView) {
    const json base = {{"package", "dreamy"}, {"image", "chart"}};
    const filterpack::RgbaImage after = picture(render(base));
    const filterpack::RgbaImage before = picture(render(with(base, {{"view", "before"}})));
    ASSERT_EQ(after.width, before.width);
    EXPECT_NE(after.pixels, before.pixels);

    const httplib::Result stronger = render(with(base, {{"values", {{"strength", "1.0"}}}}));
    EXPECT_NE(picture(stronger).pixels, after.pixels);
    EXPECT_NE(stronger->get_header_value("X-Picture-Digest"), render(base)->get_header_value("X-Picture-Digest"));

    const filterpack::RgbaImage compare = picture(render(with(base, {{"view", "compare"}})));
    EXPECT_EQ(compare.width, 2 * after.width);
    EXPECT_EQ(compare.pixels, filterpack::leftAndRight(before, after).pixels);
    EXPECT_EQ(picture(render(with(base, {{"view", "difference"}}))).pixels,
              filterpack::differenceImage(before, after, 4).pixels);
}

TEST_F(PreviewServerTest, RefusesWhatItCannotDoWithAReason) {
    struct Case {
        json request;
        int status;
        const char* error;
    } cases[] = {
        {{{"package", "../../etc"}}, 400, "bad package name"},
        {{{"package", "dreamy"}, {"view", "sideways"}}, 400, "view is one of"},
        {{{"package", "dreamy"}, {"image", "nowhere.png"}}, 404, "no image nowhere.png"},
        {{{"package", "no_such_package"}}, 422, ""},
        {{{"package", "dreamy"}, {"values", {{"strenght", "1"}}}}, 422, "strenght"},
        {{{"package", "dreamy"}, {"values", {{"tint", "1,2"}}}}, 422, "tint"},
    };
    for (const Case& c : cases) {
        const httplib::Result result = render(c.request);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, c.status) << c.request.dump();
        EXPECT_NE(json::parse(result->body)["error"].get<std::string>().find(c.error), std::string::npos)
            << result->body;
    }
    EXPECT_EQ(client->Post("/api/render", "not json", "application/json")->status, 400);
    EXPECT_EQ(client->Post("/api/photo", "not an image", "image/png")->status, 400);
    EXPECT_EQ(client->Get("/api/package?name=a/b")->status, 400);
}

TEST_F(PreviewServerTest, UploadedPhotosRender) {
    const filterpack::RgbaImage photo{3, 2, std::vector<uint8_t>(3 * 2 * 4, 200)};
    const httplib::Result uploaded = client->Post("/api/photo", filterpack::encodePng(photo), "image/png");
    ASSERT_TRUE(uploaded);
    ASSERT_EQ(uploaded->status, 200) << uploaded->body;
    const json upload = json::parse(uploaded->body);
    EXPECT_EQ(upload["width"], 3);
    const filterpack::RgbaImage shown = picture(render({{"package", "mono"}, {"image", upload["image"]}}));
    EXPECT_EQ(shown.width, 3);
    EXPECT_EQ(shown.height, 2);
}

// A designer's edit shows without restarting: the version moves on, the
// engine reads the new text, and lint points at the new problem.
TEST_F(PreviewServerTest, FollowsEditsToTheBundle) {
    const int first = getJson("/api/version")["version"];
    const filterpack::RgbaImage before = picture(render({{"package", "dreamy"}}));

    const std::filesystem::path file = std::filesystem::path(bundle.root()) / "filter/dreamy/filter.xml";
    std::string text;
    {
        std::ifstream in(file);
        text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    const std::string old = "<float>0.55</float>";
    ASSERT_NE(text.find(old), std::string::npos);
    text.replace(text.find(old), old.size(), "<float>1.0</float>");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // a later modification time
    std::ofstream(file, std::ios::trunc) << text;

    EXPECT_GT(getJson("/api/version")["version"].get<int>(), first);
    EXPECT_EQ(getJson("/api/package?name=dreamy")["params"][3]["value"], "1");
    EXPECT_NE(picture(render({{"package", "dreamy"}})).pixels, before.pixels);

    std::ofstream(file, std::ios::trunc) << "<model>\n  <filter implement=\"tint\">\n</model>\n";
    const json broken = getJson("/api/package?name=dreamy");
    EXPECT_GT(broken["errors"].get<int>(), 0);
    EXPECT_EQ(broken["lint"][0]["file"], "filter/dreamy/filter.xml");
    EXPECT_EQ(render({{"package", "dreamy"}})->status, 422);
}

}  // namespace
