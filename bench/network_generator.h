#pragma once

// A synthetic city, built as data objects of the element layer and saved through it: a row of sub-networks,
// each a grid of intersections joined by tracks. Track axes mix segments, arcs, clothoids and polylines, with
// elevation and banking; profiles carry lanes, borders and markings; portions cut the tracks, some with
// border modifiers; clipped objects put signs, traffic lights and obstacles on tracks and intersections, and
// light groups animate the lights. Junctions join neighbouring sub-networks and one road per grid row crosses
// the city. The same shape (seed included) always gives the same bytes.

#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/intersection.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/portion.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/ruvex/elements/traffic.h>
#include <orvia/ruvex/factory.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace OrviaBench {

struct CityShape {
    uint64_t seed = 1;
    int subNetworks = 40;
    int grid = 20;            // intersections per side of a sub-network
    double spacingM = 100.0;  // between neighbouring intersections
};

// What the generator made, for checks against what a load finds.
struct CityStats {
    size_t subNetworks = 0;
    size_t tracks = 0;
    size_t intersections = 0;
    size_t curvePieces = 0;  // segments, arcs, clothoids and polylines of the track axes
    size_t polynomials = 0;  // of the elevation and banking curves
    size_t portions = 0;
    size_t trackClippedData = 0;  // "ClippedData" children of tracks
    size_t markClippedData = 0;   // on intersections
    size_t lightGroups = 0;
    size_t lightAnimations = 0;
    size_t junctions = 0;
    size_t roads = 0;
    size_t elements = 0;  // XML elements of the saved file, the "Ruvex" root included
};

namespace detail {

// Number of XML elements `element` is saved as: itself, its children, the wrappers of lists that are written
// and whatever it preserved. Data classes only (a runtime class may write more).
inline size_t SavedElementCount(const Ruvex::Element& element);

inline size_t PreservedElementCount(const std::vector<Ruvex::PreservedNode>& nodes) {
    size_t count = 0;
    for (const Ruvex::PreservedNode& node : nodes)
        if (node.kind == Ruvex::NodeKind::Element && node.element) count += SavedElementCount(*node.element);
    return count;
}

inline size_t SavedElementCount(const Ruvex::Element& element) {
    size_t count = 1;
    const Ruvex::PreservedContent* kept = element.GetPreserved();
    for (const Ruvex::ChildField& field : element.GetSchema().children) {
        size_t items = 0;
        field.forEach(element, &items, [](void* context, Ruvex::Element* child) {
            *static_cast<size_t*>(context) += SavedElementCount(*child);
        });
        const Ruvex::PreservedContainer* container =
            kept && !field.container.empty() ? kept->FindContainer(field.container) : nullptr;
        if (container) items += PreservedElementCount(container->nodes);
        if (!field.container.empty() && (items > 0 || container)) ++count;
        count += items;
    }
    if (kept) count += PreservedElementCount(kept->nodes);
    return count;
}

}  // namespace detail

class CityBuilder {
public:
    explicit CityBuilder(const CityShape& shape) : shape_(shape), state_(shape.seed) {}

    Ruvex::CountedPtr<Ruvex::NetworkElement> Build() {
        using namespace Ruvex;
        stats_ = CityStats{};
        CountedPtr<NetworkElement> network(new NetworkElement);
        network->SetName("Synthetic City");
        network->SetTrafficHand("right-hand");
        auto* terrain = new ExternalFileElement("ExternalTerrain");
        terrain->SetFilePath("terrain/city.obj");
        network->SetGlobalTerrainElement(terrain);
        for (int s = 0; s < shape_.subNetworks; ++s)
            network->EditSubNetworks().push_back(SubNetwork(s));
        for (int s = 0; s + 1 < shape_.subNetworks; ++s)
            for (int row = 0; row < shape_.grid; ++row)
                network->EditSubNetworkJunctions().push_back(Junction(s, row));
        for (int row = 0; row < shape_.grid; ++row)
            network->EditRoads().push_back(Road(row));
        stats_.subNetworks = network->GetSubNetworks().size();
        stats_.junctions = network->GetSubNetworkJunctions().size();
        stats_.roads = network->GetRoads().size();
        stats_.elements = 1 + detail::SavedElementCount(*network);
        return network;
    }

    const CityStats& Stats() const { return stats_; }

private:
    using Vec2 = vek::Vector2;
    using Vec3 = vek::Vector3;

