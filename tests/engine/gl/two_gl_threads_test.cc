// A preview and an export at once: two threads, each with its own GL context,
// load the sample packages for the first time together (so both race on the
// package and description caches) and render them again and again. Every
// read-back must equal what one thread alone renders from the same input in
// a fresh process. Meant for the ThreadSanitizer build as much as the normal
// one.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine/filter_package.h"
#include "engine/filter_wraper.h"
#include "engine/resource_loader.h"
#include "headless_gl.h"

namespace {

constexpr int kSize = 8;
constexpr int kThreads = 2;
constexpr int kRounds = 3;

// GL leaves, a CPU leaf, models with a shared include (blur). The packages
// with image parameters (fade_curve, film_grain) are left out: the directory
// provider here decodes no images.
const char* const kPackages[] = {"soft_glow", "dreamy", "blur", "sepia", "mono"};
constexpr size_t kPackageCount = sizeof(kPackages) / sizeof(kPackages[0]);

using Pixels = std::vector<unsigned char>;

// A different picture per thread, so that one context's texture showing up in
// the other's output cannot pass.
Pixels inputFor(int thread) {
    Pixels pixels(kSize * kSize * 4);
    for (int i = 0; i < kSize * kSize; ++i) {
        const int x = i % kSize, y = i / kSize;
        pixels[i * 4 + 0] = static_cast<unsigned char>(x * 31 + thread * 90);
        pixels[i * 4 + 1] = static_cast<unsigned char>(y * 29 + 17);
        pixels[i * 4 + 2] = static_cast<unsigned char>((x ^ y) * 23 + thread * 40);
        pixels[i * 4 + 3] = 255;
    }
    return pixels;
}

// Wraps the package, renders it once on `input` and reads the output back;
// empty when the package builds nothing.
Pixels render(const char* package, const Pixels& input) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kSize, kSize, 0, GL_RGBA, GL_UNSIGNED_BYTE, input.data());
    Pixels pixels;
    {
        HFFilterWraper wraper(package);
        wraper.renderTexture(static_cast<int>(texture), kSize, kSize);
        const GLuint output = static_cast<GLuint>(wraper.outputTexture());
        if (output != 0) {
            GLuint framebuffer = 0;
            glGenFramebuffers(1, &framebuffer);
            glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
            glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, output, 0);
            pixels.resize(input.size());
            glPixelStorei(GL_PACK_ALIGNMENT, 1);
            glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
            glDeleteFramebuffers(1, &framebuffer);
        }
    }
    glDeleteTextures(1, &texture);
    return pixels;
}

// expected[thread][package], rendered by one thread in a child process, so
// that the caches of this process stay empty for the race.
bool renderAlone(std::vector<std::vector<Pixels>>* expected, std::string* error) {
    const size_t size = kSize * kSize * 4;
    int fds[2];
    if (pipe(fds) != 0) return false;
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        std::string problem;
        std::unique_ptr<ifc_host::HeadlessGL> gl = ifc_host::HeadlessGL::create(kSize, kSize, &problem);
        if (!gl) _exit(2);
        for (int t = 0; t < kThreads; ++t) {
            for (const char* package : kPackages) {
                Pixels pixels = render(package, inputFor(t));
                pixels.resize(size, 0);
                if (write(fds[1], pixels.data(), size) != static_cast<ssize_t>(size)) _exit(3);
            }
        }
        _exit(0);
    }
    close(fds[1]);
    expected->assign(kThreads, std::vector<Pixels>(kPackageCount, Pixels(size)));
    bool complete = true;
    for (auto& perThread : *expected) {
        for (Pixels& pixels : perThread) {
            size_t got = 0;
            while (got < size) {
                const ssize_t n = read(fds[0], pixels.data() + got, size - got);
                if (n <= 0) break;
                got += static_cast<size_t>(n);
            }
            complete = complete && got == size;
        }
    }
    close(fds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!complete || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        *error = "the single-thread render failed (status " + std::to_string(status) + ")";
        return false;
    }
    return true;
}

// Releases every waiting thread at once when the last one arrives.
class StartLine {
public:
    void arriveAndWait() {
        std::unique_lock<std::mutex> lock(mutex);
        if (++arrived == kThreads) {
            ready.notify_all();
            return;
        }
        ready.wait(lock, [this] { return arrived == kThreads; });
    }

private:
    std::mutex mutex;
    std::condition_variable ready;
    int arrived = 0;
};

TEST(TwoGLThreads, FirstLoadsRaceAndEveryRenderMatchesOneThreadAlone) {
    HFDirectoryResourceProvider bundle(IFC_PACKAGES_DIR);
    HFResourceProvider* previous = HFResourceLoader_setProvider(&bundle);
    ASSERT_TRUE(filterNodeCache().empty()) << "the race needs packages not loaded yet";

    std::vector<std::vector<Pixels>> expected;
    std::string error;
    ASSERT_TRUE(renderAlone(&expected, &error)) << error;
    for (size_t p = 0; p < kPackageCount; ++p) {
        const Pixels blank(expected[0][p].size(), 0);
        ASSERT_NE(expected[0][p], blank) << kPackages[p] << " renders nothing alone";
        ASSERT_NE(expected[0][p], expected[1][p]) << kPackages[p] << ": the inputs must tell the threads apart";
    }

    StartLine start;
    std::vector<std::string> failures(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::string problem;
            std::unique_ptr<ifc_host::HeadlessGL> gl = ifc_host::HeadlessGL::create(kSize, kSize, &problem);
            start.arriveAndWait();
            if (!gl) {
                failures[t] = "no GL context: " + problem;
                return;
            }
            const Pixels input = inputFor(t);
            for (int round = 0; round < kRounds; ++round) {
                for (size_t p = 0; p < kPackageCount; ++p) {
                    if (render(kPackages[p], input) != expected[t][p]) {
                        failures[t] += std::string(" ") + kPackages[p] + "@" + std::to_string(round);
                    }
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    HFResourceLoader_setProvider(previous);

    for (int t = 0; t < kThreads; ++t) EXPECT_EQ(failures[t], "") << "thread " << t << " differs at";
    // Each package was loaded once: one cached node per name, blur shared.
    EXPECT_EQ(filterNodeCache().size(), kPackageCount);
}

}  // namespace
