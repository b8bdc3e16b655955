#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/profile.h>
#include <orvia/ground/ground.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>
#include <orvia/traffic/vehicle_authorisation.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

using namespace Orvia;
using Ruvex::CountedPtr;

namespace {

const std::string kData = std::string(ORVIA_SOURCE_DIR) + "/tests/data/";

// Borders at the given horizontal distances, one lane between each pair.
CountedPtr<Profile> MakeProfile(std::initializer_list<double> borders) {
    CountedPtr<Profile> profile(new Profile);
    for (size_t i = 1; i < borders.size(); ++i)
        profile->AddLane();
    size_t j = 0;
    for (double x : borders)
        profile->GetLaneBorder(j++)->SetHorizDistToAxis(x);
    return profile;
}

std::pair<double, double> Span(const Lane* lane) {
    return {lane->GetLeftPositionX(), lane->GetRightPositionX()};
}

// The maps agree with the lists: lane i between borders i and i + 1, border j between lanes j - 1 and j, and
// every lane knows its profile.
void ExpectMapsInStep(const Profile& profile) {
    ASSERT_EQ(profile.GetLaneBorderCount(), profile.GetLaneCount() == 0 ? 0u : profile.GetLaneCount() + 1);
    for (size_t i = 0; i < profile.GetLaneCount(); ++i) {
        const Lane* lane = profile.GetLane(i);
        ASSERT_NE(lane, nullptr);
        EXPECT_EQ(lane->GetProfile(), &profile);
        EXPECT_EQ(profile.GetLeftLaneBorder(lane), profile.GetLaneBorder(i));
        EXPECT_EQ(profile.GetRightLaneBorder(lane), profile.GetLaneBorder(i + 1));
        EXPECT_EQ(lane->GetLeftKeyIndex(), i);
        EXPECT_EQ(lane->GetRightKeyIndex(), i + 1);
    }
    for (size_t j = 0; j < profile.GetLaneBorderCount(); ++j) {
        const LaneBorder* border = profile.GetLaneBorder(j);
        EXPECT_EQ(profile.GetLeftLane(border), j > 0 ? profile.GetLane(j - 1) : nullptr);
        EXPECT_EQ(profile.GetRightLane(border), profile.GetLane(j));
    }
}

CountedPtr<Ruvex::Element> LoadText(const std::string& body, const char* version = "2.5") {
    const std::string text =
        std::string("<Ruvex version=\"") + version + "\" versionRevision=\"0\">" + body + "</Ruvex>";
    return CountedPtr<Ruvex::Element>(Ruvex::Load(text.c_str(), true));
}

}  // namespace

TEST(Profile, AddAndInsertLanes) {
    CountedPtr<Profile> profile(new Profile);
    EXPECT_EQ(profile->GetLaneWithDistance(0.0), nullptr);
    EXPECT_EQ(profile->GetLeftPos(), std::make_pair(0.0, 0.0));

    Lane* first = profile->AddLane();
    ASSERT_EQ(profile->GetLaneBorderCount(), 2u);
    EXPECT_EQ(profile->GetLaneBorder(0)->GetHorizDistToAxis(), 0.0);
    EXPECT_EQ(profile->GetLaneBorder(1)->GetHorizDistToAxis(), 0.0);
    EXPECT_EQ(first->GetHorWidth(), 0.0);

    first->SetHorWidth(3.0, true);
    profile->GetLaneBorder(1)->SetVertDistToAxis(0.2);
    Lane* second = profile->AddLane();  // zero width at the right end, copying the last border
    EXPECT_EQ(Span(second), std::make_pair(3.0, 3.0));
    EXPECT_EQ(second->GetLeftPositionY(), 0.2);
    EXPECT_EQ(second->GetRightPositionY(), 0.2);
    second->SetHorWidth(2.0, true);

    Lane* inserted = profile->InsertLane(1);  // zero width left of the former lane 1
    EXPECT_EQ(profile->GetLaneIndex(inserted), 1u);
    EXPECT_EQ(profile->GetLane(2), second);
    EXPECT_EQ(Span(inserted), std::make_pair(3.0, 3.0));
    EXPECT_EQ(Span(second), std::make_pair(3.0, 5.0));
    EXPECT_EQ(profile->GetRightPosX(), 5.0);
    const Lane* appended = profile->InsertLane(99);  // beyond the end: appended
    EXPECT_EQ(appended, profile->GetLastLane());
    ExpectMapsInStep(*profile);
}

