#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/intersection.h>
#include <orvia/ruvex/elements/portion.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using namespace Ruvex;

namespace {

CountedPtr<Element> LoadText(const std::string& text) {
    CountedPtr<Element> root(Load(text.c_str(), true));
    EXPECT_TRUE(root) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    return root;
}

template <class T>
T* As(const CountedPtr<Element>& element) {
    return dynamic_cast<T*>(element.Get());
}

// Every element from `element` down whose class kept something of the file it did not know, by tag.
void CollectLeftovers(Element* element, std::vector<std::string>& out) {
    const PreservedContent* kept = element->GetPreserved();
    if (kept && (!kept->attributes.empty() || !kept->nodes.empty() || !kept->containers.empty()))
        out.push_back(element->GetTagName());
    for (const ChildField& field : element->GetSchema().children)
        field.forEach(*element, &out, [](void* context, Element* child) {
            CollectLeftovers(child, *static_cast<std::vector<std::string>*>(context));
        });
}

// One sub-network with every kind of element its record holds; the track also carries a clipped datum,
// which its runtime class takes and the record keeps verbatim.
const char* const kSubNetworkDocument = R"(<Ruvex version="2.5" versionRevision="0">
  <Network name="Town">
    <SubNetworks>
      <SubNetwork name="Centre" x="100" y="200" heading="0.5">
        <Materials><Material name="Asphalt" filePath="asphalt.mat"/></Materials>
        <Grounds><Ground name="Stone"/></Grounds>
        <Markings>
          <Marking name="Dashed" width="0.12" lineLength="3" totalLength="10" doubleMarking="true"
                   category="T1" quality="0.8" leftToRight="can" rightToLeft="cannot" material="Paint">
            <UVMapping uVOffsetX="0.25" uVOffsetY="-0.5" uVScaleX="2" uVScaleY="4" uVHeading="0.1"/>
          </Marking>
          <Marking name="Plain"/>
        </Markings>
        <Profiles>
          <Profile name="TwoWay" roadType="bridge">
            <Lane name="Left" laneType="sidewalk" circulationWay="both" speedLimit="1.5" groundName="Stone"
                  material="Asphalt">
              <UVMapping uVScaleX="3"/>
              <VehicleType vehicleCategories="pedestrian" heightLimit="2.5"/>
            </Lane>
            <Lane name="Right"/>
            <LaneBorder horizDistToAxis="-3.5" vertDistToAxis="0.15" markingOffset="0.1" markingName="Plain">
              <Decoration material="Kerb">
                <PolyLine type="1" points="0 0 0.1 0.15"/>
                <UVMapping uVHeading="1.5"/>
              </Decoration>
            </LaneBorder>
            <LaneBorder/>
            <LaneBorder horizDistToAxis="3.5" markingName="Dashed"/>
          </Profile>
        </Profiles>
        <Intersections>
          <Intersection name="Square" x="1" y="2" z="3" altitude="3.5" contourPoints="0 0 10 0 10 10"
                        contourInterpolations="1 0" material="Asphalt" groundName="Stone" uVScaleX="0.5"
                        uVOffsetY="7" uVHeading="0.25" drawMarkingInsideIntersection="true">
            <Contours>
              <ContourPiece startAnchorTrack="Main" isStartAnchorOnTrackEnd="true" isStartAnchorOnLeftSide="true"
                            endAnchorTrack="Side" isEndAnchorOnLeftSide="true" contourPoints="1 2 3 4"/>
            </Contours>
            <BannedLinks>
              <LanePair fromTrack="Main" fromTrackBoundInfo="end" fromLane="Right" toTrack="Main"
                        toTrackBoundInfo="end" toLane="Left"/>
              <LanePair/>
            </BannedLinks>
            <Link name="L1"><LanePair fromTrack="Main" toTrack="Side" fromLane="Right" toLane="Right"/></Link>
            <MarkClippedData name="Fountain" isStatic="true" x="4" y="5" z="6" roll="0.1" pitch="0.2" yaw="0.3">
              <ExternalElement filePath="fountain.obj"/>
              <Obstacle maxX="2" maxY="2" maxZ="1"/>
            </MarkClippedData>
            <MarkClippedData name="Puddle"><SurfaceModifier groundName="Water"/></MarkClippedData>
          </Intersection>
        </Intersections>
        <Tracks>
          <Track name="Main" startIntersectionName="" endIntersectionName="Square">
            <XYCurve x="1" y="2" orientation="0.5"><Segment length="60"/><CircleArc length="10" curvature="0.01"/></XYCurve>
            <SZCurve><Polynomial xOut="60" yOut="2" derivativeIn="0.03"/></SZCurve>
            <BankingCurve><Polynomial xOut="60" yIn="0.05" yOut="0.05"/></BankingCurve>
            <SZCurvatureCurve><Polynomial xOut="60"/></SZCurvatureCurve>
            <Portion endDistance="30" startProfileName="TwoWay" endProfileName="TwoWay"/>
            <Portion endDistance="70" startProfileName="TwoWay" endProfileName="TwoWay">
              <ProfileModifier>
                <BorderModifier id="2">
                  <BorderOffset/>
                  <BorderOffset t="1" yOffset="1.5" dirIn="0.1" dirOut="-0.2"/>
                </BorderModifier>
              </ProfileModifier>
            </Portion>
            <ClippedData name="Lamp"><TrackClip abscissa="12"/></ClippedData>
          </Track>
          <Track name="Side" startIntersectionName="Square"/>
        </Tracks>
        <JunctionTracks><Track name="Main"/></JunctionTracks>
        <TrafficLightGroups><TrafficLightGroup name="Lights"/></TrafficLightGroups>
        <TrajectoryParts><TrajectoryPart name="P1"/></TrajectoryParts>
        <Trajectories><Trajectory name="Tour"><TrajectoryElement trajectoryPart="P1"/></Trajectory></Trajectories>
        <ParkingSpots><ParkingSpot name="Spot"/></ParkingSpots>
        <Zones><Area name="Park" points="0 0 10 0 10 10"/></Zones>
        <EntitiesGenerations><EntitiesGeneration name="Trees" area="Park"/></EntitiesGenerations>
      </SubNetwork>
    </SubNetworks>
    <SubNetworkJunctions>
      <SubNetworkJunction name="Gate" x="9" altitude="2" contourPoints="1 1 2 2" groundName="Grass">
        <SubNetworkExit subNetwork="Centre" track="Side" extremity="end"/>
      </SubNetworkJunction>
    </SubNetworkJunctions>
  </Network>
</Ruvex>)";

}  // namespace

