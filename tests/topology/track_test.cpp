#include <orvia/core/network.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/profile.h>
#include <orvia/geometry/profile_modifier.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>
#include <orvia/vek/math.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

using Orvia::Network;
using Orvia::Portion;
using Orvia::SubNetwork;
using Orvia::Track;
using Ruvex::CountedPtr;

namespace {

constexpr double kPositionToleranceM = 1e-9;
constexpr double kAngleToleranceRad = 1e-12;

CountedPtr<Network> LoadNetwork(const std::string& subNetworkContent, const std::string& version = "2.5",
                                const std::string& revision = "0") {
    const std::string text = "<Ruvex version=\"" + version + "\" versionRevision=\"" + revision +
                             "\"><Network><SubNetworks><SubNetwork name=\"S\">" + subNetworkContent +
                             "</SubNetwork></SubNetworks></Network></Ruvex>";
    CountedPtr<Network> network(Network::Load(text.c_str(), text.size(), {}));
    EXPECT_TRUE(network) << (Ruvex::GetLastProblems().empty() ? ""
                                                              : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
    return network;
}

// Three lanes: [-3.5, 0], [0, 3.5], [3.5, 7]; heights (m) of the four borders given.
std::string ProfileXml(const std::string& name, double h0, double h1, double h2, double h3) {
    std::ostringstream out;
    out.precision(17);
    out << "<Profile name=\"" << name << "\"><Lane name=\"l\"/><Lane name=\"c\"/><Lane name=\"r\"/>"
        << "<LaneBorder horizDistToAxis=\"-3.5\" vertDistToAxis=\"" << h0 << "\"/>"
        << "<LaneBorder horizDistToAxis=\"0\" vertDistToAxis=\"" << h1 << "\"/>"
        << "<LaneBorder horizDistToAxis=\"3.5\" vertDistToAxis=\"" << h2 << "\"/>"
        << "<LaneBorder horizDistToAxis=\"7\" vertDistToAxis=\"" << h3 << "\"/></Profile>";
    return out.str();
}

// Straight along +x, z = 10 + 0.05 s, banking 0.1; portions [0, 40] A -> B and [40, 100] B -> B.
const std::string kStraight = "<Profiles>" + ProfileXml("A", 0.2, 0, 0, 0.3) +
                              ProfileXml("B", 0.4, 0, 0, 0.3) +
                              R"(</Profiles><Tracks><Track name="T"><XYCurve><Segment length="100"/></XYCurve>
<SZCurve><Polynomial xIn="0" yIn="10" derivativeIn="0.05" xOut="100" yOut="15" derivativeOut="0.05"/></SZCurve>
<BankingCurve><Polynomial xIn="0" yIn="0.1" xOut="100" yOut="0.1"/></BankingCurve>
<Portion endDistance="40" startProfileName="A" endProfileName="B"/>
<Portion endDistance="100" startProfileName="B" endProfileName="B"/></Track></Tracks>)";

struct Expected {
    double x, y, z, roll, pitch, yaw;
};

void ExpectMark(const Track& track, double s, double t, const Expected& e) {
    vek::Mark mark;
    ASSERT_TRUE(track.GetMark(mark, s, t)) << "s=" << s << " t=" << t;
    EXPECT_NEAR(mark.position.x, e.x, kPositionToleranceM) << "s=" << s << " t=" << t;
    EXPECT_NEAR(mark.position.y, e.y, kPositionToleranceM) << "s=" << s << " t=" << t;
    EXPECT_NEAR(mark.position.z, e.z, kPositionToleranceM) << "s=" << s << " t=" << t;
    EXPECT_NEAR(mark.roll, e.roll, kAngleToleranceRad) << "s=" << s << " t=" << t;
    EXPECT_NEAR(mark.pitch, e.pitch, kAngleToleranceRad) << "s=" << s << " t=" << t;
    EXPECT_NEAR(mark.yaw, e.yaw, kAngleToleranceRad) << "s=" << s << " t=" << t;
}

// Both tracks give the same mark, bit for bit, at every (s, t).
void ExpectSameMarks(const Track& expected, const Track& actual, const std::vector<double>& along,
                     const std::vector<double>& across) {
    for (double s : along)
        for (double t : across) {
            vek::Mark a, b;
            ASSERT_TRUE(expected.GetMark(a, s, t));
            ASSERT_TRUE(actual.GetMark(b, s, t));
            EXPECT_EQ(a, b) << "s=" << s << " t=" << t;
        }
}

std::vector<double> Steps(double from, double to, double step) {
    std::vector<double> out;
    for (double s = from; s <= to; s += step)
        out.push_back(s);
    return out;
}

// A detached copy of the track, sampling as it does before any edit.
CountedPtr<Track> Original(Track* track) {
    CountedPtr<Track> copy(track->Clone());
    copy->SetSubNetwork(track->GetSubNetwork());
    copy->UpdatePortion();
    return copy;
}

// Lane values of profile A / B at t, worked out by hand from the border heights.
struct Cross {
    double slope, height;
};

}  // namespace

