#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/traffic/road_sign.h>
#include <orvia/traffic/traffic_light.h>

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>
#include <vector>

using namespace Orvia;
using Ruvex::CountedPtr;

namespace {

// A crossing with a three-lamp vehicle signal (a countdown on its green lamp) and a two-lamp pedestrian
// signal run by one group; `group` is the group's inner XML.
std::string Crossing(const std::string& group, const std::string& version = "2.5") {
    return R"(<Ruvex version=")" + version + R"(" versionRevision="0"><Network name="Town"><SubNetworks>
<SubNetwork name="Centre"><Intersections><Intersection name="Cross">
<MarkClippedData name="North"><RoadSign type="traffic light">
  <Light name="LAMP03" color="red" direction="straight,left,right" illumination="off" vehicle="car"/>
  <Light name="LAMP02" color="orange" direction="straight,left,right" illumination="off" vehicle="car"/>
  <Light name="LAMP01" color="green" direction="straight,left,right" illumination="on" vehicle="car"><Timer/></Light>
</RoadSign></MarkClippedData>
<MarkClippedData name="Walk"><RoadSign type="pedestrian crossing">
  <Light name="Stand" color="red" direction="straight" illumination="on" vehicle="pedestrian"/>
  <Light name="Go" color="green" direction="straight" illumination="off" vehicle="pedestrian"/>
</RoadSign></MarkClippedData>
<MarkClippedData name="Works"><Obstacle minX="-1" minY="-1" minZ="0" maxX="1" maxY="1" maxZ="2"/></MarkClippedData>
</Intersection></Intersections>
<TrafficLightGroups><TrafficLightGroup name="Cross")" +
           group + R"(</TrafficLightGroup></TrafficLightGroups>
</SubNetwork></SubNetworks></Network></Ruvex>)";
}

CountedPtr<Network> LoadNetwork(const std::string& text) {
    return CountedPtr<Network>(Network::Load(text.c_str(), 0, {}));
}

TrafficLightGroup* FirstGroup(Network* network) {
    return network ? network->GetSubNetwork(0)->GetTrafficLightGroup(size_t{0}) : nullptr;
}

RoadSign* Sign(Network* network, const std::string& name) {
    ClippedData* clipped = network->GetSubNetwork(0)->GetClippedDataByName(name);
    return clipped ? dynamic_cast<RoadSign*>(clipped->GetClippedDataElement().GetRoadSign()) : nullptr;
}

struct Counter : RoadSignObserver {
    int calls = 0;
    void OnRoadSignChanged(RoadSign*) override { ++calls; }
};

}  // namespace

