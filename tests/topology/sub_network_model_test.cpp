#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/ground/ground.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/entities_generation.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/parking.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/topology/trajectory.h>
#include <orvia/topology/zone.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <string>
#include <vector>

using Orvia::Network;
using Orvia::SubNetwork;
using Orvia::Track;
using Ruvex::CountedPtr;

namespace {

// Every kind of object a sub-network holds, each named by some other.
const char* const kModel = R"(<Ruvex version="2.5"><Network name="N"><SubNetworks>
<SubNetwork name="A">
  <Materials><Material name="Asphalt"/><Material name="Paint"/></Materials>
  <Grounds><Ground name="Gravel"/></Grounds>
  <Markings><Marking name="Solid" width="0.15" material="Paint"/></Markings>
  <Profiles><Profile name="Road">
    <Lane name="L" laneType="paved" circulationWay="direct" groundName="Gravel" material="Asphalt"/>
    <LaneBorder horizDistToAxis="-2" markingName="Solid"/><LaneBorder horizDistToAxis="2"/>
  </Profile></Profiles>
  <Intersections><Intersection name="X" material="Asphalt" groundName="Gravel">
    <MarkClippedData name="Fountain" x="1"/></Intersection></Intersections>
  <Tracks>
    <Track name="T1" startIntersectionName="X"><XYCurve><Segment length="50"/></XYCurve>
      <Portion endDistance="50" startProfileName="Road" endProfileName="Road"/>
      <ClippedData name="Rail"><Linear/></ClippedData>
      <ClippedData name="Bays"><ParkingLot name="Lot"/></ClippedData>
    </Track>
    <Track name="T2" startIntersectionName="X"><XYCurve><Segment length="30"/></XYCurve>
      <Portion endDistance="30" startProfileName="Road" endProfileName="Road"/></Track>
  </Tracks>
  <TrajectoryParts><TrajectoryPart name="Lane change"/></TrajectoryParts>
  <Trajectories><Trajectory name="Path"><TrajectoryElement trajectoryPart="Lane change"/></Trajectory></Trajectories>
  <ParkingSpots><ParkingSpot name="Spot"/></ParkingSpots>
  <Zones><Area name="Park" points="0 0 10 0 10 10"/></Zones>
  <EntitiesGenerations><EntitiesGeneration name="Trees" area="Park"/></EntitiesGenerations>
  <ClippedDatas><MarkClippedData name="Statue"><Linear/></MarkClippedData></ClippedDatas>
  <MarkClippedData name="Kiosk"/>
  <PedestrianNetwork/>
</SubNetwork>
<SubNetwork name="B"><Tracks><Track name="U"><XYCurve><Segment length="20"/></XYCurve></Track></Tracks></SubNetwork>
</SubNetworks>
<SubNetworkJunctions><SubNetworkJunction name="J">
  <SubNetworkExit subNetwork="A" track="T1" extremity="end"/><SubNetworkExit subNetwork="B" track="U" extremity="start"/>
</SubNetworkJunction></SubNetworkJunctions>
<Roads><Road name="R"><RoadElement subNetwork="A" track="T1"/><RoadElement subNetwork="B" track="U"/></Road></Roads>
</Network></Ruvex>)";

CountedPtr<Network> Load(const std::string& text) {
    CountedPtr<Network> network(Network::Load(text.c_str(), 0, {}));
    EXPECT_TRUE(network);
    return network;
}

// A save reloads into a model that saves the same text.
void ExpectReloadsTheSame(Network* network) {
    const std::string saved = Ruvex::SaveToString(network);
    CountedPtr<Network> reloaded = Load(saved);
    ASSERT_TRUE(reloaded);
    EXPECT_EQ(Ruvex::SaveToString(reloaded.Get()), saved);
}

}  // namespace

