// Smoothing of sampled sequences and polylines by a 1D convolution kernel.
#pragma once

#include <vector>

#include <orvia/vek/vector.h>

namespace vek {

class Convolution1D {
public:
    // Weights w[0..2h], centred on w[h]; they need not be normalised: every output is divided by their sum.
    // The kernel is invalid (isValid() false) with an even or zero count, a zero sum or a non-finite weight.
    explicit Convolution1D(std::vector<double> weights);

    // (1, 1, ..., 1) over 2*halfWidth + 1 samples: a moving average.
    static Convolution1D box(int halfWidth);
    // Sampled Gaussian exp(-k^2 / (2 sigma^2)), k in [-halfWidth, halfWidth]; sigma in samples, > 0.
    static Convolution1D gaussian(double sigma, int halfWidth);

    bool isValid() const { return valid_; }
    const std::vector<double>& weights() const { return weights_; }
    int halfWidth() const { return static_cast<int>(weights_.size() / 2); }

    // Smoothed copy of the sequence; the first and last values are kept as they are. Beyond the ends the
    // sequence is extended by point reflection through the end values (v[-k] = 2 v[0] - v[k]), repeated when
    // the kernel is wider than the sequence, so an evenly sampled straight run stays straight under a
    // symmetric kernel, right up to the ends. Returns the input unchanged when the kernel is invalid or there
    // are fewer than 3 values.
    std::vector<double> apply(const std::vector<double>& values) const;
    std::vector<Vector2> apply(const std::vector<Vector2>& points) const;
    std::vector<Vector3> apply(const std::vector<Vector3>& points) const;

private:
    std::vector<double> weights_;  // divided by their sum when valid
    bool valid_ = false;
};

}  // namespace vek
