#include <orvia/core/library.h>
#include <orvia/ruvex/factory.h>
#include <orvia/traffic/road_sign.h>

#include <gtest/gtest.h>

#include <string>

using namespace Orvia;
using Ruvex::CountedPtr;
using VA = VehicleAuthorisation;

TEST(RoadSign, TypeDefaultsAndLightQueries) {
    CountedPtr<RoadSign> light(new RoadSign(RoadSign::eTrafficLight));
    EXPECT_EQ(light->GetSignType(), "traffic light");
    ASSERT_EQ(light->GetLightCount(), 3u);
    EXPECT_EQ(light->GetLight(0)->GetName(), "LAMP03");
    EXPECT_EQ(light->GetLight(1)->Color(), Light::eOrange);
    EXPECT_EQ(light->GetLight(2)->Illumination(), Light::eOn);
    EXPECT_EQ(light->GetLight(2)->Direction(), static_cast<uint32_t>(eDirectionAll));
    EXPECT_EQ(light->GetLight(2)->Vehicle(), VA::kRoadVehicles);
    EXPECT_EQ(light->GetVehicleAuthorisation()->GetVehicleCategories(), 0xFFFFFFu);

    Light::EIllumination state = Light::eBlinking;
    EXPECT_TRUE(light->GetLightState(VA::eCar, Light::eGreen, state));
    EXPECT_EQ(state, Light::eOn);
    EXPECT_FALSE(light->GetLightState(VA::ePedestrian, Light::eGreen, state));  // lamps are for road vehicles
    EXPECT_EQ(state, Light::eOn);
    EXPECT_EQ(light->GetLightId(Light::eRed, eDirectionLeft, VA::eCar), 0u);
    EXPECT_EQ(light->GetLightId(Light::eGreen, eDirectionRight, VA::eTruck), 2u);
    EXPECT_EQ(light->GetLightId(Light::eGreen, 0, VA::eCar), RoadSign::npos);
    EXPECT_EQ(light->GetLightId(Light::eNoColor, eDirectionAll, VA::eCar), RoadSign::npos);

    CountedPtr<RoadSign> crossing(new RoadSign(RoadSign::ePedestrianCrossing));
    CountedPtr<RoadSign> stop(new RoadSign(RoadSign::eStop));
    EXPECT_TRUE(crossing->GetVehicleAuthorisation()->IsAllowed(VA::ePedestrian));
    EXPECT_FALSE(stop->GetVehicleAuthorisation()->IsAllowed(VA::ePedestrian));
    EXPECT_TRUE(stop->GetVehicleAuthorisation()->IsAllowed(VA::eBus));
    EXPECT_EQ(stop->GetLightCount(), 0u);

    // Editing the lamps keeps the record's list in step; a copy owns its own lamps.
    light->InsertLight(0, new Light);
    EXPECT_EQ(light->GetLights().size(), 4u);
    EXPECT_EQ(light->GetLightId(Light::eRed, eDirectionLeft, VA::eCar), 1u);
    EXPECT_TRUE(light->RemoveLight(0));
    EXPECT_FALSE(light->RemoveLight(3));
    CountedPtr<RoadSign> copy(light->Clone());
    ASSERT_EQ(copy->GetLightCount(), 3u);
    EXPECT_NE(copy->GetLight(0), light->GetLight(0));
    EXPECT_EQ(*copy->GetLight(0), *light->GetLight(0));
    EXPECT_EQ(copy->SignType(), RoadSign::eTrafficLight);
    copy->Clear();
    EXPECT_EQ(copy->GetLights().size(), 0u);
    EXPECT_EQ(light->GetLightCount(), 3u);
}