    double Width() const { return (shape_.grid + 1) * shape_.spacingM; }

    // A fixed generator (64-bit linear congruential, top bits), so that every platform draws the same.
    double Random() {
        state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<double>(state_ >> 11) / 9007199254740992.0;
    }
    int Pick(int n) { return static_cast<int>(Random() * n); }
    bool Chance(double p) { return Random() < p; }
    // A value in [low, high) with `decimals` digits after the point: the nearest double to a short decimal,
    // written back as that decimal.
    double Draw(double low, double high, int decimals) {
        const double scale = std::pow(10.0, decimals);
        return std::round((low + (high - low) * Random()) * scale) / scale;
    }
    static double Decimal(double value, int decimals) {
        const double scale = std::pow(10.0, decimals);
        return std::round(value * scale) / scale;
    }

    static std::string Node(int i, int j) { return "I_" + std::to_string(i) + "_" + std::to_string(j); }

    Ruvex::SubNetworkElement* SubNetwork(int s) {
        using namespace Ruvex;
        auto* sub = new SubNetworkElement;
        sub->SetName("Q" + std::to_string(s));
        sub->SetPosition(Vec3(s * Width(), Draw(0, 20, 3), 0));
        sub->SetHeading(Draw(-0.001, 0.001, 6));
        for (const char* name : {"Asphalt", "Paint", "Concrete"}) {
            auto* material = new MaterialElement;
            material->SetName(name);
            material->SetFilePath(std::string("textures/") + name + ".png");
            sub->EditMaterials().push_back(material);
        }
        for (int m = 0; m < 2; ++m) {
            auto* marking = new MarkingElement;
            marking->SetName(m == 0 ? "Dashed" : "Solid");
            marking->SetWidth(m == 0 ? 0.12 : 0.15);
            marking->SetLineLength(m == 0 ? 3 : 1);
            marking->SetTotLength(m == 0 ? 10 : 1);
            marking->SetLeftToRight(m == 0 ? "can" : "cannot");
            marking->SetRightToLeft(m == 0 ? "can" : "cannot");
            marking->SetMaterialName("Paint");
            sub->EditMarkings().push_back(marking);
        }
        for (int p = 0; p < 3; ++p)
            sub->EditProfiles().push_back(Profile(p));
        const int g = shape_.grid;
        std::vector<bool> lit(static_cast<size_t>(g * g));
        for (int j = 0; j < g; ++j)
            for (int i = 0; i < g; ++i) {
                lit[static_cast<size_t>(j * g + i)] = i > 0 && j > 0 && Chance(0.2);
                sub->EditIntersections().push_back(Intersection(i, j));
            }
        // Tracks along the rows, then along the columns; a lit intersection gets a light on each track that
        // arrives at it from the west and from the south.
        std::vector<std::string> lights;
        auto isLit = [&](int i, int j) { return lit[static_cast<size_t>(j * g + i)]; };
        for (int j = 0; j < g; ++j)
            for (int i = 0; i + 1 < g; ++i) {
                TrackElement* track =
                    Track("H_" + std::to_string(i) + "_" + std::to_string(j), Node(i, j), Node(i + 1, j),
                          Vec2((i + 1) * shape_.spacingM, j * shape_.spacingM), 0.0);
                if (isLit(i + 1, j)) AddLight(*track, "TL_" + Node(i + 1, j) + "_W", lights);
                sub->EditTracks().push_back(track);
            }
        for (int i = 0; i < g; ++i)
            for (int j = 0; j + 1 < g; ++j) {
                TrackElement* track =
                    Track("V_" + std::to_string(i) + "_" + std::to_string(j), Node(i, j), Node(i, j + 1),
                          Vec2((i + 1) * shape_.spacingM, j * shape_.spacingM), 1.5707963267948966);
                if (isLit(i, j + 1)) AddLight(*track, "TL_" + Node(i, j + 1) + "_S", lights);
                sub->EditTracks().push_back(track);
            }
        for (int j = 0; j < g; ++j) {
            if (s + 1 < shape_.subNetworks)
                sub->EditTracks().push_back(Track("E_" + std::to_string(j), Node(g - 1, j), "",
                                                  Vec2(g * shape_.spacingM, j * shape_.spacingM), 0.0));
            if (s > 0)
                sub->EditTracks().push_back(
                    Track("W_" + std::to_string(j), "", Node(0, j), Vec2(0.0, j * shape_.spacingM), 0.0));
        }
        for (int j = 1; j < g; ++j)
            for (int i = 1; i < g; ++i)
                if (isLit(i, j)) {
                    const std::string node = Node(i, j);
                    std::vector<std::string> signs;
                    for (const std::string& name : lights)
                        if (name.compare(3, node.size() + 1, node + "_") == 0) signs.push_back(name);
                    sub->EditTrafficLightGroups().push_back(LightGroup("G_" + node, signs));
                }
        stats_.tracks += sub->GetTracks().size();
        stats_.intersections += sub->GetIntersections().size();
        stats_.lightGroups += sub->GetTrafficLightGroups().size();
        return sub;
    }

