// `filterpack serve`: a local web page to try a bundle's packages on a
// photo with the real engine, their parameters as sliders, lint messages
// beside the picture, refreshed whenever a file of the bundle changes.
//
// HTTP API (JSON unless said otherwise):
//   GET  /                  the page
//   GET  /api/packages      {"bundle", "packages": [...], "images": [...]}
//   GET  /api/package?name= {"name", "params": [{"name","kind","value"}],
//                            "lint": [{"severity","file","line","element","message"}], "errors"}
//   POST /api/photo         body: an image file -> {"image", "width", "height"}
//   POST /api/render        {"package","image","values":{name:text},"view"} -> image/png
//                           view: "after" (default), "before", "compare", "difference";
//                           header X-Picture-Digest; 422 {"error"} when it cannot render
//   GET  /api/version       {"version"}: grows when a bundle file changes
#ifndef FILTERPACK_SERVE_PREVIEW_SERVER_H
#define FILTERPACK_SERVE_PREVIEW_SERVER_H

#include <memory>
#include <string>

namespace filterpack {

class PreviewServer {
public:
    explicit PreviewServer(const std::string& bundleRoot);
    ~PreviewServer();
    PreviewServer(const PreviewServer&) = delete;
    PreviewServer& operator=(const PreviewServer&) = delete;

    // False, with the reason, when there is no GL context to render with.
    bool ready(std::string* error);
    // Binds 127.0.0.1:port (0 picks a free one); the port, or -1.
    int bind(int port);
    // Answers requests until stop(), from any thread.
    void serve();
    void stop();

private:
    struct State;
    std::unique_ptr<State> state;
};

// The command: prints the address and serves until interrupted.
int servePreview(const std::string& bundleRoot, int port);

}  // namespace filterpack

#endif  // FILTERPACK_SERVE_PREVIEW_SERVER_H
