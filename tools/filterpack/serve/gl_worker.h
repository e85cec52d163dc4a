// One thread that owns a headless GL ES 2.0 context: the engine keeps GL
// objects in process-wide caches, so every engine call of the preview server
// runs here, one at a time, whichever HTTP thread asked for it.
#ifndef FILTERPACK_SERVE_GL_WORKER_H
#define FILTERPACK_SERVE_GL_WORKER_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

namespace filterpack {

class GlWorker {
public:
    GlWorker();
    ~GlWorker();  // finishes the queued jobs, then destroys the context
    GlWorker(const GlWorker&) = delete;
    GlWorker& operator=(const GlWorker&) = delete;

    // False, with the reason, when no GL context could be made.
    bool ready(std::string* error);

    // Runs `job` on the GL thread and waits for it.
    void run(std::function<void()> job);

private:
    void loop(std::promise<std::string> started);

    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::packaged_task<void()>> jobs;
    bool stopping = false;
    std::string startError;
    std::thread thread;
};

}  // namespace filterpack

#endif  // FILTERPACK_SERVE_GL_WORKER_H