TEST(Lane, WidthEditsMoveTheOuterBorders) {
    CountedPtr<Profile> profile = MakeProfile({-3.5, 0, 3.5, 7});
    Lane* left = profile->GetLane(0);
    Lane* middle = profile->GetLane(1);
    Lane* right = profile->GetLane(2);

    middle->SetHorWidth(3.0, true);
    EXPECT_EQ(Span(middle), std::make_pair(0.0, 3.0));
    EXPECT_EQ(Span(right), std::make_pair(3.0, 6.5));
    EXPECT_EQ(right->GetHorWidth(), 3.5);

    // The side follows the centre: left of the axis, the left borders move.
    left->SetHorWidth(4.0);
    EXPECT_EQ(Span(left), std::make_pair(-4.0, 0.0));
    right->SetHorWidth(1.0);
    EXPECT_EQ(Span(right), std::make_pair(3.0, 4.0));
    EXPECT_EQ(middle->GetCenterOffset().first, 1.5);

    // Clamped moves stop at the lane's other border and at the neighbour's far border.
    EXPECT_TRUE(middle->SetLeftHorDistance(10.0, true));
    EXPECT_EQ(middle->GetLeftPositionX(), 3.0);
    EXPECT_TRUE(middle->SetLeftHorDistance(-10.0, true));
    EXPECT_EQ(middle->GetLeftPositionX(), -4.0);
    EXPECT_FALSE(middle->SetLeftHorDistance(-1.0, true));
    EXPECT_EQ(middle->GetLeftPositionX(), -1.0);
    EXPECT_TRUE(
        left->SetLeftHorDistance(0.5, true));  // the first lane has no lower limit, only its right border
    EXPECT_EQ(left->GetLeftPositionX(), -1.0);
    EXPECT_FALSE(left->SetLeftHorDistance(-50.0, true));
    EXPECT_TRUE(middle->SetRightHorDistance(-9.0, true));
    EXPECT_EQ(middle->GetRightPositionX(), -1.0);
    EXPECT_TRUE(middle->SetRightHorDistance(9.0, true));
    EXPECT_EQ(middle->GetRightPositionX(), 4.0);
    EXPECT_FALSE(right->SetRightHorDistance(40.0, true));  // the last lane has no upper limit
    // Without clamp anything goes and nothing is reported.
    EXPECT_FALSE(middle->SetRightHorDistance(100.0, false));
    EXPECT_EQ(middle->GetRightPositionX(), 100.0);

    CountedPtr<Lane> loose(new Lane);  // no profile: nothing to move
    EXPECT_FALSE(loose->SetLeftHorDistance(1.0, true));
    loose->SetHorWidth(2.0);
    EXPECT_EQ(loose->GetHorWidth(), 0.0);
}

TEST(Profile, LaneWithDistance) {
    CountedPtr<Profile> profile = MakeProfile({-3.5, 0, 3.5});
    EXPECT_EQ(profile->GetLaneWithDistance(-100.0), profile->GetLane(0));
    EXPECT_EQ(profile->GetLaneWithDistance(-1.0), profile->GetLane(0));
    EXPECT_EQ(profile->GetLaneWithDistance(0.0), profile->GetLane(0));  // a border belongs to its left lane
    EXPECT_EQ(profile->GetLaneWithDistance(1e-12), profile->GetLane(1));
    EXPECT_EQ(profile->GetLaneWithDistance(3.5), profile->GetLane(1));
    EXPECT_EQ(profile->GetLaneWithDistance(100.0),
              profile->GetLane(1));  // beyond every border: the last lane

    // Lists that break the rule still answer: no border after the last lane, then no border at all.
    profile->EditLaneBorders().pop_back();
    profile->UpdateLaneToLaneBorderMap();
    profile->UpdateLaneBorderToLaneMap();
    EXPECT_EQ(profile->GetLaneWithDistance(0.0), profile->GetLane(0));
    EXPECT_EQ(profile->GetLaneWithDistance(5.0), profile->GetLane(1));
    EXPECT_EQ(profile->GetRightLaneBorder(profile->GetLane(1)), nullptr);
    EXPECT_EQ(profile->GetLane(1)->GetHorWidth(), 0.0);
    profile->EditLaneBorders().clear();
    profile->UpdateLaneToLaneBorderMap();
    profile->UpdateLaneBorderToLaneMap();
    EXPECT_EQ(profile->GetLaneWithDistance(0.0), profile->GetLane(1));
    EXPECT_EQ(profile->GetLane(0)->GetLeftKey(), nullptr);
    EXPECT_EQ(profile->GetLeftPos(), std::make_pair(0.0, 0.0));
}