    Ruvex::ProfileElement* Profile(int p) {
        using namespace Ruvex;
        static const char* const kNames[] = {"Avenue", "Street", "Lane"};
        static const char* const kLanes[] = {"Walk L", "Drive L", "Drive R", "Walk R"};
        const double width = p == 0 ? 3.5 : (p == 1 ? 3.0 : 2.5);
        auto* profile = new ProfileElement;
        profile->SetName(kNames[p]);
        profile->SetRoadTypeText("none");
        for (const char* name : kLanes) {
            auto* lane = new LaneElement;
            lane->SetName(name);
            const bool walk = name[0] == 'W';
            lane->SetLaneTypeText(walk ? "sidewalk" : "paved");
            lane->SetCirculationWayText(walk ? "both" : (name[6] == 'L' ? "inverse" : "direct"));
            lane->SetMaterialName(walk ? "Concrete" : "Asphalt");
            if (!walk) lane->SetSpeedLimit(p == 0 ? 13.9 : 8.3);
            if (p == 0 && !walk) {
                auto* vehicles = new VehicleTypeElement;
                vehicles->SetVehicleCategories("car,bus,truck");
                vehicles->SetHeightLimit(4.2);
                lane->SetVehicleAuth(vehicles);
            }
            profile->EditLanes().push_back(lane);
        }
        for (int b = -2; b <= 2; ++b) {
            auto* border = new LaneBorderElement;
            border->SetHorizDistToAxis(b * width);
            border->SetVertDistToAxis(b == -2 || b == 2 ? 0.15 : 0.0);
            border->SetMarkingName(b == 0 ? "Dashed" : "Solid");
            if (b == -2 || b == 2) {
                // A kerb swept along the outer borders.
                auto* decoration = new DecorationElement;
                auto* kerb = new PolyLineElement;
                kerb->SetPoints({Vec2(0, 0), Vec2(0, 0.15), Vec2(0.2, 0.15)});
                decoration->SetPolyLine(kerb);
                decoration->SetMaterialName("Concrete");
                border->SetDecoration(decoration);
            }
            profile->EditLaneBorders().push_back(border);
        }
        return profile;
    }

