#pragma once

// Traffic lights: lamps with their countdown timers, and the groups that run their programmes by cycle.
//
// A group holds one animation per (traffic light, cycle); an animation is the ordered list of states one
// clipped sign goes through in one cycle. Animate(t) applies, on every light of every sign of the group, the
// state active at t in the current cycle. Times are in the caller's clock unit; nothing here converts them.

#include <orvia/ruvex/elements/traffic.h>
#include <orvia/traffic/vehicle_authorisation.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace Orvia {

class ClippedData;
class RoadSign;
class SubNetwork;

// Countdown shown beside a light. A new timer holds 99.0 and shows "99".
class Timer : public Ruvex::TimerElement {
public:
    ~Timer() override;

    double GetTimeValue() const { return m_TimeValue; }
    const std::string& GetTextValue() const { return m_TextValue; }
    // Stores v and shows the integer part of v + 0.5 (toward zero), capped at 99, as "%02d": 3.6 shows "04",
    // 0.4 "00", 98.5 "99", -2.0 "-1". Allocates nothing.
    void SetTimeValue(double v);

    Timer* Clone() const;
    void CopyFrom(const Timer* other);
};

// One lamp of a sign. The record keeps colour, direction, illumination and vehicle set as texts; the values
// are read from them at load and each setter writes both, so a file's unknown words survive until changed.
class Light : public Ruvex::LightElement {
public:
    enum EColor : uint32_t { eNoColor = 0, eRed = 1, eOrange = 2, eGreen = 3 };
    enum EIllumination : uint32_t { eOff = 0, eOn = 1, eBlinking = 2 };

    Light() = default;
    ~Light() override;

    // Texts of the tables; "nocolor" / "off" for values outside them.
    static const char* ToText(EColor color);
    static const char* ToText(EIllumination illumination);
    // Exact, case-sensitive comparison in value order; eNoColor / eOff for null or any other text.
    static EColor ToEColor(const char* text);
    static EIllumination ToEIllumination(const char* text);

    // Reads the record; a colour or illumination word outside its table is reported and read as the
    // fallback.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    EColor Color() const { return m_color; }
    void SetColor(EColor color);
    // Bit set of EDirection.
    uint32_t Direction() const { return m_direction; }
    void SetDirection(uint32_t directions);
    EIllumination Illumination() const { return m_illumination; }
    // Allocates nothing: the texts fit a string's inline buffer.
    void SetIllumination(EIllumination illumination);
    // Bit set of VehicleAuthorisation::EVehicleCategory.
    uint32_t Vehicle() const { return m_vehicle; }
    void SetVehicle(uint32_t categories);
    // Null when the light has no timer or holds a plain record.
    Timer* GetTimer() const;
    void SetTimer(Timer* timer) { m_Timer = timer; }

    // Compares the four texts.
    bool operator==(const Light& other) const;
    bool operator!=(const Light& other) const { return !(*this == other); }

    Light* Clone() const;
    void CopyFrom(const Light* other);

private:
    friend class RoadSign;
    void ReadTexts();

    EColor m_color = eNoColor;
    uint32_t m_direction = 0;
    EIllumination m_illumination = eOff;
    uint32_t m_vehicle = 0;
};

// One step of a programme: how long it lasts and one illumination per light of the sign. The record keeps
// the illuminations as words separated by "," (blanks are accepted when reading); a word outside the table
// is reported and reads as "off".
class TrafficLightState : public Ruvex::TrafficLightStateElement {
public:
    TrafficLightState() = default;
    ~TrafficLightState() override;

    // Documents of version 1.4.9 or older go through the legacy converter. A time length that is negative
    // or not finite is reported and read as 0; a state of length 0 is reported and is never active.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    void AddIllumination(Light::EIllumination illumination);
    // Inserts before index (index >= count appends).
    void InsertIllumination(size_t index, Light::EIllumination illumination);
    // False when index is out of range.
    bool RemoveIllumination(size_t index);
    // eOff out of range, so a state with fewer entries than the sign has lights leaves the others off.
    Light::EIllumination GetIllumination(size_t index) const {
        return index < m_illuminations.size() ? m_illuminations[index] : Light::eOff;
    }
    size_t GetIlluminationCount() const { return m_illuminations.size(); }
    void Clear();