TEST(Profile, LanesAndBordersOfAnotherProfileFindNothing) {
    CountedPtr<Profile> profile = MakeProfile({-3.5, 0, 3.5});
    CountedPtr<Profile> other = MakeProfile({-3.5, 0, 3.5});
    EXPECT_EQ(profile->GetLeftLaneBorder(other->GetLane(0)), nullptr);
    EXPECT_EQ(profile->GetRightLaneBorder(other->GetLane(1)), nullptr);
    EXPECT_EQ(profile->GetLeftLane(other->GetLaneBorder(1)), nullptr);
    EXPECT_EQ(profile->GetRightLane(other->GetLaneBorder(0)), nullptr);
    EXPECT_EQ(profile->GetLeftLaneBorder(nullptr), nullptr);
    EXPECT_EQ(profile->GetRightLane(nullptr), nullptr);
}

TEST(Profile, MapsStayInStepThroughRandomEdits) {
    std::mt19937 random(20240917);
    CountedPtr<Profile> profile(new Profile);
    for (int step = 0; step < 2000; ++step) {
        const size_t lanes = profile->GetLaneCount();
        const size_t index = lanes ? random() % (lanes + 1) : 0;
        switch (random() % 7) {
            case 0:
                profile->AddLane()->SetHorWidth(1.0 + random() % 3, random() % 2 == 0);
                break;
            case 1:
                profile->InsertLane(index)->SetHorWidth(2.0);
                break;
            case 2:
                EXPECT_EQ(profile->RemoveLane(index), index < lanes);
                break;
            case 3:
                if (lanes)
                    profile->GetLane(index % lanes)->SetHorWidth(0.5 * (random() % 8), random() % 2 == 0);
                break;
            case 4:
                profile->Invert(random() % 2 == 0);
                break;
            case 5:
                if (lanes > 6) profile->ClearLanes();
                break;
            default:
                if (lanes)
                    profile->GetLane(index % lanes)
                        ->SetRightHorDistance(static_cast<double>(random() % 20) - 10.0, true);
                break;
        }
        ExpectMapsInStep(*profile);
        EXPECT_TRUE(profile->CheckStructure().empty()) << "step " << step;
        if (HasFailure()) return;
    }
}

TEST(Profile, RemoveLaneClosesTheGapAwayFromTheAxis) {
    CountedPtr<Profile> profile = MakeProfile({-6, -3, 0, 3, 6});
    CountedPtr<Lane> outerLeft(profile->GetLane(0));
    CountedPtr<Lane> innerRight(profile->GetLane(2));
    CountedPtr<Lane> outerRight(profile->GetLane(3));
    ASSERT_TRUE(profile->RemoveLane(1));  // left of the axis: the lanes further left come in
    EXPECT_EQ(Span(outerLeft.Get()), std::make_pair(-3.0, 0.0));
    ASSERT_TRUE(profile->RemoveLane(innerRight.Get()));
    EXPECT_EQ(innerRight->GetProfile(), nullptr);  // right of it: the lanes further right come in
    EXPECT_EQ(Span(outerRight.Get()), std::make_pair(0.0, 3.0));
    EXPECT_FALSE(profile->RemoveLane(2));
    EXPECT_FALSE(profile->RemoveLane(nullptr));
    ExpectMapsInStep(*profile);
    ASSERT_TRUE(profile->RemoveLane(size_t{0}));
    ASSERT_TRUE(profile->RemoveLane(size_t{0}));
    EXPECT_EQ(profile->GetLaneBorderCount(), 0u);
    EXPECT_EQ(outerRight->GetProfile(), nullptr);
}