    Ruvex::IntersectionElement* Intersection(int i, int j) {
        using namespace Ruvex;
        const double x = (i + 1) * shape_.spacingM;
        const double y = j * shape_.spacingM;
        const double z = Draw(10, 15, 3);
        auto* node = new IntersectionElement;
        node->SetName(Node(i, j));
        node->SetPosition(Vec3(x, y, z));
        node->SetAltitude(z);
        node->SetContourPoints(
            {Vec2(x - 8, y - 8), Vec2(x + 8, y - 8), Vec2(x + 8, y + 8), Vec2(x - 8, y + 8)});
        node->SetContourInterpolations({0, 1, 0, 1});
        node->SetMaterialName("Asphalt");
        if (Chance(0.3)) {
            // The outline anchored on the borders of the tracks meeting here.
            const std::string west = i > 0 ? "H_" + std::to_string(i - 1) + "_" + std::to_string(j) : "";
            const std::string east =
                i + 1 < shape_.grid ? "H_" + std::to_string(i) + "_" + std::to_string(j) : "";
            for (int k = 0; k < 2; ++k) {
                auto* piece = new ContourPieceElement;
                piece->SetStartAnchorTrack(k == 0 ? west : east);
                piece->SetStartAnchorOnTrackEnd(k == 0);
                piece->SetStartAnchorOnLeftSide(true);
                piece->SetEndAnchorTrack(k == 0 ? east : west);
                piece->SetEndAnchorOnTrackEnd(k != 0);
                piece->SetEndAnchorOnLeftSide(false);
                piece->SetContourPoints({Vec2(x + Draw(-6, 6, 2), y + Draw(-6, 6, 2))});
                node->EditContourPieces().push_back(piece);
            }
        }
        if (i > 0 && i + 1 < shape_.grid && Chance(0.4)) {
            // Straight on along the row, both ways.
            const std::string in = "H_" + std::to_string(i - 1) + "_" + std::to_string(j);
            const std::string out = "H_" + std::to_string(i) + "_" + std::to_string(j);
            for (int k = 0; k < 2; ++k) {
                auto* link = new LinkElement;
                link->SetName(std::string(k == 0 ? "East" : "West"));
                auto* pair = new LanePairElement;
                pair->SetFromTrack(k == 0 ? in : out);
                pair->SetFromTrackBoundInfo(k == 0 ? "end" : "start");
                pair->SetFromLane(k == 0 ? "Drive R" : "Drive L");
                pair->SetToTrack(k == 0 ? out : in);
                pair->SetToTrackBoundInfo(k == 0 ? "start" : "end");
                pair->SetToLane(k == 0 ? "Drive R" : "Drive L");
                link->EditLanePairs().push_back(pair);
                node->EditLinks().push_back(link);
            }
        }
        if (Chance(0.1)) {
            auto* clipped = new MarkClippedDataElement;
            clipped->SetName("M_" + Node(i, j));
            clipped->SetStatic(true);
            clipped->SetPosition(Vec3(x + Draw(-5, 5, 2), y + Draw(-5, 5, 2), z));
            clipped->SetYaw(Draw(-3.14, 3.14, 3));
            if (Chance(0.5)) {
                clipped->SetObstacle(Obstacle());
            } else {
                auto* sign = new RoadSignElement;
                sign->SetSignType("stop");
                clipped->SetRoadSign(sign);
            }
            node->EditClippedData().push_back(clipped);
            ++stats_.markClippedData;
        }
        return node;
    }

    Ruvex::ObstacleElement* Obstacle() {
        auto* obstacle = new Ruvex::ObstacleElement;
        obstacle->SetMin(Vec3(-Draw(0.2, 1, 2), -Draw(0.2, 1, 2), 0));
        obstacle->SetMax(Vec3(Draw(0.2, 1, 2), Draw(0.2, 1, 2), Draw(0.5, 2, 2)));
        static const char* const kWays[] = {"left", "right", "both sides", "cannot"};
        obstacle->SetDodgeWay(kWays[Pick(4)]);
        return obstacle;
    }

    // The horizontal pieces of one track, `length` long in all.
    void AddPieces(Ruvex::XYCurveElement& curve, double length) {
        using namespace Ruvex;
        auto segment = [&](double l) {
            auto* piece = new SegmentElement;
            piece->SetLength(Decimal(l, 6));
            curve.EditFunctions().push_back(piece);
        };
        auto arc = [&](double l, double k) {
            auto* piece = new CircleArcElement;
            piece->SetLength(Decimal(l, 6));
            piece->SetCurvature(k);
            curve.EditFunctions().push_back(piece);
        };
        auto clothoid = [&](double l, double k0, double k1) {
            auto* piece = new ClothoidArcElement;
            piece->SetLength(Decimal(l, 6));
            piece->SetStartCurvature(k0);
            piece->SetEndCurvature(k1);
            curve.EditFunctions().push_back(piece);
        };
        const double kind = Random();
        const double curvature = Draw(-0.002, 0.002, 8);
        if (kind < 0.4) {
            const double spiral = Draw(10, 20, 3);
            const double middle = Draw(20, 30, 3);
            const double straight = 0.5 * (length - 2 * spiral - middle);
            segment(straight);
            clothoid(spiral, 0, curvature);
            arc(middle, curvature);
            clothoid(spiral, curvature, 0);
            segment(straight);
        } else if (kind < 0.65) {
            const double middle = Draw(20, 40, 3);
            segment(0.5 * (length - middle));
            arc(middle, curvature);
            segment(0.5 * (length - middle));
        } else if (kind < 0.85) {
            auto* polyline = new PolyLineElement;
            static const PolyLineElement::EType kTypes[] = {
                PolyLineElement::EType::Polygon, PolyLineElement::EType::ClampedSpline,
                PolyLineElement::EType::BezierThroughPoints, PolyLineElement::EType::BezierChain};
            polyline->SetType(kTypes[Pick(4)]);
            const int points = 4 + Pick(3);
            const double span = Draw(20, 40, 3);
            std::vector<Vec2> controls;
            for (int k = 0; k < points; ++k)
                controls.emplace_back(Decimal(span * k / (points - 1), 3), k == 0 ? 0.0 : Draw(-1, 1, 3));
            polyline->SetPoints(controls);
            segment(0.5 * (length - span));
            curve.EditFunctions().push_back(polyline);
            segment(0.5 * (length - span));
        } else {
            segment(length);
        }
        stats_.curvePieces += curve.GetFunctions().size();
    }

