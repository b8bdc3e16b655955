#include <orvia/geometry/cartesian_curve.h>

#include <algorithm>
#include <cmath>
#include <typeinfo>

#include <orvia/vek/math.h>

namespace Orvia {

namespace {

// The exact type needs no search of the hierarchy: every load meets every polynomial twice.
PolynomialFunction* AsPolynomial(Ruvex::PolynomialFunctionElement* record) {
    if (!record) return nullptr;
    return typeid(*record) == typeid(PolynomialFunction) ? static_cast<PolynomialFunction*>(record)
                                                         : dynamic_cast<PolynomialFunction*>(record);
}

}  // namespace

namespace {

using PieceList = std::vector<Ruvex::CountedPtr<Ruvex::PolynomialFunctionElement>>;

// The values of a piece, copied: PolynomialFunction::Set must not read from the members it overwrites.
struct Ends {
    vek::Vector2 in;
    double dIn;
    vek::Vector2 out;
    double dOut;
};

Ends EndsOf(const PolynomialFunction* f) {
    return {f->GetPosIn(), f->GetDerivativeIn(), f->GetPosOut(), f->GetDerivativeOut()};
}

void Fit(PolynomialFunction* f, const Ends& e) {
    f->Set(e.in, e.dIn, e.out, e.dOut);
}

// The bisection of GetFunctionAtIdx over pieces [lo, hi), hi <= the count and lo < hi.
size_t Bisect(const std::vector<PolynomialFunction*>& pieces, double x, size_t lo, size_t hi) {
    for (;;) {
        const size_t mid = lo + (hi - lo) / 2;
        const PolynomialFunction* f = pieces[mid];
        if (f->GetXMin() > x) {
            if (mid == lo) return lo;
            hi = mid;
        } else if (x > f->GetXMax()) {
            if (mid == hi - 1) return hi - 1;
            lo = mid;
        } else {
            return mid;
        }
    }
}

const PolynomialFunction* PieceAt(const std::vector<PolynomialFunction*>& pieces, double x) {
    return pieces.empty() ? nullptr : pieces[Bisect(pieces, x, 0, pieces.size())];
}

}  // namespace

CartesianCurve::CartesianCurve() = default;

CartesianCurve::CartesianCurve(const std::string& tag) : Ruvex::CartesianCurveElement(tag) {}

CartesianCurve::CartesianCurve(const CartesianCurve& other)
    : Ruvex::CartesianCurveElement(other),
      m_editModeDetected(other.m_editModeDetected),
      m_linearEditMode(other.m_linearEditMode) {
    AssignClones(other.m_Functions);
}

CartesianCurve& CartesianCurve::operator=(const CartesianCurve& other) {
    if (this == &other) return *this;
    Ruvex::CartesianCurveElement::operator=(other);
    m_editModeDetected = other.m_editModeDetected;
    m_linearEditMode = other.m_linearEditMode;
    AssignClones(other.m_Functions);
    return *this;
}

CartesianCurve::~CartesianCurve() = default;

void CartesianCurve::AssignClones(const PieceList& list) {
    PieceList copy;
    copy.reserve(list.size());
    for (const auto& element : list) {
        const auto* function = dynamic_cast<const PolynomialFunction*>(element.Get());
        copy.emplace_back(function ? function->Clone() : element.Get());
    }
    m_Functions = std::move(copy);
    UpdateFunctionVector();
}

// ---------------------------------------------------------------------------------------------------------------
// Pieces

void CartesianCurve::UpdateFunctionVector() {
    m_pieces.clear();
    for (const auto& element : m_Functions)
        if (PolynomialFunction* function = AsPolynomial(element.Get())) m_pieces.push_back(function);
}

bool CartesianCurve::AddFunction(PolynomialFunction* function) {
    return InsertFunction(function, npos);
}

bool CartesianCurve::InsertFunction(PolynomialFunction* function, size_t index) {
    if (!function) return false;
    auto position = m_Functions.end();
    if (index < m_pieces.size())
        position = std::find(m_Functions.begin(), m_Functions.end(), m_pieces[index]);
    m_Functions.insert(position, Ruvex::CountedPtr<Ruvex::PolynomialFunctionElement>(function));
    UpdateFunctionVector();
    return true;
}

bool CartesianCurve::RemoveFunction(size_t first, size_t count) {
    if (first >= m_pieces.size()) return false;
    const size_t last = first + std::min(count, m_pieces.size() - first);
    // Held until the list no longer names them.
    PieceList removed(m_pieces.begin() + static_cast<std::ptrdiff_t>(first),
                      m_pieces.begin() + static_cast<std::ptrdiff_t>(last));
    std::erase_if(m_Functions, [&removed](const auto& element) {
        return std::find(removed.begin(), removed.end(), element) != removed.end();
    });
    UpdateFunctionVector();
    return true;
}

bool CartesianCurve::SplitFunction(size_t index, double x) {
    if (index >= m_pieces.size()) return false;
    PolynomialFunction* f = m_pieces[index];
    if (!(x > f->GetXMin() && x < f->GetXMax())) return false;
    const Ends e = EndsOf(f);
    const vek::Vector2 middle(x, f->GetValue(x));
    const double slope = f->GetDerivative(x);
    f->Set(e.in, e.dIn, middle, slope);
    return InsertFunction(new PolynomialFunction(middle, slope, e.out, e.dOut), index + 1);
}

const PolynomialFunction* CartesianCurve::GetFunction(size_t index) const {
    return index < m_pieces.size() ? m_pieces[index] : nullptr;
}

PolynomialFunction* CartesianCurve::GetEditableFunction(size_t index) {
    return index < m_pieces.size() ? m_pieces[index] : nullptr;
}

size_t CartesianCurve::GetFunctionIndex(const PolynomialFunction* function) const {
    for (size_t i = 0; i < m_pieces.size(); ++i)
        if (m_pieces[i] == function) return i;
    return npos;
}

size_t CartesianCurve::GetFunctionAtIdx(double x, size_t lo, size_t hi) const {
    hi = std::min(hi, m_pieces.size());
    return lo < hi ? Bisect(m_pieces, x, lo, hi) : npos;
}

size_t CartesianCurve::GetFunctionIndexAt(double x) const {
    return m_pieces.empty() ? npos : Bisect(m_pieces, x, 0, m_pieces.size());
}

const PolynomialFunction* CartesianCurve::GetFunctionAt(double x) const {
    return PieceAt(m_pieces, x);
}

// ---------------------------------------------------------------------------------------------------------------
// Values

double CartesianCurve::GetValue(double x) const {
    const PolynomialFunction* f = PieceAt(m_pieces, x);
    return f ? f->GetValue(x) : 0;
}

double CartesianCurve::GetSlope(double x) const {
    const PolynomialFunction* f = PieceAt(m_pieces, x);
    return f ? f->GetSlope(x) : 0;
}

double CartesianCurve::GetCurvature(double x) const {
    const PolynomialFunction* f = PieceAt(m_pieces, x);
    return f ? f->GetCurvature(x) : 0;
}

void CartesianCurve::GetData(double x, double& value, double& slope, double& curvature) const {
    const PolynomialFunction* f = PieceAt(m_pieces, x);
    if (!f) return;
    value = f->GetValue(x);
    slope = f->GetSlope(x);
    curvature = f->GetCurvature(x);
}

double CartesianCurve::GetXMin() const {
    return m_pieces.empty() ? 0 : m_pieces.front()->GetXMin();
}

double CartesianCurve::GetXMax() const {
    return m_pieces.empty() ? 0 : m_pieces.back()->GetXMax();
}

void CartesianCurve::SetXMax(double x) {
    if (m_pieces.empty() || std::fabs(GetXMax() - x) < kXTolerance) return;
    if (x > GetXMax()) {
        Ends e = EndsOf(m_pieces.back());
        e.out.x = x;
        Fit(m_pieces.back(), e);
        return;
    }
    size_t i = 0;
    while (i < m_pieces.size() && !(m_pieces[i]->GetXMax() > x))
        ++i;
    if (i == m_pieces.size()) return;
    PolynomialFunction* f = m_pieces[i];
    if (x - kMinCutWidth > f->GetXMin()) {
        Ends e = EndsOf(f);
        e.out.x = x;
        Fit(f, e);
        RemoveFunction(i + 1, m_pieces.size());
    } else {
        RemoveFunction(i, m_pieces.size());
    }
}

void CartesianCurve::SetXMin(double x) {
    Invert();
    SetXMax(x);
    Invert();
}

double CartesianCurve::GetCurveLength() const {
    double length = 0;
    for (const PolynomialFunction* f : m_pieces)
        length += f->GetCurveLength(f->GetXMin(), f->GetXMax());
    return length;
}

vek::Box2 CartesianCurve::GetBoundingBox() const {
    vek::Box2 box;
    for (const PolynomialFunction* f : m_pieces)
        box.add(f->GetBoundingBox());
    return box;
}

// ---------------------------------------------------------------------------------------------------------------
// Handles

vek::Vector2 CartesianCurve::GetHandlePos(size_t i) const {
    if (i < m_pieces.size()) return m_pieces[i]->GetPosIn();
    if (i == m_pieces.size() && !m_pieces.empty()) return m_pieces.back()->GetPosOut();
    return {};
}

double CartesianCurve::GetHandlePrevSlope(size_t i) const {
    if (m_pieces.empty() || i > m_pieces.size()) return 0;
    return i == 0 ? m_pieces.front()->GetDerivativeIn() : m_pieces[i - 1]->GetDerivativeOut();
}

double CartesianCurve::GetHandleNextSlope(size_t i) const {
    if (m_pieces.empty() || i > m_pieces.size()) return 0;
    return i == m_pieces.size() ? m_pieces.back()->GetDerivativeOut() : m_pieces[i]->GetDerivativeIn();
}

bool CartesianCurve::RemoveHandle(size_t i) {
    if (i == 0 || i >= m_pieces.size()) return false;
    const Ends before = EndsOf(m_pieces[i - 1]);
    const Ends after = EndsOf(m_pieces[i]);
    Fit(m_pieces[i - 1], {before.in, before.dIn, after.out, after.dOut});
    return RemoveFunction(i, 1);
}

bool CartesianCurve::SetFunctionStart(size_t index, const vek::Vector2& point, double derivative) {
    if (index >= m_pieces.size()) return false;
    Ends e = EndsOf(m_pieces[index]);
    e.in = point;
    e.dIn = derivative;
    Fit(m_pieces[index], e);
    return true;
}

bool CartesianCurve::SetFunctionEnd(size_t index, const vek::Vector2& point, double derivative) {
    if (index >= m_pieces.size()) return false;
    Ends e = EndsOf(m_pieces[index]);
    e.out = point;
    e.dOut = derivative;
    Fit(m_pieces[index], e);
    return true;
}

bool CartesianCurve::SetLinearFunctionStart(size_t index, const vek::Vector2& point) {
    if (index >= m_pieces.size()) return false;
    const vek::Vector2 out = m_pieces[index]->GetPosOut();
    m_pieces[index]->SetLinear(point, out);
    return true;
}

bool CartesianCurve::SetLinearFunctionEnd(size_t index, const vek::Vector2& point) {
    if (index >= m_pieces.size()) return false;
    const vek::Vector2 in = m_pieces[index]->GetPosIn();
    m_pieces[index]->SetLinear(in, point);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------
// Whole-curve edits

void CartesianCurve::Offset(const vek::Vector2& v) {
    for (PolynomialFunction* f : m_pieces) {
        const Ends e = EndsOf(f);
        Fit(f, {e.in + v, e.dIn, e.out + v, e.dOut});
    }
}

void CartesianCurve::Invert() {
    const double xMax = GetXMax();
    std::reverse(m_Functions.begin(), m_Functions.end());
    UpdateFunctionVector();
    for (PolynomialFunction* f : m_pieces) {
        const Ends e = EndsOf(f);
        Fit(f, {{xMax - e.out.x, e.out.y}, -e.dOut, {xMax - e.in.x, e.in.y}, -e.dIn});
    }
}

void CartesianCurve::InvertY() {
    for (PolynomialFunction* f : m_pieces) {
        const Ends e = EndsOf(f);
        Fit(f, {{e.in.x, -e.in.y}, -e.dIn, {e.out.x, -e.out.y}, -e.dOut});
    }
}

void CartesianCurve::InvertYX() {
    const double xMax = GetXMax();
    std::reverse(m_Functions.begin(), m_Functions.end());
    UpdateFunctionVector();
    for (PolynomialFunction* f : m_pieces) {
        const Ends e = EndsOf(f);
        Fit(f, {{xMax - e.out.x, -e.out.y}, e.dOut, {xMax - e.in.x, -e.in.y}, e.dIn});
    }
}

void CartesianCurve::AppEnd(CartesianCurve* other) {
    if (!other || other == this) return;
    const double xMax = GetXMax();
    other->Offset({xMax, GetValue(xMax)});
    for (PolynomialFunction* f : other->m_pieces)
        m_Functions.emplace_back(f);
    UpdateFunctionVector();
}

bool CartesianCurve::MakeFrom(const std::vector<vek::Vector2>& points) {
    const size_t n = points.size();
    if (n < 2) return false;
    Clear();
    std::vector<double> angles(n - 1);
    for (size_t i = 0; i + 1 < n; ++i) {
        const vek::Vector2 chord = points[i + 1] - points[i];
        const vek::Vector2 unit = chord.squaredNorm() > 0 ? chord.normalized() : vek::Vector2(1, 0);
        angles[i] = vek::angleBetweenVectors({1, 0}, unit);
    }
    auto slopeAt = [&](size_t i) {
        if (i == 0) return std::tan(angles.front());
        if (i == n - 1) return std::tan(angles.back());
        return std::tan((angles[i - 1] + angles[i]) / 2);
    };
    for (size_t i = 0; i + 1 < n; ++i)
        m_Functions.emplace_back(
            new PolynomialFunction(points[i], slopeAt(i), points[i + 1], slopeAt(i + 1)));
    UpdateFunctionVector();
    return true;
}

bool CartesianCurve::MakeFrom(const std::vector<PtInCurve>& points) {
    if (points.size() < 2) return false;
    Clear();
    for (size_t i = 0; i + 1 < points.size(); ++i)
        m_Functions.emplace_back(new PolynomialFunction(points[i].point, points[i].slope, points[i + 1].point,
                                                        points[i + 1].slope));
    UpdateFunctionVector();
    return true;
}

void CartesianCurve::Validate() {
    for (size_t i = 1; i < m_pieces.size(); ++i) {
        PolynomialFunction* before = m_pieces[i - 1];
        PolynomialFunction* f = m_pieces[i];
        if (f->GetXMax() < f->GetXMin()) {
            const Ends e = EndsOf(f);
            Fit(f, {e.out, e.dOut, e.in, e.dIn});
        }
        if (before->GetPosOut() != f->GetPosIn()) {
            Ends e = EndsOf(f);
            e.in = before->GetPosOut();
            Fit(f, e);
        }
        if (!m_editModeDetected) DetectEditMode();
        if (!m_linearEditMode && before->GetDerivativeOut() != f->GetDerivativeIn()) {
            Ends b = EndsOf(before);
            Ends e = EndsOf(f);
            const double slope = vek::barycenter((b.in - e.in).norm(), b.dOut, (e.in - e.out).norm(), e.dIn);
            b.dOut = slope;
            e.dIn = slope;
            Fit(before, b);
            Fit(f, e);
        }
    }
    if (m_linearEditMode) {
        for (PolynomialFunction* f : m_pieces) {
            const vek::Vector2 in = f->GetPosIn(), out = f->GetPosOut();
            f->SetLinear(in, out);
        }
    }
    for (size_t i = 0; i < m_pieces.size() && m_pieces.size() >= 2;) {
        if (m_pieces[i]->GetXMax() - m_pieces[i]->GetXMin() <= 0)
            RemoveFunction(i, 1);
        else
            ++i;
    }
}

void CartesianCurve::DetectEditMode() {
    m_linearEditMode = false;
    for (size_t i = 0; i + 1 < m_pieces.size(); ++i) {
        if (std::fabs(m_pieces[i]->GetDerivativeOut() - m_pieces[i + 1]->GetDerivativeIn()) >=
            kLinearEditSlopeBreak) {
            m_linearEditMode = true;
            break;
        }
    }
    m_editModeDetected = true;
}

void CartesianCurve::SetLinearEditMode(bool linear) {
    m_linearEditMode = linear;
    m_editModeDetected = true;
}

CartesianCurve* CartesianCurve::Clone() const {
    return new CartesianCurve(*this);
}

void CartesianCurve::CopyFrom(const CartesianCurve* other) {
    if (!other || other == this) return;
    m_editModeDetected = other->m_editModeDetected;
    m_linearEditMode = other->m_linearEditMode;
    AssignClones(other->m_Functions);
}

void CartesianCurve::Clear() {
    m_Functions.clear();
    m_pieces.clear();
    m_editModeDetected = false;
    m_linearEditMode = false;
}

bool CartesianCurve::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    Clear();
    const bool loaded = Ruvex::CartesianCurveElement::LoadFromXMLElement(element, parser);
    for (auto& record : m_Functions) {
        if (!record || AsPolynomial(record.Get())) continue;
        record = new PolynomialFunction(record->GetIn(), record->GetDerivativeIn(), record->GetOut(),
                                        record->GetDerivativeOut());
    }
    UpdateFunctionVector();
    return loaded;
}

}  // namespace Orvia
