#include <orvia/ruvex/elements/ground.h>
#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/rail.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <string>

using namespace Ruvex;

namespace {

CountedPtr<Element> LoadText(const std::string& text) {
    CountedPtr<Element> root(Load(text.c_str(), true));
    EXPECT_TRUE(root) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    return root;
}

// Saves what `text` loads into, loads that and saves again: the two saved texts must be equal.
void ExpectStableRoundTrip(const std::string& text) {
    CountedPtr<Element> first = LoadText(text);
    ASSERT_TRUE(first);
    const std::string saved = SaveToString(first.Get());
    CountedPtr<Element> second = LoadText(saved);
    ASSERT_TRUE(second);
    EXPECT_EQ(SaveToString(second.Get()), saved);
}

template <class T>
T* As(const CountedPtr<Element>& element) {
    return dynamic_cast<T*>(element.Get());
}

const char kTrafficLightGroup[] = R"(<Ruvex version="2.5" versionRevision="0">
  <TrafficLightGroup name="Crossroads" currentCycle="day" offset="5">
    <TrafficLightAnimation cycleName="day" roadSign="North">
      <TrafficLightState timeLength="30" illuminations="off,off,on"/>
      <TrafficLightState timeLength="4" illuminations="off,on,off"/>
      <!-- red until the cycle ends -->
      <TrafficLightState timeLength="26" illuminations="on,off,off"/>
    </TrafficLightAnimation>
    <TrafficLightAnimation cycleName="night" roadSign="North">
      <TrafficLightState timeLength="1" illuminations="off,blinking,off" lampTest="yes"/>
    </TrafficLightAnimation>
  </TrafficLightGroup>
</Ruvex>
)";

const char kTrafficLightSign[] = R"(<Ruvex version="2.5" versionRevision="0">
  <RoadSign type="traffic light" direction="straight,left,right">
    <Light name="LAMP03" color="red" direction="straight,left,right" illumination="off" vehicle="car,bus"/>
    <Light name="LAMP02" color="orange"/>
    <Light name="LAMP01" color="green" illumination="on">
      <Timer textValue="07"/>
    </Light>
    <VehicleType vehicleCategories="car,truck" heightLimit="3.5" weightLimit="19000"/>
  </RoadSign>
</Ruvex>
)";

}  // namespace

TEST(TrafficLightGroupElement, LoadsProgrammeAndKeepsItStable) {
    CountedPtr<Element> root = LoadText(kTrafficLightGroup);
    auto* group = As<TrafficLightGroupElement>(root);
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(group->GetName(), "Crossroads");
    EXPECT_EQ(group->GetCurrentCycle(), "day");
    EXPECT_EQ(group->GetOffset(), 5.0);
    ASSERT_EQ(group->GetAnimations().size(), 2u);
    const TrafficLightAnimationElement* day = group->GetAnimations()[0].Get();
    EXPECT_EQ(day->GetCycleName(), "day");
    EXPECT_EQ(day->GetRoadSignName(), "North");
    ASSERT_EQ(day->GetStates().size(), 3u);
    EXPECT_EQ(day->GetStates()[1]->GetTimeLength(), 4.0);
    EXPECT_EQ(day->GetStates()[2]->GetIlluminations(), "on,off,off");
    EXPECT_EQ(group->GetAnimations()[1]->GetCycleName(), "night");

    std::string saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("<!-- red until the cycle ends -->"), std::string::npos);
    EXPECT_NE(saved.find("lampTest=\"yes\""), std::string::npos);
    // The comment stays between the second and the third state.
    EXPECT_LT(saved.find("off,on,off"), saved.find("red until"));
    EXPECT_LT(saved.find("red until"), saved.find("on,off,off"));
    ExpectStableRoundTrip(kTrafficLightGroup);
}