TEST(Track, MarkOnStraightBankedAxisBlendsLaneValues) {
    CountedPtr<Network> network = LoadNetwork(kStraight);
    ASSERT_TRUE(network);
    const Track* track = network->GetSubNetwork(0)->GetTrackByName("T");
    ASSERT_TRUE(track);
    const double b = 0.1, tanB = std::tan(-b);
    auto z = [&](double s, double t) { return 10 + 0.05 * s + t * tanB; };
    // Left lane [-3.5, 0] at t = -1.75: A slopes up to its left border (0.2), B to 0.4.
    const Cross aLeft{0.2 / 3.5, 0.1}, bLeft{0.4 / 3.5, 0.2};
    // Inside the first portion, r = 0.5.
    ExpectMark(*track, 20, -1.75,
               {20, 1.75, z(20, -1.75) + 0.5 * (aLeft.height + bLeft.height),
                b + 0.5 * (aLeft.slope + bLeft.slope), -0.05, 0});
    // On the centre line: no banking, no lane values.
    ExpectMark(*track, 20, 0, {20, 0, 11, 0, -0.05, 0});
    // The boundary belongs to the second portion (r = 0: B); the first ends with B as well.
    ExpectMark(*track, 40, -1.75, {40, 1.75, z(40, -1.75) + bLeft.height, b + bLeft.slope, -0.05, 0});
    ExpectMark(
        *track, 40 - 1e-9, -1.75,
        {40 - 1e-9, 1.75, z(40 - 1e-9, -1.75) + bLeft.height - 1e-9 / 40 * (bLeft.height - aLeft.height),
         b + bLeft.slope - 1e-9 / 40 * (bLeft.slope - aLeft.slope), -0.05, 0});
    // Right lane [3.5, 7] (heights 0, 0.3) at t = 5: |t| / w >= 1 and t - left < left, so the left height.
    ExpectMark(*track, 70, 5, {70, -5, z(70, 5) + 0, b - 0.3 / 3.5, -0.05, 0});
    // On the border at 3.5: the lane on its left ([0, 3.5], flat), |t| / w = 1 so the right height (0).
    ExpectMark(*track, 70, 3.5, {70, -3.5, z(70, 3.5), b, -0.05, 0});
    // Beyond the outer border: the last lane, |t| / w > 1, t - left >= left: its right height 0.3.
    ExpectMark(*track, 70, 9, {70, -9, z(70, 9) + 0.3, b - 0.3 / 3.5, -0.05, 0});
    // Before the start: the first portion extrapolates (r = -0.25), the axis continues straight, the
    // elevation piece continues its line.
    ExpectMark(*track, -10, -1.75,
               {-10, 1.75, z(-10, -1.75) + 1.25 * aLeft.height - 0.25 * bLeft.height,
                b + 1.25 * aLeft.slope - 0.25 * bLeft.slope, -0.05, 0});
    // Beyond the end: the last portion, B at both ends.
    ExpectMark(*track, 130, -1.75, {130, 1.75, z(130, -1.75) + bLeft.height, b + bLeft.slope, -0.05, 0});

    double left = 0, right = 0;
    ASSERT_TRUE(track->GetWidthAt(20, left, right));
    EXPECT_DOUBLE_EQ(left, -3.5);
    EXPECT_DOUBLE_EQ(right, 7);
    EXPECT_DOUBLE_EQ(track->GetMaxWidth(), 7);
}

TEST(Track, MarkOnCircularAxis) {
    CountedPtr<Network> network = LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0, 0) + R"(</Profiles>
<Tracks><Track name="C"><XYCurve x="5" y="-2" orientation="0"><CircleArc length="100" curvature="0.01"/></XYCurve>
<SZCurve><Polynomial xIn="0" yIn="3" derivativeIn="0" xOut="100" yOut="3" derivativeOut="0"/></SZCurve>
<Portion endDistance="100" startProfileName="A" endProfileName="A"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    const Track* track = network->GetSubNetwork(0)->GetTrackByName("C");
    // Centre (5, 98), radius 100; t to the right moves away from the centre.
    for (double s : {0.0, 25.0, 50.0, 100.0})
        for (double t : {-2.0, 0.0, 1.75, 6.0}) {
            const double theta = s / 100, r = 100 + t;
            ExpectMark(*track, s, t, {5 + r * std::sin(theta), 98 - r * std::cos(theta), 3, 0, 0, theta});
        }
}

TEST(Track, BankingSignGateAndRoundTrip) {
    const std::string content =
        "<Profiles>" + ProfileXml("A", 0, 0, 0, 0) + R"(</Profiles><Tracks><Track name="T">
<XYCurve><Segment length="50"/></XYCurve>
<BankingCurve><Polynomial xIn="0" yIn="0.05" xOut="50" yOut="0.05"/></BankingCurve>
<Portion endDistance="50" startProfileName="A" endProfileName="A"/></Track></Tracks>)";
    CountedPtr<Network> old = LoadNetwork(content, "2.4", "2");
    CountedPtr<Network> current = LoadNetwork(content, "2.4", "3");
    ASSERT_TRUE(old && current);
    EXPECT_DOUBLE_EQ(old->GetSubNetwork(0)->GetTrack(0)->GetBanking(10), -0.05);
    EXPECT_DOUBLE_EQ(current->GetSubNetwork(0)->GetTrack(0)->GetBanking(10), 0.05);

    // Saved at the current version, the corrected sign stays corrected; marks come back bit for bit.
    const std::string path =
        (std::filesystem::temp_directory_path() / "orvia_track_banking_gate.xml").string();
    ASSERT_TRUE(old->Save(path.c_str()));
    CountedPtr<Network> again(Network::Load(path.c_str(), {}));
    std::filesystem::remove(path);
    ASSERT_TRUE(again);
    EXPECT_DOUBLE_EQ(again->GetSubNetwork(0)->GetTrack(0)->GetBanking(10), -0.05);
    ExpectSameMarks(*old->GetSubNetwork(0)->GetTrack(0), *again->GetSubNetwork(0)->GetTrack(0),
                    Steps(-5, 55, 2.5), {-3.0, -1.0, 0.0, 2.0, 8.0});
}

TEST(Track, RoundTripOfDataFileKeepsMarksBitForBit) {
    const std::string source = std::string(ORVIA_SOURCE_DIR) + "/tests/data/tracks.xml";
    CountedPtr<Network> network(Network::Load(source.c_str(), {}));
    ASSERT_TRUE(network);
    const std::string path = (std::filesystem::temp_directory_path() / "orvia_track_round_trip.xml").string();
    ASSERT_TRUE(network->Save(path.c_str()));
    CountedPtr<Network> again(Network::Load(path.c_str(), {}));
    std::filesystem::remove(path);
    ASSERT_TRUE(again);
    const Track* a = network->GetSubNetwork(0)->GetTrackByName("Bend");
    const Track* b = again->GetSubNetwork(0)->GetTrackByName("Bend");
    ASSERT_TRUE(a && b);
    EXPECT_GT(a->GetXYLength(), 100);
    ExpectSameMarks(*a, *b, Steps(-10, a->GetXYLength() + 10, 3.7), {-4.0, -1.2, 0.0, 0.5, 3.0});
}

