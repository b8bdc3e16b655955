#include <orvia/geometry/passageway.h>
#include <orvia/geometry/profile_modifier.h>

#include <algorithm>

namespace Orvia {

BorderOffset::BorderOffset(double t, double yOffset, double dirIn, double dirOut) {
    m_T = t;
    m_YOffset = yOffset;
    m_DirIn = dirIn;
    m_DirOut = dirOut;
}

BorderOffset::~BorderOffset() = default;

void BorderOffset::Invert() {
    std::swap(m_DirIn, m_DirOut);
    m_YOffset = -m_YOffset;
}

void BorderOffset::CopyFrom(const BorderOffset* other) {
    if (!other || other == this) return;
    m_T = other->m_T;
    m_YOffset = other->m_YOffset;
    m_DirIn = other->m_DirIn;
    m_DirOut = other->m_DirOut;
}

BorderOffset* BorderOffset::Clone() const {
    auto* copy = new BorderOffset;
    copy->CopyFrom(this);
    return copy;
}

// ---------------------------------------------------------------------------------------------------------------
// BorderModifier

BorderModifier::~BorderModifier() = default;

BorderOffset* BorderModifier::GetBorderOffset(size_t index) const {
    return index < m_BorderOffsets.size() ? dynamic_cast<BorderOffset*>(m_BorderOffsets[index].Get())
                                          : nullptr;
}

void BorderModifier::setBorderOffset(size_t index, BorderOffset* offset) {
    if (offset && index < m_BorderOffsets.size()) m_BorderOffsets[index] = offset;
}

void BorderModifier::addBorderOffset(BorderOffset* offset) {
    if (offset) m_BorderOffsets.push_back(offset);
}

BorderOffset* BorderModifier::createBorderOffset(double t, double yOffset, double dirIn, double dirOut) {
    auto* offset = new BorderOffset(t, yOffset, dirIn, dirOut);
    addBorderOffset(offset);
    return offset;
}

void BorderModifier::LoadFunctions(const Passageway* passageway, double sStart, double sEnd,
                                   size_t lastBorderId) {
    m_functions.clear();
    double y0 = 0, y1 = 0;
    if (passageway) {
        const bool right = m_Id == lastBorderId;
        const Lane* startLane = passageway->GetStartLane();
        const Lane* endLane = passageway->GetEndLane();
        y0 = startLane ? (right ? startLane->GetRightPositionX() : startLane->GetLeftPositionX())
                       : passageway->GetStartPoint().first;
        y1 = endLane ? (right ? endLane->GetRightPositionX() : endLane->GetLeftPositionX())
                     : passageway->GetEndPoint().first;
    }
    if (m_BorderOffsets.size() < 2) return;
    const double dy = y1 - y0;
    const double length = sEnd - sStart;
    for (size_t i = 0; i + 1 < m_BorderOffsets.size(); ++i) {
        const Ruvex::BorderOffsetElement* a = m_BorderOffsets[i].Get();
        const Ruvex::BorderOffsetElement* b = m_BorderOffsets[i + 1].Get();
        if (!a || !b) continue;
        const vek::Vector2 in(a->GetT() * length, y0 + a->GetT() * dy + a->GetYOffset());
        const vek::Vector2 out(b->GetT() * length, y0 + b->GetT() * dy + b->GetYOffset());
        m_functions.emplace_back(new PolynomialFunction(in, a->GetDirOut(), out, b->GetDirIn()));
    }
}

size_t BorderModifier::GetFunctionAtIdx(double x, size_t lo, size_t hi) const {
    hi = std::min(hi, m_functions.size());
    if (lo >= hi) return npos;
    for (;;) {
        const size_t mid = lo + (hi - lo) / 2;
        const PolynomialFunction* f = m_functions[mid].Get();
        if (f->GetXMin() <= x) {
            if (x <= f->GetXMax()) return mid;
            if (mid == hi - 1) return mid;
            lo = mid + 1;
        } else {
            if (mid == lo) return lo;
            hi = mid;
        }
    }
}

double BorderModifier::GetDistanceFromAxis(double x) const {
    const size_t i = GetFunctionAtIdx(x, 0, m_functions.size());
    return i == npos ? 0.0 : m_functions[i]->GetValue(x);
}

double BorderModifier::computeDerivativeAtAbscissa(double x) const {
    const size_t i = GetFunctionAtIdx(x, 0, m_functions.size());
    return i == npos ? 0.0 : m_functions[i]->GetDerivative(x);
}

double BorderModifier::getMaxCurvature(const double& x) const {
    const size_t i = GetFunctionAtIdx(x, 0, m_functions.size());
    return i == npos ? 0.0 : m_functions[i]->GetCurvature(x);
}

void BorderModifier::getFunctionsCoefficients(std::vector<FuncData>& out) const {
    out.clear();
    out.reserve(m_functions.size());
    for (const auto& f : m_functions) {
        FuncData data;
        data.start = f->GetXMin();
        f->getCoefficients(data.a, data.b, data.c, data.d);
        out.push_back(data);
    }
}

void BorderModifier::Invert(const Portion*) {
    for (const auto& item : m_BorderOffsets) {
        auto* offset = dynamic_cast<BorderOffset*>(item.Get());
        if (!offset) continue;
        offset->SetT(1.0 - offset->GetT());
        offset->Invert();
    }
    std::reverse(m_BorderOffsets.begin(), m_BorderOffsets.end());
}

void BorderModifier::CopyFrom(const BorderModifier* other) {
    if (!other || other == this) return;
    m_Id = other->m_Id;
    m_BorderOffsets.clear();
    for (size_t i = 0; i < other->GetBorderOffsetCount(); ++i)
        if (const BorderOffset* offset = other->GetBorderOffset(i)) addBorderOffset(offset->Clone());
    m_functions.clear();
}

BorderModifier* BorderModifier::Clone() const {
    auto* copy = new BorderModifier;
    copy->CopyFrom(this);
    return copy;
}

// ---------------------------------------------------------------------------------------------------------------
// ProfileModifier

ProfileModifier::~ProfileModifier() = default;

BorderModifier* ProfileModifier::GetBorderModifier(size_t index) const {
    return index < m_BorderModifiers.size() ? dynamic_cast<BorderModifier*>(m_BorderModifiers[index].Get())
                                            : nullptr;
}

BorderModifier* ProfileModifier::GetBorderModifierById(size_t id) const {
    for (size_t i = 0; i < m_BorderModifiers.size(); ++i) {
        BorderModifier* modifier = GetBorderModifier(i);
        if (modifier && modifier->GetId() == id) return modifier;
    }
    return nullptr;
}

std::vector<size_t> ProfileModifier::GetBorderModifierIds() const {
    std::vector<size_t> ids;
    for (const auto& item : m_BorderModifiers)
        if (item) ids.push_back(item->GetId());
    return ids;
}

BorderModifier* ProfileModifier::CreateOrUpdateBorderModifier(size_t id, double t, double yOffset,
                                                              double dirIn, double dirOut) {
    BorderModifier* modifier = GetBorderModifierById(id);
    if (!modifier) {
        modifier = new BorderModifier;
        m_BorderModifiers.push_back(modifier);
    }
    modifier->SetId(id);
    modifier->createBorderOffset(t, yOffset, dirIn, dirOut);
    return modifier;
}

void ProfileModifier::LoadFunctions(const std::vector<Passageway>& passageways, double sStart, double sEnd,
                                    size_t lastBorderId) {
    for (size_t i = 0; i < m_BorderModifiers.size(); ++i) {
        BorderModifier* modifier = GetBorderModifier(i);
        if (!modifier) continue;
        const Passageway* passageway =
            passageways.empty() ? nullptr
                                : &passageways[std::min<size_t>(modifier->GetId(), passageways.size() - 1)];
        modifier->LoadFunctions(passageway, sStart, sEnd, lastBorderId);
    }
}

void ProfileModifier::Invert(const Portion* portion) {
    for (size_t i = 0; i < m_BorderModifiers.size(); ++i)
        if (BorderModifier* modifier = GetBorderModifier(i)) modifier->Invert(portion);
}

void ProfileModifier::PostLoad(Portion* portion) {
    for (size_t i = 0; i < m_BorderModifiers.size(); ++i)
        if (BorderModifier* modifier = GetBorderModifier(i)) modifier->PostLoad(portion);
}

void ProfileModifier::CopyFrom(const ProfileModifier* other) {
    if (!other || other == this) return;
    m_BorderModifiers.clear();
    for (size_t i = 0; i < other->GetBorderModifierCount(); ++i)
        if (const BorderModifier* modifier = other->GetBorderModifier(i))
            m_BorderModifiers.push_back(modifier->Clone());
}

ProfileModifier* ProfileModifier::Clone() const {
    auto* copy = new ProfileModifier;
    copy->CopyFrom(this);
    return copy;
}

}  // namespace Orvia