TEST(LaneType, TextTablesAndClasses) {
    for (uint32_t t = 0; t < 20; ++t)
        EXPECT_EQ(Lane::ToELaneType(Lane::ToText(static_cast<LaneType>(t))), t);
    EXPECT_STREQ(Lane::ToText(static_cast<LaneType>(20)), "unknown");
    EXPECT_EQ(Lane::ToELaneType("bus"), kUnknownLaneType);
    EXPECT_EQ(static_cast<uint32_t>(Lane::ToELaneType("Paved")), 0xFFFFFFFFu);  // exact comparison
    EXPECT_EQ(Lane::ToELaneType(nullptr), kUnknownLaneType);

    EXPECT_EQ(Marking::ToEMarkingLogic("bus"), Marking::eUnknown);
    EXPECT_EQ(Marking::ToEMarkingLogic("cannot"), Marking::eCannot);
    EXPECT_STREQ(Marking::ToText(static_cast<Marking::EMarkingLogic>(9)), "unknown");
    EXPECT_EQ(ToERoadType("bridge"), eRoadBridge);
    EXPECT_EQ(ToERoadType("viaduct"), eRoadUnknown);
    EXPECT_STREQ(ToText(static_cast<ERoadType>(7)), "unknown");
    EXPECT_EQ(ToECirculationWay("both"), eWayBoth);
    EXPECT_EQ(ToECirculationWay("forward"), kUnknownCirculationWay);
    EXPECT_STREQ(ToText(kUnknownCirculationWay), "unknown");

    // Classes: paved below 5 and "paved major"; masks 0x2005F and 0x201DF over 0..17, nothing above.
    uint32_t driveable = 0;
    uint32_t suitable = 0;
    for (uint32_t t = 0; t < 18; ++t) {
        driveable |= Lane::Driveable(static_cast<LaneType>(t)) ? 1u << t : 0u;
        suitable |= Lane::SuitableForVehicleType(static_cast<LaneType>(t)) ? 1u << t : 0u;
    }
    EXPECT_EQ(driveable, 0x2005Fu);
    EXPECT_EQ(suitable, 0x201DFu);
    EXPECT_TRUE(Lane::PavedType(eLanePavedMajor));
    EXPECT_TRUE(Lane::NotDriveable(eLaneParking) && Lane::NotDriveable(eLaneZebra));
    EXPECT_FALSE(Lane::PavedType(eLaneSidewalk));
    for (LaneType above : {eLaneHardShoulder, eLaneCurb, kUnknownLaneType}) {
        EXPECT_FALSE(Lane::Driveable(above));
        EXPECT_TRUE(Lane::NotDriveable(above));
        EXPECT_FALSE(Lane::SuitableForVehicleType(above));
    }
    EXPECT_TRUE(Lane::ForAircraftType(eLaneRunway) && Lane::ForAircraftType(eLaneTaxiway));
    EXPECT_FALSE(Lane::ForAircraftType(eLaneLand));
}

TEST(Lane, SpeedSidewalksAndCompatibility) {
    Init(Ruvex::Encoding::GetMode());
    CountedPtr<Profile> profile = MakeProfile({-5, -3, 0, 3, 5});
    Lane* walkLeft = profile->GetLane(0);
    Lane* road = profile->GetLane(1);
    Lane* major = profile->GetLane(2);
    Lane* walkRight = profile->GetLane(3);
    walkLeft->SetLaneType(eLaneSidewalk);
    walkRight->SetLaneType(eLaneSidewalk);
    major->SetLaneType(eLanePavedMajor);
    EXPECT_TRUE(walkLeft->IsLeftSidewalk());
    EXPECT_FALSE(walkLeft->IsRightSidewalk());
    EXPECT_TRUE(walkRight->IsRightSidewalk());
    EXPECT_FALSE(walkRight->IsLeftSidewalk());
    EXPECT_FALSE(road->IsLeftSidewalk());

    // The lane is "too fast" for a speed it can carry: speed <= limit, or no limit on either side.
    road->SetSpeedLimit(13.9);
    EXPECT_TRUE(road->IsTooFast(10.0));
    EXPECT_TRUE(road->IsTooFast(13.9));
    EXPECT_FALSE(road->IsTooFast(20.0));
    EXPECT_TRUE(road->IsTooFast(Ruvex::VehicleTypeElement::gNoLimit));
    EXPECT_TRUE(major->IsTooFast(1e9));  // no limit

    EXPECT_FALSE(road->IsCompatibleWith(nullptr));
    EXPECT_TRUE(road->IsCompatibleWith(major));  // both paved
    EXPECT_FALSE(road->IsCompatibleWith(walkLeft));
    EXPECT_TRUE(walkLeft->IsCompatibleWith(walkRight));  // same type
    CountedPtr<VehicleAuthorisation> cars(new VehicleAuthorisation);
    cars->SetVehicleCategories(VehicleAuthorisation::eCar | VehicleAuthorisation::eTruck);
    CountedPtr<VehicleAuthorisation> buses(new VehicleAuthorisation);
    buses->SetVehicleCategories(VehicleAuthorisation::eBus);
    road->SetVehicleAuth(cars.Get());
    EXPECT_TRUE(road->IsCompatibleWith(major));  // a lane without rules admits everyone
    major->SetVehicleAuth(buses.Get());
    EXPECT_FALSE(road->IsCompatibleWith(major));
    buses->AllowedVehicle(VehicleAuthorisation::eTruck);
    EXPECT_TRUE(road->IsCompatibleWith(major));
}