TEST(RoadSignElement, LoadsLightsTimerAndAuthorisationWithDefaults) {
    CountedPtr<Element> root = LoadText(kTrafficLightSign);
    auto* sign = As<RoadSignElement>(root);
    ASSERT_NE(sign, nullptr);
    EXPECT_EQ(sign->GetSignType(), "traffic light");
    ASSERT_EQ(sign->GetLights().size(), 3u);
    const LightElement* red = sign->GetLights()[0].Get();
    EXPECT_EQ(red->GetName(), "LAMP03");
    EXPECT_EQ(red->GetVehicle(), "car,bus");
    EXPECT_EQ(red->GetTimer(), nullptr);
    const LightElement* orange = sign->GetLights()[1].Get();
    EXPECT_EQ(orange->GetColor(), "orange");
    EXPECT_EQ(orange->GetIllumination(), "off");
    EXPECT_EQ(orange->GetDirection(), "none");
    EXPECT_EQ(orange->GetVehicle(), "none");
    const TimerElement* timer = sign->GetLights()[2]->GetTimer();
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->GetTextValue(), "07");
    EXPECT_EQ(timer->GetTimeValue(), 99.0);

    const VehicleTypeElement* vehicles = sign->GetVehicleType();
    ASSERT_NE(vehicles, nullptr);
    EXPECT_EQ(vehicles->GetVehicleCategories(), "car,truck");
    EXPECT_EQ(vehicles->GetHeightLimit(), 3.5);
    EXPECT_EQ(vehicles->GetWeightLimit(), 19000.0);
    EXPECT_EQ(vehicles->GetWidthLimit(), VehicleTypeElement::gNoLimit);
    EXPECT_EQ(vehicles->GetTrailedWeightLimit(), VehicleTypeElement::gNoLimit);

    // The no-limit value is written and read back as itself.
    std::string saved = SaveToString(root.Get());
    CountedPtr<Element> again = LoadText(saved);
    ASSERT_TRUE(again);
    EXPECT_EQ(As<RoadSignElement>(again)->GetVehicleType()->GetLengthLimit(), VehicleTypeElement::gNoLimit);
    ExpectStableRoundTrip(kTrafficLightSign);
}

TEST(LinkElement, LanePairsAndObstacleKeepTheirFields) {
    const std::string link = R"(<Ruvex version="2.5" versionRevision="0">
  <Link name="left turn">
    <LanePair fromTrack="A" fromTrackBoundInfo="end" fromLane="L1" toTrack="B" toLane="R1"/>
    <LanePair fromTrack="A" fromTrackBoundInfo="End" fromLane="L2" toTrack="C" toTrackBoundInfo="end" toLane="R2"/>
  </Link>
</Ruvex>
)";
    CountedPtr<Element> root = LoadText(link);
    auto* element = As<LinkElement>(root);
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->GetName(), "left turn");
    ASSERT_EQ(element->GetLanePairs().size(), 2u);
    const LanePairElement* first = element->GetLanePairs()[0].Get();
    EXPECT_EQ(first->GetFromTrackBoundInfo(), "end");
    EXPECT_EQ(first->GetToTrackBoundInfo(), "start");
    EXPECT_EQ(first->GetToLane(), "R1");
    // Words are kept exactly, case included; interpreting them is not the record's business.
    EXPECT_EQ(element->GetLanePairs()[1]->GetFromTrackBoundInfo(), "End");
    ExpectStableRoundTrip(link);

    const std::string obstacle =
        R"(<Ruvex><Obstacle minX="-1" minY="-0.5" maxX="1" maxY="0.5" maxZ="2"/></Ruvex>)";
    CountedPtr<Element> box = LoadText(obstacle);
    auto* o = As<ObstacleElement>(box);
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->GetMin(), vek::Vector3(-1.0, -0.5, 0.0));
    EXPECT_EQ(o->GetMax(), vek::Vector3(1.0, 0.5, 2.0));
    EXPECT_EQ(o->GetDodgeWay(), "left");
    ExpectStableRoundTrip(obstacle);
}