TEST(SubNetwork, EveryKindOfObjectIsResolvedAndRoundTrips) {
    CountedPtr<Network> network = Load(kModel);
    ASSERT_TRUE(network);
    SubNetwork* a = network->GetSubNetwork(0);
    Orvia::Profile* road = a->GetProfileByName("Road");
    ASSERT_TRUE(road);
    EXPECT_EQ(road->GetLaneBorder(0)->GetMarking(), a->GetMarkingByName("Solid"));
    EXPECT_EQ(road->GetLane(0)->GetGround(), a->GetGroundByName("Gravel"));
    EXPECT_EQ(a->GetMarkingByName("Solid")->GetMaterial(), a->GetMaterialByName("Paint"));
    EXPECT_EQ(a->GetTrajectoryByName("Path")->GetPart(0), a->GetTrajectoryPartByName("Lane change"));
    ASSERT_EQ(a->GetClippedDataCount(), 1u);
    EXPECT_EQ(a->GetClippedData(0)->GetQualifiedName(), "A//Statue");
    EXPECT_EQ(a->GetClippedData(0)->GetLinearObject()->GetClippedData(), a->GetClippedData(0));
    Orvia::Intersection* x = a->GetIntersectionByName("X");
    EXPECT_EQ(x->GetClippedData(0)->GetParent(), x);
    EXPECT_EQ(x->GetClippedData(0)->GetQualifiedName(), "A//Fountain");
    std::vector<Orvia::ClippedData*> all;
    a->GetClippedDataArray(all);
    EXPECT_EQ(all.size(), 5u);
    EXPECT_EQ(a->GetUniqueClippedDataName("Kiosk"), "Kiosk 1");
    EXPECT_TRUE(a->GetPedestrianNetwork());
    ExpectReloadsTheSame(network.Get());
}