TEST(Track, PortionIndexAtEdges) {
    CountedPtr<Track> track(new Track);
    for (double end : {10.0, 20.0, 30.0, 40.0, 50.0})
        track->AddToPortionList()->SetEndDistance(end);
    const size_t npos = Track::npos;
    struct Case {
        double s;
        size_t index;
    };
    // A shared end goes to the side the bisection meets it from: 10 and 20 to the portion starting there,
    // 30 (the middle's end) and 40 to the one ending there.
    for (const Case& c :
         {Case{-5, 0}, Case{0, 0}, Case{9.99, 0}, Case{10, 1}, Case{19.5, 1}, Case{20, 2}, Case{29.9, 2},
          Case{30, 2}, Case{30.1, 3}, Case{40, 3}, Case{45, 4}, Case{50, 4}, Case{1e9, 4}})
        EXPECT_EQ(track->GetPortionIndexAt(c.s), c.index) << c.s;
    EXPECT_LT(track->GetPortionIndexAt(std::numeric_limits<double>::quiet_NaN()), 5u);
    // Shorter lists, including the ones where the middle is the last.
    CountedPtr<Track> two(new Track);
    EXPECT_EQ(two->GetPortionIndexAt(1), npos);
    EXPECT_EQ(two->GetPortionAt(1), nullptr);
    two->AddToPortionList()->SetEndDistance(5);
    EXPECT_EQ(two->GetPortionIndexAt(7), 0u);
    two->AddToPortionList()->SetEndDistance(9);
    for (const Case& c : {Case{-1, 0}, Case{4.5, 0}, Case{5, 1}, Case{9, 1}, Case{12, 1}})
        EXPECT_EQ(two->GetPortionIndexAt(c.s), c.index) << c.s;
    EXPECT_EQ(two->GetPortion(1)->GetStartDistance(), 5);
    EXPECT_EQ(two->GetPortionIndex(two->GetPortion(1)), 1u);
    EXPECT_EQ(two->GetPortionIndex(nullptr), npos);
}

TEST(Portion, ProfilesFallBackAndInterpolate) {
    CountedPtr<Network> network =
        LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0, 0) + ProfileXml("B", 0, 0, 0, 0) +
                    R"(</Profiles><Tracks><Track name="T">
<XYCurve><Segment length="60"/></XYCurve>
<Portion endDistance="20" startProfileName="Missing" endProfileName="B"/>
<Portion endDistance="20" startProfileName="B" endProfileName="A"/>
<Portion endDistance="60" startProfileName="B" endProfileName="A"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Track* track = s->GetTrackByName("T");
    ASSERT_EQ(track->GetPortionCount(), 3u);
    Portion* first = track->GetPortion(0);
    EXPECT_EQ(first->GetStartProfile(), s->GetProfileByName("A"));
    EXPECT_EQ(first->GetStartProfileName(), "A");
    EXPECT_EQ(first->GetEndProfile(), s->GetProfileByName("B"));
    // The empty portion [20, 20]: normalised abscissa 0, side distances of its start profile.
    Portion* empty = track->GetPortion(1);
    EXPECT_EQ(empty->GetStartDistance(), 20);
    EXPECT_EQ(empty->ConvertToZeroOneCoeff(20), 0);
    double left = 0, right = 0;
    empty->GetSideDistances(20, left, right);
    EXPECT_EQ(left, -3.5);
    EXPECT_EQ(right, 7);
    Portion* last = track->GetPortion(2);
    EXPECT_DOUBLE_EQ(last->ConvertToZeroOneCoeff(30), 0.25);
    EXPECT_DOUBLE_EQ(last->ConvertToZeroOneCoeff(100), 1);
    EXPECT_DOUBLE_EQ(last->ConvertToZeroOneCoeff(-1), 0);
    // Lanes by profile and index.
    EXPECT_EQ(first->FindLane(0, 1), s->GetProfileByName("A")->GetLane(1));
    EXPECT_EQ(first->FindLane(2, 0), nullptr);
    EXPECT_EQ(first->FindLane(1, 3), nullptr);
    size_t which = 9, index = 9;
    EXPECT_TRUE(first->FindProfileAndLaneIndex(s->GetProfileByName("B")->GetLane(2), which, index));
    EXPECT_EQ(which, 1u);
    EXPECT_EQ(index, 2u);
    EXPECT_FALSE(first->FindProfileAndLaneIndex(nullptr, which, index));
    // One strip per lane, joining lanes of the same index.
    ASSERT_EQ(first->GetPassageways().size(), 3u);
    EXPECT_EQ(first->GetPassageways()[2].GetEndLane(), s->GetProfileByName("B")->GetLane(2));
}

TEST(Portion, ModifiedBorderBendsWidthAndMark) {
    // Flat 3-lane profile with the right border raised 0.3 m; the right border drifts out by 1.5 m.
    const std::string content =
        "<Profiles>" + ProfileXml("A", 0, 0, 0, 0.3) + R"(</Profiles><Tracks><Track name="T">
<XYCurve><Segment length="80"/></XYCurve>
<Portion endDistance="80" startProfileName="A" endProfileName="A"><ProfileModifier>
  <BorderModifier id="3"><BorderOffset t="0" yOffset="0" dirIn="0.01875" dirOut="0.01875"/>
  <BorderOffset t="1" yOffset="1.5" dirIn="0.01875" dirOut="0.01875"/></BorderModifier>
  <BorderModifier id="9"><BorderOffset t="0"/><BorderOffset t="1" yOffset="2"/></BorderModifier>
</ProfileModifier></Portion></Track></Tracks>)";
    CountedPtr<Network> network = LoadNetwork(content);
    ASSERT_TRUE(network);
    const Track* track = network->GetSubNetwork(0)->GetTrack(0);
    // Linear drift: the border at 7 + 1.5 x / 80.
    for (double s : {0.0, 20.0, 40.0, 80.0}) {
        const double outer = 7 + 1.5 * s / 80;
        double left = 0, right = 0;
        ASSERT_TRUE(track->GetWidthAt(s, left, right));
        EXPECT_NEAR(left, -3.5, kPositionToleranceM);
        EXPECT_NEAR(right, outer, kPositionToleranceM);
        // t = 5 lies in the right lane [3.5, outer]; |t| / w >= 1 and t - 3.5 < 3.5: its left height.
        const double w = outer - 3.5;
        ExpectMark(*track, s, 5, {s, -5, 0, -0.3 / w, 0, 0});
        // t = 2 in the flat centre lane.
        ExpectMark(*track, s, 2, {s, -2, 0, 0, 0, 0});
    }
    // The modifier of a border the profile lacks builds functions but takes no part.
    const Portion* portion = track->GetPortion(0);
    const Orvia::ProfileModifier* modifier = portion->GetProfileModifier();
    ASSERT_TRUE(modifier);
    EXPECT_EQ(modifier->GetBorderModifierById(9)->GetFunctionCount(), 1u);
    EXPECT_EQ(portion->GetModifiedBorder(9), nullptr);
    EXPECT_EQ(portion->GetBorderModifierOfPassageway(2), modifier->GetBorderModifierById(3));
}

