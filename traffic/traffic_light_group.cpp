// Programmes of traffic lights: one animation per (light, cycle), driven by the caller's clock through the
// group; and the sub-network's side of the groups, which the topology leaves to this module.

#include <orvia/core/element_copy.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/traffic/road_sign.h>
#include <orvia/traffic/traffic_light.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvia {

namespace {

// Keeps every entry of `list` a runtime object of class T, converting plain records (made without the
// library's factory) in place, and fills `views` with them.
template <class T, class Record>
void RefreshViews(std::vector<Ruvex::CountedPtr<Record>>& list, std::vector<T*>& views) {
    views.clear();
    views.reserve(list.size());
    for (size_t i = 0; i < list.size();) {
        if (!list[i]) {
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        auto* item = dynamic_cast<T*>(list[i].Get());
        if (!item) {
            item = new T;
            Ruvex::CountedPtr<Record> keep(item);
            CopyElementContent(*list[i], *item);
            list[i] = item;
        }
        views.push_back(item);
        ++i;
    }
}

std::string QualifiedName(const SubNetwork* subNetwork, const std::string& name) {
    if (!subNetwork || subNetwork->GetName().empty()) return name;
    return subNetwork->GetName() + "//" + name;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// TrafficLightAnimation

TrafficLightAnimation::~TrafficLightAnimation() = default;

bool TrafficLightAnimation::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_line = element->GetLine();
    m_column = element->GetColumn();
    m_States.clear();
    const bool loaded = Ruvex::TrafficLightAnimationElement::LoadFromXMLElement(element, parser);
    RefreshStates();
    return loaded;
}

void TrafficLightAnimation::RefreshStates() {
    RefreshViews(m_States, m_states);
    for (TrafficLightState* state : m_states)
        if (state->m_illuminations.empty() && !state->m_Illuminations.empty()) state->ReadIlluminations();
}

std::string TrafficLightAnimation::GetRoadSignQualifiedName() const {
    return QualifiedName(m_trafficLight ? m_subNetwork : nullptr, m_RoadSignName);
}

bool TrafficLightAnimation::SetState(size_t index, TrafficLightState* state, bool update) {
    if (!state || index >= m_States.size()) return false;
    m_States[index] = state;
    m_states[index] = state;
    if (update) UpdateTimeValues();
    return true;
}

bool TrafficLightAnimation::InsertState(TrafficLightState* state, size_t index, bool update) {
    if (!state) return false;
    if (index > m_States.size()) index = m_States.size();
    m_States.insert(m_States.begin() + static_cast<std::ptrdiff_t>(index),
                    Ruvex::CountedPtr<Ruvex::TrafficLightStateElement>(state));
    m_states.insert(m_states.begin() + static_cast<std::ptrdiff_t>(index), state);
    if (update) UpdateTimeValues();
    return true;
}

bool TrafficLightAnimation::RemoveState(size_t first, size_t count, bool update) {
    if (first >= m_States.size()) return false;
    const size_t last = count > m_States.size() - first ? m_States.size() : first + count;
    m_States.erase(m_States.begin() + static_cast<std::ptrdiff_t>(first),
                   m_States.begin() + static_cast<std::ptrdiff_t>(last));
    m_states.erase(m_states.begin() + static_cast<std::ptrdiff_t>(first),
                   m_states.begin() + static_cast<std::ptrdiff_t>(last));
    if (update) UpdateTimeValues();
    return true;
}

void TrafficLightAnimation::ClearStates() {
    m_States.clear();
    m_states.clear();
}

void TrafficLightAnimation::SetTrafficLight(ClippedData* trafficLight) {
    m_trafficLight = trafficLight;
    m_sign =
        trafficLight ? dynamic_cast<RoadSign*>(trafficLight->GetClippedDataElement().GetRoadSign()) : nullptr;
}

size_t TrafficLightAnimation::GetLightCount() const {
    return m_sign ? m_sign->GetLightCount() : 0;
}

Light* TrafficLightAnimation::GetLight(size_t index) const {
    return m_sign ? m_sign->GetLight(index) : nullptr;
}

double TrafficLightAnimation::GetTimeLength() const {
    double total = 0.0;
    for (const TrafficLightState* state : m_states)
        total += state->GetTimeLength();
    return total;
}

double TrafficLightAnimation::GetTimeForStateIndex(unsigned index) const {
    if (index >= m_states.size()) return -1.0;
    double start = 0.0;
    for (unsigned i = 0; i < index; ++i)
        start += m_states[i]->GetTimeLength();
    return start;
}

size_t TrafficLightAnimation::GetStateIndexForTime(double t) const {
    if (m_states.empty()) return npos;
    double sum = 0.0;
    for (size_t i = 0; i < m_states.size(); ++i) {
        sum += m_states[i]->GetTimeLength();
        if (sum > t) return i;
    }
    return m_states.size() - 1;
}

Light::EColor TrafficLightAnimation::GetStateColor(size_t index, uint32_t category) const {
    if (!m_sign || index >= m_states.size()) return Light::eNoColor;
    const TrafficLightState* state = m_states[index];
    const size_t lights = m_sign->GetLightCount();
    for (size_t k = 0; k < lights; ++k) {
        const Light* light = m_sign->GetLight(k);
        if (state->GetIllumination(k) == Light::eOff) continue;
        if (category == ~0u || (light->Vehicle() & category) != 0) return light->Color();
    }
    return Light::eNoColor;
}

bool TrafficLightAnimation::SetTime(double t) {
    if (!m_trafficLight || m_states.empty()) return false;
    // The running sum is the active state's end time, whether or not the derived times are up to date.
    size_t active = m_states.size() - 1;
    double end = 0.0;
    for (size_t i = 0; i < m_states.size(); ++i) {
        end += m_states[i]->GetTimeLength();
        if (end > t) {
            active = i;
            break;
        }
    }
    const size_t lights = GetLightCount();
    if (lights == 0) return false;
    const TrafficLightState* state = m_states[active];
    bool changed = false;
    for (size_t k = 0; k < lights; ++k) {
        Light* light = m_sign->GetLight(k);
        const Light::EIllumination wanted = state->GetIllumination(k);
        if (light->Illumination() != wanted) {
            light->SetIllumination(wanted);
            changed = true;
        }
        if (Timer* timer = light->GetTimer()) {
            timer->SetTimeValue(end - t + 1.0);
            changed = true;
        }
    }
    if (changed) m_sign->OnLightsChanged();
    return changed;
}

void TrafficLightAnimation::UpdateTimeValues() {
    const size_t n = m_states.size();
    if (n == 0) return;
    double sum = 0.0;
    for (TrafficLightState* state : m_states) {
        sum += state->GetTimeLength();
        state->m_endTime = sum;
        state->m_timeToRedChange = 0.0;
    }
    // Backwards and cyclically from the last state, so that a state's successor is settled before it; once
    // a change of red status is seen, one more lap gives every state its wrapped-around value.
    bool seen = false;
    size_t extra = 0;
    for (size_t i = n - 1;; i = (i == 0 ? n - 1 : i - 1)) {
        const size_t next = i + 1 == n ? 0 : i + 1;
        TrafficLightState* state = m_states[i];
        const TrafficLightState* following = m_states[next];
        if (IsRed(i) != IsRed(next)) {
            state->m_timeToRedChange = 0.0;
            if (!seen) {
                seen = true;
                continue;
            }
        } else {
            state->m_timeToRedChange = following->m_timeToRedChange + following->GetTimeLength();
        }
        if (seen) {
            if (++extra == n) break;
        } else if (i == 0) {
            break;
        }
    }
}

TrafficLightAnimation* TrafficLightAnimation::Clone() const {
    auto* copy = new TrafficLightAnimation;
    copy->CopyFrom(this);
    return copy;
}

void TrafficLightAnimation::CopyFrom(const TrafficLightAnimation* other) {
    if (!other || other == this) return;
    m_States.clear();
    CopyElementContent(*other, *this);
    RefreshStates();
    SetTrafficLight(other->m_trafficLight);
    m_subNetwork = other->m_subNetwork;
    UpdateTimeValues();
    m_line = other->m_line;
    m_column = other->m_column;
}

// ---------------------------------------------------------------------------------------------------------------
// TrafficLightGroup

TrafficLightGroup::~TrafficLightGroup() = default;

bool TrafficLightGroup::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_line = element->GetLine();
    m_column = element->GetColumn();
    m_Animations.clear();
    const bool loaded = Ruvex::TrafficLightGroupElement::LoadFromXMLElement(element, parser);
    RefreshAnimations();
    return loaded;
}

void TrafficLightGroup::RefreshAnimations() {
    RefreshViews(m_Animations, m_animations);
    for (TrafficLightAnimation* animation : m_animations)
        animation->RefreshStates();
}

double TrafficLightGroup::Wrap(double u, double period) {
    if (period == 0.0) return std::numeric_limits<double>::quiet_NaN();
    double k = std::trunc(u / period);
    if (u < 0.0) k -= 1.0;
    return u - k * period;
}

bool TrafficLightGroup::Animate(double time) {
    if (m_animations.empty()) return false;
    m_time = time;
    const double t = GetAnimationTime();
    bool changed = false;
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetCycleName() == m_CurrentCycle) changed |= animation->SetTime(t);
    return changed;
}