TEST(SubNetwork, RemovingEachKindLeavesNothingPointingAtIt) {
    CountedPtr<Network> network = Load(kModel);
    ASSERT_TRUE(network);
    SubNetwork* a = network->GetSubNetwork(0);
    Track* t1 = a->GetTrackByName("T1");
    Track* t2 = a->GetTrackByName("T2");
    Orvia::Intersection* x = a->GetIntersectionByName("X");
    ASSERT_TRUE(t1 && t2 && x);
    EXPECT_EQ(t1->GetStartIntersection(), x);

    // A track: out of its intersection, its junction (left with one exit, so gone), its road, its clipped
    // data's carried objects.
    CountedPtr<Track> keptTrack(t1);
    CountedPtr<Orvia::LinearObject> linear(t1->GetClippedData(0)->GetLinearObject());
    CountedPtr<Orvia::ParkingLot> lot(t1->GetClippedData(1)->GetParkingLotObject());
    ASSERT_TRUE(linear && lot);
    EXPECT_EQ(lot->GetTrack(), t1);
    EXPECT_FALSE(a->RemoveTrack(a->GetTrackCount()));
    ASSERT_TRUE(a->RemoveTrack(t1));
    EXPECT_FALSE(a->RemoveTrack(t1));
    EXPECT_EQ(a->GetTrackByName("T1"), nullptr);
    EXPECT_EQ(keptTrack->GetSubNetwork(), nullptr);
    EXPECT_EQ(keptTrack->GetStartIntersection(), nullptr);
    EXPECT_EQ(network->GetSubNetworkJunctionCount(), 0u);
    const Orvia::Road* r = network->GetRoad(0);
    for (size_t i = 0; i < r->GetPieces().size(); ++i)
        EXPECT_NE(r->GetRoadPiece(i)->GetTrackName(), "T1");
    EXPECT_EQ(linear->GetClippedData(), nullptr);
    EXPECT_EQ(lot->GetTrack(), nullptr);
    std::vector<Orvia::TrackExtremity> around;
    a->GetTracksArroundIntersection(x, around, false);
    ASSERT_EQ(around.size(), 1u);
    EXPECT_EQ(around[0].GetTrack(), t2);

    // An intersection: the ends that met it are free, by pointer and by name.
    ASSERT_TRUE(a->RemoveIntersection(x));
    EXPECT_EQ(t2->GetStartIntersection(), nullptr);
    EXPECT_EQ(t2->GetStartIntersectionName(), "");

    // Markings, materials, grounds: their users keep the name and lose the pointer.
    Orvia::Profile* road = a->GetProfileByName("Road");
    ASSERT_TRUE(a->RemoveMarking(a->GetMarkingByName("Solid")));
    EXPECT_EQ(road->GetLaneBorder(0)->GetMarking(), nullptr);
    ASSERT_TRUE(a->RemoveMaterial(a->GetMaterialByName("Asphalt")));
    EXPECT_EQ(road->GetLane(0)->GetMaterial(), nullptr);
    ASSERT_TRUE(a->RemoveGround(a->GetGroundByName("Gravel")));
    EXPECT_EQ(road->GetLane(0)->GetGround(), nullptr);
    EXPECT_FALSE(a->RemoveGround(static_cast<Orvia::Ground*>(nullptr)));

    // A profile: its portions show no removed profile.
    CountedPtr<Orvia::Profile> keptProfile(road);
    ASSERT_TRUE(a->RemoveProfile(road));
    EXPECT_EQ(t2->GetPortion(0)->GetStartProfile(), nullptr);
    EXPECT_EQ(keptProfile->GetParentSubNetwork(), nullptr);

    // Marks of the sub-network inside a zone go, the others stay.
    a->GetMarkClippedData()[0]->SetPosition({5, 1, 0});
    dynamic_cast<Orvia::MarkClippedData&>(*a->GetClippedData(0)).SetPosition({-5, 1, 0});
    EXPECT_EQ(a->RemoveClippedDataInZone(a->GetZoneByName("Park")), 1u);
    EXPECT_TRUE(a->GetMarkClippedData().empty());
    EXPECT_EQ(a->RemoveClippedDataInZone(nullptr), 0u);

    // Trajectory parts, then the rest.
    ASSERT_TRUE(a->RemoveTrajectoryPart(a->GetTrajectoryPartByName("Lane change")));
    EXPECT_EQ(a->GetTrajectoryByName("Path")->GetPart(0), nullptr);
    EXPECT_TRUE(a->RemoveTrajectory(a->GetTrajectoryByName("Path")));
    EXPECT_TRUE(a->RemoveParkingSpot(a->GetParkingSpotByName("Spot")));
    EXPECT_TRUE(a->RemoveZone(a->GetZoneByName("Park")));
    EXPECT_TRUE(a->RemoveEntitiesGeneration(a->GetEntitiesGenerationByName("Trees")));
    CountedPtr<Orvia::LinearObject> statueLinear(a->GetClippedData(0)->GetLinearObject());
    EXPECT_TRUE(a->RemoveClippedData(0, 10));
    EXPECT_FALSE(a->RemoveClippedData(0, 1));
    EXPECT_EQ(statueLinear->GetClippedData(), nullptr);
    EXPECT_EQ(a->GetTrajectoryCount() + a->GetTrajectoryPartCount() + a->GetParkingSpotsCount() +
                  a->GetZoneCount() + a->GetEntitiesGenerationCount() + a->GetClippedDataCount(),
              0u);
    ExpectReloadsTheSame(network.Get());
}