TEST(Profile, DefaultBuilders) {
    Init(Ruvex::Encoding::GetMode());
    CountedPtr<Profile> created(Profile::CreateDefault());
    CountedPtr<Profile> made(Profile::MakeDefaultProfile());
    for (Profile* profile : {created.Get(), made.Get()}) {
        EXPECT_EQ(profile->GetName(), "Default Profile");
        ASSERT_EQ(profile->GetLaneCount(), 2u);
        EXPECT_EQ(Span(profile->GetLane(0)), std::make_pair(-3.5, 0.0));
        EXPECT_EQ(Span(profile->GetLane(1)), std::make_pair(0.0, 3.5));
        for (size_t i = 0; i < 2; ++i) {
            const Lane* lane = profile->GetLane(i);
            EXPECT_EQ(lane->GetLaneType(), eLanePaved);
            ASSERT_NE(lane->GetVehicleAuth(), nullptr);
            EXPECT_EQ(lane->GetVehicleAuth()->GetVehicleCategories(), VehicleAuthorisation::kRoadVehicles);
        }
        ExpectMapsInStep(*profile);
    }
    EXPECT_EQ(created->GetLane(0)->GetCirculationWay(), eWayInverse);
    EXPECT_EQ(created->GetLane(1)->GetCirculationWay(), eWayDirect);
    EXPECT_EQ(made->GetLane(0)->GetCirculationWay(), eWayDirect);
    EXPECT_EQ(made->GetLane(1)->GetCirculationWay(), eWayInverse);
    ASSERT_NE(made->GetLane(1)->GetMaterial(), nullptr);
    EXPECT_EQ(made->GetLane(1)->GetMaterialName(), made->GetLane(1)->GetMaterial()->GetName());
}

TEST(Profile, InvertCloneAndIsEqual) {
    Init(Ruvex::Encoding::GetMode());
    CountedPtr<Profile> profile = MakeProfile({-5, -3.5, 0, 3.5});
    profile->SetRoadType(eRoadTunnel);
    profile->GetLane(0)->SetLaneType(eLaneSidewalk);
    profile->GetLane(0)->SetCirculationWay(eWayBoth);
    profile->GetLane(1)->SetCirculationWay(eWayInverse);
    profile->GetLane(2)->SetCirculationWay(eWayDirect);
    profile->GetLaneBorder(1)->SetMarkingOffset(0.1);
    Decoration* kerb = profile->GetLaneBorder(0)->GetOrCreateDecoration();
    CountedPtr<PolyLine> shape(new PolyLine(1, 0));
    shape->SetControlPoints({{0, 0}, {0.2, 0.15}});
    kerb->SetPolyLine(shape.Get());

    CountedPtr<Profile> copy(profile->Clone());
    ASSERT_TRUE(copy->IsEqual(profile.Get()));
    ExpectMapsInStep(*copy);
    EXPECT_NE(copy->GetLane(0), profile->GetLane(0));  // deep
    EXPECT_NE(copy->GetLaneBorder(0)->GetDecoration()->GetPolyLine(), shape.Get());

    profile->Invert();
    ExpectMapsInStep(*profile);
    EXPECT_EQ(Span(profile->GetLane(0)), std::make_pair(-3.5, 0.0));
    EXPECT_EQ(Span(profile->GetLane(2)), std::make_pair(3.5, 5.0));
    EXPECT_EQ(profile->GetLane(0)->GetCirculationWay(), eWayInverse);  // was "direct", right of the axis
    EXPECT_EQ(profile->GetLane(1)->GetCirculationWay(), eWayDirect);
    EXPECT_EQ(profile->GetLane(2)->GetCirculationWay(), eWayBoth);
    EXPECT_EQ(profile->GetLane(2)->GetLaneType(), eLaneSidewalk);
    EXPECT_EQ(profile->GetLaneBorder(2)->GetMarkingOffset(), -0.1);
    const PolyLine* mirrored = profile->GetLaneBorder(3)->GetDecoration()->GetPolyLine();
    EXPECT_EQ(mirrored->GetControlPoint(1).x, -0.2);
    EXPECT_FALSE(profile->IsEqual(copy.Get()));

    profile->Invert();
    EXPECT_TRUE(profile->IsEqual(copy.Get()));
    profile->Invert(true);
    EXPECT_EQ(profile->GetLane(0)->GetCirculationWay(), eWayDirect);  // kept

    // Tolerance: distances within it compare equal, beyond it not; structure always counts.
    profile->Invert(true);
    profile->GetLaneBorder(2)->SetHorizDistToAxis(1e-10);
    EXPECT_TRUE(profile->IsEqual(copy.Get()));
    EXPECT_FALSE(profile->IsEqual(copy.Get(), 0.0));
    copy->GetLane(1)->SetSpeedLimit(3.0);
    EXPECT_FALSE(profile->IsEqual(copy.Get()));
    copy->GetLane(1)->SetSpeedLimit(profile->GetLane(1)->GetSpeedLimit());
    copy->AddLane();
    EXPECT_FALSE(profile->IsEqual(copy.Get()));
    EXPECT_FALSE(profile->IsEqual(nullptr));
}