TEST(BorderModifier, HermiteDriftInvertAndCoefficients) {
    // Base positions 3.5 at both ends: lanes whose left border is at 3.5.
    CountedPtr<Orvia::Profile> profile(Orvia::Profile::CreateDefault());
    profile->AddLane()->SetHorWidth(2.0, true);
    Orvia::Passageway strip(profile->GetLane(2), profile->GetLane(2), {0, 0}, {0, 0});
    CountedPtr<Orvia::ProfileModifier> modifier(new Orvia::ProfileModifier);
    Orvia::BorderModifier* border = modifier->CreateOrUpdateBorderModifier(2, 0, 0, 0, 0);
    EXPECT_EQ(modifier->CreateOrUpdateBorderModifier(2, 1, 1.5, 0, 0), border);
    border->LoadFunctions(&strip, 100, 140, 3);
    ASSERT_EQ(border->GetFunctionCount(), 1u);
    EXPECT_NEAR(border->GetDistanceFromAxis(0), 3.5, 1e-12);
    EXPECT_NEAR(border->GetDistanceFromAxis(20), 4.25, 1e-12);
    EXPECT_NEAR(border->GetDistanceFromAxis(40), 5.0, 1e-12);
    EXPECT_NEAR(border->computeDerivativeAtAbscissa(0), 0, 1e-12);
    EXPECT_NEAR(border->computeDerivativeAtAbscissa(40), 0, 1e-12);
    std::vector<Orvia::FuncData> pieces;
    border->getFunctionsCoefficients(pieces);
    ASSERT_EQ(pieces.size(), 1u);
    EXPECT_NEAR(pieces[0].start, 0, 1e-12);
    EXPECT_NEAR(pieces[0].a + pieces[0].b * 20 + pieces[0].c * 400 + pieces[0].d * 8000, 4.25, 1e-9);
    // The last border takes the lane's right border as its base: 5.5 at both ends.
    border->SetId(3);
    border->LoadFunctions(&strip, 0, 40, 3);
    EXPECT_NEAR(border->GetDistanceFromAxis(40), 7.0, 1e-12);

    // Inverting twice restores the offsets.
    border->createBorderOffset(1.2, -0.5, 0.25, -0.75);
    border->Invert(nullptr);
    EXPECT_DOUBLE_EQ(border->GetBorderOffset(0)->GetT(), 1 - 1.2);
    EXPECT_DOUBLE_EQ(border->GetBorderOffset(0)->GetYOffset(), 0.5);
    EXPECT_DOUBLE_EQ(border->GetBorderOffset(0)->GetDirIn(), -0.75);
    border->Invert(nullptr);
    EXPECT_DOUBLE_EQ(border->GetBorderOffset(2)->GetT(), 1.2);
    EXPECT_DOUBLE_EQ(border->GetBorderOffset(2)->GetYOffset(), -0.5);
    EXPECT_DOUBLE_EQ(border->GetBorderOffset(2)->GetDirOut(), -0.75);

    // One offset builds nothing.
    Orvia::BorderModifier* lone = modifier->CreateOrUpdateBorderModifier(0, 0, 1, 0, 0);
    lone->LoadFunctions(&strip, 0, 10, 3);
    EXPECT_EQ(lone->GetFunctionCount(), 0u);
    EXPECT_EQ(lone->GetDistanceFromAxis(5), 0);
    EXPECT_EQ(modifier->GetBorderModifierIds(), (std::vector<size_t>{3, 0}));
}

TEST(Track, DefaultCurvesExtremitiesAndShortening) {
    CountedPtr<Network> network = LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0, 0) + R"(</Profiles>
<Intersections><Intersection name="P" x="0" y="0" z="4"/><Intersection name="Q" x="60" y="0" z="10"/></Intersections>
<Tracks><Track name="T" startIntersectionName="P" endIntersectionName="Q"><XYCurve><Segment length="60"/></XYCurve>
<Portion endDistance="60" startProfileName="A" endProfileName="A"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    Track* track = network->GetSubNetwork(0)->GetTrack(0);
    // Elevation from 4 to 10 over 60 m; no banking.
    ExpectMark(*track, 30, 2, {30, -2, 7, 0, -0.1, 0});
    const Orvia::TrackExtremity end(track, true), start(track, false);
    EXPECT_EQ(end.GetProfile(), network->GetSubNetwork(0)->GetProfileByName("A"));
    const vek::Vector3 direction = end.GetDirection();
    const double c = 1 / std::sqrt(1 + 0.01);
    EXPECT_NEAR(direction.x, -c, 1e-12);
    EXPECT_NEAR(direction.z, -0.1 * c, 1e-12);
    EXPECT_NEAR(start.GetPosition().z, 4, 1e-12);
    EXPECT_NEAR(end.GetPosition().x, 60, 1e-12);
    EXPECT_TRUE(start == Orvia::TrackExtremity(track, false));
    EXPECT_FALSE(start == end);

    // Shortening is capped at half the length.
    track->ShortenLength(100, false, true);
    EXPECT_NEAR(track->GetXYLength(), 30, 1e-12);
}

