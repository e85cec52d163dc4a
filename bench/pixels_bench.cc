// Pixel kernels beside libyuv and OpenCV, one thread each. The memory floor
// reads an NV21 frame and writes an RGBA frame's worth of bytes with no
// arithmetic at all: no conversion can beat it.
#include <benchmark/benchmark.h>
#include <libyuv.h>

#include <cmath>
#include <cstring>
#include <string>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

#include "image_filter/filters.h"
#include "jni/pixels/blur8.h"
#include "jni/pixels/camera_frames.h"
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/qimage_pixels.h"

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

// Frames of 4-byte pixels at the three frame sizes, random content.
struct Rgba {
    int width, height;
    std::vector<uint8_t> pixels, out;
    _Image source, destination;
    explicit Rgba(const benchmark::State& state)
        : width(static_cast<int>(state.range(0))),
          height(static_cast<int>(state.range(1))),
          pixels(random_bytes(size_t(width) * height * 4)),
          out(pixels.size()),
          source{pixels.data(), uint32_t(pixels.size()), width, height, 4, width * 4, 0x01020304, 0, nullptr},
          destination{out.data(), uint32_t(out.size()), width, height, 4, width * 4, 0x01020304, 0, nullptr} {}
    cv::Mat src_mat(int type = CV_8UC4) { return cv::Mat(height, width, type, pixels.data()); }
    cv::Mat dst_mat(int type = CV_8UC4) { return cv::Mat(height, width, type, out.data()); }
    int64_t count() const { return int64_t{width} * height; }
};

// Runs `body` per iteration and counts pixels.
template <typename Body>
void time_frames(benchmark::State& state, int64_t pixels, Body body) {
    for (auto _ : state) {
        body();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * pixels);
}

// Packed 4:2:2 (V, Y0, U, Y1 groups) and RGB565 frames to RGBA. libyuv's
// UYVY groups are U, Y0, V, Y1: the same walk with the chroma bytes swapped.
struct Packed {
    int width, height;
    std::vector<uint8_t> frame, rgba;
    explicit Packed(const benchmark::State& state)
        : width(static_cast<int>(state.range(0))),
          height(static_cast<int>(state.range(1))),
          frame(random_bytes(size_t(width) * height * 2)),
          rgba(size_t(width) * height * 4) {}
};

void Yuv422ToRgba_Ours(benchmark::State& state) {
    image_filter_initialize();
    Packed f(state);
    time_frames(state, int64_t{f.width} * f.height,
                [&] { ifc::yuv422_to_rgba(f.frame.data(), f.width, f.height, f.rgba.data()); });
    state.SetLabel(ifc::pixel_kernels().name);
}

void Yuv422ToRgba_LibyuvUYVY(benchmark::State& state) {
    Packed f(state);
    time_frames(state, int64_t{f.width} * f.height, [&] {
        libyuv::UYVYToARGB(f.frame.data(), f.width * 2, f.rgba.data(), f.width * 4, f.width, f.height);
    });
}

void Yuv422ToRgba_LibyuvYUY2(benchmark::State& state) {
    Packed f(state);
    time_frames(state, int64_t{f.width} * f.height, [&] {
        libyuv::YUY2ToARGB(f.frame.data(), f.width * 2, f.rgba.data(), f.width * 4, f.width, f.height);
    });
}

void Yuv422ToRgba_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Packed f(state);
    cv::Mat src(f.height, f.width, CV_8UC2, f.frame.data()), dst(f.height, f.width, CV_8UC4, f.rgba.data());
    time_frames(state, int64_t{f.width} * f.height, [&] { cv::cvtColor(src, dst, cv::COLOR_YUV2RGBA_UYVY); });
}

void Rgb565ToRgba_Ours(benchmark::State& state) {
    Packed f(state);
    time_frames(state, int64_t{f.width} * f.height,
                [&] { ifc::rgb565_to_rgba(f.frame.data(), f.width, f.height, f.rgba.data()); });
    state.SetLabel(ifc::pixel_kernels().name);
}