    // A chain of cubics over [0, length]: `pieces` pieces through values drawn in [low, high).
    Ruvex::CartesianCurveElement* Chain(const char* tag, double length, int pieces, double low, double high,
                                        int decimals) {
        auto* curve = new Ruvex::CartesianCurveElement(tag);
        double x = 0;
        double y = Draw(low, high, decimals);
        double slope = 0;
        for (int k = 0; k < pieces; ++k) {
            auto* cubic = new Ruvex::PolynomialFunctionElement;
            const double xOut = k + 1 == pieces ? length : Decimal(length * (k + 1) / pieces, 3);
            const double yOut = Draw(low, high, decimals);
            const double slopeOut = k + 1 == pieces ? 0.0 : Decimal((yOut - y) / (xOut - x), 5);
            cubic->SetIn(Vec2(x, y));
            cubic->SetDerivativeIn(slope);
            cubic->SetOut(Vec2(xOut, yOut));
            cubic->SetDerivativeOut(slopeOut);
            curve->EditFunctions().push_back(cubic);
            x = xOut;
            y = yOut;
            slope = slopeOut;
        }
        stats_.polynomials += static_cast<size_t>(pieces);
        return curve;
    }

    Ruvex::PortionElement* Portion(double endDistance) {
        using namespace Ruvex;
        static const char* const kProfiles[] = {"Avenue", "Street", "Lane"};
        auto* portion = new PortionElement;
        portion->SetEndDistance(endDistance);
        portion->SetStartProfileName(kProfiles[Pick(3)]);
        portion->SetEndProfileName(kProfiles[Pick(3)]);
        if (Chance(0.1)) {
            // A border drifting sideways along the portion.
            auto* modifier = new ProfileModifierElement;
            const int borders = 1 + Pick(2);
            for (int b = 0; b < borders; ++b) {
                auto* border = new BorderModifierElement;
                border->SetId(static_cast<uint64_t>(b == 0 ? 0 : 4));
                for (double t : {0.0, 0.5, 1.0}) {
                    auto* offset = new BorderOffsetElement;
                    offset->SetT(t);
                    offset->SetYOffset(t == 0.5 ? Draw(-1, 1, 3) : 0.0);
                    border->EditBorderOffsets().push_back(offset);
                }
                modifier->EditBorderModifiers().push_back(border);
            }
            portion->SetProfileModifier(modifier);
        }
        ++stats_.portions;
        return portion;
    }

    Ruvex::TrackElement* Track(const std::string& name, const std::string& start, const std::string& end,
                               Vec2 origin, double orientation) {
        using namespace Ruvex;
        const double length = shape_.spacingM;
        auto* track = new TrackElement;
        track->SetName(name);
        track->SetStartIntersectionName(start);
        track->SetEndIntersectionName(end);
        auto* axis = new XYCurveElement;
        axis->SetOrigin(origin);
        axis->SetOrientation(orientation);
        AddPieces(*axis, length);
        track->SetXYCurve(axis);
        track->SetSZCurve(Chain("SZCurve", length, 1 + Pick(3), 10, 15, 3));
        if (Chance(0.7)) track->SetBankingCurve(Chain("BankingCurve", length, 1 + Pick(2), -0.03, 0.03, 5));
        const int portions = 1 + Pick(3);
        for (int k = 0; k < portions; ++k)
            track->EditPortions().push_back(
                Portion(k + 1 == portions ? length : Decimal(length * (k + 1) / portions, 3)));
        if (Chance(0.15)) {
            // A sign or an obstacle somewhere along the track.
            auto* clipped = NewTrackClipped(name + "_C", Draw(5, length - 5, 2));
            if (Chance(0.5)) {
                clipped->SetObstacle(Obstacle());
            } else {
                static const char* const kSigns[] = {"stop", "yield", "speed limit", "no entry"};
                auto* sign = new RoadSignElement;
                sign->SetSignType(kSigns[Pick(4)]);
                clipped->SetRoadSign(sign);
            }
            Attach(*track, clipped);
        }
        return track;
    }