TEST(SubNetwork, RenameReplaceAndUniqueMembers) {
    CountedPtr<Network> network = Load(kModel);
    ASSERT_TRUE(network);
    SubNetwork* a = network->GetSubNetwork(0);
    Orvia::Profile* road = a->GetProfileByName("Road");
    Orvia::Intersection* x = a->GetIntersectionByName("X");

    // Renames follow into every user; a taken or unknown name is refused.
    EXPECT_TRUE(a->ChangeMaterialName("Asphalt", "Tarmac"));
    EXPECT_EQ(road->GetLane(0)->GetMaterialName(), "Tarmac");
    EXPECT_EQ(x->GetMaterial(), a->GetMaterialByName("Tarmac"));
    EXPECT_FALSE(a->ChangeMaterialName("Tarmac", "Paint"));
    EXPECT_FALSE(a->ChangeMaterialName("Nothing", "Else"));
    EXPECT_TRUE(a->ChangeGroundName("Gravel", "Sand"));
    EXPECT_EQ(road->GetLane(0)->GetGround(), a->GetGroundByName("Sand"));
    EXPECT_EQ(x->GetGround(), a->GetGroundByName("Sand"));
    EXPECT_TRUE(a->ChangeMarkingName("Solid", "Line"));
    EXPECT_EQ(road->GetLaneBorder(0)->GetMarking(), a->GetMarkingByName("Line"));
    a->RenameProfile("Road", "Street");
    EXPECT_EQ(a->GetTrackByName("T2")->GetPortion(0)->GetStartProfileName(), "Street");
    a->RenameProfile("Nope", "Other");
    EXPECT_EQ(a->GetProfileByName("Other"), nullptr);
    EXPECT_TRUE(a->ChangeParkingSpotName("Spot", "Bay"));
    EXPECT_TRUE(a->ChangeEntitiesGenerationName("Trees", "Forest"));

    // Replacing points every user at the other member.
    Orvia::Ground* rock = a->GetOrCreateGround("Rock");
    EXPECT_EQ(a->GetOrCreateGround("Rock"), rock);
    a->ReplaceGround(a->GetGroundByName("Sand"), rock);
    EXPECT_EQ(road->GetLane(0)->GetGround(), rock);
    EXPECT_EQ(x->GetGround(), rock);
    a->ReplaceMaterial(a->GetMaterialByName("Tarmac"), a->GetMaterialByName("Paint"));
    EXPECT_EQ(road->GetLane(0)->GetMaterial(), a->GetMaterialByName("Paint"));

    // A profile equal to one held is not added twice; an unused one goes with RemoveUseLessProfiles.
    CountedPtr<Orvia::Profile> copy(road->Clone());
    EXPECT_EQ(a->AddProfileIfDoesntExist(copy.Get()), road);
    CountedPtr<Orvia::Profile> spare(Orvia::Profile::CreateDefault());
    EXPECT_EQ(a->AddProfileIfDoesntExist(spare.Get()), spare.Get());
    EXPECT_TRUE(a->IsProfileUsed(road));
    EXPECT_FALSE(a->IsProfileUsed(spare.Get()));
    a->RemoveUseLessProfiles();
    EXPECT_EQ(a->GetProfileCount(), 1u);
    EXPECT_EQ(a->GetProfileIndex(spare.Get()), SubNetwork::npos);

    // A marking added twice gets a numbered name, and its material is the sub-network's equal one.
    CountedPtr<Orvia::Marking> marking(a->GetMarkingByName("Line")->Clone());
    Orvia::Marking* added = a->AddUniqueMarking(marking.Get());
    ASSERT_EQ(added, marking.Get());
    EXPECT_EQ(added->GetName(), "Line 1");
    EXPECT_EQ(added->GetMaterial(), a->GetMaterialByName("Paint"));

    // Created members get unique names and are this sub-network's.
    EXPECT_EQ(a->CreateTrajectoryPart("Lane change")->GetName(), "Lane change 1");
    EXPECT_EQ(a->CreateZone("Park")->GetName(), "Park 1");
    EXPECT_EQ(a->CreateParkingSpot("Bay")->GetName(), "Bay 1");
    EXPECT_EQ(a->CreateTrajectory("Path")->GetName(), "Path 1");
    // A derived junction way is named apart from the stored tracks.
    EXPECT_EQ(a->CreateTrackInJunction("T1")->GetName(), "T 3");
    EXPECT_EQ(a->GetDerivedJunctionTrack(0)->GetSubNetwork(), a);
    // The rule numbers by the trailing digits: T1 and T2 carry 1 and 2.
    EXPECT_EQ(a->GetUniqueTrackName("T1"), "T 3");
    EXPECT_EQ(a->GetMaterialIndex(nullptr), SubNetwork::npos);
}

