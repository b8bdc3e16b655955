#include <orvia/topology/portion.h>

#include <orvia/core/legacy_converter.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <algorithm>
#include <cmath>

namespace Orvia {

namespace {

constexpr uint32_t kPortionLegacyVersion = Ruvex::MakeVersionID(1, 4, 6);

std::pair<double, double> BorderPosition(const Profile* profile, size_t index) {
    if (!profile || profile->GetLaneBorderCount() == 0) return {0, 0};
    const LaneBorder* border = profile->GetLaneBorder(std::min(index, profile->GetLaneBorderCount() - 1));
    return border ? std::pair(border->GetHorizDistToAxis(), border->GetVertDistToAxis())
                  : std::pair(0.0, 0.0);
}

double FirstBorderOffset(const Profile* profile) {
    const LaneBorder* border = profile ? profile->GetLaneBorder(0) : nullptr;
    return border ? border->GetHorizDistToAxis() : 0.0;
}

double LastBorderOffset(const Profile* profile) {
    const size_t count = profile ? profile->GetLaneBorderCount() : 0;
    const LaneBorder* border = count ? profile->GetLaneBorder(count - 1) : nullptr;
    return border ? border->GetHorizDistToAxis() : 0.0;
}

}  // namespace

Portion::Portion(const Portion& other)
    : Ruvex::PortionElement(other),
      m_track(other.m_track),
      m_startProfile(other.m_startProfile),
      m_endProfile(other.m_endProfile) {}

Portion::~Portion() = default;

SubNetwork* Portion::GetInSubNetwork() const {
    return m_track ? m_track->GetSubNetwork() : nullptr;
}

double Portion::GetStartDistance() const {
    if (!m_track) return 0.0;
    const size_t index = m_track->GetPortionIndex(this);
    if (index == npos || index == 0) return 0.0;
    const Portion* before = m_track->GetPortion(index - 1);
    return before ? before->GetEndDistance() : 0.0;
}

void Portion::SetStartDistance(double s) {
    if (!m_track) return;
    const size_t index = m_track->GetPortionIndex(this);
    if (index == npos || index == 0) return;
    if (Portion* before = m_track->GetPortion(index - 1)) before->SetEndDistance(s);
}

void Portion::SetStartProfile(Profile* profile) {
    m_startProfile = profile;
    m_StartProfileName = profile ? profile->GetName() : std::string();
}

void Portion::SetEndProfile(Profile* profile) {
    m_endProfile = profile;
    m_EndProfileName = profile ? profile->GetName() : std::string();
}

double Portion::ConvertToZeroOneCoeff(double s) const {
    const double start = GetStartDistance();
    const double end = m_EndDistance;
    if (!(std::fabs(end - start) >= kDegenerateLength)) return 0.0;
    s = std::clamp(s, std::min(start, end), std::max(start, end));
    return (s - start) / (end - start);
}

void Portion::GetSideDistances(double s, double& left, double& right) const {
    const double r = ConvertToZeroOneCoeff(s);
    left = (1 - r) * FirstBorderOffset(m_startProfile) + r * FirstBorderOffset(m_endProfile);
    right = (1 - r) * LastBorderOffset(m_startProfile) + r * LastBorderOffset(m_endProfile);
    const double x = s - GetStartDistance();
    if (const BorderModifier* first = GetModifiedBorder(0)) left = first->GetDistanceFromAxis(x);
    const size_t last = GetLastBorderId();
    if (const BorderModifier* outer = last != npos ? GetModifiedBorder(last) : nullptr)
        right = outer->GetDistanceFromAxis(x);
}

Lane* Portion::FindLane(size_t which, size_t index) const {
    const Profile* profile = which == 0 ? m_startProfile : (which == 1 ? m_endProfile : nullptr);
    return profile ? profile->GetLane(index) : nullptr;
}

bool Portion::FindProfileAndLaneIndex(const Lane* lane, size_t& which, size_t& index) const {
    if (!lane) return false;
    const Profile* profiles[2] = {m_startProfile, m_endProfile};
    for (size_t i = 0; i < 2; ++i) {
        const size_t found = profiles[i] ? profiles[i]->GetLaneIndex(lane) : Profile::npos;
        if (found != Profile::npos) {
            which = i;
            index = found;
            return true;
        }
    }
    return false;
}

bool Portion::GetPosition(vek::Vector3& p) const {
    vek::Mark mark;
    if (!m_track || !m_track->GetMark(mark, GetStartDistance(), 0.0)) return false;
    p = mark.position;
    return true;
}

vek::Vector3 Portion::GetPosition() const {
    vek::Vector3 p;
    GetPosition(p);
    return p;
}

vek::Box3 Portion::GetBoundingBox() const {
    vek::Box3 box;
    if (!m_track) return box;
    const double start = GetStartDistance();
    const double length = std::max(0.0, m_EndDistance - start);
    const auto steps = static_cast<size_t>(std::ceil(length / kBoxStep));
    for (size_t i = 0; i <= steps; ++i) {
        const double s = i == steps ? m_EndDistance : start + static_cast<double>(i) * kBoxStep;
        double left = 0, right = 0;
        GetSideDistances(s, left, right);
        for (const double t : {left, 0.0, right}) {
            vek::Mark mark;
            if (m_track->GetMark(mark, s, t)) box.add(mark.position);
        }
    }
    return box;
}

ProfileModifier* Portion::GetProfileModifier() const {
    return dynamic_cast<ProfileModifier*>(m_ProfileModifier.Get());
}

ProfileModifier* Portion::GetOrCreateProfileModifier() {
    if (ProfileModifier* modifier = GetProfileModifier()) return modifier;
    // A plain record in the slot is replaced by a runtime modifier with the same content.
    Ruvex::CountedPtr<ProfileModifier> modifier(new ProfileModifier);
    if (m_ProfileModifier)
        for (const auto& item : m_ProfileModifier->GetBorderModifiers())
            for (const auto& offset : item->GetBorderOffsets())
                modifier->CreateOrUpdateBorderModifier(item->GetId(), offset->GetT(), offset->GetYOffset(),
                                                       offset->GetDirIn(), offset->GetDirOut());
    m_ProfileModifier = modifier;
    return modifier.Get();
}

ProfileModifier* Portion::AddDefaultProfileModifier() {
    ProfileModifier* modifier = GetOrCreateProfileModifier();
    const size_t count = m_startProfile ? m_startProfile->GetLaneBorderCount() : 0;
    const double length = GetXYLength();
    for (size_t id = 0; id < count; ++id) {
        if (modifier->GetBorderModifierById(id)) continue;
        // The Hermite ends follow the straight blend, so the border does not move until an offset is edited.
        const double slope =
            std::fabs(length) < kDegenerateLength
                ? 0.0
                : (BorderPosition(m_endProfile, id).first - BorderPosition(m_startProfile, id).first) /
                      length;
        modifier->CreateOrUpdateBorderModifier(id, 0.0, 0.0, slope, slope);
        modifier->CreateOrUpdateBorderModifier(id, 1.0, 0.0, slope, slope);
    }
    BuildPassageways();
    return modifier;
}

size_t Portion::GetLastBorderId() const {
    const size_t count = m_startProfile ? m_startProfile->GetLaneBorderCount() : 0;
    return count ? count - 1 : npos;
}

BorderModifier* Portion::GetBorderModifierOfPassageway(size_t passageway) const {
    const ProfileModifier* modifier = GetProfileModifier();
    if (!modifier || passageway >= m_passageways.size()) return nullptr;
    const size_t id = passageway + 1 == m_passageways.size() && GetLastBorderId() != npos
                          ? std::max(passageway, GetLastBorderId())
                          : passageway;
    return modifier->GetBorderModifierById(id);
}

double Portion::GetMaxCurvatureFromProfileModifier(double x) const {
    const ProfileModifier* modifier = GetProfileModifier();
    double result = 0;
    for (size_t i = 0; modifier && i < modifier->GetBorderModifierCount(); ++i)
        if (const BorderModifier* border = modifier->GetBorderModifier(i))
            result = std::max(result, std::fabs(border->getMaxCurvature(x)));
    return result;
}

const std::vector<Passageway>& Portion::BuildPassageways() {
    m_passageways.clear();
    m_modifiedBorders.clear();
    m_hasModifiedBorders = false;
    const size_t startCount = m_startProfile ? m_startProfile->GetLaneCount() : 0;
    const size_t endCount = m_endProfile ? m_endProfile->GetLaneCount() : 0;
    for (size_t k = 0; k < std::max(startCount, endCount); ++k)
        m_passageways.emplace_back(FindLane(0, k), FindLane(1, k), BorderPosition(m_startProfile, k),
                                   BorderPosition(m_endProfile, k));
    if (ProfileModifier* modifier = GetProfileModifier()) {
        const double start = GetStartDistance();
        modifier->LoadFunctions(m_passageways, start, m_EndDistance, GetLastBorderId());
        const size_t borderCount = m_startProfile ? m_startProfile->GetLaneBorderCount() : 0;
        if (!m_endProfile || m_endProfile->GetLaneBorderCount() != borderCount) return m_passageways;
        m_modifiedBorders.assign(borderCount, nullptr);
        // A modifier naming a border the profile lacks takes no part in the geometry.
        for (size_t i = 0; i < modifier->GetBorderModifierCount(); ++i) {
            const BorderModifier* border = modifier->GetBorderModifier(i);
            if (border && border->GetFunctionCount() > 0 && border->GetId() < borderCount &&
                !m_modifiedBorders[border->GetId()]) {
                m_modifiedBorders[border->GetId()] = border;
                m_hasModifiedBorders = true;
            }
        }
    }
    return m_passageways;
}

void Portion::InvertProfile(bool keepWay, bool exchange, bool invertProfiles, double trackLength) {
    const double start = GetStartDistance();
    if (exchange) std::swap(m_startProfile, m_endProfile);
    if (invertProfiles) {
        if (SubNetwork* subNetwork = GetInSubNetwork()) {
            m_startProfile = subNetwork->GetOrCreateInverse(m_startProfile, keepWay);
            m_endProfile = subNetwork->GetOrCreateInverse(m_endProfile, keepWay);
        } else {
            if (m_startProfile) m_startProfile->Invert(keepWay);
            if (m_endProfile && m_endProfile != m_startProfile) m_endProfile->Invert(keepWay);
        }
    }
    SetStartProfile(m_startProfile);
    SetEndProfile(m_endProfile);
    if (ProfileModifier* modifier = GetProfileModifier()) {
        modifier->Invert(this);
        // An inverted profile lists its borders the other way round.
        const size_t count = m_startProfile ? m_startProfile->GetLaneBorderCount() : 0;
        for (size_t i = 0; invertProfiles && i < modifier->GetBorderModifierCount(); ++i)
            if (BorderModifier* border = modifier->GetBorderModifier(i); border && border->GetId() < count)
                border->SetId(count - 1 - border->GetId());
    }
    m_EndDistance = trackLength - start;
}

void Portion::Invert() {
    const double end = m_EndDistance;
    InvertProfile(false, true, true, 0.0);
    m_EndDistance = end;
    BuildPassageways();
}

Profile* Portion::ResolveProfile(std::string& name) const {
    SubNetwork* subNetwork = GetInSubNetwork();
    if (!subNetwork) return nullptr;
    Profile* profile = subNetwork->GetProfileByName(name);
    if (!profile) profile = subNetwork->GetProfile(0);
    name = profile ? profile->GetName() : std::string();
    return profile;
}

void Portion::PostLoad(Track* track) {
    m_track = track;
    m_startProfile = ResolveProfile(m_StartProfileName);
    m_endProfile = ResolveProfile(m_EndProfileName);
    BuildPassageways();
}

bool Portion::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    if (parser->GetVersion() < kPortionLegacyVersion)
        return QorOldData::DataConverter::LoadPortion(this, element, parser);
    return PortionElement::LoadFromXMLElement(element, parser);
}

Portion* Portion::Clone() const {
    auto* copy = new Portion(m_track);
    copy->CopyFrom(this);
    return copy;
}

void Portion::CopyFrom(const Portion* other) {
    if (!other || other == this) return;
    m_EndDistance = other->m_EndDistance;
    SetStartProfile(other->m_startProfile);
    SetEndProfile(other->m_endProfile);
    if (!other->m_startProfile) m_StartProfileName = other->m_StartProfileName;
    if (!other->m_endProfile) m_EndProfileName = other->m_EndProfileName;
    m_ProfileModifier = nullptr;
    if (const ProfileModifier* modifier = other->GetProfileModifier()) m_ProfileModifier = modifier->Clone();
    m_passageways.clear();
    m_modifiedBorders.clear();
}

}  // namespace Orvia
