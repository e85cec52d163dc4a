#include "preview_server.h"

#include <httplib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <system_error>
#include <vector>

#include "bundle_watch.h"
#include "engine/filter_package.h"
#include "engine/gl/gl_filter_impl.h"
#include "gl_worker.h"
#include "package_lint.h"
#include "package_params.h"
#include "preview_images.h"
#include "preview_page.h"

namespace filterpack {
namespace {

using nlohmann::json;

constexpr char kChart[] = "chart";
constexpr size_t kMaxUpload = 32u << 20;
constexpr int kMaxSide = 4096;
constexpr int kKeptUploads = 8;

// Package names and bundle paths come from the page: nothing that climbs
// out of the bundle.
bool safeName(const std::string& name) {
    if (name.empty() || name.size() > 200 || name.find("..") != std::string::npos) return false;
    return std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == '.' || c == '/';
    });
}

// Colour bars, ramps and a sharp-edged square: something for every kind of
// filter to change visibly.
RgbaImage chartPicture() {
    const int width = 480;
    const int height = 320;
    RgbaImage chart{width, height, std::vector<uint8_t>(static_cast<size_t>(width) * height * 4)};
    static const uint8_t bars[7][3] = {{191, 191, 191}, {191, 191, 0}, {0, 191, 191}, {0, 191, 0},
                                       {191, 0, 191},   {191, 0, 0},   {0, 0, 191}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint8_t* p = &chart.pixels[(static_cast<size_t>(y) * width + x) * 4];
            if (y < height / 3) {
                const uint8_t* bar = bars[x * 7 / width];
                p[0] = bar[0], p[1] = bar[1], p[2] = bar[2];
            } else if (y < 2 * height / 3) {
                const auto level = static_cast<uint8_t>(255 * x / (width - 1));
                p[0] = p[1] = p[2] = level;
            } else {
                const bool square = x > width / 2 && x < width / 2 + height / 4 && y > 3 * height / 4;
                p[0] = static_cast<uint8_t>(255 * x / width);
                p[1] = static_cast<uint8_t>(255 * (height - y) * 3 / height);
                p[2] = square ? 255 : 96;
            }
            p[3] = 255;
        }
    }
    return chart;
}