// libyuv widens the fields to 8 bits (one shift and or more per field).
void Rgb565ToRgba_Libyuv(benchmark::State& state) {
    Packed f(state);
    time_frames(state, int64_t{f.width} * f.height, [&] {
        libyuv::RGB565ToARGB(f.frame.data(), f.width * 2, f.rgba.data(), f.width * 4, f.width, f.height);
    });
}

void Rgb565ToRgba_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Packed f(state);
    cv::Mat src(f.height, f.width, CV_8UC2, f.frame.data()), dst(f.height, f.width, CV_8UC4, f.rgba.data());
    time_frames(state, int64_t{f.width} * f.height, [&] { cv::cvtColor(src, dst, cv::COLOR_BGR5652RGBA); });
}

// Gray: ours writes bytes 0..2 and keeps the destination's byte 3; libyuv
// copies the source alpha; OpenCV writes a one-byte plane.
void Gray_Ours(benchmark::State& state) {
    image_filter_initialize();
    Rgba image(state);
    time_frames(state, image.count(), [&] { image_filter_gray(&image.source, &image.destination); });
    state.SetLabel(ifc::pixel_kernels().name);
}

void Gray_Libyuv(benchmark::State& state) {
    Rgba image(state);
    time_frames(state, image.count(), [&] {
        libyuv::ARGBGrayTo(image.pixels.data(), image.width * 4, image.out.data(), image.width * 4, image.width,
                           image.height);
    });
}

void Gray_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image(state);
    cv::Mat src = image.src_mat(), dst = image.dst_mat(CV_8UC1);
    time_frames(state, image.count(), [&] { cv::cvtColor(src, dst, cv::COLOR_RGBA2GRAY); });
}

// The curve: 256 entries of R, G, B. libyuv's RGBColorTable works in place
// and keeps alpha (4-byte entries); OpenCV's LUT maps all four channels.
std::vector<uint8_t> random_curve() { return random_bytes(768); }

void Curve_Ours(benchmark::State& state) {
    Rgba image(state);
    const std::vector<uint8_t> curve = random_curve();
    time_frames(state, image.count(), [&] { image_filter_curve(&image.source, &image.destination, curve.data()); });
}

void Curve_Scalar(benchmark::State& state) {
    Rgba image(state);
    const std::vector<uint8_t> curve = random_curve();
    time_frames(state, image.count(), [&] {
        ifc::curve_row_c(image.pixels.data(), image.out.data(), int(image.count()), 4, curve.data());
    });
}

void Curve_OursInPlace(benchmark::State& state) {
    Rgba image(state);
    const std::vector<uint8_t> curve = random_curve();
    time_frames(state, image.count(), [&] { image_filter_curve(&image.source, &image.source, curve.data()); });
}

void Curve_LibyuvInPlace(benchmark::State& state) {
    Rgba image(state);
    const std::vector<uint8_t> table = random_bytes(1024);
    time_frames(state, image.count(), [&] {
        libyuv::RGBColorTable(image.pixels.data(), image.width * 4, table.data(), 0, 0, image.width, image.height);
    });
}

void Curve_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image(state);
    std::vector<uint8_t> table = random_bytes(1024);
    cv::Mat src = image.src_mat(), dst = image.dst_mat(), lut(1, 256, CV_8UC4, table.data());
    time_frames(state, image.count(), [&] { cv::LUT(src, lut, dst); });
}

// Colour matrix: ours is exact in 16.16 fixed point; libyuv rounds the
// coefficients to 6 fractional bits (sepia then differs by a level or two)
// and computes the fourth byte too; OpenCV works in float.
const float kSepia[16] = {0.393f, 0.349f, 0.272f, 0, 0.769f, 0.686f, 0.534f, 0, 0.189f, 0.168f, 0.131f, 0,
                          0, 0, 0, 1};

