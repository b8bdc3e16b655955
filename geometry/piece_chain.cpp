#include <orvia/geometry/piece_chain.h>

#include <algorithm>
#include <cmath>

namespace Orvia {

PieceChain::PieceChain() = default;
PieceChain::~PieceChain() = default;

PieceChain::PieceChain(const PieceChain& other) {
    *this = other;
}

PieceChain& PieceChain::operator=(const PieceChain& other) {
    if (this == &other) return *this;
    m_records.clear();
    m_records.reserve(other.m_records.size());
    for (const Record& r : other.m_records)
        m_records.push_back({Ruvex::CountedPtr<ParametricFunction>(r.piece->Clone()), r.start, r.end});
    return *this;
}

void PieceChain::AddFunction(ParametricFunction* piece) {
    if (!piece) return;
    const double start = GetLength();
    m_records.push_back({Ruvex::CountedPtr<ParametricFunction>(piece), start, start + piece->GetLength()});
}

bool PieceChain::RemoveFunction(size_t first, size_t count) {
    if (first >= m_records.size()) return false;
    const size_t last = first + std::min(count, m_records.size() - first);
    m_records.erase(m_records.begin() + static_cast<std::ptrdiff_t>(first),
                    m_records.begin() + static_cast<std::ptrdiff_t>(last));
    UpdateAbscissas();
    return true;
}

void PieceChain::Clear() {
    m_records.clear();
}

ParametricFunction* PieceChain::GetFunction(size_t index) const {
    return index < m_records.size() ? m_records[index].piece.Get() : nullptr;
}

double PieceChain::GetFunctionStartLength(size_t index) const {
    return index < m_records.size() ? m_records[index].start : GetLength();
}

void PieceChain::UpdateAbscissas() {
    double start = 0;
    for (Record& r : m_records) {
        r.start = start;
        r.end = start + r.piece->GetLength();
        start = r.end;
    }
}

size_t PieceChain::FindRecord(double s) const {
    size_t lo = 0, hi = m_records.size();
    for (;;) {
        const size_t mid = lo + (hi - lo) / 2;
        if (m_records[mid].start > s) {
            if (mid == lo) return lo;
            hi = mid;
        } else if (s > m_records[mid].end) {
            if (mid == hi - 1) return hi - 1;
            lo = mid;
        } else {
            return mid;
        }
    }
}

bool PieceChain::GetPointData(double s, double t, PointData& out) const {
    if (m_records.empty()) return false;
    const double length = GetLength();
    if (s >= 0 && s <= length) {
        const Record& r = m_records[FindRecord(s)];
        out = r.piece->GetPointData(std::clamp(s - r.start, 0.0, r.end - r.start));
    } else {
        const double reference = s < 0 ? 0 : length;
        PointData end;
        GetPointData(reference, 0, end);
        out = PointData(end.position + end.GetTangent() * (s - reference), end.heading, 0);
    }
    if (t != 0) out.position -= out.GetNormal() * t;
    return true;
}

void PieceChain::SetOrigin(const vek::Vector2& position, double orientation) {
    if (m_records.empty()) return;
    ParametricFunction* first = m_records.front().piece.Get();
    first->SetStartPosition(position);
    first->SetStartOrientation(orientation);
    UpdateFunctionsFromStart();
}

vek::Vector2 PieceChain::GetOriginPosition() const {
    return m_records.empty() ? vek::Vector2() : m_records.front().piece->GetStartPosition();
}

double PieceChain::GetOriginOrientation() const {
    return m_records.empty() ? 0 : m_records.front().piece->GetStartOrientation();
}

void PieceChain::UpdateFunctionsFromStart() {
    for (size_t i = 1; i < m_records.size(); ++i) {
        const ParametricFunction* before = m_records[i - 1].piece.Get();
        const PointData end = before->GetPointData(before->GetLength());
        m_records[i].piece->SetStartPosition(end.position);
        m_records[i].piece->SetStartOrientation(end.heading);
    }
    UpdateAbscissas();
}

}  // namespace Orvia