TEST(GroundElement, LoadsRoughnessAndSoftGroundModelsWithDefaults) {
    const std::string text = R"(<Ruvex version="2.5" versionRevision="0">
  <Ground name="Field" type="grass" isSoftGround="true">
    <Roughness RoughnessLength="0.2">
      <Points2x2D>
        <Point2x2D value0="1" value1="2" value2="3" value3="4" value4="5"/>
        <Point2x2D value0="6"/>
      </Points2x2D>
      <Scale2x2DPoints value2="0.5"/>
      <Offset2x2DPoints value4="-1"/>
      <RoughnessAnalytic amplitude="0.01" wavelength="3"/>
    </Roughness>
    <SoftGroundProperties isActive="true" humidity="0.2" cohesion="800">
      <TerraMecanicsModel kcBekker="29760"/>
      <FunctionalModel isActive="true" maxGripSkidding="0.25"/>
    </SoftGroundProperties>
  </Ground>
</Ruvex>
)";
    CountedPtr<Element> root = LoadText(text);
    auto* ground = As<GroundElement>(root);
    ASSERT_NE(ground, nullptr);
    EXPECT_EQ(ground->GetName(), "Field");
    EXPECT_EQ(ground->GetType(), "grass");
    EXPECT_TRUE(ground->GetIsSoftGround());

    const RoughnessElement* roughness = ground->GetRoughness();
    ASSERT_NE(roughness, nullptr);
    EXPECT_EQ(roughness->GetRoughnessLength(), 0.2);
    EXPECT_EQ(roughness->GetRoughnessLengthStdDeviation(), 0.0);
    ASSERT_EQ(roughness->GetPoints().size(), 2u);
    EXPECT_EQ(roughness->GetPoints()[0]->GetValue4(), 5.0);
    EXPECT_EQ(roughness->GetPoints()[1]->GetValue1(), 0.0);
    // A scale's missing values are 1, an offset's 0; each is written back under its own tag.
    ASSERT_NE(roughness->GetScale(), nullptr);
    EXPECT_EQ(roughness->GetScale()->GetValue2(), 0.5);
    EXPECT_EQ(roughness->GetScale()->GetValue0(), 1.0);
    EXPECT_EQ(roughness->GetScale()->GetValue4(), 1.0);
    EXPECT_EQ(roughness->GetScale()->GetTagName(), "Scale2x2DPoints");
    ASSERT_NE(roughness->GetOffset(), nullptr);
    EXPECT_EQ(roughness->GetOffset()->GetValue0(), 0.0);
    EXPECT_EQ(roughness->GetOffset()->GetValue4(), -1.0);
    EXPECT_EQ(roughness->GetOffset()->GetTagName(), "Offset2x2DPoints");
    EXPECT_NE(roughness->GetAnalytic(), nullptr);

    const SoftGroundPropertiesElement* soft = ground->GetSoftGroundProperties();
    ASSERT_NE(soft, nullptr);
    EXPECT_TRUE(soft->GetIsActive());
    EXPECT_EQ(soft->GetHumidity(), 0.2);
    EXPECT_EQ(soft->GetVolumetricMass(), 1000.0);
    EXPECT_EQ(soft->GetCohesion(), 800.0);
    const TerraMecanicsModelElement* terra = soft->GetTerraMecanicsModel();
    ASSERT_NE(terra, nullptr);
    EXPECT_FALSE(terra->GetIsActive());
    EXPECT_EQ(terra->GetKcBekker(), 29760.0);
    EXPECT_EQ(terra->GetKphiBekker(), 1000000.0);
    EXPECT_EQ(terra->GetMGrahn(), 0.05);
    EXPECT_EQ(terra->GetMetalGrip(), 0.3);
    const FunctionalModelElement* functional = soft->GetFunctionalModel();
    ASSERT_NE(functional, nullptr);
    EXPECT_TRUE(functional->GetIsActive());
    EXPECT_EQ(functional->GetVerticalLoadForSinkage(), 30000.0);
    EXPECT_EQ(functional->GetReferenceResistiveForce(), 5000.0);
    EXPECT_EQ(functional->GetMaxGripNonSkid(), 0.3);
    EXPECT_EQ(functional->GetMaxGripSkidding(), 0.25);

    std::string saved = SaveToString(root.Get());
    EXPECT_NE(saved.find("<Scale2x2DPoints value0=\"1\""), std::string::npos);
    EXPECT_NE(saved.find("amplitude=\"0.01\""), std::string::npos);
    ExpectStableRoundTrip(text);

    // A fresh ground is asphalt and not soft, with nothing attached.
    CountedPtr<Element> fresh(CreateElement("Ground"));
    auto* blank = As<GroundElement>(fresh);
    ASSERT_NE(blank, nullptr);
    EXPECT_EQ(blank->GetType(), "asphalt");
    EXPECT_FALSE(blank->GetIsSoftGround());
    EXPECT_EQ(blank->GetSoftGroundProperties(), nullptr);
}

