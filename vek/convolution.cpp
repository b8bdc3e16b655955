#include <orvia/vek/convolution.h>

#include <cmath>
#include <cstddef>
#include <utility>

namespace vek {

Convolution1D::Convolution1D(std::vector<double> weights) : weights_(std::move(weights)) {
    double sum = 0;
    bool finite = true;
    for (double w : weights_) {
        sum += w;
        finite = finite && std::isfinite(w);
    }
    valid_ = weights_.size() % 2 == 1 && finite && sum != 0 && std::isfinite(sum);
    if (valid_)
        for (double& w : weights_)
            w /= sum;
}

Convolution1D Convolution1D::box(int halfWidth) {
    const int h = halfWidth < 0 ? 0 : halfWidth;
    return Convolution1D(std::vector<double>(static_cast<std::size_t>(2 * h + 1), 1.0));
}

Convolution1D Convolution1D::gaussian(double sigma, int halfWidth) {
    const int h = halfWidth < 0 ? 0 : halfWidth;
    std::vector<double> w(static_cast<std::size_t>(2 * h + 1));
    for (int k = -h; k <= h; ++k)
        w[static_cast<std::size_t>(k + h)] = std::exp(-k * k / (2 * sigma * sigma));
    return Convolution1D(std::move(w));
}

namespace {

template <class T>
std::vector<T> convolve(const std::vector<double>& weights, const std::vector<T>& in) {
    const auto n = static_cast<std::ptrdiff_t>(in.size());
    const auto h = static_cast<std::ptrdiff_t>(weights.size() / 2);
    const T& first = in.front();
    const T& last = in.back();
    // Extended sample: point reflections through the end values, repeated as often as the kernel overhangs
    // (v[-k] = 2 v[0] - v[k], v[n-1+k] = 2 v[n-1] - v[n-1-k]), which continues a linear run linearly.
    auto sample = [&](std::ptrdiff_t j) -> T {
        double sign = 1;
        T offset{};
        while (j < 0 || j >= n) {
            offset += (j < 0 ? first : last) * (2 * sign);
            sign = -sign;
            j = j < 0 ? -j : 2 * (n - 1) - j;
        }
        return offset + in[static_cast<std::size_t>(j)] * sign;
    };
    std::vector<T> out(in.size());
    out.front() = first;
    out.back() = last;
    for (std::ptrdiff_t i = 1; i + 1 < n; ++i) {
        T acc{};
        for (std::ptrdiff_t k = -h; k <= h; ++k)
            acc += sample(i + k) * weights[static_cast<std::size_t>(k + h)];
        out[static_cast<std::size_t>(i)] = acc;
    }
    return out;
}

}  // namespace

std::vector<double> Convolution1D::apply(const std::vector<double>& values) const {
    return valid_ && values.size() >= 3 ? convolve(weights_, values) : values;
}

std::vector<Vector2> Convolution1D::apply(const std::vector<Vector2>& points) const {
    return valid_ && points.size() >= 3 ? convolve(weights_, points) : points;
}

std::vector<Vector3> Convolution1D::apply(const std::vector<Vector3>& points) const {
    return valid_ && points.size() >= 3 ? convolve(weights_, points) : points;
}

}  // namespace vek