double TrafficLightGroup::GetAnimationTime() const {
    return Wrap(m_Offset + m_time, GetCurrentCyclePeriod());
}

void TrafficLightGroup::SetOffset(double o) {
    const double period = GetCurrentCyclePeriod();
    if (period == 0.0) {
        // No period to wrap in: the animation time becomes o itself.
        m_Offset = o - m_time;
        return;
    }
    double k = std::trunc(m_time / period);
    if (m_time < 0.0) k -= 1.0;
    m_Offset = o - (m_time - k * period);
    if (m_Offset < 0.0) m_Offset += period;
}

double TrafficLightGroup::GetCurrentCyclePeriod() const {
    for (const TrafficLightAnimation* animation : m_animations)
        if (animation->GetCycleName() == m_CurrentCycle) return animation->GetTimeLength();
    return 0.0;
}

// --- Cycles

size_t TrafficLightGroup::GetCycleCount() const {
    std::set<std::string> names;
    return GetCycleCount(names);
}

size_t TrafficLightGroup::GetCycleCount(std::set<std::string>& names) const {
    names.clear();
    for (const TrafficLightAnimation* animation : m_animations)
        names.insert(animation->GetCycleName());
    return names.size();
}

void TrafficLightGroup::AppendAnimation(ClippedData* trafficLight, const std::string& signName,
                                        const std::string& cycle) {
    auto* animation = new TrafficLightAnimation;
    m_Animations.emplace_back(animation);
    animation->SetCycleName(cycle);
    animation->SetRoadSignName(signName);
    animation->SetTrafficLight(trafficLight);
    animation->m_subNetwork = m_subNetwork;
    m_animations.push_back(animation);
}