TEST(ProfileStandalone, ReferencesResolveRenameAndRoundTrip) {
    Init(Ruvex::Encoding::GetMode());
    CountedPtr<ProfileStandalone> library(ProfileStandalone::Load((kData + "profiles.xml").c_str()));
    ASSERT_TRUE(library) << (Ruvex::GetLastProblems().empty() ? "" : ToString(Ruvex::GetLastProblems()[0]));
    EXPECT_TRUE(Ruvex::GetLastProblems().empty());
    Profile* profile = library->GetProfile();
    ASSERT_NE(profile, nullptr);
    ASSERT_EQ(profile->GetLaneCount(), 3u);
    EXPECT_EQ(profile->GetRoadType(), eRoadBridge);
    EXPECT_EQ(profile->GetLaneByName("Walk"), profile->GetLane(0));
    const Lane* walk = profile->GetLane(0);
    EXPECT_EQ(walk->GetGround(), library->FindGround("Stone"));
    ASSERT_NE(walk->GetGround(), nullptr);
    ASSERT_NE(walk->GetMaterial(), nullptr);
    EXPECT_EQ(walk->GetMaterial()->GetName(), "Slabs");
    EXPECT_EQ(walk->GetVehicleAuth()->GetVehicleCategories(), VehicleAuthorisation::ePedestrian);
    EXPECT_EQ(profile->GetLaneBorder(1)->GetMarking(), library->FindMarking("Solid"));
    const Marking* dashed = profile->GetLaneBorder(2)->GetMarking();
    ASSERT_NE(dashed, nullptr);
    EXPECT_EQ(dashed->GetLeftToRightId(), Marking::eCan);
    EXPECT_EQ(dashed->GetRightToLeftId(), Marking::eCannot);
    ASSERT_NE(dashed->GetMaterial(), nullptr);
    EXPECT_EQ(dashed->GetMaterial()->GetName(), "Paint");
    EXPECT_EQ(profile->GetLaneBorder(0)->GetDecoration()->GetMaterial()->GetName(), "Kerb");
    EXPECT_GT(profile->GetLaneBorder(0)->GetDecoration()->GetApproximatePolylineLength(), 0.3);
    EXPECT_TRUE(profile->CheckStructure().empty());

    // A rename follows every reference; a name that matches nothing stays as text with a null pointer.
    library->FindMarking("Solid")->SetName("Continuous");
    EXPECT_EQ(library->ChangeMarkingName("Solid", "Continuous"), 2u);
    EXPECT_EQ(profile->GetLaneBorder(3)->GetMarkingName(), "Continuous");
    EXPECT_NE(profile->GetLaneBorder(3)->GetMarking(), nullptr);
    EXPECT_EQ(library->ChangeGroundName("Stone", "Gravel"), 1u);
    EXPECT_EQ(profile->GetLane(0)->GetGroundName(), "Gravel");
    EXPECT_EQ(profile->GetLane(0)->GetGround(), nullptr);
    library->EditMaterials()[0]->SetName("Resin");
    EXPECT_EQ(library->ChangeMaterialName("Paint", "Resin"), 1u);
    EXPECT_EQ(library->ChangeMaterialName("Kerb", "Granite"), 1u);
    const std::string renamed = Ruvex::SaveToString(library.Get());
    EXPECT_NE(renamed.find("groundName=\"Gravel\""), std::string::npos);
    EXPECT_NE(renamed.find("material=\"Resin\""), std::string::npos);

    // Saved, loaded and saved again: the same bytes, and the unresolved names kept.
    const std::string path = (std::filesystem::temp_directory_path() / "orvia_profile_library.xml").string();
    ASSERT_TRUE(library->Save(path.c_str()));
    CountedPtr<ProfileStandalone> again(ProfileStandalone::Load(path.c_str()));
    ASSERT_TRUE(again);
    EXPECT_EQ(Ruvex::SaveToString(again.Get()), renamed);
    EXPECT_TRUE(again->GetProfile()->IsEqual(profile));
    CountedPtr<ProfileStandalone> copy(again->Clone());
    EXPECT_EQ(Ruvex::SaveToString(copy.Get()), renamed);
    EXPECT_EQ(copy->GetProfile()->GetLaneBorder(1)->GetMarking(), copy->FindMarking("Continuous"));

    // A marking file of its own carries the marking and its material.
    ASSERT_TRUE(dashed->Save(path.c_str()));
    CountedPtr<Marking> marking(Marking::Load(path.c_str()));
    ASSERT_TRUE(marking);
    EXPECT_TRUE(marking->IsEqual(dashed));
    ASSERT_NE(marking->GetMaterial(), nullptr);
    EXPECT_EQ(marking->GetMaterial()->GetName(), "Resin");
    std::filesystem::remove(path);
    EXPECT_EQ(ProfileStandalone::Load(path.c_str()), nullptr);
    EXPECT_EQ(Marking::Load(nullptr), nullptr);
}

