// 3x3 matrix of doubles, row-major, used for rotations of right-handed frames.
#pragma once

#include <array>
#include <cassert>
#include <cmath>

#include <orvia/vek/vector.h>

namespace vek {

class Matrix3 {
public:
    // Identity.
    constexpr Matrix3() = default;
    // Rows given in order: m[r][c] = rows[r][c].
    constexpr Matrix3(const Vector3& row0, const Vector3& row1, const Vector3& row2) : m_{row0, row1, row2} {}

    static constexpr Matrix3 identity() { return {}; }
    // Counter-clockwise (right-handed) rotations by angle radians about the x, y or z axis: applied to column
    // vectors, rotationZ(a) turns +x towards +y, rotationX(a) turns +y towards +z, rotationY(a) turns +z
    // towards +x.
    static Matrix3 rotationX(double angle) {
        const double c = std::cos(angle), s = std::sin(angle);
        return {{1, 0, 0}, {0, c, -s}, {0, s, c}};
    }
    static Matrix3 rotationY(double angle) {
        const double c = std::cos(angle), s = std::sin(angle);
        return {{c, 0, s}, {0, 1, 0}, {-s, 0, c}};
    }
    static Matrix3 rotationZ(double angle) {
        const double c = std::cos(angle), s = std::sin(angle);
        return {{c, -s, 0}, {s, c, 0}, {0, 0, 1}};
    }

    // Element at row r, column c, both in [0, 2].
    constexpr double& operator()(int r, int c) {
        assert(r >= 0 && r <= 2);
        return m_[r][c];
    }
    constexpr double operator()(int r, int c) const {
        assert(r >= 0 && r <= 2);
        return m_[r][c];
    }
    constexpr const Vector3& row(int r) const {
        assert(r >= 0 && r <= 2);
        return m_[r];
    }
    constexpr Vector3 column(int c) const { return {m_[0][c], m_[1][c], m_[2][c]}; }

    constexpr Vector3 operator*(const Vector3& v) const { return {m_[0].dot(v), m_[1].dot(v), m_[2].dot(v)}; }
    constexpr Matrix3 operator*(const Matrix3& o) const {
        Matrix3 r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                r.m_[i][j] = m_[i][0] * o.m_[0][j] + m_[i][1] * o.m_[1][j] + m_[i][2] * o.m_[2][j];
        return r;
    }
    constexpr Matrix3 transposed() const { return {column(0), column(1), column(2)}; }
    constexpr void transpose() { *this = transposed(); }
    constexpr double determinant() const { return m_[0].dot(m_[1].cross(m_[2])); }

    // Exact element-wise comparison.
    constexpr bool operator==(const Matrix3&) const = default;
    // Each element within tol.
    constexpr bool isEqual(const Matrix3& o, double tol) const {
        return m_[0].isEqual(o.m_[0], tol) && m_[1].isEqual(o.m_[1], tol) && m_[2].isEqual(o.m_[2], tol);
    }

private:
    std::array<Vector3, 3> m_{Vector3(1, 0, 0), Vector3(0, 1, 0), Vector3(0, 0, 1)};
};

using Matrix = Matrix3;

}  // namespace vek