TEST(TopologyElements, LoadSubNetworkValuesAndDefaults) {
    CountedPtr<Element> root = LoadText(kSubNetworkDocument);
    ASSERT_TRUE(root);
    auto* network = As<NetworkElement>(root);
    ASSERT_NE(network, nullptr);
    ASSERT_EQ(network->GetSubNetworks().size(), 1u);
    const SubNetworkElement* sub = network->GetSubNetworks()[0].Get();

    // Everything in the document except the track's clipped datum was taken by a class.
    std::vector<std::string> leftovers;
    CollectLeftovers(network, leftovers);
    EXPECT_EQ(leftovers, std::vector<std::string>{"Track"});

    ASSERT_EQ(sub->GetMarkings().size(), 2u);
    const MarkingElement* dashed = sub->GetMarkings()[0].Get();
    EXPECT_EQ(dashed->GetWidth(), 0.12);
    EXPECT_EQ(dashed->GetLineLength(), 3.0);
    EXPECT_EQ(dashed->GetTotLength(), 10.0);
    EXPECT_TRUE(dashed->GetDoubleMarking());
    EXPECT_EQ(dashed->GetCategory(), "T1");
    EXPECT_EQ(dashed->GetMarkingQuality(), 0.8);
    EXPECT_EQ(dashed->GetLeftToRight(), "can");
    EXPECT_EQ(dashed->GetRightToLeft(), "cannot");
    EXPECT_EQ(dashed->GetMaterialName(), "Paint");
    ASSERT_NE(dashed->GetUVMapping(), nullptr);
    EXPECT_EQ(dashed->GetUVMapping()->GetUVOffset(), vek::Vector2(0.25, -0.5));
    EXPECT_EQ(dashed->GetUVMapping()->GetUVScale(), vek::Vector2(2, 4));
    EXPECT_EQ(dashed->GetUVMapping()->GetUVHeading(), 0.1);
    const MarkingElement* plain = sub->GetMarkings()[1].Get();
    EXPECT_EQ(plain->GetWidth(), 0.15);
    EXPECT_EQ(plain->GetLineLength(), plain->GetTotLength());
    EXPECT_EQ(plain->GetLeftToRight(), "unknown");
    EXPECT_EQ(plain->GetUVMapping(), nullptr);

    ASSERT_EQ(sub->GetProfiles().size(), 1u);
    const ProfileElement* profile = sub->GetProfiles()[0].Get();
    EXPECT_EQ(profile->GetRoadTypeText(), "bridge");
    ASSERT_EQ(profile->GetLanes().size(), 2u);
    ASSERT_EQ(profile->GetLaneBorders().size(), 3u);
    const LaneElement* left = profile->GetLanes()[0].Get();
    EXPECT_EQ(left->GetLaneTypeText(), "sidewalk");
    EXPECT_EQ(left->GetCirculationWayText(), "both");
    EXPECT_EQ(left->GetSpeedLimit(), 1.5);
    EXPECT_EQ(left->GetGroundName(), "Stone");
    EXPECT_EQ(left->GetMaterialName(), "Asphalt");
    ASSERT_NE(left->GetUVMapping(), nullptr);
    EXPECT_EQ(left->GetUVMapping()->GetUVScale(), vek::Vector2(3, 1));
    ASSERT_NE(left->GetVehicleAuth(), nullptr);
    EXPECT_EQ(left->GetVehicleAuth()->GetVehicleCategories(), "pedestrian");
    EXPECT_EQ(left->GetVehicleAuth()->GetHeightLimit(), 2.5);
    const LaneElement* right = profile->GetLanes()[1].Get();
    EXPECT_EQ(right->GetLaneTypeText(), "paved");
    EXPECT_EQ(right->GetCirculationWayText(), "direct");
    EXPECT_EQ(right->GetSpeedLimit(), VehicleTypeElement::gNoLimit);
    EXPECT_EQ(right->GetVehicleAuth(), nullptr);
    const LaneBorderElement* border = profile->GetLaneBorders()[0].Get();
    EXPECT_EQ(border->GetHorizDistToAxis(), -3.5);
    EXPECT_EQ(border->GetVertDistToAxis(), 0.15);
    EXPECT_EQ(border->GetMarkingOffset(), 0.1);
    EXPECT_EQ(border->GetMarkingName(), "Plain");
    ASSERT_NE(border->GetDecoration(), nullptr);
    EXPECT_EQ(border->GetDecoration()->GetMaterialName(), "Kerb");
    ASSERT_NE(border->GetDecoration()->GetPolyLine(), nullptr);
    EXPECT_EQ(border->GetDecoration()->GetPolyLine()->GetPoints().size(), 2u);
    EXPECT_EQ(border->GetDecoration()->GetUVMapping()->GetUVHeading(), 1.5);
    EXPECT_EQ(profile->GetLaneBorders()[1]->GetHorizDistToAxis(), 0.0);
    EXPECT_EQ(profile->GetLaneBorders()[1]->GetDecoration(), nullptr);

    ASSERT_EQ(sub->GetIntersections().size(), 1u);
    const IntersectionElement* square = sub->GetIntersections()[0].Get();
    EXPECT_EQ(square->GetPosition(), vek::Vector3(1, 2, 3));
    EXPECT_EQ(square->GetAltitude(), 3.5);
    EXPECT_EQ(square->GetContourPoints(), (std::vector<vek::Vector2>{{0, 0}, {10, 0}, {10, 10}}));
    EXPECT_EQ(square->GetContourInterpolations(), (std::vector<double>{1, 0}));
    EXPECT_EQ(square->GetMaterialName(), "Asphalt");
    EXPECT_EQ(square->GetGroundName(), "Stone");
    EXPECT_EQ(square->GetConnectorUVScale(), vek::Vector2(0.5, 1));
    EXPECT_EQ(square->GetConnectorUVOffset(), vek::Vector2(0, 7));
    EXPECT_EQ(square->GetConnectorUVHeading(), 0.25);
    EXPECT_TRUE(square->GetDrawInsideMarking());
    ASSERT_EQ(square->GetContourPieces().size(), 1u);
    const ContourPieceElement* piece = square->GetContourPieces()[0].Get();
    EXPECT_EQ(piece->GetStartAnchorTrack(), "Main");
    EXPECT_TRUE(piece->GetStartAnchorOnTrackEnd());
    EXPECT_TRUE(piece->GetStartAnchorOnLeftSide());
    EXPECT_EQ(piece->GetEndAnchorTrack(), "Side");
    EXPECT_FALSE(piece->GetEndAnchorOnTrackEnd());
    EXPECT_TRUE(piece->GetEndAnchorOnLeftSide());
    EXPECT_EQ(piece->GetContourPoints(), (std::vector<vek::Vector2>{{1, 2}, {3, 4}}));
    ASSERT_EQ(square->GetBannedLinks().size(), 2u);
    EXPECT_EQ(square->GetBannedLinks()[0]->GetFromTrackBoundInfo(), "end");
    EXPECT_EQ(square->GetBannedLinks()[0]->GetToLane(), "Left");
    EXPECT_EQ(square->GetBannedLinks()[1]->GetFromTrackBoundInfo(), "start");
    ASSERT_EQ(square->GetLinks().size(), 1u);
    EXPECT_EQ(square->GetLinks()[0]->GetName(), "L1");
    ASSERT_EQ(square->GetLinks()[0]->GetLanePairs().size(), 1u);
    EXPECT_EQ(square->GetLinks()[0]->GetLanePairs()[0]->GetToTrack(), "Side");
    ASSERT_EQ(square->GetClippedData().size(), 2u);
    const MarkClippedDataElement* fountain = square->GetClippedData()[0].Get();
    EXPECT_EQ(fountain->GetName(), "Fountain");
    EXPECT_TRUE(fountain->GetStatic());
    EXPECT_EQ(fountain->GetPosition(), vek::Vector3(4, 5, 6));
    EXPECT_EQ(fountain->GetRoll(), 0.1);
    EXPECT_EQ(fountain->GetPitch(), 0.2);
    EXPECT_EQ(fountain->GetYaw(), 0.3);
    ASSERT_NE(fountain->GetObject3D(), nullptr);
    EXPECT_EQ(fountain->GetObject3D()->GetFilePath(), "fountain.obj");
    ASSERT_NE(fountain->GetObstacle(), nullptr);
    EXPECT_EQ(fountain->GetObstacle()->GetMax(), vek::Vector3(2, 2, 1));
    EXPECT_EQ(fountain->GetRoadSign(), nullptr);
    const MarkClippedDataElement* puddle = square->GetClippedData()[1].Get();
    EXPECT_FALSE(puddle->GetStatic());
    EXPECT_EQ(puddle->GetPosition(), vek::Vector3(0, 0, 0));
    ASSERT_NE(puddle->GetSurfaceModifier(), nullptr);
    EXPECT_EQ(puddle->GetSurfaceModifier()->GetGroundName(), "Water");
    EXPECT_EQ(puddle->GetObject3D(), nullptr);

    ASSERT_EQ(sub->GetTracks().size(), 2u);
    const TrackElement* main = sub->GetTracks()[0].Get();
    EXPECT_EQ(main->GetStartIntersectionName(), "");
    EXPECT_EQ(main->GetEndIntersectionName(), "Square");
    ASSERT_NE(main->GetXYCurve(), nullptr);
    EXPECT_EQ(main->GetXYCurve()->GetFunctions().size(), 2u);
    ASSERT_NE(main->GetSZCurve(), nullptr);
    ASSERT_NE(main->GetBankingCurve(), nullptr);
    ASSERT_NE(main->GetSZCurvatureCurve(), nullptr);
    EXPECT_EQ(main->GetSZCurve()->GetTagName(), "SZCurve");
    EXPECT_EQ(main->GetBankingCurve()->GetTagName(), "BankingCurve");
    EXPECT_EQ(main->GetSZCurvatureCurve()->GetTagName(), "SZCurvatureCurve");
    EXPECT_EQ(main->GetBankingCurve()->GetFunctions()[0]->GetIn().y, 0.05);
    ASSERT_EQ(main->GetPortions().size(), 2u);
    EXPECT_EQ(main->GetPortions()[0]->GetEndDistance(), 30.0);
    EXPECT_EQ(main->GetPortions()[0]->GetStartProfileName(), "TwoWay");
    EXPECT_EQ(main->GetPortions()[0]->GetProfileModifier(), nullptr);
    const ProfileModifierElement* modifier = main->GetPortions()[1]->GetProfileModifier();
    ASSERT_NE(modifier, nullptr);
    ASSERT_EQ(modifier->GetBorderModifiers().size(), 1u);
    EXPECT_EQ(modifier->GetBorderModifiers()[0]->GetId(), 2u);
    const auto& offsets = modifier->GetBorderModifiers()[0]->GetBorderOffsets();
    ASSERT_EQ(offsets.size(), 2u);
    EXPECT_EQ(offsets[0]->GetT(), 0.0);
    EXPECT_EQ(offsets[0]->GetYOffset(), 0.0);
    EXPECT_EQ(offsets[1]->GetT(), 1.0);
    EXPECT_EQ(offsets[1]->GetYOffset(), 1.5);
    EXPECT_EQ(offsets[1]->GetDirIn(), 0.1);
    EXPECT_EQ(offsets[1]->GetDirOut(), -0.2);
    const TrackElement* side = sub->GetTracks()[1].Get();
    EXPECT_EQ(side->GetXYCurve(), nullptr);
    EXPECT_EQ(side->GetBankingCurve(), nullptr);
    EXPECT_TRUE(side->GetPortions().empty());

    ASSERT_EQ(network->GetSubNetworkJunctions().size(), 1u);
    const SubNetworkJunctionElement* gate = network->GetSubNetworkJunctions()[0].Get();
    EXPECT_EQ(gate->GetPosition(), vek::Vector3(9, 0, 0));
    EXPECT_EQ(gate->GetAltitude(), 2.0);
    EXPECT_EQ(gate->GetContourPoints().size(), 2u);
    EXPECT_EQ(gate->GetGroundName(), "Grass");
    EXPECT_EQ(gate->GetConnectorUVScale(), vek::Vector2(1, 1));
    ASSERT_EQ(gate->GetExits().size(), 1u);
    EXPECT_EQ(gate->GetExits()[0]->GetExtremity(), "end");
}