void ColourMatrix_Ours(benchmark::State& state) {
    Rgba image(state);
    time_frames(state, image.count(), [&] { image_filter_matrix(&image.source, &image.destination, kSepia); });
    state.SetLabel(ifc::pixel_kernels().name);
}

void ColourMatrix_Libyuv(benchmark::State& state) {
    Rgba image(state);
    // Output byte j from input byte i: m[i * 4 + j] in 1/64 steps; the
    // fourth output keeps the fourth input.
    int8_t matrix[16] = {};
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i) matrix[j * 4 + i] = static_cast<int8_t>(std::lround(kSepia[i * 4 + j] * 64));
    matrix[15] = 64;
    time_frames(state, image.count(), [&] {
        libyuv::ARGBColorMatrix(image.pixels.data(), image.width * 4, image.out.data(), image.width * 4, matrix,
                                image.width, image.height);
    });
}

void ColourMatrix_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image(state);
    cv::Mat src = image.src_mat(), dst = image.dst_mat();
    cv::Mat m(4, 4, CV_32F);
    for (int row = 0; row < 4; ++row)
        for (int col = 0; col < 4; ++col) m.at<float>(row, col) = kSepia[col * 4 + row];
    time_frames(state, image.count(), [&] { cv::transform(src, dst, m); });
}

// Alpha mix of a premultiplied overlay the size of the frame, in place.
// libyuv's ARGBBlend does the same job with (255 - alpha) / 256 and sets
// alpha to 255.
void AlphaMix_Ours(benchmark::State& state) {
    Rgba image(state);
    const std::vector<uint8_t> overlay = random_bytes(image.pixels.size());
    time_frames(state, image.count(), [&] {
        ifc::alpha_mix_overlay(&image.source, overlay.data(), image.width, image.height, 0, image.height / 2);
    });
}

void AlphaMix_Libyuv(benchmark::State& state) {
    Rgba image(state);
    const std::vector<uint8_t> overlay = random_bytes(image.pixels.size());
    time_frames(state, image.count(), [&] {
        libyuv::ARGBBlend(overlay.data(), image.width * 4, image.pixels.data(), image.width * 4, image.pixels.data(),
                          image.width * 4, image.width, image.height);
    });
}

// The recursive blur of one channel plane (the filtering step of the
// down-sampled blur, scale 1, sigma 5). OpenCV's GaussianBlur is given the
// sigma of the same spread: forward and backward first-order passes with
// pole p have variance 2p / (1 - p)^2 per direction.
constexpr int kBlurSigma = 5;

void Blur_Ours(benchmark::State& state) {
    Rgba image(state);
    std::vector<uint8_t> plane(image.pixels.begin(), image.pixels.begin() + image.count());
    const int a = ifc::blur8_weight(kBlurSigma);
    time_frames(state, image.count(), [&] { ifc::blur8_filter(plane.data(), image.width, image.height, a); });
}

void Blur_Scalar(benchmark::State& state) {
    Rgba image(state);
    std::vector<uint8_t> plane(image.pixels.begin(), image.pixels.begin() + image.count());
    const int a = ifc::blur8_weight(kBlurSigma);
    time_frames(state, image.count(), [&] { ifc::blur8_filter_c(plane.data(), image.width, image.height, a); });
}

void Blur_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba image(state);
    const double p = ifc::blur8_weight(kBlurSigma) / 65536.0;
    const double sigma = std::sqrt(2 * p) / (1 - p);
    cv::Mat src = image.src_mat(CV_8UC1), dst = image.dst_mat(CV_8UC1);
    time_frames(state, image.count(), [&] { cv::GaussianBlur(src, dst, cv::Size(), sigma); });
    state.SetLabel("sigma " + std::to_string(sigma));
}

