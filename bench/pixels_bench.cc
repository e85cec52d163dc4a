// Pixel kernels beside libyuv and OpenCV, one thread each. The memory floor
// reads an NV21 frame and writes an RGBA frame's worth of bytes with no
// arithmetic at all: no conversion can beat it.
#include <benchmark/benchmark.h>
#include <libyuv.h>

#include <cstring>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

#include "image_filter/filters.h"
#include "jni/camera_frames.h"
#include "jni/pixel_kernels.h"
#include "jni/qimage_pixels.h"

namespace {

std::vector<uint8_t> random_bytes(size_t n) {
    std::vector<uint8_t> bytes(n);
    std::mt19937 random(1);
    for (uint8_t& b : bytes) b = static_cast<uint8_t>(random());
    return bytes;
}

struct Frame {
    int width, height;
    std::vector<uint8_t> nv21, rgba;
    explicit Frame(const benchmark::State& state)
        : width(static_cast<int>(state.range(0))),
          height(static_cast<int>(state.range(1))),
          nv21(random_bytes(size_t(width) * height * 3 / 2)),
          rgba(size_t(width) * height * 4) {}
};

void count_pixels(benchmark::State& state, int width, int height) {
    state.SetItemsProcessed(state.iterations() * int64_t{width} * height);
    state.SetBytesProcessed(state.iterations() * int64_t{width} * height * 11 / 2);
}

void Nv21ToRgba_Ours(benchmark::State& state) {
    image_filter_initialize();
    Frame f(state);
    for (auto _ : state) {
        ifc::nv21_to_rgba(f.nv21.data(), f.width, f.height, f.rgba.data());
        benchmark::ClobberMemory();
    }
    state.SetLabel(ifc::pixel_kernels().name);
    count_pixels(state, f.width, f.height);
}

void Nv21ToRgba_Scalar(benchmark::State& state) {
    image_filter_initialize();
    Frame f(state);
    const uint8_t* chroma = f.nv21.data() + size_t(f.width) * f.height;
    for (auto _ : state) {
        for (int y = 0; y < f.height; ++y)
            ifc::nv21_to_rgba_row_c(f.nv21.data() + size_t(y) * f.width, chroma + size_t(y / 2) * f.width,
                                    f.rgba.data() + size_t(y) * f.width * 4, f.width);
        benchmark::ClobberMemory();
    }
    count_pixels(state, f.width, f.height);
}

// libyuv's ABGR is R, G, B, A in memory, our RGBA.
void Nv21ToRgba_Libyuv(benchmark::State& state) {
    Frame f(state);
    const uint8_t* chroma = f.nv21.data() + size_t(f.width) * f.height;
    for (auto _ : state) {
        libyuv::NV21ToABGR(f.nv21.data(), f.width, chroma, f.width, f.rgba.data(), f.width * 4, f.width, f.height);
        benchmark::ClobberMemory();
    }
    count_pixels(state, f.width, f.height);
}

void Nv21ToRgba_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Frame f(state);
    cv::Mat src(f.height * 3 / 2, f.width, CV_8UC1, f.nv21.data());
    cv::Mat dst(f.height, f.width, CV_8UC4, f.rgba.data());
    for (auto _ : state) {
        cv::cvtColor(src, dst, cv::COLOR_YUV2RGBA_NV21);
        benchmark::ClobberMemory();
    }
    count_pixels(state, f.width, f.height);
}

void Nv21ToRgba_MemoryFloor(benchmark::State& state) {
    Frame f(state);
    const size_t in = f.nv21.size();
    for (auto _ : state) {
        std::memcpy(f.rgba.data(), f.nv21.data(), in);
        std::memset(f.rgba.data() + in, 0, f.rgba.size() - in);
        benchmark::ClobberMemory();
    }
    count_pixels(state, f.width, f.height);
}

#define FRAME_SIZES Args({1280, 720})->Args({1920, 1080})->Args({4000, 3000})->Unit(benchmark::kMicrosecond)
BENCHMARK(Nv21ToRgba_Ours)->FRAME_SIZES;
BENCHMARK(Nv21ToRgba_Scalar)->FRAME_SIZES;
BENCHMARK(Nv21ToRgba_Libyuv)->FRAME_SIZES;
BENCHMARK(Nv21ToRgba_OpenCV)->FRAME_SIZES;
BENCHMARK(Nv21ToRgba_MemoryFloor)->FRAME_SIZES;

// CPU filters on one 1920x1080 RGBA image.
constexpr int kW = 1920, kH = 1080;