TEST(TopologyElements, SaveIsStable) {
    CountedPtr<Element> root = LoadText(kSubNetworkDocument);
    ASSERT_TRUE(root);
    const std::string first = SaveToString(root.Get());
    CountedPtr<Element> again = LoadText(first);
    ASSERT_TRUE(again);
    EXPECT_EQ(SaveToString(again.Get()), first);

    // Defaults are written out, the track's clipped datum stays where it was, and curves keep their tags.
    EXPECT_NE(first.find("<Lane name=\"Right\" laneType=\"paved\" circulationWay=\"direct\""),
              std::string::npos);
    EXPECT_NE(first.find("<ClippedData name=\"Lamp\">"), std::string::npos);
    EXPECT_LT(first.find("<Portion endDistance=\"70\""), first.find("<ClippedData name=\"Lamp\">"));
    EXPECT_NE(first.find("<BankingCurve>"), std::string::npos);
    EXPECT_NE(first.find("<SZCurvatureCurve>"), std::string::npos);
    EXPECT_NE(first.find("<JunctionTracks>"), std::string::npos);
    // A speed limit of "none" is finite, so it saves and reads back as itself.
    const auto* sub = As<NetworkElement>(again)->GetSubNetworks()[0].Get();
    EXPECT_EQ(sub->GetProfiles()[0]->GetLanes()[1]->GetSpeedLimit(), VehicleTypeElement::gNoLimit);
}