BENCHMARK(Yuv422ToRgba_Ours)->FRAME_SIZES;
BENCHMARK(Yuv422ToRgba_LibyuvUYVY)->FRAME_SIZES;
BENCHMARK(Yuv422ToRgba_LibyuvYUY2)->FRAME_SIZES;
BENCHMARK(Yuv422ToRgba_OpenCV)->FRAME_SIZES;
BENCHMARK(Rgb565ToRgba_Ours)->FRAME_SIZES;
BENCHMARK(Rgb565ToRgba_Libyuv)->FRAME_SIZES;
BENCHMARK(Rgb565ToRgba_OpenCV)->FRAME_SIZES;
BENCHMARK(Gray_Ours)->FRAME_SIZES;
BENCHMARK(Gray_Libyuv)->FRAME_SIZES;
BENCHMARK(Gray_OpenCV)->FRAME_SIZES;
BENCHMARK(Curve_Ours)->FRAME_SIZES;
BENCHMARK(Curve_Scalar)->FRAME_SIZES;
BENCHMARK(Curve_OursInPlace)->FRAME_SIZES;
BENCHMARK(Curve_LibyuvInPlace)->FRAME_SIZES;
BENCHMARK(Curve_OpenCV)->FRAME_SIZES;
BENCHMARK(ColourMatrix_Ours)->FRAME_SIZES;
BENCHMARK(ColourMatrix_Libyuv)->FRAME_SIZES;
BENCHMARK(ColourMatrix_OpenCV)->FRAME_SIZES;
BENCHMARK(AlphaMix_Ours)->FRAME_SIZES;
BENCHMARK(AlphaMix_Libyuv)->FRAME_SIZES;
BENCHMARK(Blur_Ours)->FRAME_SIZES;
BENCHMARK(Blur_Scalar)->FRAME_SIZES;
BENCHMARK(Blur_OpenCV)->FRAME_SIZES;

// Histograms and 3x3 smoothing on one 1920x1080 RGBA image.
constexpr int kW = 1920, kH = 1080;

struct Rgba1080 {
    std::vector<uint8_t> pixels = random_bytes(size_t(kW) * kH * 4);
    std::vector<uint8_t> out = std::vector<uint8_t>(size_t(kW) * kH * 4);
    _Image source{pixels.data(), uint32_t(pixels.size()), kW, kH, 4, kW * 4, 0x01020304, 0, nullptr};
    _Image destination{out.data(), uint32_t(out.size()), kW, kH, 4, kW * 4, 0x01020304, 0, nullptr};
};

void Histogram_Ours(benchmark::State& state) {
    Rgba1080 image;
    for (auto _ : state) {
        uint32_t bins[768] = {};
        ifc::image_histogram(&image.source, bins, true);
        benchmark::DoNotOptimize(bins);
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Histogram_OpenCV(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba1080 image;
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

// 3x3 smoothing, all on 1920x1080 pixels. Ours smooths channel 1 of the
// RGBA image into a separate RGBA destination, leaving its other bytes as
// they are. OpenCV is timed three ways: the same RGBA image (all four
// channels smoothed: same bytes walked, four times the arithmetic), the same
// job done with OpenCV calls (channel 1 taken out, smoothed, put back), and a
// bare one-channel plane (a quarter of the memory).
void Smooth3x3_Ours(benchmark::State& state) {
    Rgba1080 image;
    for (auto _ : state) {
        image_filter_gauss_channel(&image.source, &image.destination, 1);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Smooth3x3_Scalar(benchmark::State& state) {
    Rgba1080 image;
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
    Rgba1080 image;
    cv::Mat src(kH, kW, CV_8UC4, image.pixels.data()), dst(kH, kW, CV_8UC4, image.out.data());
    for (auto _ : state) {
        cv::GaussianBlur(src, dst, cv::Size(3, 3), 0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kW * kH);
}

void Smooth3x3_OpenCV_OneChannelOfRgba(benchmark::State& state) {
    cv::setNumThreads(1);
    Rgba1080 image;
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
BENCHMARK(Smooth3x3_Ours)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_Scalar)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_OpenCV_Rgba)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_OpenCV_OneChannelOfRgba)->Unit(benchmark::kMicrosecond);
BENCHMARK(Smooth3x3_OpenCV_Plane)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