TEST(Profile, SubNetworkResolvesItsReferences) {
    Init(Ruvex::Encoding::GetMode());
    const std::string text = R"(<Ruvex version="2.5" versionRevision="0"><Network name="N"><SubNetworks>
<SubNetwork name="S"><Materials><Material name="Tar"/></Materials>
<Grounds><Ground name="Hard" type="concrete"/></Grounds>
<Markings><Marking name="Line" material="Tar"/></Markings>
<Profiles><Profile name="P"><Lane name="A" groundName="Hard" material="Tar"/><Lane name="B" groundName="Soft"/>
<LaneBorder horizDistToAxis="-3" markingName="Line"/><LaneBorder/><LaneBorder horizDistToAxis="3" markingName="Gone"/>
</Profile></Profiles></SubNetwork></SubNetworks></Network></Ruvex>)";
    CountedPtr<Network> network(Network::Load(text.c_str(), text.size(), {}));
    ASSERT_TRUE(network);
    SubNetwork* sub = network->GetSubNetwork(0);
    auto* profile = dynamic_cast<Profile*>(sub->GetProfiles()[0].Get());
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->GetParentSubNetwork(), sub);
    EXPECT_EQ(profile->GetLane(0)->GetGround(), sub->GetGrounds()[0].Get());
    EXPECT_EQ(profile->GetLane(0)->GetMaterial(), sub->GetMaterials()[0].Get());
    EXPECT_EQ(profile->GetLane(1)->GetGround(), nullptr);
    EXPECT_EQ(profile->GetLaneBorder(0)->GetMarking(), sub->GetMarkings()[0].Get());
    EXPECT_EQ(profile->GetLaneBorder(0)->GetMarking()->GetMaterial(), sub->GetMaterials()[0].Get());
    EXPECT_EQ(profile->GetLaneBorder(2)->GetMarking(), nullptr);
    EXPECT_NE(Ruvex::SaveToString(network.Get()).find("markingName=\"Gone\""), std::string::npos);
}