TEST(MaterialElement, ChannelsKeepTheirTagsAndStoredOrder) {
    const std::string text = R"(<Ruvex version="2.5" versionRevision="0">
  <Material name="Asphalt" filePath="tex/asphalt.png" shininess="12" transparency="0.25">
    <Specular red="0.5" green="0.5" blue="0.5"/>
    <Diffuse red="0.2" green="0.2" blue="0.2" filePath="tex/asphalt_d.png"/>
    <Bump filePath="tex/asphalt_n.png"/>
  </Material>
</Ruvex>
)";
    CountedPtr<Element> root = LoadText(text);
    auto* material = As<MaterialElement>(root);
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(material->GetShininess(), 12.0f);
    EXPECT_EQ(material->GetTransparency(), 0.25f);
    auto chanels = material->GetChanels();
    ASSERT_NE(chanels[0], nullptr);
    EXPECT_EQ(chanels[0]->GetTagName(), "Diffuse");
    EXPECT_EQ(chanels[0]->GetFilePath(), "tex/asphalt_d.png");
    EXPECT_EQ(chanels[0]->GetRed(), 0.2f);
    EXPECT_EQ(chanels[0]->GetAlpha(), 1.0f);
    EXPECT_EQ(chanels[1], nullptr);
    ASSERT_NE(chanels[2], nullptr);
    EXPECT_EQ(chanels[2]->GetTagName(), "Specular");
    EXPECT_EQ(chanels[3], nullptr);
    ASSERT_NE(chanels[4], nullptr);
    EXPECT_EQ(chanels[4]->GetTagName(), "Bump");
    for (size_t i = 5; i < MaterialElement::kChanelCount; ++i)
        EXPECT_EQ(chanels[i], nullptr);

    // Saved in the stored order whatever the file's order was.
    std::string saved = SaveToString(root.Get());
    EXPECT_LT(saved.find("<Diffuse"), saved.find("<Specular"));
    EXPECT_LT(saved.find("<Specular"), saved.find("<Bump"));
    ExpectStableRoundTrip(text);
}

TEST(SmallFamilyElements, LoadWhatTheModelRefersTo) {
    const std::string text = R"(<Ruvex version="2.5" versionRevision="0">
  <CompositeObject name="kiosk">
    <ExternalElement filePath="models/kiosk.osg"/>
    <ExternalElement filePath="models/sign.osg" flipped="true"/>
    <Scale z="2"/>
  </CompositeObject>
</Ruvex>
)";
    CountedPtr<Element> root = LoadText(text);
    auto* composite = As<CompositeObjectElement>(root);
    ASSERT_NE(composite, nullptr);
    ASSERT_EQ(composite->GetObjects().size(), 2u);
    EXPECT_TRUE(composite->GetObjects()[1]->GetFlipped());
    ASSERT_NE(composite->GetScale(), nullptr);
    EXPECT_EQ(composite->GetScale()->GetFactors(), vek::Vector3(1.0, 1.0, 2.0));
    ExpectStableRoundTrip(text);

    const std::string trajectory = R"(<Ruvex>
  <Trajectory name="bus line">
    <TrajectoryElement trajectoryPart="p1"/>
    <TrajectoryElement trajectoryPart="p2" inverted="true"/>
  </Trajectory>
</Ruvex>)";
    CountedPtr<Element> t = LoadText(trajectory);
    auto* line = As<TrajectoryElement>(t);
    ASSERT_NE(line, nullptr);
    ASSERT_EQ(line->GetPieces().size(), 2u);
    EXPECT_EQ(line->GetPieces()[0]->GetTrajectoryPartName(), "p1");
    EXPECT_FALSE(line->GetPieces()[0]->GetInverted());
    EXPECT_TRUE(line->GetPieces()[1]->GetInverted());
    ExpectStableRoundTrip(trajectory);

    const std::string part = R"(<Ruvex>
  <TrajectoryPart name="p1">
    <XYCurve x="10" y="20"><Segment length="50"/></XYCurve>
    <SZCurve><Polynomial xOut="50"/></SZCurve>
  </TrajectoryPart>