TEST(RoadSign, TypeTextsAndObservers) {
    for (uint32_t type = 0; type <= RoadSign::eTrafficLightLine; ++type)
        EXPECT_EQ(RoadSign::ToESignType(RoadSign::ToText(static_cast<RoadSign::ESignType>(type))), type);
    EXPECT_STREQ(RoadSign::ToText(RoadSign::eNoUTurn), "no U turn");
    EXPECT_STREQ(RoadSign::ToText(RoadSign::eEnteringBuiltUpArea), "entering built-up area");
    EXPECT_STREQ(RoadSign::ToText(RoadSign::eTrafficLightLine), "traffic light line");
    EXPECT_STREQ(RoadSign::ToText(static_cast<RoadSign::ESignType>(96)), "unknown");
    EXPECT_EQ(RoadSign::ToESignType("Stop"), RoadSign::eUnknown);
    EXPECT_EQ(RoadSign::ToESignType(nullptr), RoadSign::eUnknown);

    struct Seen : RoadSignObserver {
        std::string* log;
        char mark;
        Seen(std::string* l, char m) : log(l), mark(m) {}
        void OnRoadSignChanged(RoadSign*) override { *log += mark; }
    };
    std::string log;
    Seen a(&log, 'a'), b(&log, 'b');
    CountedPtr<RoadSign> sign(new RoadSign(RoadSign::eTrafficLight));
    sign->RegisterObserver(&a);
    sign->RegisterObserver(&b);
    sign->RegisterObserver(nullptr);
    sign->OnLightsChanged();
    EXPECT_EQ(log, "ab");
    sign->ClearObserver();
    sign->NotifyObservers();
    EXPECT_EQ(log, "ab");
}

TEST(RoadSign, UnknownWordsWarnAndAreKept) {
    Init(Ruvex::Encoding::GetMode());
    const char* text = R"(<Ruvex version="2.5" versionRevision="0">
<RoadSign type="danger gorillas" direction="left,up">
  <Light name="L" color="amber" illumination="glowing" vehicle="car"/>
</RoadSign></Ruvex>)";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
    auto* sign = dynamic_cast<RoadSign*>(root.Get());
    ASSERT_NE(sign, nullptr);
    EXPECT_EQ(sign->SignType(), RoadSign::eUnknown);
    EXPECT_EQ(sign->Direction(), static_cast<uint32_t>(eDirectionLeft));
    EXPECT_EQ(sign->GetVehicleAuthorisation(), nullptr);  // a file's sign gets no default authorisation
    ASSERT_EQ(sign->GetLightCount(), 1u);
    EXPECT_EQ(sign->GetLight(0)->Color(), Light::eNoColor);
    EXPECT_EQ(sign->GetLight(0)->Illumination(), Light::eOff);
    const auto& problems = Ruvex::GetLastProblems();
    ASSERT_EQ(problems.size(), 3u);
    EXPECT_EQ(problems[0].line, 3u);
    EXPECT_NE(problems[0].message.find("\"amber\""), std::string::npos);
    EXPECT_NE(problems[1].message.find("\"glowing\""), std::string::npos);
    EXPECT_EQ(problems[2].line, 2u);
    EXPECT_NE(problems[2].message.find("\"danger gorillas\""), std::string::npos);
    const std::string saved = Ruvex::SaveToString(root.Get());
    EXPECT_NE(saved.find("type=\"danger gorillas\""), std::string::npos);
    EXPECT_NE(saved.find("color=\"amber\""), std::string::npos);
}

TEST(Obstacle, BoxAndDodgeWay) {
    CountedPtr<Obstacle> obstacle(new Obstacle);
    vek::Box3 box;
    box.add(vek::Vector3{-1, -0.5, 0});
    box.add(vek::Vector3{1, 0.5, 1.2});
    obstacle->SetDimensions(box);
    EXPECT_TRUE(obstacle->Collides(0, 0, 0.5));
    EXPECT_TRUE(obstacle->Collides(1, 0.5, 1.2));  // bounds included
    EXPECT_FALSE(obstacle->Collides(1.01, 0, 0.5));
    EXPECT_FALSE(obstacle->Collides(0, 0, -0.01));

    EXPECT_EQ(Obstacle::FromText("both sides"), Obstacle::eBothSides);
    EXPECT_EQ(Obstacle::FromText("sideways"), Obstacle::eLeft);
    EXPECT_STREQ(Obstacle::ToText(Obstacle::eCannot), "cannot");
    EXPECT_STREQ(Obstacle::ToText(static_cast<Obstacle::EDodgeWay>(4)), "unknown");
    obstacle->SetDodgeWay(Obstacle::eRight);
    CountedPtr<Obstacle> copy(obstacle->Clone());
    EXPECT_EQ(copy->GetDodgeWay(), Obstacle::eRight);
    EXPECT_EQ(copy->GetDodgeWay(), Obstacle::FromText(copy->Ruvex::ObstacleElement::GetDodgeWay().c_str()));
    EXPECT_TRUE(copy->Collides(-1, -0.5, 0));
}