TEST(Track, InvertedTrackSamplesTheSameRoad) {
    CountedPtr<Network> network = LoadNetwork(kStraight);
    SubNetwork* s = network->GetSubNetwork(0);
    Track* track = s->GetTrackByName("T");
    CountedPtr<Track> original = Original(track);
    track->InvertTrack(true);
    EXPECT_EQ(track->GetPortionCount(), 2u);
    EXPECT_DOUBLE_EQ(track->GetPortion(0)->GetEndDistance(), 60);
    EXPECT_EQ(track->GetPortion(1)->GetStartProfileName(), "B Invert");
    for (double at : {5.0, 20.0, 55.0, 90.0})
        for (double t : {-2.5, -1.0, 1.0, 2.0, 4.0}) {
            vek::Mark a, b;
            ASSERT_TRUE(original->GetMark(a, at, t));
            ASSERT_TRUE(track->GetMark(b, 100 - at, -t));
            EXPECT_NEAR(a.position.x, b.position.x, kPositionToleranceM);
            EXPECT_NEAR(a.position.y, b.position.y, kPositionToleranceM);
            EXPECT_NEAR(a.position.z, b.position.z, kPositionToleranceM) << at << " " << t;
            EXPECT_NEAR(a.roll, -b.roll, kAngleToleranceRad) << at << " " << t;
        }
}

TEST(Track, SplitHalvesSampleAsTheOriginal) {
    CountedPtr<Network> network = LoadNetwork(kStraight);
    SubNetwork* s = network->GetSubNetwork(0);
    Track* track = s->GetTrackByName("T");
    CountedPtr<Track> original = Original(track);
    CountedPtr<Track> second(static_cast<Track*>(track->Split(60)));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->GetName(), "T 1");
    EXPECT_NEAR(track->GetXYLength(), 60, 1e-12);
    EXPECT_NEAR(second->GetXYLength(), 40, 1e-12);
    second->SetSubNetwork(s);
    second->UpdatePortion();
    // Portion [40, 100] is B -> B, so the cut portion blends nothing differently.
    for (double at : {0.0, 10.0, 45.0, 59.0, 61.0, 80.0, 100.0})
        for (double t : {-2.0, 0.0, 1.0, 5.0}) {
            vek::Mark a, b;
            ASSERT_TRUE(original->GetMark(a, at, t));
            ASSERT_TRUE(at <= 60 ? track->GetMark(b, at, t) : second->GetMark(b, at - 60, t));
            EXPECT_NEAR(a.position.x, b.position.x, kPositionToleranceM);
            EXPECT_NEAR(a.position.y, b.position.y, kPositionToleranceM);
            EXPECT_NEAR(a.position.z, b.position.z, kPositionToleranceM) << at << " " << t;
            EXPECT_NEAR(a.roll, b.roll, kAngleToleranceRad);
        }
    EXPECT_EQ(track->Split(0), nullptr);
    EXPECT_EQ(track->Split(std::numeric_limits<double>::quiet_NaN()), nullptr);
}

TEST(SubNetwork, InverseProfileNameToggle) {
    CountedPtr<Network> network =
        LoadNetwork("<Profiles>" + ProfileXml("P Invert", 0, 0.1, 0, 0.2) + "</Profiles>");
    SubNetwork* s = network->GetSubNetwork(0);
    Orvia::Profile* p = s->GetProfile(0);
    EXPECT_EQ(s->GetOrCreateInverse(nullptr, true), nullptr);
    Orvia::Profile* inverse = s->GetOrCreateInverse(p, true);
    EXPECT_EQ(inverse->GetName(), "P");
    EXPECT_EQ(s->GetProfileCount(), 2u);
    // The inverse of the inverse is the original, found by equality.
    EXPECT_EQ(s->GetOrCreateInverse(inverse, true), p);
    // Both toggles apply when the way changes too: " Invert" goes, " ch way" comes.
    EXPECT_EQ(s->GetOrCreateInverse(p, false)->GetName(), "P ch way");
    EXPECT_EQ(s->GetOrCreateInverse(s->GetProfileByName("P ch way"), false), p);
}

TEST(Track, LocalQueriesAndNodeOffsets) {
    CountedPtr<Network> network = LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0, 0) + R"(</Profiles>
<Intersections><Intersection name="P" x="4" y="-2" z="1"/><Intersection name="Q" x="0" y="0" z="0"/></Intersections>
<Tracks><Track name="C" startIntersectionName="P" endIntersectionName="Q">
<XYCurve x="5" y="-2" orientation="0"><CircleArc length="100" curvature="0.01"/></XYCurve>
<SZCurve><Polynomial xIn="0" yIn="0" derivativeIn="0" xOut="100" yOut="10" derivativeOut="0.2"/></SZCurve>
<BankingCurve><Polynomial xIn="0" yIn="0" derivativeIn="0.001" xOut="100" yOut="0.1" derivativeOut="0.001"/></BankingCurve>
<Portion endDistance="100" startProfileName="A" endProfileName="A"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Track* track = s->GetTrackByName("C");
    // z = 0.001 s^2: z'' = 0.002, z'(50) = 0.1.
    EXPECT_NEAR(track->GetSZCurvature(0), 0.002, 1e-15);
    EXPECT_NEAR(track->GetSZCurvature(50), 0.002 / std::pow(1.01, 1.5), 1e-15);
    EXPECT_NEAR(track->GetBankingTangent(50), 0.001, 1e-15);
    EXPECT_NEAR(track->GetBanking(50), 0.05, 1e-15);
    // Offset samples keep the axis curvature.
    EXPECT_NEAR(track->GetXYCurvature(50, 0), 0.01, 1e-15);
    EXPECT_NEAR(track->GetXYCurvature(50, 3), 0.01, 1e-15);
    double start = -1;
    EXPECT_EQ(track->GetXYFunctionIndex(50, start), 0u);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(track->GetXYFunctionIndex(150, start), Track::npos);

    EXPECT_TRUE(vek::isEqual(track->GetOffsetIn(), {1, 0, -1}, 1e-12));
    EXPECT_TRUE(
        vek::isEqual(track->GetOffsetOut(), {5 + 100 * std::sin(1.0), 98 - 100 * std::cos(1.0), 10}, 1e-9));
    // The same intersection again changes nothing; null frees the end and clears its name.
    track->SetStartIntersectionName("renamed");
    track->SetStartIntersection(s->GetIntersectionByName("P"));
    EXPECT_EQ(track->GetStartIntersectionName(), "renamed");
    track->SetEndIntersection(nullptr);
    EXPECT_EQ(track->GetEndIntersectionName(), "");
    const vek::Vector3 free = track->GetOffsetOut();
    EXPECT_EQ(free.x, 0);
    EXPECT_EQ(free.z, 0);
}