    Ruvex::TrackClippedDataElement* NewTrackClipped(const std::string& name, double abscissa) {
        using namespace Ruvex;
        auto* clipped = new TrackClippedDataElement("ClippedData");
        clipped->SetName(name);
        clipped->SetStatic(true);
        auto* clip = new TrackClipElement;
        clip->SetAbscissa(abscissa);
        clip->SetLateralOffset(Draw(2, 8, 2));
        clipped->SetTrackClip(clip);
        auto* scope = new TrackScopeElement;
        scope->SetFrom(-Draw(20, 60, 1));
        scope->SetTo(0);
        scope->SetCirculationWayText("direct");
        scope->SetLaneScope({2});
        clipped->SetScope(scope);
        return clipped;
    }

    // A track's clipped data are not among its declared children: they are kept after the declared ones, as
    // a load of the file would keep them.
    void Attach(Ruvex::TrackElement& track, Ruvex::TrackClippedDataElement* clipped) {
        Ruvex::PreservedNode node;
        node.kind = Ruvex::NodeKind::Element;
        node.anchor = static_cast<uint32_t>(1 + (track.GetSZCurve() ? 1 : 0) +
                                            (track.GetBankingCurve() ? 1 : 0) + track.GetPortions().size());
        node.element = clipped;
        track.EditPreserved().nodes.push_back(std::move(node));
        ++stats_.trackClippedData;
    }

    void AddLight(Ruvex::TrackElement& track, const std::string& name, std::vector<std::string>& lights) {
        using namespace Ruvex;
        auto* clipped = NewTrackClipped(name, shape_.spacingM - 5);
        auto* sign = new RoadSignElement;
        sign->SetSignType("traffic light");
        sign->SetDirection("straight,left,right");
        for (const char* color : {"red", "orange", "green"}) {
            auto* light = new LightElement;
            light->SetName(color);
            light->SetColor(color);
            light->SetDirection("straight,left,right");
            light->SetIllumination(color[0] == 'r' ? "on" : "off");
            light->SetVehicle("car,bus,truck");
            sign->EditLights().push_back(light);
        }
        clipped->SetRoadSign(sign);
        Attach(track, clipped);
        lights.push_back(name);
    }

    Ruvex::TrafficLightGroupElement* LightGroup(const std::string& name,
                                                const std::vector<std::string>& signs) {
        using namespace Ruvex;
        auto* group = new TrafficLightGroupElement;
        group->SetName(name);
        group->SetCurrentCycle("Day");
        group->SetOffset(Draw(0, 30, 1));
        // The lights take turns: green, orange, then red while the others have their turn.
        const double green = Draw(15, 40, 0);
        for (size_t k = 0; k < signs.size(); ++k) {
            auto* animation = new TrafficLightAnimationElement;
            animation->SetCycleName("Day");
            animation->SetRoadSignName(signs[k]);
            for (int step = 0; step < 3; ++step) {
                auto* state = new TrafficLightStateElement;
                state->SetTimeLength(
                    step == 0 ? green
                              : (step == 1 ? 3.0 : (green + 3) * static_cast<double>(signs.size() - 1)));
                state->SetIlluminations(step == 0 ? "off,off,on" : (step == 1 ? "off,on,off" : "on,off,off"));
                animation->EditStates().push_back(state);
            }
            group->EditAnimations().push_back(animation);
            ++stats_.lightAnimations;
        }
        return group;
    }

    Ruvex::SubNetworkJunctionElement* Junction(int s, int row) {
        using namespace Ruvex;
        auto* junction = new SubNetworkJunctionElement;
        junction->SetName("J_" + std::to_string(s) + "_" + std::to_string(row));
        junction->SetPosition(Vec3((s + 1) * Width() - 0.5 * shape_.spacingM, row * shape_.spacingM, 10));
        for (int k = 0; k < 2; ++k) {
            auto* exit = new SubNetworkExitElement;
            exit->SetSubNetworkName("Q" + std::to_string(s + k));
            exit->SetTrackName((k == 0 ? "E_" : "W_") + std::to_string(row));
            exit->SetExtremity(k == 0 ? "end" : "start");
            junction->EditExits().push_back(exit);
        }
        return junction;
    }