bool TrafficLightGroup::AddCycle(const std::string& name) {
    for (const TrafficLightAnimation* animation : m_animations)
        if (animation->GetCycleName() == name) return false;
    // One new animation per light: the first animation of each sign name stands for the light.
    std::set<std::string> done;
    const size_t count = m_animations.size();
    for (size_t i = 0; i < count; ++i) {
        TrafficLightAnimation* animation = m_animations[i];
        if (done.insert(animation->GetRoadSignName()).second)
            AppendAnimation(animation->GetTrafficLight(), animation->GetRoadSignName(), name);
    }
    return true;
}

template <class Match>
bool TrafficLightGroup::RemoveAnimationsIf(Match match) {
    bool removed = false;
    for (size_t i = m_Animations.size(); i-- > 0;)
        if (match(*m_animations[i])) {
            m_Animations.erase(m_Animations.begin() + static_cast<std::ptrdiff_t>(i));
            m_animations.erase(m_animations.begin() + static_cast<std::ptrdiff_t>(i));
            removed = true;
        }
    return removed;
}

bool TrafficLightGroup::RemoveCycle(const std::string& name) {
    return RemoveAnimationsIf([&](const TrafficLightAnimation& a) { return a.GetCycleName() == name; });
}

void TrafficLightGroup::ChangeCycleName(const std::string& oldName, const std::string& newName) {
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetCycleName() == oldName) animation->SetCycleName(newName);
    if (m_CurrentCycle == oldName) m_CurrentCycle = newName;
}