TEST(Profile, BadInputLoadsWithFallbacksAndProblemPlaces) {
    Init(Ruvex::Encoding::GetMode());
    const std::string body = R"(
<Profile name="P" roadType="viaduct">
  <Lane laneType="bus" circulationWay="forward"/>
  <Lane/>
  <LaneBorder horizDistToAxis="2"/>
  <LaneBorder horizDistToAxis="-1"/>
</Profile>)";
    CountedPtr<Ruvex::Element> root = LoadText(body);
    auto* profile = dynamic_cast<Profile*>(root.Get());
    ASSERT_NE(profile, nullptr);
    const std::vector<Ruvex::Problem>& problems = Ruvex::GetLastProblems();
    ASSERT_EQ(problems.size(), 3u);
    for (const Ruvex::Problem& problem : problems)
        EXPECT_TRUE(problem.warning);
    EXPECT_EQ(problems[0].line, 3u);  // the lane's two texts
    EXPECT_NE(problems[0].message.find("\"bus\""), std::string::npos);
    EXPECT_EQ(problems[1].line, 3u);
    EXPECT_EQ(problems[2].line, 2u);  // the road type, read after the children
    EXPECT_EQ(profile->GetRoadType(), eRoadUnknown);
    EXPECT_EQ(profile->GetLane(0)->GetLaneType(), kUnknownLaneType);
    EXPECT_EQ(profile->GetLane(0)->GetCirculationWay(), kUnknownCirculationWay);
    EXPECT_NE(Ruvex::SaveToString(profile).find("laneType=\"bus\""), std::string::npos);

    const std::vector<ProfileProblem> structure = profile->CheckStructure();
    ASSERT_EQ(structure.size(), 2u);
    EXPECT_EQ(structure[0].line, 2u);  // count: the profile's place
    EXPECT_NE(structure[0].message.find("2 lanes and 2 borders"), std::string::npos);
    EXPECT_EQ(structure[1].line, 6u);  // order: the border's place
    EXPECT_EQ(structure[1].column, 4u);
    // Queries stay defined: lane 0's right border is at -1, lane 1 has none.
    EXPECT_EQ(profile->GetLaneWithDistance(-5.0), profile->GetLane(0));
    EXPECT_EQ(profile->GetLaneWithDistance(0.0), profile->GetLane(1));
    EXPECT_EQ(profile->GetLane(1)->GetRightKey(), nullptr);
    EXPECT_EQ(profile->GetLane(1)->GetHorWidth(), 0.0);
    EXPECT_FALSE(profile->GetLane(1)->SetRightHorDistance(1.0, true));
    EXPECT_FALSE(profile->GetLane(0)->IsLeftSidewalk());
}

TEST(Profile, VersionGateBoundaries) {
    Init(Ruvex::Encoding::GetMode());
    const std::string body =
        R"(<Profile name="P" roadType="tunnel"><Lane laneType="median"/><LaneBorder horizDistToAxis="-1"/>)"
        R"(<LaneBorder horizDistToAxis="1"/></Profile>)";
    // 2.0.0 and older go through the converter, 2.0.1 is read as the current layout: the same record.
    for (const char* version :
         {R"(version="1.9" versionRevision="9")", R"(version="2.0" versionRevision="0")",
          R"(version="2.0" versionRevision="1")"}) {
        const std::string text = std::string("<Ruvex ") + version + ">" + body + "</Ruvex>";
        CountedPtr<Ruvex::Element> root(Ruvex::Load(text.c_str(), true));
        auto* profile = dynamic_cast<Profile*>(root.Get());
        ASSERT_NE(profile, nullptr) << version;
        EXPECT_EQ(profile->GetRoadType(), eRoadTunnel) << version;
        ASSERT_EQ(profile->GetLaneCount(), 1u) << version;
        EXPECT_EQ(profile->GetLane(0)->GetLaneType(), eLaneMedian) << version;
        EXPECT_EQ(profile->GetLane(0)->GetHorWidth(), 2.0) << version;
    }
    EXPECT_FALSE(CountedPtr<Profile>(new Profile)->LoadFromXMLElement(nullptr, nullptr));
}

TEST(Profile, ExampleResolvesItsReferences) {
    Init(Ruvex::Encoding::GetMode());
    CountedPtr<Network> network(
        Network::Load((std::string(ORVIA_SOURCE_DIR) + "/examples/city_centre.xml").c_str(), {}));
    ASSERT_TRUE(network);
    EXPECT_TRUE(Ruvex::GetLastProblems().empty());
    size_t resolved = 0;
    for (size_t i = 0; i < network->GetSubNetworkCount(); ++i) {
        const SubNetwork* sub = network->GetSubNetwork(i);
        for (const auto& item : sub->GetProfiles()) {
            const auto* profile = dynamic_cast<const Profile*>(item.Get());
            ASSERT_NE(profile, nullptr);
            EXPECT_TRUE(profile->CheckStructure().empty());
            for (size_t j = 0; j < profile->GetLaneBorderCount(); ++j) {
                const LaneBorder* border = profile->GetLaneBorder(j);
                const bool named = sub->GetMarkings().contains(border->GetMarkingName());
                EXPECT_EQ(border->GetMarking() != nullptr, named) << border->GetMarkingName();
                resolved += named;
            }
            for (size_t j = 0; j < profile->GetLaneCount(); ++j) {
                const Lane* lane = profile->GetLane(j);
                EXPECT_EQ(lane->GetGroundElement() != nullptr,
                          sub->GetGrounds().contains(lane->GetGroundName()));
                resolved += lane->GetGroundElement() != nullptr;
            }
        }
    }
    EXPECT_GT(resolved, 3u);
}