TEST(TopologyElements, NamedListsAndContainers) {
    CountedPtr<Element> root = LoadText(kSubNetworkDocument);
    ASSERT_TRUE(root);
    auto* network = As<NetworkElement>(root);
    SubNetworkElement* sub = network->EditSubNetworks()[0].Get();

    // Tracks and junction tracks share the item tag but not the list.
    EXPECT_EQ(sub->GetTracks().find("Side"), 1u);
    EXPECT_EQ(sub->GetJunctionTracks().size(), 1u);
    EXPECT_NE(sub->GetJunctionTracks()[0].Get(), sub->GetTracks()[0].Get());
    EXPECT_EQ(sub->GetIntersections().find("Square"), 0u);
    EXPECT_EQ(sub->GetMarkings().find("Plain"), 1u);
    EXPECT_EQ(sub->GetGrounds().find("Stone"), 0u);
    EXPECT_EQ(sub->GetTrafficLightGroups().find("Lights"), 0u);
    EXPECT_EQ(sub->GetTrajectoryParts().find("P1"), 0u);
    ASSERT_EQ(sub->GetTrajectories().find("Tour"), 0u);
    EXPECT_EQ(sub->GetTrajectories()[0]->GetPieces().size(), 1u);
    EXPECT_EQ(sub->GetParkingSpots().find("Spot"), 0u);
    ASSERT_EQ(sub->GetZones().find("Park"), 0u);
    EXPECT_EQ(sub->GetZones()[0]->GetPoints().size(), 3u);
    EXPECT_EQ(sub->GetEntitiesGenerations().find("Trees"), 0u);
    EXPECT_EQ(sub->GetProfiles().find("TwoWay"), 0u);
    EXPECT_EQ(sub->GetProfiles()[0]->GetLanes().find("Right"), 1u);
    EXPECT_EQ(sub->GetProfiles()[0]->GetLanes().find("Middle"), HashVector<CountedPtr<LaneElement>>::npos);

    // A rename through the element keeps the name index right.
    sub->EditTracks()[1]->SetName("Avenue");
    EXPECT_EQ(sub->GetTracks().find("Side"), HashVector<CountedPtr<TrackElement>>::npos);
    EXPECT_EQ(sub->GetTracks().find("Avenue"), 1u);

    // Emptied lists leave no wrapper behind; lists filled in code get theirs.
    sub->EditIntersections().clear();
    sub->EditJunctionTracks().clear();
    auto* built = new TrackElement;
    built->SetName("Built");
    built->EditPortions().push_back(new PortionElement);
    sub->EditJunctionTracks().push_back(built);
    const std::string saved = SaveToString(root.Get());
    EXPECT_EQ(saved.find("<Intersections"), std::string::npos);
    EXPECT_NE(saved.find("<JunctionTracks>"), std::string::npos);
    CountedPtr<Element> back = LoadText(saved);
    ASSERT_TRUE(back);
    const SubNetworkElement* reloaded = As<NetworkElement>(back)->GetSubNetworks()[0].Get();
    EXPECT_TRUE(reloaded->GetIntersections().empty());
    ASSERT_EQ(reloaded->GetJunctionTracks().size(), 1u);
    EXPECT_EQ(reloaded->GetJunctionTracks()[0]->GetName(), "Built");
    EXPECT_EQ(reloaded->GetJunctionTracks()[0]->GetPortions().size(), 1u);
    EXPECT_EQ(reloaded->GetTracks().find("Avenue"), 1u);
}