    // Derived by TrafficLightAnimation::UpdateTimeValues: the running sum of time lengths up to and with
    // this state, and the time from this state's end until the first later state (cyclically) whose red
    // status differs.
    double GetEndTime() const { return m_endTime; }
    double GetTimeToRedChange() const { return m_timeToRedChange; }

    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

    TrafficLightState* Clone() const;
    void CopyFrom(const TrafficLightState* other);

private:
    friend class TrafficLightAnimation;
    void ReadIlluminations();
    void WriteIlluminations();

    std::vector<Light::EIllumination> m_illuminations;
    double m_endTime = 0.0;
    double m_timeToRedChange = 0.0;
    size_t m_line = 0;
    size_t m_column = 0;
};

// The programme of one traffic light (a clipped sign, by name) in one cycle.
class TrafficLightAnimation : public Ruvex::TrafficLightAnimationElement {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    TrafficLightAnimation() = default;
    ~TrafficLightAnimation() override;

    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    const std::string& GetRoadSignName() const { return m_RoadSignName; }
    // "<sub-network>//<sign>" once the light is resolved in a named sub-network; the sign's name otherwise.
    std::string GetRoadSignQualifiedName() const;

    // --- States. `update` recomputes the derived times at once.
    size_t GetStateCount() const { return m_states.size(); }
    // Null out of range.
    TrafficLightState* GetState(size_t index) const {
        return index < m_states.size() ? m_states[index] : nullptr;
    }
    // Replaces the state at index (false out of range or for null).
    bool SetState(size_t index, TrafficLightState* state, bool update);
    // Inserts before index, or appends when index is npos (or beyond the end). False for null.
    bool InsertState(TrafficLightState* state, size_t index, bool update);
    // Removes count states from first (clipped to the end); false when first is out of range.
    bool RemoveState(size_t first, size_t count, bool update);
    void ClearStates();

    // --- The light it drives: the clipped data, and the lights of its sign (none without a sign).
    ClippedData* GetTrafficLight() const { return m_trafficLight; }
    // Also caches the clipped data's sign when it carries one.
    void SetTrafficLight(ClippedData* trafficLight);
    RoadSign* GetRoadSign() const { return m_sign; }
    size_t GetLightCount() const;
    Light* GetLight(size_t index) const;

    // Sum of the states' time lengths; 0 without states.
    double GetTimeLength() const;
    // Start of state index (sum of the lengths before it); -1.0 when index >= count.
    double GetTimeForStateIndex(unsigned index) const;
    // The state active at t: the first whose running sum is strictly greater than t, else the last; npos
    // without states. A state that ends exactly at t is already over.
    size_t GetStateIndexForTime(double t) const;
    // Colour of the first lit light of state index whose vehicle set shares a bit with category (any lit
    // light for all ones); eNoColor when there is none, no sign, no light, or index out of range.
    Light::EColor GetStateColor(size_t index, uint32_t category) const;
    // Applies the state active at t to the sign's lights and timers (timer = end time - t + 1) and notifies
    // the sign when anything changed. False without light, states or lamps, or when nothing changed.
    // Allocates nothing.
    bool SetTime(double t);
    // End times and times to red change of every state; nothing without states.
    void UpdateTimeValues();

    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

    TrafficLightAnimation* Clone() const;
    void CopyFrom(const TrafficLightAnimation* other);

private:
    friend class TrafficLightGroup;
    void RefreshStates();
    bool IsRed(size_t index) const { return GetStateColor(index, ~0u) == Light::eRed; }

    std::vector<TrafficLightState*> m_states;  // views of m_States, in order
    ClippedData* m_trafficLight = nullptr;
    RoadSign* m_sign = nullptr;
    const SubNetwork* m_subNetwork = nullptr;  // of the group, for the qualified name
    size_t m_line = 0;
    size_t m_column = 0;
};

// A problem found while resolving a group: what and where (line and column of the element in its file, 0
// for objects made in memory).
struct TrafficLightProblem {
    std::string message;
    size_t line = 0;
    size_t column = 0;
};