TEST(Track, BadPortionsLoadWithPlacedWarnings) {
    CountedPtr<Network> network = LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0.2, 0) + R"(</Profiles>
<Tracks><Track name="T"><XYCurve><Segment length="100"/></XYCurve>
<Portion endDistance="-5" startProfileName="Missing" endProfileName="A"/>
<Portion endDistance="60" startProfileName="A" endProfileName="A"/>
<Portion endDistance="20" startProfileName="A" endProfileName="A"/>
<Portion endDistance="150" startProfileName="A" endProfileName="A"><ProfileModifier>
<BorderModifier id="9"><BorderOffset t="0"/><BorderOffset t="1" yOffset="2"/></BorderModifier>
</ProfileModifier></Portion></Track></Tracks>)");
    ASSERT_TRUE(network);
    std::vector<std::string> warnings;
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems()) {
        EXPECT_TRUE(problem.warning);
        EXPECT_GT(problem.line, 0u) << problem.message;
        EXPECT_GT(problem.column, 0u) << problem.message;
        warnings.push_back(problem.message);
    }
    auto said = [&](const std::string& part) {
        return std::any_of(warnings.begin(), warnings.end(),
                           [&](const std::string& w) { return w.find(part) != std::string::npos; });
    };
    EXPECT_TRUE(said("\"Missing\"")) << ::testing::PrintToString(warnings);
    EXPECT_TRUE(said("is -5,"));
    EXPECT_TRUE(said("is 20,"));
    EXPECT_TRUE(said("beyond its length 100"));
    EXPECT_TRUE(said("moves border 9"));
    const Track* track = network->GetSubNetwork(0)->GetTrack(0);
    ASSERT_EQ(track->GetPortionCount(), 4u);
    EXPECT_EQ(track->GetPortion(0)->GetEndDistance(), 0);
    EXPECT_EQ(track->GetPortion(2)->GetEndDistance(), 60);
    EXPECT_EQ(track->GetPortion(0)->GetStartProfileName(), "A");
    // Queries anywhere answer, the modifier of a missing border bending nothing.
    vek::Mark mark;
    for (double s : {-10.0, 0.0, 30.0, 60.0, 99.0, 140.0}) {
        ASSERT_TRUE(track->GetMark(mark, s, 5.0));
        // Beyond one lane width from the axis a lane reads flat at its left height; the mended (empty)
        // portions that -10 and 60 fall in add nothing.
        EXPECT_NEAR(mark.position.z, s == -10 || s == 60 ? 0.0 : 0.2, 1e-12) << s;
        double left = 0, right = 0;
        ASSERT_TRUE(track->GetWidthAt(s, left, right));
        EXPECT_EQ(right, 7);
    }
}

TEST(Track, RenamingAndInversionReachTheIntersectionRecords) {
    CountedPtr<Network> network = LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0, 0) + R"(</Profiles>
<Intersections><Intersection name="P" x="0" y="0" z="0"/><Intersection name="Q" x="60" y="0" z="0">
<Contours><ContourPiece startAnchorTrack="T" isStartAnchorOnTrackEnd="true" isStartAnchorOnLeftSide="true"
 endAnchorTrack="U" isEndAnchorOnTrackEnd="false" isEndAnchorOnLeftSide="false"/></Contours>
<BannedLinks><LanePair fromTrack="T" fromTrackBoundInfo="end" fromLane="c" toTrack="U" toTrackBoundInfo="start"
 toLane="c"/></BannedLinks></Intersection></Intersections>
<Tracks><Track name="T" startIntersectionName="P" endIntersectionName="Q"><XYCurve><Segment length="60"/></XYCurve>
<Portion endDistance="60" startProfileName="A" endProfileName="A"/></Track></Tracks>)");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    Track* track = s->GetTrackByName("T");
    const Orvia::Intersection* q = s->GetIntersectionByName("Q");
    const auto& piece = *q->GetContourPieces().at(0);
    const auto& banned = *q->GetBannedLinks().at(0);

    track->SetName("T2");
    EXPECT_EQ(piece.GetStartAnchorTrack(), "T2");
    EXPECT_EQ(piece.GetEndAnchorTrack(), "U");
    EXPECT_EQ(banned.GetFromTrack(), "T2");
    EXPECT_EQ(banned.GetToTrack(), "U");

    // Reversed, the anchor lies on the track's start and right side; the banned link leaves from its start.
    track->InvertTrack(true);
    EXPECT_EQ(track->GetStartIntersectionName(), "Q");
    EXPECT_FALSE(piece.GetStartAnchorOnTrackEnd());
    EXPECT_FALSE(piece.GetStartAnchorOnLeftSide());
    EXPECT_FALSE(piece.GetEndAnchorOnTrackEnd());  // U's anchor is not this track's
    EXPECT_EQ(banned.GetFromTrackBoundInfo(), "start");
    EXPECT_EQ(banned.GetToTrackBoundInfo(), "start");
    track->InvertTrack(true);
    EXPECT_TRUE(piece.GetStartAnchorOnTrackEnd());
    EXPECT_TRUE(piece.GetStartAnchorOnLeftSide());
    EXPECT_EQ(banned.GetFromTrackBoundInfo(), "end");
    track->InvertTrackAnchorInfo(nullptr);
}