// --- Traffic lights

bool TrafficLightGroup::AddTrafficLight(const std::string& name) {
    if (!m_subNetwork) return false;
    ClippedData* trafficLight = m_subNetwork->GetClippedDataByName(name);
    return trafficLight && AddTrafficLight(trafficLight);
}

bool TrafficLightGroup::AddTrafficLight(ClippedData* trafficLight) {
    if (!trafficLight) return false;
    const std::string& name = trafficLight->GetClippedDataElement().GetName();
    for (const TrafficLightAnimation* animation : m_animations)
        if (animation->GetTrafficLight() == trafficLight || animation->GetRoadSignName() == name)
            return false;
    std::set<std::string> cycles;
    // A group without cycles gets the light in its current cycle, so that lights can be added first.
    if (GetCycleCount(cycles) == 0) cycles.insert(m_CurrentCycle);
    for (const std::string& cycle : cycles)
        AppendAnimation(trafficLight, name, cycle);
    return true;
}

bool TrafficLightGroup::RemoveTrafficLight(const std::string& name) {
    return RemoveAnimationsIf([&](const TrafficLightAnimation& a) { return a.GetRoadSignName() == name; });
}

bool TrafficLightGroup::RemoveTrafficLight(ClippedData* trafficLight) {
    if (!trafficLight) return false;
    return RemoveAnimationsIf(
        [&](const TrafficLightAnimation& a) { return a.GetTrafficLight() == trafficLight; });
}

bool TrafficLightGroup::ContainsTrafficLight(const std::string& name) const {
    for (const TrafficLightAnimation* animation : m_animations)
        if (animation->GetRoadSignName() == name) return true;
    return false;
}

size_t TrafficLightGroup::GetTrafficLightCount() const {
    std::set<std::string> names;
    for (const TrafficLightAnimation* animation : m_animations)
        names.insert(animation->GetRoadSignName());
    return names.size();
}

size_t TrafficLightGroup::GetTrafficLightCount(std::set<ClippedData*>& lights) const {
    lights.clear();
    for (const TrafficLightAnimation* animation : m_animations)
        if (animation->GetTrafficLight()) lights.insert(animation->GetTrafficLight());
    return lights.size();
}

// --- Animations

TrafficLightAnimation* TrafficLightGroup::GetCurrentCycleTrafficLightAnimation(
    const ClippedData* trafficLight) const {
    if (!trafficLight) return nullptr;
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetTrafficLight() == trafficLight && animation->GetCycleName() == m_CurrentCycle)
            return animation;
    return nullptr;
}

TrafficLightAnimation* TrafficLightGroup::GetCurrentCycleTrafficLightAnimationFromName(
    const std::string& name) const {
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetRoadSignName() == name && animation->GetCycleName() == m_CurrentCycle)
            return animation;
    return nullptr;
}

TrafficLightAnimation* TrafficLightGroup::GetCurrentCycleTrafficLightAnimationFromQualifiedName(
    const std::string& name) const {
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetCycleName() == m_CurrentCycle && animation->GetRoadSignQualifiedName() == name)
            return animation;
    return nullptr;
}