struct Rgba {
    std::vector<uint8_t> pixels = random_bytes(size_t(kW) * kH * 4);
    std::vector<uint8_t> out = std::vector<uint8_t>(size_t(kW) * kH * 4);
    _Image source{pixels.data(), uint32_t(pixels.size()), kW, kH, 4, kW * 4, 0x01020304, 0, nullptr};
    _Image destination{out.data(), uint32_t(out.size()), kW, kH, 4, kW * 4, 0x01020304, 0, nullptr};
};

void Histogram_Ours(benchmark::State& state) {
    Rgba image;
    for (auto _ : state) {
        uint32_t bins[768] = {};
        ifc::image_histogram(&image.source, bins, true);
        benchmark::DoNotOptimize(bins);
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Histogram_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image;
    cv::Mat src(kH, kW, CV_8UC4, image.pixels.data());
    const int hist_size = 256;
    const float range[] = {0, 256};
    const float* ranges = range;
    cv::Mat hist;
    for (auto _ : state) {
        for (int c = 0; c < 3; ++c) {
            cv::calcHist(&src, 1, &c, cv::Mat(), hist, 1, &hist_size, &ranges);
            benchmark::DoNotOptimize(hist.data);
        }
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

const float kSepia[16] = {0.393f, 0.349f, 0.272f, 0, 0.769f, 0.686f, 0.534f, 0, 0.189f, 0.168f, 0.131f, 0,
                          0, 0, 0, 1};

void ColourMatrix_Ours(benchmark::State& state) {
    Rgba image;
    for (auto _ : state) {
        image_filter_matrix(&image.source, &image.destination, kSepia);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void ColourMatrix_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image;
    cv::Mat src(kH, kW, CV_8UC4, image.pixels.data()), dst(kH, kW, CV_8UC4, image.out.data());
    cv::Mat m(4, 4, CV_32F);
    for (int row = 0; row < 4; ++row)
        for (int col = 0; col < 4; ++col) m.at<float>(row, col) = kSepia[col * 4 + row];
    for (auto _ : state) {
        cv::transform(src, dst, m);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

// 3x3 smoothing, all on 1920x1080 pixels. Ours smooths channel 1 of the
// RGBA image into a separate RGBA destination, leaving its other bytes as
// they are. OpenCV is timed three ways: the same RGBA image (all four
// channels smoothed: same bytes walked, four times the arithmetic), the same
// job done with OpenCV calls (channel 1 taken out, smoothed, put back), and a
// bare one-channel plane (a quarter of the memory).
void Smooth3x3_Ours(benchmark::State& state) {
    Rgba image;
    for (auto _ : state) {
        image_filter_gauss_channel(&image.source, &image.destination, 1);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Smooth3x3_Scalar(benchmark::State& state) {
    Rgba image;
    const auto row = ifc::scalar_kernels().smooth3x3_row;
    const ptrdiff_t bytes = ptrdiff_t{kW} * 4;
    for (auto _ : state) {
        for (int y = 1; y < kH - 1; ++y) {
            const uint8_t* src = image.pixels.data() + y * bytes;
            row(src - bytes, src, src + bytes, image.out.data() + y * bytes, kW, 4, 1);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Smooth3x3_OpenCV_Rgba(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image;
    cv::Mat src(kH, kW, CV_8UC4, image.pixels.data()), dst(kH, kW, CV_8UC4, image.out.data());
    for (auto _ : state) {
        cv::GaussianBlur(src, dst, cv::Size(3, 3), 0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Smooth3x3_OpenCV_OneChannelOfRgba(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image;
    cv::Mat src(kH, kW, CV_8UC4, image.pixels.data()), dst(kH, kW, CV_8UC4, image.out.data());
    cv::Mat plane, smoothed;
    for (auto _ : state) {
        cv::extractChannel(src, plane, 1);
        cv::GaussianBlur(plane, smoothed, cv::Size(3, 3), 0);
        cv::insertChannel(smoothed, dst, 1);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Smooth3x3_OpenCV_Plane(benchmark::State& state) {
    cv::setNumThreads(1);
    std::vector<uint8_t> gray = random_bytes(size_t(kW) * kH), out(size_t(kW) * kH);
    cv::Mat src(kH, kW, CV_8UC1, gray.data()), dst(kH, kW, CV_8UC1, out.data());
    for (auto _ : state) {
        cv::GaussianBlur(src, dst, cv::Size(3, 3), 0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

BENCHMARK(Histogram_Ours)->Unit(benchmark::kMicrosecond);
BENCHMARK(Histogram_OpenCV)->Unit(benchmark::kMicrosecond);
BENCHMARK(ColourMatrix_Ours)->Unit(benchmark::kMicrosecond);
BENCHMARK(ColourMatrix_OpenCV)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_Ours)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_Scalar)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_OpenCV_Rgba)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_OpenCV_OneChannelOfRgba)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_OpenCV_Plane)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
