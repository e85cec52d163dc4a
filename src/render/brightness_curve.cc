#include "render/brightness_curve.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// (unsigned) of the curve value, low byte kept; values that have no unsigned
// form (NaN, negative, huge) are pinned instead of being undefined.
uint8_t lutByte(double value) {
    if (!(value >= 0.0)) return 0;
    if (value >= 4294967296.0) return 255;
    return static_cast<uint8_t>(static_cast<uint32_t>(value));
}

// (int) of a float product, pinned to the int range.
int64_t truncated(float value) {
    if (!(value > -9.2e18f)) return INT64_MIN;
    if (value >= 9.2e18f) return INT64_MAX;
    return static_cast<int64_t>(value);
}

}  // namespace

void histogramRGB(const uint8_t* rgba, int64_t pixelCount, int32_t* bins) {
    memset(bins, 0, sizeof(int32_t) * kCurveBins);
    for (int64_t i = 0; i < pixelCount; ++i) {
        ++bins[rgba[i * 4 + 0]];
        ++bins[rgba[i * 4 + 1]];
        ++bins[rgba[i * 4 + 2]];
    }
}

void BrightnessCurve::setIdentity() {
    for (int i = 0; i < kCurveBins; ++i) lut_[i] = static_cast<uint8_t>(i);
}

void BrightnessCurve::reset(int32_t* history, int frameCount) {
    setIdentity();
    memset(running_, 0, sizeof running_);
    frames_ = 0;
    if (history != nullptr && frameCount > 0) {
        memset(history, 0, static_cast<size_t>(frameCount) * kCurveBins * sizeof(int32_t));
    }
}

BrightnessCurve::Step BrightnessCurve::addFrame(const int32_t* frame, int64_t pixelCount, int32_t* history,
                                                int frameCount, int frameIndex, const CurveParams& params) {
    int32_t* previous = history + static_cast<size_t>(frameIndex) * kCurveBins;
    int64_t change = 0;
    for (int i = 0; i < kCurveBins; ++i) {
        int32_t delta = frame[i] - previous[i];
        running_[i] += delta;
        change += std::abs(delta);
        previous[i] = frame[i];
    }
    frames_ += 1;
    // Five changed counts per pixel (of three per pixel) means a new scene.
    // An empty frame divides by zero in float: any change is infinitely
    // large, no change (0/0, NaN) is none.
    bool sceneChanged = pixelCount > 0 ? static_cast<float>(change) / static_cast<float>(pixelCount) >= 5.0f
                                       : change > 0;
    if (sceneChanged) {
        reset(history, frameCount);
        return Step::Reset;
    }
    if (frames_ < frameCount) {
        setIdentity();
        return Step::Identity;
    }
    return computeCurve(params) ? Step::Curve : Step::Kept;
}

bool BrightnessCurve::computeCurve(const CurveParams& params) {
    int64_t total = 0;
    int64_t weighted = 0;
    for (int i = 0; i < kCurveBins; ++i) {
        total += running_[i];
        weighted += static_cast<int64_t>(i) * running_[i];
    }
    // An empty histogram has no mean; the table stays as it is.
    if (total <= 0) return false;
    int64_t lowTarget = truncated(static_cast<float>(total) * params.lowFrac);
    int64_t highTarget = truncated(static_cast<float>(total) * params.highFrac);

    int64_t sum = 0;
    int low = -1;
    int high = 255;
    for (int i = 0; i < kCurveBins; ++i) {
        sum += running_[i];
        if (sum > lowTarget) {
            low = i;
            break;
        }
    }
    if (low < 0) {
        low = 0;
    } else {
        for (int i = low + 1; i < kCurveBins; ++i) {
            sum += running_[i];
            if (sum > highTarget) {
                high = i;
                break;
            }
        }
    }
    int64_t mean = weighted / total;
    float norm = high > low ? static_cast<float>(mean - low) / static_cast<float>(high - low) : 0.0f;
    if (norm < params.threshold || high <= 99) return false;

    float gamma = static_cast<float>(log(0.5) / log(norm));
    if (gamma < 0.1f) {
        gamma = 0.1f;
    } else if (gamma > 10.0f) {
        gamma = 10.0f;
    }
    gamma *= params.gammaScale;

    memset(lut_, 0, static_cast<size_t>(low));
    if (low == 0 || low < high) {
        for (int k = 0; k < high - low; ++k) {
            float ratio = static_cast<float>(k) / static_cast<float>(high - low);
            lut_[low + k] = lutByte(pow(ratio, static_cast<double>(gamma)) * 255.0);
        }
    }
    memset(lut_ + high, 255, static_cast<size_t>(kCurveBins - high));
    return true;
}