// The programme as a person writes it on paper: vehicle green 25 s, orange 3.5 s, red 20 s, red and orange
// 1.5 s (period 50 s); the pedestrians see red until the vehicles are red, green for 20 s, then red again.
// The group runs 7.35 s ahead, so that no grid time lands on a change, where rounding would decide.
TEST(TrafficLightGroup, TimelineMatchesHandComputedProgramme) {
    CountedPtr<Network> network = LoadNetwork(Crossing(R"( currentCycle="Day" offset="7.35">
  <TrafficLightAnimation cycleName="Day" roadSign="North">
    <TrafficLightState timeLength="25" illuminations="off,off,on"/>
    <TrafficLightState timeLength="3.5" illuminations="off,on,off"/>
    <TrafficLightState timeLength="20" illuminations="on,off,off"/>
    <TrafficLightState timeLength="1.5" illuminations="on,on,off"/>
  </TrafficLightAnimation>
  <TrafficLightAnimation cycleName="Day" roadSign="Walk">
    <TrafficLightState timeLength="28.5" illuminations="on,off"/>
    <TrafficLightState timeLength="20" illuminations="off,on"/>
    <TrafficLightState timeLength="1.5" illuminations="on,off"/>
  </TrafficLightAnimation>)"));
    TrafficLightGroup* group = FirstGroup(network.Get());
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->GetAnimationCount(), 2u);
    RoadSign* north = Sign(network.Get(), "North");
    RoadSign* walk = Sign(network.Get(), "Walk");
    ASSERT_TRUE(north && walk);
    TrafficLightAnimation* vehicles = group->GetCurrentCycleTrafficLightAnimationFromName("North");
    ASSERT_NE(vehicles, nullptr);

    // By hand: durations, lamps lit (red, orange, green) and whether the vehicles face red.
    const double period = 50.0;
    struct Step {
        double length;
        bool red, orange, green;
    };
    const std::vector<Step> paper = {{25, false, false, true},
                                     {3.5, false, true, false},
                                     {20, true, false, false},
                                     {1.5, true, true, false}};
    const std::vector<Step> walking = {
        {28.5, true, false, false}, {20, false, false, true}, {1.5, true, false, false}};
    auto stepAt = [](const std::vector<Step>& steps, double phase, double& end) {
        end = 0.0;
        for (size_t i = 0; i < steps.size(); ++i) {
            end += steps[i].length;
            if (phase < end) return i;
        }
        return steps.size() - 1;
    };

    EXPECT_DOUBLE_EQ(group->GetCurrentCyclePeriod(), period);
    for (int tenth = -750; tenth <= 750; ++tenth) {  // three periods, around 0
        const double t = tenth / 10.0;
        group->Animate(t);
        double phase = std::fmod(t + 7.35, period);
        if (phase < 0) phase += period;
        SCOPED_TRACE("t = " + std::to_string(t));
        ASSERT_NEAR(group->GetAnimationTime(), phase, 1e-9);

        double end = 0.0;
        const size_t k = stepAt(paper, phase, end);
        EXPECT_EQ(vehicles->GetStateIndexForTime(group->GetAnimationTime()), k);
        EXPECT_EQ(north->GetLight(0)->Illumination(), paper[k].red ? Light::eOn : Light::eOff);
        EXPECT_EQ(north->GetLight(1)->Illumination(), paper[k].orange ? Light::eOn : Light::eOff);
        EXPECT_EQ(north->GetLight(2)->Illumination(), paper[k].green ? Light::eOn : Light::eOff);
        // The countdown counts the rest of the state plus one, rounded to whole seconds.
        EXPECT_NEAR(north->GetLight(2)->GetTimer()->GetTimeValue(), end - phase + 1.0, 1e-9);
        EXPECT_EQ(north->GetLight(2)->GetTimer()->GetTextValue().size(), 2u);

        // Time to the next change of red: the rest of this step, then whole steps until red flips.
        double toRedChange = end - phase;
        for (size_t j = (k + 1) % paper.size(); paper[j].red == paper[k].red; j = (j + 1) % paper.size())
            toRedChange += paper[j].length;
        const TrafficLightState* state = vehicles->GetState(k);
        EXPECT_NEAR(state->GetEndTime() - group->GetAnimationTime() + state->GetTimeToRedChange(),
                    toRedChange, 1e-9);

        const size_t w = stepAt(walking, phase, end);
        EXPECT_EQ(walk->GetLight(0)->Illumination(), walking[w].red ? Light::eOn : Light::eOff);
        EXPECT_EQ(walk->GetLight(1)->Illumination(), walking[w].green ? Light::eOn : Light::eOff);
    }
}