</Ruvex>)";
    CountedPtr<Element> p = LoadText(part);
    auto* piece = As<TrajectoryPartElement>(p);
    ASSERT_NE(piece, nullptr);
    ASSERT_NE(piece->GetXYCurve(), nullptr);
    EXPECT_EQ(piece->GetXYCurve()->GetFunctions().size(), 1u);
    ASSERT_NE(piece->GetSZCurve(), nullptr);
    EXPECT_EQ(piece->GetBankingCurve(), nullptr);
    ExpectStableRoundTrip(part);

    const std::string spot = R"(<Ruvex>
  <ParkingSpot name="P12" x="4" y="8" heading="1.5">
    <ParkingSpotSkin fillingTexture="tex/spot.png"/>
  </ParkingSpot>
</Ruvex>)";
    CountedPtr<Element> s = LoadText(spot);
    auto* parking = As<ParkingSpotElement>(s);
    ASSERT_NE(parking, nullptr);
    EXPECT_EQ(parking->GetPosition(), vek::Vector3(4.0, 8.0, 0.0));
    EXPECT_EQ(parking->GetWidth(), 2.5);
    ASSERT_NE(parking->GetSkin(), nullptr);
    EXPECT_EQ(parking->GetSkin()->GetFillingTexture(), "tex/spot.png");
    ExpectStableRoundTrip(spot);

    const std::string generation = R"(<Ruvex>
  <EntitiesGeneration name="crowd" algorithmType="random" area="square">
    <ExternalEntity filePath="people/a.xml"/>
    <ExternalEntity filePath="people/b.xml"/>
  </EntitiesGeneration>
</Ruvex>)";
    CountedPtr<Element> g = LoadText(generation);
    auto* crowd = As<EntitiesGenerationElement>(g);
    ASSERT_NE(crowd, nullptr);
    EXPECT_EQ(crowd->GetAlgorithmType(), "random");
    EXPECT_EQ(crowd->GetAreaName(), "square");
    ASSERT_EQ(crowd->GetExternalEntities().size(), 2u);
    EXPECT_EQ(crowd->GetExternalEntities()[1]->GetFilePath(), "people/b.xml");
    ExpectStableRoundTrip(generation);

    const std::string area = R"(<Ruvex><Area name="square" points="0 0 10 0 10 10"/></Ruvex>)";
    CountedPtr<Element> a = LoadText(area);
    ASSERT_NE(As<AreaElement>(a), nullptr);
    EXPECT_EQ(As<AreaElement>(a)->GetPoints().size(), 3u);
    EXPECT_EQ(As<AreaElement>(a)->GetPoints()[2], vek::Vector2(10.0, 10.0));
    ExpectStableRoundTrip(area);

    // Settings whose content nobody declares come back exactly as read.
    const std::string settings =
        R"(<Ruvex><Export3DLayers roads="true"><Layer id="2"/></Export3DLayers></Ruvex>)";
    CountedPtr<Element> e = LoadText(settings);
    ASSERT_NE(As<Export3DLayersElement>(e), nullptr);
    EXPECT_NE(SaveToString(e.Get()).find("<Layer id=\"2\""), std::string::npos);
    ExpectStableRoundTrip(settings);
}