TEST(Track, LegacyIndicesLinkEndsNamesCannot) {
    const std::string nodes = R"(<Intersections><Intersection name="I0"/><Intersection name="I1"/>
<Intersection name="I2"/><Intersection name="I3"/></Intersections>)";
    const std::string track =
        R"(<XYCurve><Segment length="10"/></XYCurve><Legacy firstIndex="2" secondIndex="5"/>)";
    CountedPtr<Network> network = LoadNetwork(
        nodes + R"(<Tracks><Track name="T" startIntersectionName="X" endIntersectionName="Y">)" + track +
        R"(</Track><Track name="N" startIntersectionName="I1">)" + track + "</Track></Tracks>");
    ASSERT_TRUE(network);
    SubNetwork* s = network->GetSubNetwork(0);
    // Index 5 is out of range: the end stays free. The record is read once and not kept.
    const Track* t = s->GetTrackByName("T");
    EXPECT_EQ(t->GetStartIntersection(), s->GetIntersectionByName("I2"));
    EXPECT_EQ(t->GetStartIntersectionName(), "I2");
    EXPECT_EQ(t->GetEndIntersection(), nullptr);
    EXPECT_TRUE(!t->GetPreserved() || t->GetPreserved()->nodes.empty());
    // A track linked by name keeps its record and ignores it.
    const Track* n = s->GetTrackByName("N");
    EXPECT_EQ(n->GetStartIntersection(), s->GetIntersectionByName("I1"));
    EXPECT_EQ(n->GetEndIntersection(), nullptr);
    ASSERT_TRUE(n->GetPreserved());
    EXPECT_EQ(n->GetPreserved()->nodes.size(), 1u);
}

TEST(Track, VersionGatesReadTheSameTrack) {
    // 2.1.0 and older go through the legacy converter, portions older than 1.4.6 too; every one of these is
    // older than the banking sign gate.
    CountedPtr<Network> reference = LoadNetwork(kStraight, "2.4", "2");
    ASSERT_TRUE(reference);
    const Track* expected = reference->GetSubNetwork(0)->GetTrack(0);
    for (const auto& [version, revision] :
         {std::pair{"2.1", "0"}, {"2.1", "1"}, {"1.4", "5"}, {"1.4", "6"}}) {
        CountedPtr<Network> network = LoadNetwork(kStraight, version, revision);
        ASSERT_TRUE(network) << version << "." << revision;
        const Track* track = network->GetSubNetwork(0)->GetTrack(0);
        EXPECT_DOUBLE_EQ(track->GetBanking(50), -0.1) << version << "." << revision;
        ASSERT_EQ(track->GetPortionCount(), 2u);
        SCOPED_TRACE(std::string(version) + "." + revision);
        ExpectSameMarks(*expected, *track, {0.0, 20.0, 70.0}, {-2.0, 4.0});
    }
}