TEST(TrafficLightGroup, AnimationTimeOffsetAndStateBoundaries) {
    CountedPtr<Network> network = LoadNetwork(Crossing(R"( currentCycle="Day">
  <TrafficLightAnimation cycleName="Day" roadSign="North">
    <TrafficLightState timeLength="30" illuminations="off,off,on"/>
    <TrafficLightState timeLength="3" illuminations="off,on,off"/>
    <TrafficLightState timeLength="27" illuminations="on,off,off"/>
  </TrafficLightAnimation>)"));
    TrafficLightGroup* group = FirstGroup(network.Get());
    ASSERT_NE(group, nullptr);
    TrafficLightAnimation* animation = group->GetAnimation(0);
    RoadSign* north = Sign(network.Get(), "North");

    // A state that ends at t is over; beyond the total the last state stays.
    EXPECT_EQ(animation->GetStateIndexForTime(0.0), 0u);
    EXPECT_EQ(animation->GetStateIndexForTime(30.0), 1u);
    EXPECT_EQ(animation->GetStateIndexForTime(32.999), 1u);
    EXPECT_EQ(animation->GetStateIndexForTime(60.0), 2u);
    EXPECT_EQ(animation->GetStateIndexForTime(1e9), 2u);
    EXPECT_EQ(animation->GetStateIndexForTime(-5.0), 0u);
    EXPECT_DOUBLE_EQ(animation->GetTimeForStateIndex(2), 33.0);
    EXPECT_DOUBLE_EQ(animation->GetTimeForStateIndex(3), -1.0);
    EXPECT_DOUBLE_EQ(animation->GetTimeLength(), 60.0);
    EXPECT_EQ(animation->GetStateColor(2, VehicleAuthorisation::eCar), Light::eRed);
    EXPECT_EQ(animation->GetStateColor(2, VehicleAuthorisation::eBus), Light::eNoColor);
    EXPECT_EQ(animation->GetStateColor(7, ~0u), Light::eNoColor);

    // Truncation toward zero, one period less for negative times: an exact negative multiple gives P.
    group->Animate(-60.0);
    EXPECT_DOUBLE_EQ(group->GetAnimationTime(), 60.0);
    EXPECT_EQ(north->GetLight(0)->Illumination(), Light::eOn);  // last state (red) active at P
    group->Animate(-30.0);
    EXPECT_DOUBLE_EQ(group->GetAnimationTime(), 30.0);
    group->Animate(-0.5);
    EXPECT_DOUBLE_EQ(group->GetAnimationTime(), 59.5);
    group->Animate(120.0);
    EXPECT_DOUBLE_EQ(group->GetAnimationTime(), 0.0);

    // Offset 5 at time 130 of a 60 s period: 5 - 10 = -5, stored as 55; then 55 + 130 - 180 = 5.
    group->Animate(130.0);
    group->SetOffset(5.0);
    EXPECT_DOUBLE_EQ(group->GetOffset(), 55.0);
    EXPECT_DOUBLE_EQ(group->GetAnimationTime(), 5.0);
    group->Animate(131.0);
    EXPECT_DOUBLE_EQ(group->GetAnimationTime(), 6.0);

    // Time to red change: green (0) goes through orange before red; red goes back to green.
    EXPECT_DOUBLE_EQ(animation->GetState(0)->GetTimeToRedChange(), 3.0);
    EXPECT_DOUBLE_EQ(animation->GetState(1)->GetTimeToRedChange(), 0.0);
    EXPECT_DOUBLE_EQ(animation->GetState(2)->GetTimeToRedChange(), 0.0);
    EXPECT_DOUBLE_EQ(animation->GetState(2)->GetEndTime(), 60.0);

    // Another cycle without animation: period 0, nothing driven, no division.
    group->SetCurrentCycle("Night");
    EXPECT_DOUBLE_EQ(group->GetCurrentCyclePeriod(), 0.0);
    EXPECT_FALSE(group->Animate(10.0));
    EXPECT_TRUE(std::isnan(group->GetAnimationTime()));
    group->SetOffset(3.0);
    EXPECT_FALSE(std::isnan(group->GetOffset()));
}

TEST(TrafficLightAnimation, SetTimeChangesOnlyWhatDiffersAndNotifies) {
    CountedPtr<RoadSign> sign(new RoadSign(RoadSign::eTrafficLight));
    CountedPtr<MarkClippedData> clipped(new MarkClippedData);
    clipped->SetName("Lamp");
    clipped->SetRoadSign(sign.Get());
    Counter counter;
    sign->RegisterObserver(&counter);

    CountedPtr<TrafficLightAnimation> animation(new TrafficLightAnimation);
    EXPECT_FALSE(animation->SetTime(0.0));  // no light
    animation->SetTrafficLight(clipped.Get());
    EXPECT_FALSE(animation->SetTime(0.0));  // no state
    auto* green = new TrafficLightState;
    green->SetTimeLength(10.0);
    for (Light::EIllumination lamp : {Light::eOff, Light::eOff, Light::eOn})
        green->AddIllumination(lamp);
    EXPECT_EQ(green->GetIlluminations(), "off,off,on");
    auto* red = new TrafficLightState;
    red->SetTimeLength(5.0);
    red->AddIllumination(Light::eOn);  // fewer entries than lamps: the rest are off
    animation->InsertState(green, TrafficLightAnimation::npos, false);
    animation->InsertState(red, TrafficLightAnimation::npos, true);

    // A new traffic light already shows green: nothing to change, no timer, no notification.
    EXPECT_FALSE(animation->SetTime(3.0));
    EXPECT_EQ(counter.calls, 0);
    EXPECT_TRUE(animation->SetTime(12.0));
    EXPECT_EQ(counter.calls, 1);
    EXPECT_EQ(sign->GetLight(0)->Illumination(), Light::eOn);
    EXPECT_EQ(sign->GetLight(2)->Illumination(), Light::eOff);
    EXPECT_EQ(sign->GetLight(2)->GetIllumination(), "off");

    // A timer makes every call a change.
    sign->GetLight(0)->SetTimer(new Timer);
    EXPECT_TRUE(animation->SetTime(12.5));
    EXPECT_EQ(sign->GetLight(0)->GetTimer()->GetTextValue(), "04");  // 15 - 12.5 + 1 = 3.5 -> 4
    EXPECT_EQ(counter.calls, 2);

    // Editing the states keeps the views in step with the record.
    EXPECT_TRUE(animation->RemoveState(0, 5, true));
    EXPECT_EQ(animation->GetStateCount(), 0u);
    EXPECT_EQ(animation->GetStates().size(), 0u);
    EXPECT_FALSE(animation->RemoveState(0, 1, true));
    EXPECT_FALSE(animation->SetState(0, red, true));
}

TEST(Timer, TextIsRoundedCappedAndTwoDigits) {
    CountedPtr<Timer> timer(new Timer);
    EXPECT_DOUBLE_EQ(timer->GetTimeValue(), 99.0);
    EXPECT_EQ(timer->GetTextValue(), "99");
    const std::vector<std::pair<double, std::string>> cases = {
        {98.5, "99"},           {1e9, "99"}, {0.4, "00"}, {3.6, "04"}, {9.49, "09"}, {-2.0, "-1"},
        {-1e300, "-1000000000"}};
    for (const auto& [value, text] : cases) {
        timer->SetTimeValue(value);
        EXPECT_EQ(timer->GetTextValue(), text) << value;
        EXPECT_EQ(timer->GetTimeValue(), value);
    }
    timer->SetTimeValue(std::nan(""));
    EXPECT_EQ(timer->GetTextValue(), "99");
}

TEST(Light, TextsFallBack) {
    EXPECT_EQ(Light::ToEColor("orange"), Light::eOrange);
    EXPECT_EQ(Light::ToEColor("amber"), Light::eNoColor);
    EXPECT_EQ(Light::ToEColor("Red"), Light::eNoColor);
    EXPECT_EQ(Light::ToEColor(nullptr), Light::eNoColor);
    EXPECT_EQ(Light::ToEIllumination("blinking"), Light::eBlinking);
    EXPECT_EQ(Light::ToEIllumination("blink"), Light::eOff);
    EXPECT_STREQ(Light::ToText(static_cast<Light::EColor>(9)), "nocolor");
    EXPECT_STREQ(Light::ToText(static_cast<Light::EIllumination>(9)), "off");

    CountedPtr<Light> a(new Light), b(new Light);
    a->SetColor(Light::eRed);
    EXPECT_NE(*a, *b);
    b->CopyFrom(a.Get());
    EXPECT_EQ(*a, *b);
    b->SetVehicle(VehicleAuthorisation::eBus | VehicleAuthorisation::eTaxi);
    EXPECT_EQ(b->GetVehicle(), "bus,taxi");
    b->SetName("other");  // names are not compared
    b->SetVehicle(0);
    EXPECT_EQ(*a, *b);
}

TEST(TrafficLightGroup, PostLoadDropsWhatItCannotUseAndWarnsWhere) {
    // Line 19 names a sign that does not exist, line 22 repeats North in cycle Day, line 23 points at an
    // obstacle; the group has no current cycle; one state lasts -4 s and one lasts 0 s.
    CountedPtr<Network> network = LoadNetwork(Crossing(R"(>
  <TrafficLightAnimation cycleName="Day" roadSign="North">
    <TrafficLightState timeLength="-4" illuminations="on,off,flash"/>
    <TrafficLightState timeLength="10" illuminations="off,off,on"/>
  </TrafficLightAnimation>
  <TrafficLightAnimation cycleName="Day" roadSign="Nowhere"/>
  <TrafficLightAnimation cycleName="Night" roadSign="North">
    <TrafficLightState timeLength="0"/></TrafficLightAnimation>
  <TrafficLightAnimation cycleName="Day" roadSign="North"/>
  <TrafficLightAnimation cycleName="Day" roadSign="Works"/>)"));
    ASSERT_NE(network.Get(), nullptr);
    std::vector<std::string> warnings;
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
        warnings.push_back(std::to_string(problem.line) + ":" + std::to_string(problem.column) + " " +
                           problem.message);
    ASSERT_EQ(warnings.size(), 3u);
    EXPECT_NE(warnings[0].find("16:6 traffic light state of time length -4"), std::string::npos)
        << warnings[0];
    EXPECT_NE(warnings[1].find("16:6 unknown illumination \"flash\""), std::string::npos) << warnings[1];
    EXPECT_NE(warnings[2].find("21:6 traffic light state of time length 0"), std::string::npos)
        << warnings[2];

    TrafficLightGroup* group = FirstGroup(network.Get());
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(group->GetCurrentCycle(), "Day");
    ASSERT_EQ(group->GetAnimationCount(), 3u);
    EXPECT_EQ(group->GetAnimation(0)->GetRoadSignQualifiedName(), "Centre//North");
    EXPECT_EQ(group->GetAnimation(1)->GetCycleName(), "Night");
    EXPECT_EQ(group->GetAnimation(2)->GetRoadSignName(), "Works");
    EXPECT_EQ(group->GetAnimation(0)->GetState(0)->GetTimeLength(), 0.0);
    EXPECT_DOUBLE_EQ(group->GetCurrentCyclePeriod(), 10.0);

    std::vector<std::string> problems;
    for (const TrafficLightProblem& problem : group->GetProblems())
        problems.push_back(std::to_string(problem.line) + " " + problem.message);
    ASSERT_EQ(problems.size(), 4u);
    EXPECT_NE(problems[0].find("19 traffic light group \"Cross\": no sign \"Nowhere\""), std::string::npos);
    EXPECT_NE(problems[1].find("23 traffic light group \"Cross\": \"Works\" carries no road sign"),
              std::string::npos);
    EXPECT_NE(problems[2].find("22 traffic light group \"Cross\": second animation of \"North\""),
              std::string::npos);
    EXPECT_NE(problems[3].find("20 traffic light group \"Cross\": cycle \"Night\" lasts 0"),
              std::string::npos);

    // The zero-length cycle runs without dividing by zero; the 0 s state is never active.
    RoadSign* north = Sign(network.Get(), "North");
    EXPECT_TRUE(group->Animate(2.0));
    EXPECT_EQ(north->GetLight(0)->Illumination(), Light::eOff);
    EXPECT_EQ(north->GetLight(2)->Illumination(), Light::eOn);
    group->SetCurrentCycle("Night");
    EXPECT_TRUE(std::isnan(group->GetAnimationTime()));
    group->Animate(5.0);
    EXPECT_EQ(north->GetLight(2)->Illumination(), Light::eOff);  // its only state, with no entries: all off
}

TEST(TrafficLightGroup, EditingKeepsOneAnimationPerLightAndCycle) {
    CountedPtr<Network> network = LoadNetwork(Crossing(R"( currentCycle="Day">
  <TrafficLightAnimation cycleName="Day" roadSign="North"/>)"));
    SubNetwork* sub = network->GetSubNetwork(0);
    TrafficLightGroup* group = FirstGroup(network.Get());
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(sub->GetTrafficLightGroup("Cross"), group);
    EXPECT_EQ(sub->GetTrafficLightGroupIndex(group), 0u);

    EXPECT_TRUE(group->AddTrafficLight("Walk"));
    EXPECT_FALSE(group->AddTrafficLight("Walk"));
    EXPECT_FALSE(group->AddTrafficLight("Missing"));
    EXPECT_TRUE(group->AddCycle("Night"));
    EXPECT_FALSE(group->AddCycle("Day"));
    std::set<std::string> cycles;
    EXPECT_EQ(group->GetCycleCount(cycles), 2u);
    EXPECT_EQ(group->GetTrafficLightCount(), 2u);
    EXPECT_EQ(group->GetAnimationCount(), 4u);

    ClippedData* walk = sub->GetClippedDataByName("Walk");
    std::vector<CountedPtr<TrafficLightAnimation>> all;
    EXPECT_TRUE(group->GetAllTrafficLightAnimations(walk, all));
    EXPECT_EQ(all.size(), 2u);
    EXPECT_EQ(group->GetCurrentCycleTrafficLightAnimation(walk)->GetCycleName(), "Day");
    EXPECT_EQ(group->GetCurrentCycleTrafficLightAnimationFromQualifiedName("Centre//Walk"),
              group->GetCurrentCycleTrafficLightAnimationFromName("Walk"));

    group->ChangeCycleName("Night", "Late");
    EXPECT_TRUE(group->GetAllTrafficLightAnimations("North", all));
    EXPECT_EQ(all[1]->GetCycleName(), "Late");
    EXPECT_TRUE(group->RemoveCycle("Late"));
    EXPECT_FALSE(group->RemoveCycle("Late"));
    EXPECT_TRUE(group->RemoveTrafficLight(walk));
    EXPECT_EQ(group->GetAnimationCount(), 1u);
    EXPECT_FALSE(group->ContainsTrafficLight("Walk"));

    // A copy drives the same signs; the saved document holds what the editing made.
    CountedPtr<TrafficLightGroup> copy(group->Clone());
    EXPECT_EQ(copy->GetAnimation(0)->GetTrafficLight(), group->GetAnimation(0)->GetTrafficLight());
    const std::string saved = Ruvex::SaveToString(network.Get());
    EXPECT_EQ(saved.find("roadSign=\"Walk\""), std::string::npos);

    // A group made from nothing: the first light takes the current cycle.
    TrafficLightGroup* fresh = sub->CreateTrafficLightGroup("Fresh");
    fresh->SetCurrentCycle("Day");
    EXPECT_TRUE(fresh->AddTrafficLight(walk));
    EXPECT_EQ(fresh->GetCycleCount(), 1u);
    CountedPtr<TrafficLightGroup> kept(fresh);
    EXPECT_TRUE(sub->RemoveTrafficLightGroup(fresh));
    EXPECT_FALSE(sub->RemoveTrafficLightGroup(size_t{5}));
    EXPECT_EQ(kept->GetInSubNetwork(), nullptr);
    EXPECT_EQ(sub->GetTrafficLightGroup("Fresh"), nullptr);
}

TEST(TrafficLightState, OldDocumentsAndRoundTrip) {
    const std::string group = R"( currentCycle="Day" offset="4.5">
  <TrafficLightAnimation cycleName="Day" roadSign="North">
    <TrafficLightState timeLength="30" illuminations="off off on"/>
    <TrafficLightState timeLength="3" illuminations="off,on,off"/>
  </TrafficLightAnimation>)";
    for (const char* version : {"1.4", "2.5"}) {
        const std::string text = Crossing(group, version);
        CountedPtr<Network> network = LoadNetwork(text);
        TrafficLightGroup* loaded = FirstGroup(network.Get());
        ASSERT_NE(loaded, nullptr) << version;
        const TrafficLightState* first = loaded->GetAnimation(0)->GetState(0);
        EXPECT_EQ(first->GetIlluminationCount(), 3u);
        EXPECT_EQ(first->GetIllumination(2), Light::eOn);
        EXPECT_DOUBLE_EQ(loaded->GetAnimation(0)->GetState(1)->GetEndTime(), 33.0);
        // Animating changes lamps; the texts of the states are written back as they were read.
        loaded->Animate(31.0);
        const std::string saved = Ruvex::SaveToString(network.Get());
        EXPECT_NE(saved.find("illuminations=\"off off on\""), std::string::npos);
        EXPECT_NE(saved.find("offset=\"4.5\""), std::string::npos);
    }
}

// Signs are looked for on the tracks first, in track order, then at the intersections: a signal clipped on a
// track drives the group even when an intersection holds a namesake.
TEST(TrafficLightGroup, PostLoadFindsSignsOnTracksFirst) {
    std::string text = Crossing(R"( currentCycle="Day">
  <TrafficLightAnimation cycleName="Day" roadSign="North"><TrafficLightState timeLength="10" illuminations="on,off,off"/></TrafficLightAnimation>
  <TrafficLightAnimation cycleName="Day" roadSign="Side"><TrafficLightState timeLength="10" illuminations="on,off,off"/></TrafficLightAnimation>)");
    const std::string tracks = R"(<Tracks><Track name="Main"><XYCurve><Segment length="50"/></XYCurve>
<ClippedData name="North"><RoadSign type="traffic light"><Light color="red" illumination="off"/></RoadSign></ClippedData>
<ClippedData name="Side"><RoadSign type="traffic light"><Light color="red" illumination="off"/></RoadSign></ClippedData>
</Track></Tracks>
<TrafficLightGroups>)";
    text.replace(text.find("<TrafficLightGroups>"), std::string("<TrafficLightGroups>").size(), tracks);
    CountedPtr<Network> network = LoadNetwork(text);
    TrafficLightGroup* group = FirstGroup(network.Get());
    ASSERT_TRUE(group);
    ASSERT_EQ(group->GetAnimationCount(), 2u);
    const Track* main = network->GetSubNetwork(0)->GetTrack(0);
    for (size_t a = 0; a < 2; ++a)
        EXPECT_EQ(group->GetAnimation(a)->GetTrafficLight(), main->GetClippedData(a));
    ASSERT_TRUE(group->Animate(1.0));
    EXPECT_EQ(group->GetAnimation(0)->GetRoadSign()->GetLight(0)->Illumination(), Light::eOn);
}