namespace {

const char kRailNetwork[] = R"(<Ruvex version="2.5" versionRevision="0">
  <RailNetwork>
    <RailroadTracks>
      <RailroadTrack name="myTrack1">
        <XYCurve><Segment length="1000"/></XYCurve>
        <SZCurve><Polynomial xOut="1000"/></SZCurve>
        <BufferEnd/>
        <LinkedEnd name="myLink1"/>
        <MileageAnchors>
          <MileageAnchor mileageSystemName="Civil" curvilinearAbscissa="0" systemAbscissa="12000"/>
          <MileageAnchor mileageSystemName="Civil" curvilinearAbscissa="1000" systemAbscissa="13000"/>
        </MileageAnchors>
        <ConnectionPoints>
          <ConnectionPoint>
            <ConnectionReference name="mySwitch1"/>
            <Quote mileageSystemName="Civil" abscissaInSystem="12500"/>
          </ConnectionPoint>
        </ConnectionPoints>
        <PropertySpans>
          <PropertySpan>
            <EnumPropertyValue propertyName="Electrification Tension" value="25000 V"/>
            <Quote mileageSystemName="Civil" abscissaInSystem="12100"/>
            <Quote mileageSystemName="Civil" abscissaInSystem="12900"/>
            <Quote mileageSystemName="Civil" abscissaInSystem="12950"/>
          </PropertySpan>
        </PropertySpans>
        <PropertyChanges>
          <PropertyChange direction="inverse">
            <DoublePropertyValue propertyName="Local Train Speed" value="22.2"/>
            <Quote mileageSystemName="Exploitant" abscissaInSystem="3"/>
          </PropertyChange>
        </PropertyChanges>
      </RailroadTrack>
      <RailroadTrack name="myTrack2"><OpenEnd/></RailroadTrack>
    </RailroadTracks>
    <TrackLinkedEnds><TrackLinkedEnd name="myLink1"/></TrackLinkedEnds>
    <Crossings><Crossing name="myCrossing1" type="doubleSwitch"/></Crossings>
    <Switches><Switch name="mySwitch1" model="60E1-1:9" normalPosition="left"/></Switches>
    <MileageSystems>
      <MileageSystem name="Civil" usage="linearInterpolation"/>
      <MileageSystem name="Exploitant"/>
    </MileageSystems>
    <Stations>
      <Station name="station1">
        <Platforms>
          <Platform name="Platform A">
            <TrackSpans>
              <TrackSpan trackName="myTrack1">
                <Quote mileageSystemName="Civil" abscissaInSystem="12200"/>
                <Quote mileageSystemName="Civil" abscissaInSystem="12400"/>
              </TrackSpan>
            </TrackSpans>
          </Platform>
        </Platforms>
      </Station>
    </Stations>
    <SpannedProperties>
      <EnumProperty name="Electrification Tension" defaultValue="750 V">
        <Enum value="750 V"/><Enum value="5000 V"/><Enum value="25000 V"/>
      </EnumProperty>
    </SpannedProperties>
    <ChangedProperties>
      <DoubleProperty name="Local Train Speed" defaultValue="16.7"/>
    </ChangedProperties>
    <Tunnels><Tunnel name="myTunnel1"/></Tunnels>
    <Signals>
      <Signal name="Signal1">
        <TrackQuote trackName="myTrack1"><Quote mileageSystemName="Civil" abscissaInSystem="12300"/></TrackQuote>
      </Signal>
    </Signals>
    <RadioAntenas>
      <RadioAntena name="antenna"><Frame x="5" y="6" z="30" yaw="1.25"/></RadioAntena>
    </RadioAntenas>
  </RailNetwork>
</Ruvex>
)";

}  // namespace