TEST(Track, PortionEdits) {
    CountedPtr<Network> network = LoadNetwork(kStraight);
    Track* track = network->GetSubNetwork(0)->GetTrackByName("T");
    CountedPtr<Track> original = Original(track);
    auto ends = [&] {
        std::vector<double> out;
        for (size_t i = 0; i < track->GetPortionCount(); ++i)
            out.push_back(track->GetPortion(i)->GetEndDistance());
        return out;
    };
    // Cutting the B -> B portion changes no mark; only strictly inside a portion.
    EXPECT_FALSE(track->SplitPortion(40));
    EXPECT_FALSE(track->SplitPortion(100));
    EXPECT_FALSE(track->SplitPortion(-1));
    ASSERT_TRUE(track->SplitPortion(70));
    EXPECT_EQ(ends(), (std::vector<double>{40, 70, 100}));
    EXPECT_EQ(track->GetPortion(2)->GetStartProfileName(), "B");
    ExpectSameMarks(*original, *track, {10.0, 45.0, 69.0, 70.0, 71.0, 99.0}, {-2.0, 1.0, 5.0});
    // An end moves within its neighbours; the last one stays.
    EXPECT_TRUE(track->ModifyPortion(0, 55));
    EXPECT_EQ(ends(), (std::vector<double>{55, 70, 100}));
    EXPECT_TRUE(track->ModifyPortion(1, true, 90));
    EXPECT_EQ(ends(), (std::vector<double>{70, 70, 100}));
    EXPECT_TRUE(track->ModifyPortion(1, false, -5));
    EXPECT_EQ(ends(), (std::vector<double>{70, 70, 100}));
    EXPECT_FALSE(track->ModifyPortion(0, true, 10));
    EXPECT_FALSE(track->ModifyPortion(2, 50));
    EXPECT_FALSE(track->ModifyPortion(0, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(track->RemovePortion(3, 1));
    EXPECT_TRUE(track->RemovePortion(1, 10));
    EXPECT_EQ(ends(), (std::vector<double>{70}));
}

namespace {

// Flat straight track along +x: portions [0, 40] A -> W (outer borders -3.5, 7 -> -5, 9), [40, 100] W -> W.
const std::string kFlatWidening =
    "<Profiles>" + ProfileXml("A", 0, 0, 0, 0) +
    R"(<Profile name="W"><Lane name="l"/><Lane name="c"/><Lane name="r"/><LaneBorder horizDistToAxis="-5"/>
<LaneBorder horizDistToAxis="0"/><LaneBorder horizDistToAxis="3.5"/><LaneBorder horizDistToAxis="9"/></Profile>
</Profiles><Tracks><Track name="T"><XYCurve><Segment length="100"/></XYCurve>
<Portion endDistance="40" startProfileName="A" endProfileName="W"/>
<Portion endDistance="100" startProfileName="W" endProfileName="W"/></Track></Tracks>)";

void ExpectSides(const Portion& portion, double s, double left, double right) {
    double l = 0, r = 0;
    portion.GetSideDistances(s, l, r);
    EXPECT_NEAR(l, left, kPositionToleranceM) << "s=" << s;
    EXPECT_NEAR(r, right, kPositionToleranceM) << "s=" << s;
}

}  // namespace

TEST(Portion, PositionBoxDefaultModifierAndInvert) {
    CountedPtr<Network> network = LoadNetwork(kFlatWidening);
    Track* track = network->GetSubNetwork(0)->GetTrackByName("T");
    Portion* first = track->GetPortion(0);
    Portion* second = track->GetPortion(1);
    EXPECT_EQ(first->GetPosition(), vek::Vector3(0, 0, 0));
    EXPECT_EQ(second->GetPosition(), vek::Vector3(40, 0, 0));
    // t runs to the right, which is -y along +x.
    const vek::Box3 box = first->GetBoundingBox();
    EXPECT_NEAR(box.min.x, 0, kPositionToleranceM);
    EXPECT_NEAR(box.max.x, 40, kPositionToleranceM);
    EXPECT_NEAR(box.min.y, -9, kPositionToleranceM);
    EXPECT_NEAR(box.max.y, 5, kPositionToleranceM);
    EXPECT_NEAR(box.min.z, 0, kPositionToleranceM);
    EXPECT_NEAR(box.max.z, 0, kPositionToleranceM);
    Portion detached;
    vek::Vector3 p(1, 2, 3);
    EXPECT_FALSE(detached.GetPosition(p));
    EXPECT_EQ(p, vek::Vector3(1, 2, 3));
    EXPECT_TRUE(detached.GetBoundingBox().isEmpty());

    // The default modifier follows the blend: the borders stay where they were.
    Orvia::ProfileModifier* modifier = first->AddDefaultProfileModifier();
    ASSERT_NE(modifier, nullptr);
    EXPECT_EQ(modifier->GetBorderModifierCount(), 4u);
    EXPECT_TRUE(first->HasModifiedBorders());
    EXPECT_EQ(first->AddDefaultProfileModifier()->GetBorderModifierCount(), 4u);
    for (double s : {0.0, 10.0, 20.0, 40.0})
        ExpectSides(*first, s, -3.5 - 1.5 * s / 40, 7 + 2 * s / 40);
    vek::Mark mark;
    ASSERT_TRUE(track->GetMark(mark, 20, -4.25));
    EXPECT_NEAR(mark.position.y, 4.25, kPositionToleranceM);

    // Seen from the other end on the same stretch: W mirrored -> A mirrored, modifier mirrored with it.
    first->Invert();
    EXPECT_EQ(first->GetEndDistance(), 40);
    EXPECT_NE(first->GetStartProfileName(), "W");
    EXPECT_NE(first->GetEndProfileName(), "A");
    for (double s : {0.0, 10.0, 40.0})
        ExpectSides(*first, s, -9 + 2 * s / 40, 5 - 1.5 * s / 40);
    EXPECT_EQ(second->GetStartProfileName(), "W");
}

TEST(Track, InvertAxisFlagsCurvatureCurveAndSplitPortionFlags) {
    // z = s^2 / 200: z'' = 0.01, graph curvature 0.01 / (1 + (s / 100)^2)^1.5.
    CountedPtr<Network> network =
        LoadNetwork("<Profiles>" + ProfileXml("A", 0, 0, 0, 0) +
                    R"(</Profiles><Tracks><Track name="T"><XYCurve><Segment length="100"/></XYCurve>
<SZCurve><Polynomial xIn="0" yIn="0" derivativeIn="0" xOut="100" yOut="50" derivativeOut="1"/></SZCurve>
<Portion endDistance="40" startProfileName="A" endProfileName="A"/>
<Portion endDistance="100" startProfileName="A" endProfileName="A"/></Track></Tracks>)");
    Track* track = network->GetSubNetwork(0)->GetTrackByName("T");
    auto k = [](double s) { return 0.01 / std::pow(1 + s * s / 1e4, 1.5); };
    Orvia::CartesianCurve curve("SZCurvatureCurve");
    track->SetCurvatureCurveMeasureStep(30);
    ASSERT_TRUE(track->ComputeCurvatureCurve(&curve));
    ASSERT_EQ(curve.GetFunctionCount(), 4u);  // 0, 30, 60, 90, 100
    for (double s : {0.0, 30.0, 90.0, 100.0})
        EXPECT_NEAR(curve.GetValue(s), k(s), 1e-12) << s;
    EXPECT_NEAR(curve.GetValue(45), 0.5 * (k(30) + k(60)), 1e-12);
    EXPECT_NEAR(curve.GetValue(95), 0.5 * (k(90) + k(100)), 1e-12);
    track->SetCurvatureCurveMeasureStep(0);
    EXPECT_FALSE(track->ComputeCurvatureCurve(&curve));
    EXPECT_EQ(curve.GetFunctionCount(), 4u);
    EXPECT_FALSE(track->ComputeCurvatureCurve(nullptr));

    // Only the axis: the elevation runs backwards, the portions keep their ends.
    track->InvertAxis(false, false);
    EXPECT_NEAR(track->GetSZCurve()->GetValue(0), 50, kPositionToleranceM);
    EXPECT_EQ(track->GetPortion(0)->GetEndDistance(), 40);
    // With the portions: they follow the road, listed from the new start.
    track->InvertAxis(true, false);
    EXPECT_NEAR(track->GetSZCurve()->GetValue(0), 0, kPositionToleranceM);
    EXPECT_EQ(track->GetPortion(0)->GetEndDistance(), 60);
    EXPECT_EQ(track->GetPortion(1)->GetEndDistance(), 100);

    // The modifier goes with the chosen part; without update the view follows at once.
    track->GetPortion(0)->AddDefaultProfileModifier();
    ASSERT_TRUE(track->SplitPortion(30, true, false));
    ASSERT_EQ(track->GetPortionCount(), 3u);
    EXPECT_EQ(track->GetPortion(0)->GetProfileModifier(), nullptr);
    EXPECT_NE(track->GetPortion(1)->GetProfileModifier(), nullptr);
    EXPECT_EQ(track->GetPortion(1)->GetStartDistance(), 30);
    ASSERT_TRUE(track->SplitPortion(10));
    EXPECT_EQ(track->GetPortion(1)->GetProfileModifier(), nullptr);
    EXPECT_EQ(track->GetPortionCount(), 4u);
}