// Lights that change together. Invariant kept by the editing operations: every traffic light of the group
// has exactly one animation per cycle of the group.
class TrafficLightGroup : public Ruvex::TrafficLightGroupElement {
public:
    TrafficLightGroup() = default;
    ~TrafficLightGroup() override;

    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }

    // --- Running
    // Stores time and applies the animation time to every animation of the current cycle, in list order.
    // False, with nothing stored, when the group has no animation; otherwise true when a light changed.
    // Allocates nothing.
    bool Animate(double time);
    // u - k*P with u = offset + time, P the period and k = trunc(u / P), minus 1 when u < 0: a negative u
    // that is an exact multiple of P gives P. NaN when the period is 0 (the current cycle has no animation,
    // or all its states last 0), which drives no state change.
    double GetAnimationTime() const;
    double GetTime() const { return m_time; }
    double GetOffset() const { return m_Offset; }
    // Chooses the stored offset so that the animation time right after is o modulo the period.
    void SetOffset(double o);
    // Time length of the first animation of the current cycle; 0 when there is none.
    double GetCurrentCyclePeriod() const;
    const std::string& GetCurrentCycleName() const { return m_CurrentCycle; }
    const std::string& GetCurrentCycle() const { return m_CurrentCycle; }
    void SetCurrentCycle(const std::string& cycle) { m_CurrentCycle = cycle; }

    // --- Cycles
    // Adds an empty animation of the new cycle for every traffic light; false when the cycle exists.
    bool AddCycle(const std::string& name);
    // Removes every animation of that cycle; false when there was none.
    bool RemoveCycle(const std::string& name);
    void ChangeCycleName(const std::string& oldName, const std::string& newName);
    size_t GetCycleCount() const;
    size_t GetCycleCount(std::set<std::string>& names) const;

    // --- Traffic lights
    // Looks the clipped sign up by name in the sub-network; false when it is not found (or no
    // sub-network).
    bool AddTrafficLight(const std::string& name);
    // Adds an empty animation of every cycle for the light; false for null or a light already present.
    bool AddTrafficLight(ClippedData* trafficLight);
    bool RemoveTrafficLight(const std::string& name);
    bool RemoveTrafficLight(ClippedData* trafficLight);
    bool ContainsTrafficLight(const std::string& name) const;
    size_t GetTrafficLightCount() const;
    size_t GetTrafficLightCount(std::set<ClippedData*>& lights) const;

    // --- Animations
    size_t GetAnimationCount() const { return m_animations.size(); }
    TrafficLightAnimation* GetAnimation(size_t index) const {
        return index < m_animations.size() ? m_animations[index] : nullptr;
    }
    // The light's animation in the current cycle, or null.
    TrafficLightAnimation* GetCurrentCycleTrafficLightAnimation(const ClippedData* trafficLight) const;
    TrafficLightAnimation* GetCurrentCycleTrafficLightAnimationFromName(const std::string& name) const;
    TrafficLightAnimation* GetCurrentCycleTrafficLightAnimationFromQualifiedName(
        const std::string& name) const;
    // Every animation of the light, one per cycle; false when there is none.
    bool GetAllTrafficLightAnimations(const std::string& name,
                                      std::vector<Ruvex::CountedPtr<TrafficLightAnimation>>& out) const;
    bool GetAllTrafficLightAnimations(const ClippedData* trafficLight,
                                      std::vector<Ruvex::CountedPtr<TrafficLightAnimation>>& out) const;

    // Resolves every animation's sign among the sub-network's clipped data and computes its derived times;
    // drops animations whose sign is nowhere and later duplicates of a (sign, cycle) pair; takes the first
    // animation's cycle when none is current. False for null. What was dropped, and cycles of total length
    // 0, are listed in GetProblems().
    bool PostLoad(SubNetwork* subNetwork);
    const std::vector<TrafficLightProblem>& GetProblems() const { return m_problems; }

    void Clear();
    TrafficLightGroup* Clone() const;
    void CopyFrom(const TrafficLightGroup* other);

    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

private:
    void RefreshAnimations();
    void AppendAnimation(ClippedData* trafficLight, const std::string& signName, const std::string& cycle);
    template <class Match>
    bool RemoveAnimationsIf(Match match);
    // u - k*P by the truncation rule; NaN for P == 0.
    static double Wrap(double u, double period);

    std::vector<TrafficLightAnimation*> m_animations;  // views of m_Animations, in order
    SubNetwork* m_subNetwork = nullptr;
    double m_time = 0.0;
    std::vector<TrafficLightProblem> m_problems;
    size_t m_line = 0;
    size_t m_column = 0;
};

}  // namespace Orvia
