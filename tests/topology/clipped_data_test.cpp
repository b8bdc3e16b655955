#include <orvia/core/network.h>
#include <orvia/core/surface.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/clipped_data.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <gtest/gtest.h>

#include <numbers>
#include <string>

using Orvia::Network;
using Orvia::TrackClippedData;
using Ruvex::CountedPtr;

namespace {

CountedPtr<Network> LoadTown(const std::string& clipped) {
    const std::string text = R"(<Ruvex version="2.5"><Network><SubNetworks><SubNetwork name="Town"><Tracks>
  <Track name="Main"><XYCurve><Segment length="100"/></XYCurve>)" +
                             clipped + "</Track></Tracks></SubNetwork></SubNetworks></Network></Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), 0, {}));
    EXPECT_TRUE(network);
    return network;
}

}  // namespace

TEST(TrackClippedData, ValidateClampsTheClipAndBoundsTheScope) {
    CountedPtr<Network> network = LoadTown(R"(
  <ClippedData name="Lamp"><TrackClip abscissa="130" lateralOffset="2" verticalOffset="1"/>
    <TrackScope from="0" to="10" leftLimit="-1" rightLimit="1" bottomLimit="0" topLimit="5"/>
    <SurfaceModifier/></ClippedData>
  <ClippedData name="Low"><TrackClip abscissa="-5"/><TrackScope/></ClippedData>
  <ClippedData name="Bare"/>)");
    ASSERT_TRUE(network);
    Orvia::Track* track = network->GetSubNetwork(0)->GetTrack(0);
    ASSERT_EQ(track->GetClippedDataCount(), 3u);
    TrackClippedData* lamp = track->GetClippedDataByName("Lamp");
    ASSERT_TRUE(lamp);
    EXPECT_EQ(lamp->GetParent(), track);
    EXPECT_EQ(lamp->GetQualifiedName(), "Town//Lamp");

    // Beyond the end: stored as the length, while that first validation used 130.
    EXPECT_EQ(lamp->GetTrackClip()->GetAbscissa(), 100.0);
    EXPECT_EQ(lamp->GetStartAbscissa(), 130.0);
    EXPECT_EQ(lamp->GetEndAbscissa(), 140.0);
    EXPECT_EQ(lamp->GetLeftDist(), 1.0);
    EXPECT_EQ(lamp->GetRightDist(), 3.0);
    EXPECT_EQ(lamp->GetBottomDist(), 1.0);
    EXPECT_EQ(lamp->GetTopDist(), 6.0);
    ASSERT_TRUE(lamp->GetSurfaceModifier());
    EXPECT_EQ(lamp->GetSurfaceModifier()->GetClipBox().max.x, 140.0);
    // Inclusive on every side; a second Validate without Invalidate changes nothing.
    EXPECT_TRUE(lamp->IsInScope(130, 1, 1));
    EXPECT_TRUE(lamp->IsInScope(140, 3, 6));
    EXPECT_FALSE(lamp->IsInScope(129.999, 2, 2));
    EXPECT_FALSE(lamp->IsInScope(135, 3.001, 2));
    EXPECT_FALSE(lamp->IsInScope(135, 2, 6.001));
    lamp->Invalidate();
    EXPECT_TRUE(lamp->IsInScope(105, 2, 2));
    EXPECT_EQ(lamp->GetStartAbscissa(), 100.0);
    EXPECT_EQ(lamp->GetEndAbscissa(), 110.0);

    // Before the start: stored as 0. A scope without limits spans the track and everything across.
    TrackClippedData* low = track->GetClippedDataByName("Low");
    EXPECT_EQ(low->GetTrackClip()->GetAbscissa(), 0.0);
    for (TrackClippedData* open : {low, track->GetClippedDataByName("Bare")}) {
        EXPECT_EQ(open->GetStartAbscissa(), 0.0);
        EXPECT_EQ(open->GetEndAbscissa(), 100.0);
        EXPECT_EQ(open->GetLeftDist(), -3.4028234663852886e38);
        EXPECT_EQ(open->GetRightDist(), 3.4028234663852886e38);
        EXPECT_EQ(open->GetBottomDist(), -3.4028234663852886e38);
        EXPECT_EQ(open->GetTopDist(), 3.4028234663852886e38);
    }

    // Without a parent nothing is computed and the bounds stay.
    CountedPtr<TrackClippedData> loose(new TrackClippedData);
    loose->Validate();
    EXPECT_FALSE(loose->IsValid());
    EXPECT_EQ(loose->GetEndAbscissa(), 0.0);

    // The clamped clip is what a save writes.
    EXPECT_NE(Ruvex::SaveToString(track).find(R"(<TrackClip abscissa="100")"), std::string::npos);
}