    Ruvex::RoadElement* Road(int row) {
        using namespace Ruvex;
        auto* road = new RoadElement;
        road->SetName("Row " + std::to_string(row));
        road->SetPriorityLevel(static_cast<uint64_t>(row % 3));
        auto piece = [&](int s, const std::string& track) {
            auto* p = new RoadPieceElement;
            p->SetSubNetworkName("Q" + std::to_string(s));
            p->SetTrackName(track);
            road->EditPieces().push_back(p);
        };
        const std::string suffix = "_" + std::to_string(row);
        for (int s = 0; s < shape_.subNetworks; ++s) {
            if (s > 0) piece(s, "W" + suffix);
            for (int i = 0; i + 1 < shape_.grid; ++i)
                piece(s, "H_" + std::to_string(i) + suffix);
            if (s + 1 < shape_.subNetworks) piece(s, "E" + suffix);
        }
        return road;
    }

    CityShape shape_;
    uint64_t state_;
    CityStats stats_;
};

// Builds the city and saves it at `path` through the element layer; false when it cannot be written. `stats`,
// when given, receives what was made.
inline bool GenerateCityNetwork(const std::string& path, const CityShape& shape = {},
                                CityStats* stats = nullptr) {
    CityBuilder builder(shape);
    Ruvex::CountedPtr<Ruvex::NetworkElement> network = builder.Build();
    if (stats) *stats = builder.Stats();
    return Ruvex::Save(network.Get(), path.c_str());
}

// The default city (at least 50 MB) for the benchmarks: $ORVIA_BENCH_NETWORK, or a file in the temporary
// directory, written on first use. The name carries the generator's revision so that an older city is not
// mistaken for the current one.
inline const std::string& BenchCityPath() {
    static const std::string path = [] {
        const char* given = std::getenv("ORVIA_BENCH_NETWORK");
        const std::string p =
            given ? given : (std::filesystem::temp_directory_path() / "orvia_bench_city_2.xml").string();
        constexpr std::uintmax_t kMinimumBytes = 50u << 20;
        std::error_code error;
        if (std::filesystem::file_size(p, error) < kMinimumBytes || error) GenerateCityNetwork(p);
        return p;
    }();
    return path;
}

// ---------------------------------------------------------------------------------------------------------------
// A city edited district by district: the sub-networks of a small example network (each with its own
// materials, grounds, markings, profiles, intersections and tracks), its junctions and its roads, repeated
// under new names
// ("D<k> " before every sub-network, junction and road name, and before the sub-network names that exits and
// road pieces give) until the file reaches a size. Everything else of the example (geolocalisation, files,
// background images) appears once.

struct DistrictStats {
    size_t districts = 0;
    size_t subNetworks = 0;
    size_t elements = 0;  // start tags, the root's included
    size_t bytes = 0;
};

namespace detail {

// The text between the end of `open` and the start of `close` in `text` (`begin`/`end` receive the bounds),
// or false when either is missing.
inline bool Inner(const std::string& text, const std::string& open, const std::string& close, size_t& begin,
                  size_t& end) {
    const size_t o = text.find(open);
    if (o == std::string::npos) return false;
    begin = o + open.size();
    end = text.find(close, begin);
    return end != std::string::npos;
}

// The values of attribute `attribute` of every start tag `tag` in `text`.
inline std::vector<std::string> TagNames(const std::string& text, const std::string& tag,
                                         const std::string& attribute) {
    std::vector<std::string> names;
    const std::string key = "<" + tag + " " + attribute + "=\"";
    for (size_t at = text.find(key); at != std::string::npos; at = text.find(key, at + 1)) {
        const size_t first = at + key.size();
        names.push_back(text.substr(first, text.find('"', first) - first));
    }
    return names;
}

inline void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    size_t done = 0;
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + from.size())) {
        out.append(text, done, at - done).append(to);
        done = at + from.size();
    }
    out.append(text, done, std::string::npos);
    text.swap(out);
}

inline size_t StartTags(const std::string& text) {
    size_t count = 0;
    for (size_t i = 0; i + 1 < text.size(); ++i)
        count += text[i] == '<' && (std::isalpha(static_cast<unsigned char>(text[i + 1])) != 0);
    return count;
}

}  // namespace detail