TEST(RailNetworkElement, LoadsTracksConnectionsMileageAndProperties) {
    CountedPtr<Element> root = LoadText(kRailNetwork);
    auto* rail = As<Rail::RailNetworkElement>(root);
    ASSERT_NE(rail, nullptr);
    ASSERT_EQ(rail->GetRailroadTracks().size(), 2u);
    EXPECT_EQ(rail->GetRailroadTracks().find("myTrack2"), 1u);

    const Rail::RailroadTrackElement* track = rail->GetRailroadTracks()[0].Get();
    EXPECT_EQ(track->GetName(), "myTrack1");
    ASSERT_NE(track->GetXYCurve(), nullptr);
    ASSERT_NE(track->GetSZCurve(), nullptr);
    EXPECT_EQ(track->GetBankingCurve(), nullptr);
    // The first end read is the start, the second the end; each keeps its tag.
    ASSERT_NE(track->GetStartEnd(), nullptr);
    ASSERT_NE(track->GetEndEnd(), nullptr);
    EXPECT_EQ(track->GetStartEnd()->GetTagName(), "BufferEnd");
    EXPECT_EQ(track->GetEndEnd()->GetTagName(), "LinkedEnd");
    EXPECT_EQ(track->GetEndEnd()->GetName(), "myLink1");
    ASSERT_NE(rail->GetRailroadTracks()[1]->GetStartEnd(), nullptr);
    EXPECT_EQ(rail->GetRailroadTracks()[1]->GetStartEnd()->GetTagName(), "OpenEnd");
    EXPECT_EQ(rail->GetRailroadTracks()[1]->GetEndEnd(), nullptr);

    ASSERT_EQ(track->GetMileageAnchors().size(), 2u);
    EXPECT_EQ(track->GetMileageAnchors()[1]->GetCurvilinearAbscissa(), 1000.0);
    EXPECT_EQ(track->GetMileageAnchors()[1]->GetSystemAbscissa(), 13000.0);

    ASSERT_EQ(track->GetConnectionPoints().size(), 1u);
    const Rail::ConnectionPointElement* point = track->GetConnectionPoints()[0].Get();
    ASSERT_NE(point->GetConnectionReference(), nullptr);
    EXPECT_NE(dynamic_cast<Rail::ConnectionReferenceElement*>(point->GetConnectionReference()), nullptr);
    EXPECT_EQ(point->GetConnectionReference()->GetName(), "mySwitch1");
    ASSERT_NE(point->GetQuote(), nullptr);
    EXPECT_EQ(point->GetQuote()->GetAbscissaInSystem(), 12500.0);

    ASSERT_EQ(track->GetPropertySpans().size(), 1u);
    const Rail::PropertySpanElement* span = track->GetPropertySpans()[0].Get();
    ASSERT_NE(span->GetPropertyValue(), nullptr);
    EXPECT_EQ(span->GetPropertyValue()->GetTagName(), "EnumPropertyValue");
    EXPECT_EQ(span->GetPropertyValue()->GetValue(), "25000 V");
    ASSERT_NE(span->GetStartQuote(), nullptr);
    ASSERT_NE(span->GetEndQuote(), nullptr);
    EXPECT_EQ(span->GetStartQuote()->GetAbscissaInSystem(), 12100.0);
    EXPECT_EQ(span->GetEndQuote()->GetAbscissaInSystem(), 12900.0);

    ASSERT_EQ(track->GetPropertyChanges().size(), 1u);
    const Rail::PropertyChangeElement* change = track->GetPropertyChanges()[0].Get();
    EXPECT_EQ(change->GetDirection(), "inverse");
    ASSERT_NE(change->GetPropertyValue(), nullptr);
    EXPECT_EQ(change->GetPropertyValue()->GetTagName(), "DoublePropertyValue");
    EXPECT_EQ(change->GetPropertyValue()->GetPropertyName(), "Local Train Speed");
    ASSERT_NE(change->GetQuote(), nullptr);
    EXPECT_EQ(change->GetQuote()->GetMileageSystemName(), "Exploitant");

    ASSERT_EQ(rail->GetSwitches().size(), 1u);
    EXPECT_EQ(rail->GetSwitches()[0]->GetType(), "ordinary");
    EXPECT_EQ(rail->GetSwitches()[0]->GetModel(), "60E1-1:9");
    EXPECT_EQ(rail->GetSwitches()[0]->GetNormalPosition(), "left");
    ASSERT_EQ(rail->GetCrossings().size(), 1u);
    EXPECT_EQ(rail->GetCrossings()[0]->GetType(), "doubleSwitch");
    EXPECT_EQ(rail->GetTrackLinkedEnds().find("myLink1"), 0u);

    ASSERT_EQ(rail->GetMileageSystems().size(), 2u);
    EXPECT_EQ(rail->GetMileageSystems()[0]->GetUsage(), "linearInterpolation");
    EXPECT_EQ(rail->GetMileageSystems()[1]->GetUsage(), "noInterpolation");
    EXPECT_EQ(rail->GetMileageSystems().find("Exploitant"), 1u);

    ASSERT_EQ(rail->GetSpannedProperties().size(), 1u);
    auto* tension = dynamic_cast<Rail::EnumPropertyElement*>(rail->GetSpannedProperties()[0].Get());
    ASSERT_NE(tension, nullptr);
    EXPECT_EQ(tension->GetDefaultValue(), "750 V");
    ASSERT_EQ(tension->GetEnums().size(), 3u);
    EXPECT_EQ(tension->GetEnums()[2]->GetValue(), "25000 V");
    ASSERT_EQ(rail->GetChangedProperties().size(), 1u);
    auto* speed = dynamic_cast<Rail::DoublePropertyElement*>(rail->GetChangedProperties()[0].Get());
    ASSERT_NE(speed, nullptr);
    EXPECT_EQ(speed->GetDefaultValue(), 16.7);
    EXPECT_EQ(rail->GetChangedProperties().find("Local Train Speed"), 0u);

    ASSERT_EQ(rail->GetStations().size(), 1u);
    const Rail::StationElement* station = rail->GetStations()[0].Get();
    ASSERT_EQ(station->GetPlatforms().size(), 1u);
    EXPECT_EQ(station->GetPlatforms()[0]->GetTagName(), "Platform");
    ASSERT_EQ(station->GetPlatforms()[0]->GetTrackSpans().size(), 1u);
    const Rail::TrackSpanElement* platformSpan = station->GetPlatforms()[0]->GetTrackSpans()[0].Get();
    EXPECT_EQ(platformSpan->GetTrackName(), "myTrack1");
    ASSERT_NE(platformSpan->GetEndQuote(), nullptr);
    EXPECT_EQ(platformSpan->GetEndQuote()->GetAbscissaInSystem(), 12400.0);

    ASSERT_EQ(rail->GetTunnels().size(), 1u);
    EXPECT_EQ(rail->GetTunnels()[0]->GetTagName(), "Tunnel");
    ASSERT_EQ(rail->GetSignals().size(), 1u);
    ASSERT_NE(rail->GetSignals()[0]->GetTrackQuote(), nullptr);
    EXPECT_EQ(rail->GetSignals()[0]->GetTrackQuote()->GetTrackName(), "myTrack1");
    ASSERT_EQ(rail->GetRadioAntenas().size(), 1u);
    const Rail::WorldEquipmentElement* antenna = rail->GetRadioAntenas()[0].Get();
    EXPECT_EQ(antenna->GetTagName(), "RadioAntena");
    ASSERT_NE(antenna->GetFrame(), nullptr);
    EXPECT_EQ(antenna->GetFrame()->GetPosition(), vek::Vector3(5.0, 6.0, 30.0));
    EXPECT_EQ(antenna->GetFrame()->GetYaw(), 1.25);
    EXPECT_TRUE(rail->GetBridges().empty());
}