TEST(SubNetwork, FindIndexMatchesEitherWayRound) {
    auto piece = [](const char* from, bool fromEnd, bool fromLeft, const char* to, bool toEnd, bool toLeft) {
        CountedPtr<Ruvex::ContourPieceElement> p(new Ruvex::ContourPieceElement);
        p->SetStartAnchorTrack(from);
        p->SetStartAnchorOnTrackEnd(fromEnd);
        p->SetStartAnchorOnLeftSide(fromLeft);
        p->SetEndAnchorTrack(to);
        p->SetEndAnchorOnTrackEnd(toEnd);
        p->SetEndAnchorOnLeftSide(toLeft);
        return p;
    };
    const std::vector<CountedPtr<Ruvex::ContourPieceElement>> pieces = {
        piece("A", true, false, "B", false, true), piece("C", false, false, "A", true, true)};
    EXPECT_EQ(SubNetwork::FindIndex(*piece("A", true, false, "B", false, true), pieces), 0u);
    EXPECT_EQ(SubNetwork::FindIndex(*piece("A", true, true, "C", false, false), pieces), 1u);
    // One flag differs: no match.
    EXPECT_EQ(SubNetwork::FindIndex(*piece("A", true, false, "B", false, false), pieces), SubNetwork::npos);
    EXPECT_EQ(SubNetwork::FindIndex(*piece("A", true, false, "B", false, true), {}), SubNetwork::npos);
}

TEST(SubNetwork, BadClippedDataAndJunctionsLoadAndAreReported) {
    const std::string text = R"(<Ruvex version="2.5"><Network><SubNetworks><SubNetwork name="A">
<ClippedDatas><TrackClippedData name="Orphan"><TrackClip abscissa="5"/></TrackClippedData></ClippedDatas>
<Tracks><Track name="T"><XYCurve><Segment length="10"/></XYCurve></Track></Tracks>
</SubNetwork></SubNetworks>
<SubNetworkJunctions><SubNetworkJunction name="Lonely"><SubNetworkExit subNetwork="A" track="T" extremity="end"/>
</SubNetworkJunction></SubNetworkJunctions></Network></Ruvex>)";
    CountedPtr<Network> network = Load(text);
    ASSERT_TRUE(network);
    const auto& problems = Ruvex::GetLastProblems();
    ASSERT_EQ(problems.size(), 2u);
    EXPECT_EQ(problems[0].line, 2u);
    EXPECT_NE(problems[0].message.find("\"Orphan\" lies on no track"), std::string::npos);
    EXPECT_EQ(problems[1].line, 5u);
    EXPECT_NE(problems[1].message.find("\"Lonely\" has fewer than two exits"), std::string::npos);

    // Kept as written: a clipped data on no track computes nothing; the junction stays.
    auto* orphan = dynamic_cast<Orvia::TrackClippedData*>(network->GetSubNetwork(0)->GetClippedData(0));
    ASSERT_TRUE(orphan);
    EXPECT_FALSE(orphan->IsInScope(5, 0, 0));
    EXPECT_EQ(network->GetSubNetworkJunctionCount(), 1u);
    ExpectReloadsTheSame(network.Get());
    // Removing the track of the junction's only exit removes the junction.
    EXPECT_TRUE(network->GetSubNetwork(0)->RemoveTrack(size_t{0}));
    EXPECT_EQ(network->GetSubNetworkJunctionCount(), 0u);
}