TEST(TopologyElements, ClippedDataKeepsItsTag) {
    // Inside a track the tag is "ClippedData"; a sign in one case, a parking row along an axis in the other.
    for (const char* tag : {"ClippedData", "TrackClippedData"}) {
        const bool sign = std::string(tag) == "ClippedData";
        const std::string text = std::string("<Ruvex><") + tag + R"( name="Sign" isStatic="true">
      <TrackClip abscissa="12.5" lateralOffset="-2" verticalOffset="1"/>
      <TrackScope from="-1" to="4" leftLimit="-3" laneScope="1 3" circulationWay="inverse"/>)" +
                                 (sign ? "<RoadSign type=\"stop\"/>"
                                       : "<Linear controlPoints=\"0 0 5 0\"/><ParkingLot name=\"Row\"/>") +
                                 "</" + tag + "></Ruvex>";
        CountedPtr<Element> root = LoadText(text);
        ASSERT_TRUE(root);
        auto* clipped = As<TrackClippedDataElement>(root);
        ASSERT_NE(clipped, nullptr) << tag;
        EXPECT_EQ(clipped->GetTagName(), tag);
        EXPECT_EQ(clipped->GetName(), "Sign");
        EXPECT_TRUE(clipped->GetStatic());
        ASSERT_NE(clipped->GetTrackClip(), nullptr);
        EXPECT_EQ(clipped->GetTrackClip()->GetAbscissa(), 12.5);
        EXPECT_EQ(clipped->GetTrackClip()->GetLateralOffset(), -2.0);
        EXPECT_EQ(clipped->GetTrackClip()->GetVerticalOffset(), 1.0);
        const TrackScopeElement* scope = clipped->GetScope();
        ASSERT_NE(scope, nullptr);
        EXPECT_EQ(scope->GetFrom(), -1.0);
        EXPECT_EQ(scope->GetTo(), 4.0);
        EXPECT_EQ(scope->GetLeftLimit(), -3.0);
        // Limits not given stay unset: at the single-precision extreme on their open side.
        EXPECT_EQ(scope->GetRightLimit(), std::numeric_limits<float>::max());
        EXPECT_EQ(scope->GetBottomLimit(), -std::numeric_limits<float>::max());
        EXPECT_EQ(scope->GetTopLimit(), std::numeric_limits<float>::max());
        EXPECT_EQ(scope->GetLaneScope(), (std::vector<double>{1, 3}));
        EXPECT_EQ(scope->GetCirculationWayText(), "inverse");
        if (sign) {
            ASSERT_NE(clipped->GetRoadSign(), nullptr);
            EXPECT_EQ(clipped->GetRoadSign()->GetSignType(), "stop");
            EXPECT_EQ(clipped->GetParkingLot(), nullptr);
        } else {
            ASSERT_NE(clipped->GetLinearObject(), nullptr);
            EXPECT_EQ(clipped->GetLinearObject()->GetControlPoints().size(), 2u);
            ASSERT_NE(clipped->GetParkingLot(), nullptr);
            EXPECT_EQ(clipped->GetParkingLot()->GetName(), "Row");
            EXPECT_EQ(clipped->GetRoadSign(), nullptr);
        }
        EXPECT_EQ(clipped->GetObject3D(), nullptr);
        std::vector<std::string> leftovers;
        CollectLeftovers(clipped, leftovers);
        EXPECT_TRUE(leftovers.empty());

        const std::string saved = SaveToString(root.Get());
        EXPECT_NE(saved.find(std::string("<") + tag + " name=\"Sign\""), std::string::npos) << saved;
        CountedPtr<Element> back = LoadText(saved);
        ASSERT_TRUE(back);
        EXPECT_EQ(As<TrackClippedDataElement>(back)->GetScope()->GetRightLimit(),
                  std::numeric_limits<float>::max());
        EXPECT_EQ(SaveToString(back.Get()), saved);
    }
}

