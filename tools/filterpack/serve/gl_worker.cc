#include "gl_worker.h"

#include <memory>

#include "headless_gl.h"

namespace filterpack {

GlWorker::GlWorker() {
    std::promise<std::string> started;
    std::future<std::string> error = started.get_future();
    thread = std::thread(&GlWorker::loop, this, std::move(started));
    startError = error.get();
}

GlWorker::~GlWorker() {
    {
        std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    wake.notify_all();
    thread.join();
}

bool GlWorker::ready(std::string* error) {
    if (startError.empty()) return true;
    *error = startError;
    return false;
}

void GlWorker::run(std::function<void()> job) {
    if (!startError.empty()) return;
    std::packaged_task<void()> task(std::move(job));
    std::future<void> done = task.get_future();
    {
        std::lock_guard<std::mutex> lock(mutex);
        jobs.push_back(std::move(task));
    }
    wake.notify_one();
    done.get();  // rethrows what the job threw
}

void GlWorker::loop(std::promise<std::string> started) {
    std::string error;
    std::unique_ptr<ifc_host::HeadlessGL> gl = ifc_host::HeadlessGL::create(16, 16, &error);
    started.set_value(gl ? std::string() : "no GL ES 2.0 context: " + error);
    if (!gl) return;
    for (;;) {
        std::packaged_task<void()> job;
        {
            std::unique_lock<std::mutex> lock(mutex);
            wake.wait(lock, [this] { return stopping || !jobs.empty(); });
            if (jobs.empty()) return;
            job = std::move(jobs.front());
            jobs.pop_front();
        }
        job();
    }
}

}  // namespace filterpack
