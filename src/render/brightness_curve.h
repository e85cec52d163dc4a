// Automatic brightness curve from frame histograms: a running histogram over
// a ring of the last frameCount frames, turned into a gamma lookup table once
// enough frames were seen, and reset when the scene changes.
#ifndef IFC_RENDER_BRIGHTNESS_CURVE_H
#define IFC_RENDER_BRIGHTNESS_CURVE_H

#include <cstdint>

constexpr int kCurveBins = 256;

struct CurveParams {
    float lowFrac;
    float highFrac;
    float gammaScale;
    float threshold;
};

class BrightnessCurve {
public:
    BrightnessCurve() { reset(nullptr, 0); }

    // Identity table, empty running histogram, and history (frameCount rings
    // of 256 counts) zeroed.
    void reset(int32_t* history, int frameCount);

    enum class Step { Reset, Identity, Curve, Kept };
    // Adds one frame histogram (3 counts per pixel: R, G, B) at ring index
    // frameIndex, and says what the table became.
    Step addFrame(const int32_t* frameHistogram, int64_t pixelCount, int32_t* history, int frameCount,
                  int frameIndex, const CurveParams& params);

    // The gamma curve from the running histogram; false (table untouched)
    // when the histogram is empty, too dark or too flat.
    bool computeCurve(const CurveParams& params);

    const uint8_t* lut() const { return lut_; }
    const int32_t* runningHistogram() const { return running_; }
    int32_t* mutableRunningHistogram() { return running_; }
    int framesSinceReset() const { return frames_; }

private:
    void setIdentity();

    uint8_t lut_[kCurveBins];
    int32_t running_[kCurveBins];
    int32_t frames_;
};

// R, G and B bytes of each RGBA pixel into 256 bins (alpha ignored).
void histogramRGB(const uint8_t* rgba, int64_t pixelCount, int32_t* bins);

#endif  // IFC_RENDER_BRIGHTNESS_CURVE_H