TEST(TopologyElements, LibraryFiles) {
    CountedPtr<Element> root = LoadText(R"(<Ruvex>
  <ProfileStandalone>
    <Profiles><Profile name="Rural"><Lane name="A" groundName="Gravel"/><LaneBorder markingName="Edge"/><LaneBorder/></Profile></Profiles>
    <Markings><Marking name="Edge" material="White"/></Markings>
    <Grounds><Ground name="Gravel"/></Grounds>
    <Materials><Material name="White"/></Materials>
  </ProfileStandalone>
</Ruvex>)");
    ASSERT_TRUE(root);
    auto* library = As<ProfileStandaloneElement>(root);
    ASSERT_NE(library, nullptr);
    ASSERT_EQ(library->GetProfiles().size(), 1u);
    EXPECT_EQ(library->GetProfiles()[0]->GetLanes()[0]->GetGroundName(), "Gravel");
    EXPECT_EQ(library->GetMarkings().find("Edge"), 0u);
    EXPECT_EQ(library->GetMaterials().find("White"), 0u);
    EXPECT_EQ(library->GetGrounds().find("Gravel"), 0u);
    std::vector<std::string> leftovers;
    CollectLeftovers(library, leftovers);
    EXPECT_TRUE(leftovers.empty());

    CountedPtr<Element> marking = LoadText(
        "<Ruvex><MarkingStandalone><Markings><Marking name=\"M\" width=\"0.3\"/></Markings>"
        "<Materials><Material name=\"Paint\"/></Materials></MarkingStandalone></Ruvex>");
    ASSERT_TRUE(marking);
    auto* markingLibrary = As<MarkingStandaloneElement>(marking);
    ASSERT_NE(markingLibrary, nullptr);
    ASSERT_EQ(markingLibrary->GetMarkings().size(), 1u);
    EXPECT_EQ(markingLibrary->GetMarkings()[0]->GetWidth(), 0.3);
    EXPECT_EQ(markingLibrary->GetMaterials().size(), 1u);
}