std::vector<std::string> listPackages(const std::string& root) {
    namespace fs = std::filesystem;
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(fs::path(root) / "filter", error), end; !error && it != end; it.increment(error)) {
        if (fs::is_regular_file(it->path() / "filter.xml", error)) names.push_back(it->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> listImageFiles(const std::string& root) {
    namespace fs = std::filesystem;
    std::vector<std::string> paths;
    std::error_code error;
    for (fs::recursive_directory_iterator it(root, error), end; !error && it != end; it.increment(error)) {
        std::string extension = it->path().extension().string();
        std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
        if (extension == ".png" || extension == ".jpg" || extension == ".jpeg") {
            paths.push_back(fs::relative(it->path(), root, error).generic_string());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

void sendJson(httplib::Response& response, const json& body, int status = 200) {
    response.status = status;
    response.set_content(body.dump(), "application/json");
}

void sendError(httplib::Response& response, int status, const std::string& message) {
    sendJson(response, json{{"error", message}}, status);
}

json lintJson(const Findings& findings) {
    json list = json::array();
    for (const Finding& finding : findings.all()) {
        list.push_back({{"severity", finding.severity == Severity::kError ? "error" : "warning"},
                        {"file", finding.file},
                        {"line", finding.line},
                        {"element", finding.element},
                        {"message", finding.message}});
    }
    return list;
}

}  // namespace

struct PreviewServer::State {
    explicit State(const std::string& root) : root(root), bundle(root), installed(&bundle) {
        pictures[kChart] = chartPicture();
        signature = bundleSignature(root);
    }
    // The engine's caches hold GL objects of this context: release them
    // while it is still current.
    ~State() {
        server.stop();
        gl.run(clearEngineCaches);
    }

    static void clearEngineCaches() {
        filterNodeCache().clear();
        glFilterImplCache().clear();
    }

    // Drops the engine's cached packages and descriptions once a bundle file
    // changed, so the next render reads the designer's new text.
    int currentVersion() {
        const uint64_t now = bundleSignature(root);
        std::lock_guard<std::mutex> lock(mutex);
        if (now != signature) {
            signature = now;
            ++version;
            gl.run(clearEngineCaches);
        }
        return version;
    }

    bool picture(const std::string& name, RgbaImage* image, std::string* error) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            const auto found = pictures.find(name);
            if (found != pictures.end()) {
                *image = found->second;
                return true;
            }
        }
        const std::vector<std::string> files = listImageFiles(root);
        if (!safeName(name) || std::find(files.begin(), files.end(), name) == files.end()) {
            *error = "no image " + name + " in the bundle " + root;
            return false;
        }
        return readImageFile(root + "/" + name, image, error);
    }

    std::string addUpload(RgbaImage image) {
        std::lock_guard<std::mutex> lock(mutex);
        const std::string name = "upload-" + std::to_string(++uploads);
        pictures[name] = std::move(image);
        pictures.erase("upload-" + std::to_string(uploads - kKeptUploads));
        return name;
    }

    void routes();

    const std::string root;
    BundleDirectory bundle;
    const InstalledBundle installed;
    GlWorker gl;
    httplib::Server server;
    std::mutex mutex;
    std::map<std::string, RgbaImage> pictures;
    int uploads = 0;
    uint64_t signature = 0;
    int version = 1;
};

void PreviewServer::State::routes() {
    server.Get("/", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(previewPage(), "text/html; charset=utf-8");
    });

    server.Get("/api/version", [this](const httplib::Request&, httplib::Response& response) {
        sendJson(response, json{{"version", currentVersion()}});
    });

    server.Get("/api/packages", [this](const httplib::Request&, httplib::Response& response) {
        json images = json::array({kChart});
        for (const std::string& file : listImageFiles(root)) images.push_back(file);
        {
            std::lock_guard<std::mutex> lock(mutex);
            for (const auto& [name, image] : pictures) {
                if (name != kChart) images.push_back(name);
            }
        }
        sendJson(response, json{{"bundle", root}, {"packages", listPackages(root)}, {"images", images}});
    });

    server.Get("/api/package", [this](const httplib::Request& request, httplib::Response& response) {
        const std::string name = request.get_param_value("name");
        if (!safeName(name) || name.find('/') != std::string::npos) return sendError(response, 400, "bad package name");
        currentVersion();
        json params = json::array();
        json lint;
        int errors = 0;
        gl.run([&] {
            for (const PackageParam& param : packageParams(bundle, name)) {
                params.push_back({{"name", param.name}, {"kind", param.kind}, {"value", param.value}});
            }
            PackageLinter linter(bundle);
            linter.lintPackage(name);
            lint = lintJson(linter.findings());
            errors = linter.findings().errorCount();
        });
        sendJson(response, json{{"name", name}, {"params", params}, {"lint", lint}, {"errors", errors}});
    });

    server.Post("/api/photo", [this](const httplib::Request& request, httplib::Response& response) {
        RgbaImage image;
        std::string error;
        if (!decodeImage(request.body, &image, &error)) return sendError(response, 400, error);
        if (image.width > kMaxSide || image.height > kMaxSide) {
            return sendError(response, 400, "photos up to " + std::to_string(kMaxSide) + " pixels a side");
        }
        const int width = image.width;
        const int height = image.height;
        const std::string name = addUpload(std::move(image));
        sendJson(response, json{{"image", name}, {"width", width}, {"height", height}});
    });

    server.Post("/api/render", [this](const httplib::Request& request, httplib::Response& response) {
        const json body = json::parse(request.body, nullptr, false);
        if (!body.is_object()) return sendError(response, 400, "the request is not a JSON object");
        const std::string package = body.value("package", "");
        const std::string view = body.value("view", "after");
        if (!safeName(package) || package.find('/') != std::string::npos) {
            return sendError(response, 400, "bad package name");
        }
        if (view != "after" && view != "before" && view != "compare" && view != "difference") {
            return sendError(response, 400, "view is one of after, before, compare, difference");
        }
        std::map<std::string, std::string> values;
        if (body.contains("values") && body["values"].is_object()) {
            for (const auto& [name, value] : body["values"].items()) {
                values[name] = value.is_string() ? value.get<std::string>() : value.dump();
            }
        }
        RgbaImage before;
        std::string problem;
        if (!picture(body.value("image", kChart), &before, &problem)) return sendError(response, 404, problem);
        currentVersion();
        RgbaImage after;
        bool rendered = false;
        gl.run([&] { rendered = renderWithValues(package, values, before, &after, &problem); });
        if (!rendered) return sendError(response, 422, problem);
        RgbaImage shown = view == "before" ? before
                          : view == "compare" ? leftAndRight(before, after)
                          : view == "difference" ? differenceImage(before, after, 4)
                          : after;
        response.set_header("X-Picture-Digest", std::to_string(pictureDigest(after)));
        response.set_content(encodePng(shown), "image/png");
    });

    server.set_exception_handler([](const httplib::Request&, httplib::Response& response, std::exception_ptr error) {
        std::string what = "internal error";
        try {
            if (error) std::rethrow_exception(error);
        } catch (const std::exception& e) {
            what = e.what();
        } catch (...) {
        }
        sendError(response, 500, what);
    });
    server.set_payload_max_length(kMaxUpload);
}

PreviewServer::PreviewServer(const std::string& bundleRoot) : state(std::make_unique<State>(bundleRoot)) {
    state->routes();
}

PreviewServer::~PreviewServer() { stop(); }

bool PreviewServer::ready(std::string* error) { return state->gl.ready(error); }

int PreviewServer::bind(int port) {
    if (port == 0) return state->server.bind_to_any_port("127.0.0.1");
    return state->server.bind_to_port("127.0.0.1", port) ? port : -1;
}

void PreviewServer::serve() { state->server.listen_after_bind(); }

void PreviewServer::stop() { state->server.stop(); }

int servePreview(const std::string& bundleRoot, int port) {
    PreviewServer server(bundleRoot);
    std::string error;
    if (!server.ready(&error)) {
        std::fprintf(stderr, "filterpack: %s\n", error.c_str());
        return 1;
    }
    const int bound = server.bind(port);
    if (bound < 0) {
        std::fprintf(stderr, "filterpack: cannot listen on 127.0.0.1:%d\n", port);
        return 1;
    }
    std::printf("filterpack: previewing %s at http://127.0.0.1:%d/ (Ctrl-C stops)\n", bundleRoot.c_str(), bound);
    std::fflush(stdout);
    server.serve();
    return 0;
}

}  // namespace filterpack