TEST(RailNetworkElement, SavesEveryTagInOrderAndStaysStable) {
    CountedPtr<Element> root = LoadText(kRailNetwork);
    ASSERT_TRUE(root);
    const std::string saved = SaveToString(root.Get());
    // Start before end, whatever the other children between them.
    EXPECT_LT(saved.find("<BufferEnd"), saved.find("<LinkedEnd"));
    EXPECT_LT(saved.find("abscissaInSystem=\"12100\""), saved.find("abscissaInSystem=\"12900\""));
    // A third quote in a span is neither start nor end: it is kept as read, after the two.
    EXPECT_LT(saved.find("abscissaInSystem=\"12900\""), saved.find("abscissaInSystem=\"12950\""));
    EXPECT_NE(saved.find("<ConnectionReference name=\"mySwitch1\""), std::string::npos);
    EXPECT_NE(saved.find("<EnumPropertyValue "), std::string::npos);
    EXPECT_NE(saved.find("<DoublePropertyValue "), std::string::npos);
    EXPECT_NE(saved.find("<Platform name=\"Platform A\""), std::string::npos);
    EXPECT_NE(saved.find("<RadioAntena name=\"antenna\""), std::string::npos);
    // Empty lists leave no wrapper behind.
    EXPECT_EQ(saved.find("<Bridges"), std::string::npos);
    ExpectStableRoundTrip(kRailNetwork);

    // Objects made in code save under the tag they were made for.
    CountedPtr<Rail::RailroadTrackElement> track(new Rail::RailroadTrackElement);
    track->SetName("t");
    track->SetStartEnd(new Rail::ReferenceElement("SwitchEnd"));
    track->SetEndEnd(new Rail::ReferenceElement("BufferEnd"));
    const std::string built = SaveToString(track.Get());
    EXPECT_LT(built.find("<SwitchEnd"), built.find("<BufferEnd"));
    CountedPtr<Element> back = LoadText(built);
    auto* loaded = As<Rail::RailroadTrackElement>(back);
    ASSERT_NE(loaded, nullptr);
    ASSERT_NE(loaded->GetStartEnd(), nullptr);
    EXPECT_EQ(loaded->GetStartEnd()->GetTagName(), "SwitchEnd");
    ASSERT_NE(loaded->GetEndEnd(), nullptr);
    EXPECT_EQ(loaded->GetEndEnd()->GetTagName(), "BufferEnd");
}