TEST(TrackClippedData, LaneScopeAndNames) {
    CountedPtr<Network> network = LoadTown(R"(
  <ClippedData name="Sign"><TrackScope laneScope="3 1"/></ClippedData><ClippedData name="Any"/>)");
    ASSERT_TRUE(network);
    Orvia::SubNetwork* town = network->GetSubNetwork(0);
    Orvia::Track* track = town->GetTrack(0);
    TrackClippedData* sign = track->GetClippedData(0);
    EXPECT_TRUE(sign->IsInLaneScope(3));
    EXPECT_TRUE(sign->IsInLaneScope(1));
    EXPECT_FALSE(sign->IsInLaneScope(2));
    EXPECT_TRUE(track->GetClippedData(1)->IsInLaneScope(2));
    EXPECT_EQ(sign->GetTrackScope()->GetCirculationWay(), Orvia::eWayBoth);

    // Unedited, the lane list is written as read; edited, from the set.
    EXPECT_NE(Ruvex::SaveToString(sign).find(R"(laneScope="3 1")"), std::string::npos);
    sign->GetTrackScope()->LaneScope().insert(7);
    EXPECT_NE(Ruvex::SaveToString(sign).find(R"(laneScope="1 3 7")"), std::string::npos);

    // The qualified name follows the name, the sub-network and its name.
    sign->SetName("Stop");
    EXPECT_EQ(sign->GetQualifiedName(), "Town//Stop");
    EXPECT_EQ(sign->GetNameQualifiedIfNeeded(), "Stop");  // one sub-network: no ambiguity
    town->SetName("City");
    EXPECT_EQ(sign->GetQualifiedName(), "City//Stop");
    CountedPtr<TrackClippedData> kept(sign);
    ASSERT_TRUE(track->RemoveClippedData(0, 5));
    EXPECT_EQ(track->GetClippedDataCount(), 0u);
    EXPECT_EQ(kept->GetParent(), nullptr);
    EXPECT_EQ(kept->GetQualifiedName(), "Stop");
    EXPECT_FALSE(track->RemoveClippedData(0, 1));
    EXPECT_EQ(track->GetClippedDataIndex(kept.Get()), Orvia::Track::npos);
    track->AddClippedData(kept.Get());
    EXPECT_EQ(kept->GetQualifiedName(), "City//Stop");
    EXPECT_EQ(track->GetClippedDataIndex(kept.Get()), 0u);
}

TEST(MarkClippedData, MarkAndTransform) {
    CountedPtr<Orvia::MarkClippedData> data(new Orvia::MarkClippedData);
    vek::Mark mark;
    mark.position = {1, 0, 2};
    mark.yaw = 0.5;
    data->SetMark(mark);
    EXPECT_EQ(data->GetMark(), mark);
    data->ApplyTransform(vek::Transform::fromPositionHeading({10, 0, 0}, std::numbers::pi / 2));
    const vek::Mark moved = data->GetMark();
    EXPECT_TRUE(moved.position.isEqual({10, 1, 2}, 1e-12));
    EXPECT_NEAR(moved.yaw, 0.5 + std::numbers::pi / 2, 1e-12);
    EXPECT_EQ(data->GetQualifiedName(), "");
}