TEST(SubNetwork, MergeWithRenamesIncomingMembersAndTheirUsers) {
    CountedPtr<Network> network = Load(kModel);
    ASSERT_TRUE(network);
    SubNetwork* a = network->GetSubNetwork(0);
    // A copy of A's content under another name: every member collides.
    CountedPtr<Network> twin = Load(kModel);
    ASSERT_TRUE(twin);
    SubNetwork* b = twin->GetSubNetwork(0);
    a->MergeWith(b);
    Orvia::Profile* incoming = a->GetProfileByName("Road 1");
    ASSERT_TRUE(incoming);
    EXPECT_EQ(incoming->GetLane(0)->GetMaterial(), a->GetMaterialByName("Asphalt 1"));
    EXPECT_EQ(incoming->GetLane(0)->GetGround(), a->GetGroundByName("Gravel 1"));
    EXPECT_EQ(incoming->GetLaneBorder(0)->GetMarking(), a->GetMarkingByName("Solid 1"));
    EXPECT_EQ(a->GetMarkingByName("Solid 1")->GetMaterial(), a->GetMaterialByName("Paint 1"));
    EXPECT_EQ(a->GetIntersectionByName("X 1")->GetMaterial(), a->GetMaterialByName("Asphalt 1"));
    EXPECT_EQ(a->GetTrajectoryByName("Path 1")->GetPart(0), a->GetTrajectoryPartByName("Lane change 1"));
    EXPECT_EQ(a->GetTrajectoryByName("Path 1")->GetPieces()[0]->GetTrajectoryPartName(), "Lane change 1");
    EXPECT_EQ(a->GetEntitiesGenerationByName("Trees 1")->GetAreaName(), "Park 1");
    ASSERT_EQ(a->GetClippedDataCount(), 2u);
    EXPECT_EQ(a->GetClippedData(1)->GetQualifiedName(), "A//Statue");
    EXPECT_EQ(b->GetClippedDataCount() + b->GetMarkClippedData().size(), 0u);
    EXPECT_TRUE(b->GetPedestrianNetwork());  // A has its own
    ExpectReloadsTheSame(network.Get());
}

TEST(SubNetwork, ProxyLoadsFromItsFileAndSavesBackToIt) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("orvia_proxy_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const std::string part = (dir / "part.xml").string();
    std::ofstream(part) << R"(<Ruvex version="2.5"><SubNetwork name="Stored">
<Intersections><Intersection name="X"/></Intersections>
<Tracks><Track name="T" startIntersectionName="X"><XYCurve><Segment length="10"/></XYCurve></Track></Tracks>
</SubNetwork></Ruvex>)";
    CountedPtr<Network> network = Load(R"(<Ruvex version="2.5"><Network><SubNetworks>
<SubNetwork name="P" x="5"><ProxyFile filePath="part.xml"/></SubNetwork></SubNetworks></Network></Ruvex>)");
    ASSERT_TRUE(network);
    SubNetwork* p = network->GetSubNetwork(0);
    const std::string reference = Ruvex::SaveToString(network.Get());
    ASSERT_TRUE(p->IsProxy());
    EXPECT_FALSE(p->LoadProxy({}));  // not beside the working directory
    ASSERT_TRUE(p->LoadProxy({(dir / "nowhere").string(), dir.string()}));
    EXPECT_TRUE(p->IsProxyLoaded());
    EXPECT_EQ(p->GetName(), "P");
    Track* t = p->GetTrackByName("T");
    ASSERT_TRUE(t);
    EXPECT_EQ(t->GetStartIntersection(), p->GetIntersectionByName("X"));
    // The network keeps the reference only; the edited content goes back to its file.
    EXPECT_EQ(Ruvex::SaveToString(network.Get()), reference);
    p->CreateTrack("Added");
    ASSERT_TRUE(p->SaveProxy());
    p->UnloadProxy();
    EXPECT_EQ(p->GetTrackCount() + p->GetIntersectionCount(), 0u);
    ASSERT_TRUE(p->LoadProxyAndMakeAbsolutPaths({dir.string()}));
    EXPECT_TRUE(p->GetTrackByName("Added"));
    EXPECT_TRUE(fs::path(p->GetProxyFilePath()).is_absolute()) << p->GetProxyFilePath();
    fs::remove_all(dir);
}