bool TrafficLightGroup::GetAllTrafficLightAnimations(
    const std::string& name, std::vector<Ruvex::CountedPtr<TrafficLightAnimation>>& out) const {
    out.clear();
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetRoadSignName() == name) out.emplace_back(animation);
    return !out.empty();
}

bool TrafficLightGroup::GetAllTrafficLightAnimations(
    const ClippedData* trafficLight, std::vector<Ruvex::CountedPtr<TrafficLightAnimation>>& out) const {
    out.clear();
    if (!trafficLight) return false;
    for (TrafficLightAnimation* animation : m_animations)
        if (animation->GetTrafficLight() == trafficLight) out.emplace_back(animation);
    return !out.empty();
}

namespace {

// A sign clipped on a track, the tracks taken in order; then one placed at an intersection.
ClippedData* FindSign(const SubNetwork& subNetwork, const std::string& name) {
    for (size_t i = 0; i < subNetwork.GetTrackCount(); ++i)
        if (const Track* track = subNetwork.GetTrack(i))
            if (ClippedData* sign = track->GetClippedDataByName(name.c_str())) return sign;
    return subNetwork.GetClippedDataByName(name);
}

}  // namespace

bool TrafficLightGroup::PostLoad(SubNetwork* subNetwork) {
    if (!subNetwork) return false;
    m_subNetwork = subNetwork;
    m_problems.clear();
    RefreshAnimations();
    auto problem = [&](const TrafficLightAnimation& at, std::string message) {
        const bool placed = at.GetSourceLine() != 0;
        m_problems.push_back({std::move(message), placed ? at.GetSourceLine() : m_line,
                              placed ? at.GetSourceColumn() : m_column});
    };

    for (size_t i = m_animations.size(); i-- > 0;) {
        TrafficLightAnimation& animation = *m_animations[i];
        ClippedData* trafficLight = FindSign(*subNetwork, animation.GetRoadSignName());
        if (!trafficLight) {
            problem(animation, "traffic light group \"" + GetName() + "\": no sign \"" +
                                   animation.GetRoadSignName() +
                                   "\" in the sub-network; its animation of cycle \"" +
                                   animation.GetCycleName() + "\" is dropped");
            m_Animations.erase(m_Animations.begin() + static_cast<std::ptrdiff_t>(i));
            m_animations.erase(m_animations.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        animation.SetTrafficLight(trafficLight);
        animation.m_subNetwork = subNetwork;
        animation.UpdateTimeValues();
        if (!animation.GetRoadSign())
            problem(animation, "traffic light group \"" + GetName() + "\": \"" + animation.GetRoadSignName() +
                                   "\" carries no road sign; its animation drives no light");
    }
    // Problems were found from the end; tell them in file order.
    std::reverse(m_problems.begin(), m_problems.end());

    for (size_t i = 0; i < m_animations.size(); ++i)
        for (size_t j = m_animations.size(); j-- > i + 1;) {
            const TrafficLightAnimation& first = *m_animations[i];
            const TrafficLightAnimation& later = *m_animations[j];
            if (later.GetRoadSignName() != first.GetRoadSignName() ||
                later.GetCycleName() != first.GetCycleName())
                continue;
            problem(later, "traffic light group \"" + GetName() + "\": second animation of \"" +
                               later.GetRoadSignName() + "\" in cycle \"" + later.GetCycleName() +
                               "\" is dropped");
            m_Animations.erase(m_Animations.begin() + static_cast<std::ptrdiff_t>(j));
            m_animations.erase(m_animations.begin() + static_cast<std::ptrdiff_t>(j));
        }

    if (m_CurrentCycle.empty() && !m_animations.empty())
        m_CurrentCycle = m_animations.front()->GetCycleName();

    std::set<std::string> cycles;
    GetCycleCount(cycles);
    for (const std::string& cycle : cycles)
        for (const TrafficLightAnimation* animation : m_animations)
            if (animation->GetCycleName() == cycle) {
                if (animation->GetTimeLength() == 0.0)
                    problem(*animation, "traffic light group \"" + GetName() + "\": cycle \"" + cycle +
                                            "\" lasts 0; its lights are not animated");
                break;
            }
    return true;
}

void TrafficLightGroup::Clear() {
    m_Animations.clear();
    m_animations.clear();
    m_CurrentCycle.clear();
    m_Offset = 0.0;
    m_time = 0.0;
    m_problems.clear();
}

TrafficLightGroup* TrafficLightGroup::Clone() const {
    auto* copy = new TrafficLightGroup;
    copy->CopyFrom(this);
    return copy;
}

void TrafficLightGroup::CopyFrom(const TrafficLightGroup* other) {
    if (!other || other == this) return;
    m_Animations.clear();
    CopyElementContent(*other, *this);
    RefreshAnimations();
    // The copies drive the same signs.
    for (size_t i = 0; i < m_animations.size() && i < other->m_animations.size(); ++i) {
        m_animations[i]->SetTrafficLight(other->m_animations[i]->GetTrafficLight());
        m_animations[i]->m_subNetwork = other->m_animations[i]->m_subNetwork;
        m_animations[i]->UpdateTimeValues();
    }
    m_subNetwork = other->m_subNetwork;
    m_time = other->m_time;
}

// ---------------------------------------------------------------------------------------------------------------
// The sub-network's groups

TrafficLightGroup* SubNetwork::GetTrafficLightGroup(size_t index) const {
    return index < m_TrafficLightGroups.size()
               ? dynamic_cast<TrafficLightGroup*>(m_TrafficLightGroups[index].Get())
               : nullptr;
}

TrafficLightGroup* SubNetwork::GetTrafficLightGroup(const std::string& name) const {
    return GetTrafficLightGroup(m_TrafficLightGroups.find(name));
}

size_t SubNetwork::GetTrafficLightGroupIndex(const TrafficLightGroup* group) const {
    return group ? m_TrafficLightGroups.indexOf(group) : npos;
}

TrafficLightGroup* SubNetwork::CreateTrafficLightGroup(const std::string& name) {
    auto* group = new TrafficLightGroup;
    group->SetName(name);
    AddTrafficLightGroup(group);
    return group;
}

void SubNetwork::AddTrafficLightGroup(TrafficLightGroup* group) {
    if (!group) return;
    group->SetInSubNetwork(this);
    m_TrafficLightGroups.push_back(Ruvex::CountedPtr<Ruvex::TrafficLightGroupElement>(group));
}

bool SubNetwork::RemoveTrafficLightGroup(size_t index) {
    if (TrafficLightGroup* group = GetTrafficLightGroup(index)) group->SetInSubNetwork(nullptr);
    return m_TrafficLightGroups.erase(index);
}

bool SubNetwork::RemoveTrafficLightGroup(TrafficLightGroup* group) {
    return RemoveTrafficLightGroup(GetTrafficLightGroupIndex(group));
}

void SubNetwork::ClearTrafficLightGroup() {
    for (size_t i = 0; i < m_TrafficLightGroups.size(); ++i)
        if (TrafficLightGroup* group = GetTrafficLightGroup(i)) group->SetInSubNetwork(nullptr);
    m_TrafficLightGroups.clear();
}

ClippedData* SubNetwork::GetClippedDataByName(const std::string& name) const {
    for (const auto& intersection : m_Intersections) {
        if (!intersection) continue;
        for (const auto& item : intersection->GetClippedData())
            if (item && item->GetName() == name)
                if (auto* clipped = dynamic_cast<ClippedData*>(item.Get())) return clipped;
    }
    return nullptr;
}

void SubNetwork::PostLoadTrafficLightGroups() {
    for (size_t i = 0; i < m_TrafficLightGroups.size(); ++i)
        if (TrafficLightGroup* group = GetTrafficLightGroup(i)) group->PostLoad(this);
}

}  // namespace Orvia