// Writes the district city made from the network file `examplePath` at `path`; false when the example lacks
// sub-networks or a file cannot be read or written.
inline bool GenerateDistrictNetwork(const std::string& path, const std::string& examplePath,
                                    size_t minimumBytes, DistrictStats* stats = nullptr) {
    std::ifstream in(examplePath, std::ios::binary);
    const std::string example((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    size_t subBegin = 0, subEnd = 0, junctionBegin = 0, junctionEnd = 0, roadBegin = 0, roadEnd = 0;
    if (!detail::Inner(example, "<SubNetworks>", "</SubNetworks>", subBegin, subEnd)) return false;
    const bool junctions =
        detail::Inner(example, "<SubNetworkJunctions>", "</SubNetworkJunctions>", junctionBegin, junctionEnd);
    const bool roads = detail::Inner(example, "<Roads>", "</Roads>", roadBegin, roadEnd);

    // One district with a marker where its prefix goes.
    const std::string marker = "\x01";
    std::string district = example.substr(subBegin, subEnd - subBegin);
    std::string districtJunctions =
        junctions ? example.substr(junctionBegin, junctionEnd - junctionBegin) : "";
    std::string districtRoads = roads ? example.substr(roadBegin, roadEnd - roadBegin) : "";
    const std::vector<std::string> subNetworkNames = detail::TagNames(district, "SubNetwork", "name");
    for (const std::string& name : subNetworkNames) {
        detail::ReplaceAll(district, "<SubNetwork name=\"" + name + "\"",
                           "<SubNetwork name=\"" + marker + name + "\"");
        for (std::string* text : {&districtJunctions, &districtRoads})
            detail::ReplaceAll(*text, "subNetwork=\"" + name + "\"", "subNetwork=\"" + marker + name + "\"");
    }
    for (const std::string& name : detail::TagNames(districtJunctions, "SubNetworkJunction", "name"))
        detail::ReplaceAll(districtJunctions, "<SubNetworkJunction name=\"" + name + "\"",
                           "<SubNetworkJunction name=\"" + marker + name + "\"");
    for (const std::string& name : detail::TagNames(districtRoads, "Road", "name"))
        detail::ReplaceAll(districtRoads, "<Road name=\"" + name + "\"",
                           "<Road name=\"" + marker + name + "\"");
    if (subNetworkNames.empty()) return false;

    const size_t perDistrict = district.size() + districtJunctions.size() + districtRoads.size();
    const size_t count = std::max<size_t>(1, (minimumBytes + perDistrict - 1) / perDistrict);
    std::string sub, junction, road;
    for (size_t k = 0; k < count; ++k) {
        const std::string prefix = "D" + std::to_string(k) + " ";
        for (auto [from, to] : {std::pair{&district, &sub}, std::pair{&districtJunctions, &junction},
                                std::pair{&districtRoads, &road}}) {
            std::string copy = *from;
            detail::ReplaceAll(copy, marker, prefix);
            to->append(copy);
        }
    }
    std::string text = example.substr(0, subBegin) + sub;
    if (junctions) {
        text.append(example, subEnd, junctionBegin - subEnd).append(junction);
        if (roads)
            text.append(example, junctionEnd, roadBegin - junctionEnd).append(road).append(example, roadEnd);
        else
            text.append(example, junctionEnd);
    } else {
        text.append(example, subEnd);
    }
    if (stats) {
        stats->districts = count;
        stats->subNetworks = count * subNetworkNames.size();
        stats->elements = detail::StartTags(text);
        stats->bytes = text.size();
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    return static_cast<bool>(out.flush());
}

// A document of one network named `name` holding `content`.
inline std::string NetworkText(const std::string& name, const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Ruvex version=\"2.5\" "
           "versionRevision=\"0\"><Network name=\"" +
           name + "\">" + content + "</Network></Ruvex>\n";
}

inline std::string Repeated(const std::string& text, size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

// A network of `count` sub-networks without a name.
inline std::string UnnamedSubNetworksText(size_t count) {
    return NetworkText("Unnamed", "<SubNetworks>" + Repeated("<SubNetwork/>", count) + "</SubNetworks>");
}

// A network of one sub-network holding `count` tracks all named "T".
inline std::string SameNameTracksText(size_t count) {
    return NetworkText("Same", "<SubNetworks><SubNetwork name=\"S\"><Tracks>" +
                                   Repeated("<Track name=\"T\"/>", count) +
                                   "</Tracks></SubNetwork></SubNetworks>");
}

}  // namespace OrviaBench
