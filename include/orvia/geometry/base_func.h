// A cubic y(u) = c0 + c1 u + c2 u^2 + c3 u^3 and the analysis of its graph.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

class BaseFunc {
public:
    // The zero function.
    BaseFunc() = default;
    BaseFunc(double c0, double c1, double c2, double c3) : m_c{c0, c1, c2, c3} {}

    // Hermite fit on [-h, h]: y(-h) = y0, y(h) = y1, y'(-h) = d0, y'(h) = d1. All coefficients 0 when
    // |h| < kMinHalfWidth.
    void Estimate(double h, double y0, double y1, double d0, double d1);
    // y = c0 + c1 u.
    void SetAsLine(double c0, double c1);
    // This becomes the derivative of f.
    void SetAsDf(const BaseFunc& f);
    // This becomes a f + b g.
    void SetAsLinearCombi(double a, const BaseFunc& f, double b, const BaseFunc& g);

    double Eval(double u) const { return m_c[0] + u * (m_c[1] + u * (m_c[2] + u * m_c[3])); }
    double EvalDf(double u) const { return m_c[1] + u * (2 * m_c[2] + 3 * m_c[3] * u); }
    double EvalDf2(double u) const { return 2 * m_c[2] + 6 * m_c[3] * u; }
    // Signed curvature of the graph (1/unit), positive where it bends upwards.
    double EvalCurvature(double u) const;

    // Arc length of the graph from u0 to u1: chords through u0, LinearApprox(u0, u1, tolerance, step) and
    // u1. Negative (minus the length from u1 to u0) when u1 < u0; 0 when the chords sum to nothing positive.
    double CurveLen(double u0, double u1, double tolerance, double step) const;

    // Abscissas strictly between u0 < u1, ascending, that cut [u0, u1] into intervals no wider than step and
    // on which the graph stays within tolerance of its chord. Empty when u1 <= u0 or an argument is not
    // positive.
    void LinearApprox(double u0, double u1, double tolerance, double step, std::vector<double>& out) const;
    // Same, evenly spaced: as many equal intervals (up to kMaxIntervals) as the bound h^2 max|y''| / 8 on the
    // chord error of an interval of width h needs.
    void UniformLinearApprox(double u0, double u1, double tolerance, std::vector<double>& out) const;
    // The adaptive chord subdivision alone (no step limit), appending the inner abscissas of [u0, u1].
    void LinearApproxRaw(double u0, double u1, double tolerance, std::vector<double>& out) const;
    // Largest distance, along y, between the graph and its chord over [u0, u1].
    double ChordError(double u0, double u1) const;

    // Abscissas in (u0, u1) where y' = 0, ascending; returns how many (0 to 2). None for a line.
    int Extrema(double u0, double u1, std::array<double, 2>& out) const;
    // Abscissas in [u0, u1] where y = 0, ascending; returns how many (0 to 3). None for the zero function.
    int Zeros(double u0, double u1, std::array<double, 3>& out) const;
    // Abscissas in [u0, u1] where f = g (see Zeros).
    static int Crosses(const BaseFunc& f, const BaseFunc& g, double u0, double u1,
                       std::array<double, 3>& out);
    // Abscissa where y'' = 0; false for a function of degree below 3.
    bool GetCurvatureInflexionAbscissia(double& u) const;
    // Largest |curvature| over [u0, u1] and where it is reached (the first such place).
    double MaxCurvature(double u0, double u1, double& where) const;
    // Smallest and largest y over [u0, u1] (either order of the bounds).
    void ComputeIntervalImage(double& min, double& max, double u0, double u1) const;

    void getCoefficients(double& c0, double& c1, double& c2, double& c3) const {
        c0 = m_c[0];
        c1 = m_c[1];
        c2 = m_c[2];
        c3 = m_c[3];
    }
    const std::array<double, 4>& GetCoefficients() const { return m_c; }

    // Half-widths below this make Estimate a zero function.
    static constexpr double kMinHalfWidth = 1e-12;
    // Bound on the intervals of UniformLinearApprox and on the depth of the adaptive subdivision.
    static constexpr int kMaxIntervals = 1 << 20;
    static constexpr int kMaxSubdivisionDepth = 40;
    // Bound on the points LinearApprox returns, whatever the range and tolerance.
    static constexpr std::size_t kMaxPoints = 1 << 21;

private:
    std::array<double, 4> m_c{};
};
