#pragma once

// A stretch of road between two nodes, owned by a sub-network.

#include <orvia/core/user_data.h>
#include <orvia/geometry/axis.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/vek/box.h>
#include <orvia/vek/mark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvia {

class CartesianCurve;
class ClippedData;
class Curve2D;
class Intersection;
class Lane;
class Network;
class Portion;
class Profile;
class Road;
class SubNetwork;
class SubNetworkJunction;
class Track;
class TrackClippedData;
class TrackConnector;

// One end of a track: the start (abscissa 0) or the end (abscissa = axis length).
class TrackExtremity {
public:
    TrackExtremity() = default;
    TrackExtremity(Track* track, bool atEnd) : m_track(track), m_atEnd(atEnd) {}
    bool operator==(const TrackExtremity&) const = default;

    Track* GetTrack() const { return m_track; }
    bool IsEnd() const { return m_atEnd; }
    // The first portion's start profile at the start, the last portion's end profile at the end; null
    // without a track or portion.
    Profile* GetProfile() const;
    // The axis point there with its centre-line altitude.
    void GetPosition(vek::Vector3& p) const;
    vek::Vector3 GetPosition() const;
    // The axis 3D tangent there, pointing from the node into the track (reversed at the end).
    void GetDirection(vek::Vector3& v) const;
    vek::Vector3 GetDirection() const;
    // The up axis of the centre-line frame there.
    void GetNormal(vek::Vector3& n) const;
    vek::Vector3 GetNormal() const;

private:
    Track* m_track = nullptr;
    bool m_atEnd = false;
};

// The element record holds the name, the names of the intersections at both ends, the axis curves and the
// portions. The runtime part holds what post-load resolves: the owning sub-network, the intersections at both
// ends, and the positions in the network's road list of the roads that pass over the track.
//
// As an axis, the curves are the record's, read as Orvia::Curve2D and Orvia::CartesianCurve whatever factory
// is installed. An elevation, banking or vertical-curvature curve without a piece is stood in for, once the
// axis is validated, by a default that only the queries see (saving writes the file's curves as they are):
// elevation linear from the start intersection's altitude to the end one's (0 for a free end), banking and
// vertical curvature zero. Post-load validates.
class Track : public Ruvex::TrackElement, public UserDataContainer, public Axis {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);
    // Documents up to this version are read by the legacy converter.
    static constexpr uint32_t kLegacyVersion = Ruvex::MakeVersionID(2, 1, 0);
    // Documents older than this stored banking with the opposite sign.
    static constexpr uint32_t kBankingSignVersion = Ruvex::MakeVersionID(2, 4, 3);
    // A lane narrower than this (m) has no cross slope: its height is the mean of its borders'.
    static constexpr double kNarrowLane = 1e-12;
    // Portions shorter than this (m) blend nothing into the mark; GetWidthAt reads them as their start.
    static constexpr double kShortPortion = 1e-12;
    static constexpr double kShortPortionWidth = 1e-5;
    // Portions may end this far (m) beyond the axis before a load says so: files round their lengths.
    static constexpr double kPortionOverrun = 1e-3;

    Track();
    explicit Track(SubNetwork* subNetwork);
    ~Track() override;

    // --- Axis
    // ------------------------------------------------------------------------------------------------
    Curve2D* GetXYCurve() const override;
    CartesianCurve* GetSZCurve() const override;
    CartesianCurve* GetBankingCurve() const override;
    // Lengths from the horizontal curve; the box margin is the maximum width.
    void UpdateCacheData() override;
    // The network above the sub-network, or null.
    Network* GetNetwork() const override;
    // ValidateAxis, then (once per invalidation) the maximum width. False when the axis is not usable.
    bool Validate() override;
    void Invalidate() override;
    // Chains the horizontal pieces and builds the default curves; false without a horizontal piece.
    bool ValidateAxis() override;
    // Runs the axis backwards: the curves (Axis::InvertCurves) and the two ends swap (names and links), the
    // intersections' anchors and banned links following (InvertTrackAnchorInfo).
    void InvertAxis() override;
    // With invertPortions the portions follow as in InvertPortionsProfiles(keepWay, true, true), so that the
    // track still describes the same road; otherwise only the axis runs backwards (InvertAxis()).
    void InvertAxis(bool invertPortions, bool keepWay);
    // A copy of the track (Clone).
    Axis* CloneAxis() const override;
    // Cuts the track at s (0 < s < length): this track keeps [0, s], the returned one (count 0, not added to
    // any sub-network, named by the sub-network's unique-name rule) takes [s, length] from abscissa 0.
    // Both halves sample the axis as the original did; the portion holding s is cut in two with the same
    // profiles, so where its two profiles differ the blend runs over the shorter stretches. The end node
    // moves to the new track. Null when s is outside the track or the axis is not usable.
    Axis* Split(double s) override;

    CartesianCurve* GetSZCurvatureCurve() const;
    // Replaces curve's pieces by the curvature of the elevation graph sampled every measure step from 0 and
    // at the length, joined linearly. False (curve untouched) for null, a step that is not positive and
    // finite, or an unusable axis.
    bool ComputeCurvatureCurve(CartesianCurve* curve) const;
    SubNetwork* GetSubNetwork() const { return m_subNetwork; }
    void SetSubNetwork(SubNetwork* subNetwork) {
        m_subNetwork = subNetwork;
        SetInSubNetwork(subNetwork);
    }

    // Renames the track and, in every road that lists it, the pieces that name it in its sub-network, and in
    // the intersections at its ends, the banned links and outline anchors that name it.
    void SetName(const std::string& name) override;
    // For `intersection`'s records that name this track: each contour anchor on it moves to the other end
    // and side (both flags negated) and each banned link's extremity word swaps ("start" <-> "end"), as when
    // the track runs backwards. InvertAxis does it for the intersections at both ends. Nothing for null.
    void InvertTrackAnchorInfo(Intersection* intersection);

    // Links an end to an intersection (null frees it) and stores the intersection's name ("" for null). When
    // the intersection changes, the old one drops the default bans of this end and the new one adds them
    // (Intersection::UpdateBannedTrackSelfLinks); nothing when that intersection is
    // already linked there.
    void SetStartIntersection(Intersection* intersection);
    void SetEndIntersection(Intersection* intersection);
    Intersection* GetStartIntersection() const { return m_startIntersection; }
    Intersection* GetEndIntersection() const { return m_endIntersection; }
    // The network's junction at that end, or null (also without sub-network or network).
    SubNetworkJunction* GetStartSubNetworkJunction() const;
    SubNetworkJunction* GetEndSubNetworkJunction() const;
    // The node at that end: the intersection when one is linked, else the network's junction, else null.
    TrackConnector* FindStartNode() const;
    TrackConnector* FindEndNode() const;

    // Positions in the network's road list of the roads over this track (filled by Road::InitTracksData).
    // AddRoad appends `roadIndex` unless it is already there; RemoveRoad removes it; ReplaceRoad changes the
    // first entry equal to `oldIndex` into `newIndex` (nothing when absent).
    void AddRoad(uint64_t roadIndex);
    void RemoveRoad(uint64_t roadIndex);
    void ReplaceRoad(uint64_t oldIndex, uint64_t newIndex);
    const std::vector<uint64_t>& GetInRoad() const { return m_inRoad; }
    // The road at position `i` of the in-road list, or null (out of range, or no network).
    Road* GetInRoad(size_t i) const;

    void SetRoadCategory(const std::string& category) { m_roadCategory = category; }
    const std::string& GetRoadCategory() const { return m_roadCategory; }
    void SetCurvatureCurveMeasureStep(double step) { m_curvatureStep = step; }
    double GetCurvatureCurveMeasureStep() const { return m_curvatureStep; }

    // Box of the axis in the sub-network's frame; empty without geometry. Built on the first call after a
    // load or an edit (which writes the cached box: not for concurrent first calls).
    vek::Box3 GetBoundingBox() const;

    // --- Portions ------------------------------------------------------------------------------------------
    // The typed view of the record's portions follows the edits made here; after editing the record's list
    // directly, call UpdatePortion.
    Portion* AddToPortionList();
    size_t GetPortionCount() const { return m_portions.size(); }
    Portion* GetPortion(size_t index) const {
        return index < m_portions.size() ? m_portions[index] : nullptr;
    }
    Portion* GetFirstPortion() const { return GetPortion(0); }
    Portion* GetLastPortion() const { return m_portions.empty() ? nullptr : m_portions.back(); }
    size_t GetPortionIndex(const Portion* portion) const;
    // Bisection over the end distances from the middle portion: an abscissa on a shared end goes to the
    // portion on the side the search meets it from (the middle portion keeps its own end), one past the last
    // end to the last portion, one below 0 to the first. npos without portions.
    size_t GetPortionIndexAt(double s) const;
    Portion* GetPortionAt(double s) const { return GetPortion(GetPortionIndexAt(s)); }
    // Start distance of portion `index` (the end of the one before; 0 for the first).
    double GetPortionStart(size_t index) const;
    // Cuts the portion holding s into two with the same profiles; the modifier stays with the first part, or
    // with modifierToSecond goes to the second. Without update the portions are not post-loaded and the track
    // not revalidated (for a batch of edits: call UpdatePortion after). False when s is not strictly inside a
    // portion.
    bool SplitPortion(double s, bool modifierToSecond = false, bool update = true);
    // Moves the end of portion `index` to s, kept between its start and the next portion's end (the last
    // portion's end stays at the track's length); false for a bad index or a non-finite s.
    bool ModifyPortion(size_t index, double s);
    // The same for the portion's start (atStart; the end of the portion before it, false for the first
    // portion) or its end.
    bool ModifyPortion(size_t index, bool atStart, double s);
    // Removes `count` portions from `first`; false when first is out of range.
    bool RemovePortion(size_t first, size_t count);
    // Rebuilds the typed view and post-loads every portion again.
    void UpdatePortion();

    // --- Geometry ------------------------------------------------------------------------------------------
    // Frame at (s, t): position (t to the right), yaw = heading, pitch = -dz/ds, roll = banking plus the
    // lane's cross slope, z = elevation banked at t plus the lane's height. Lane values are those of the
    // start and end profiles of the portion at s blended by (s - start) / length (not clamped: beyond the
    // track they extrapolate); a modified portion blends its borders first (each modified border following
    // its modifier) and takes the lane at t in that blend. On the centre line (t = 0) roll is 0 and z the
    // plain elevation. Const: reads the curves as validated (post-load validates). No allocation. False
    // (mark untouched) when the horizontal curve gives no point.
    bool GetMark(vek::Mark& mark, double s, const double& t) const;
    // Offsets (m) of the outer borders at s, blended in the portion at s (the first portion when none);
    // modified outer borders follow their modifiers. False (0, 0) without portions.
    bool GetWidthAt(double s, double& left, double& right) const;
    // Largest |offset| of any profile's outer border over the portions (as of the last validation).
    double GetMaxWidth() const { return m_maxWidth; }
    // Banking angle (radians) at s and its derivative along the axis (radians/m); 0 without a banking piece.
    double GetBanking(double s) const;
    double GetBankingTangent(double s) const;
    // Horizontal curvature (1/m) at (s, t), as the offset sample reads it (see Curve2D::OffsetPointData); 0
    // when the horizontal curve gives no point.
    double GetXYCurvature(double s, double t) const;
    // Curvature (1/m) of the elevation graph at s; 0 without an elevation piece.
    double GetSZCurvature(double s) const;
    // Index of the horizontal piece holding s, with its start abscissa; npos beyond the curve or without one.
    size_t GetXYFunctionIndex(double s, double& startAbscissa) const;
    // (0, 0, 0) without an intersection at that end; else the vector from the intersection's position to the
    // axis point at that end (its centre-line altitude as z).
    vek::Vector3 GetOffsetIn() const;
    vek::Vector3 GetOffsetOut() const;

    // --- Editing
    // --------------------------------------------------------------------------------------------- The
    // amount (capped at half the length) is taken off the end, or off the start with fromStart; with
    // cutElevation the elevation pieces beyond the new end go.
    void ShortenLength(double amount, bool fromStart, bool cutElevation);
    // Runs the track backwards: the axis, then each portion from the last to the first exchanges (and with
    // invertProfiles inverts) its profiles; with reverseOrder the portion list is reversed, so that the
    // portions cover the same stretches of road.
    void InvertPortionsProfiles(bool keepWay, bool reverseOrder, bool invertProfiles);
    // InvertPortionsProfiles(keepWay, true, true).
    void InvertTrack(bool keepWay);

    // --- Clipped data
    // ----------------------------------------------------------------------------------------
    // Appends `data` (null ignored): it takes this track as parent and the track's sub-network.
    void AddClippedData(TrackClippedData* data);
    // Removes `count` entries from `first` (clipped to the list); each forgets its track and sub-network.
    // False when `first` is out of range.
    bool RemoveClippedData(size_t first, size_t count);
    using TrackElement::GetClippedData;
    size_t GetClippedDataCount() const { return m_ClippedData.size(); }
    // Null out of range (or for a plain record).
    TrackClippedData* GetClippedData(size_t index) const;
    // npos when absent.
    size_t GetClippedDataIndex(const ClippedData* data) const;
    // The first entry named `name` exactly, or null.
    TrackClippedData* GetClippedDataByName(const char* name) const;

    // A copy with no sub-network (count 0; the caller owns it).
    Track* Clone() const;
    void CopyFrom(const Track* other);

    // After loading: stores the sub-network, empties the in-road list (roads register again), links each
    // end to the sub-network's intersection of the stored name (an unknown name leaves that end free); when
    // neither end is linked, an older file's "Legacy" child (intersection positions "firstIndex" and
    // "secondIndex") links the ends in range and is dropped; then post-loads the portions and validates.
    void PostLoad(SubNetwork* subNetwork);

    // The record is cleared first; documents up to kLegacyVersion go through the legacy converter, and the
    // banking of documents older than kBankingSignVersion is mirrored.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // The curve tags become runtime curves; children the record does not take are offered to the user data.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    // A record's curve as its runtime class, taken once. The view holds a reference to the curve, so that a
    // record still naming the same address names the same curve: queries compare addresses and skip the type
    // test; a replaced curve is typed again at each call until the next validation.
    template <class Typed, class Record>
    struct CurveView {
        Ruvex::CountedPtr<Record> held;
        Typed* typed = nullptr;
    };

    void RefreshPortionView();
    void RefreshCurveViews();
    void LinkByLegacyIndices();
    // Warns about (and mends) portion ends that do not tile the axis; see the definition.
    void CheckPortionDistances(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser);
    // Each clipped data entry takes this track and its sub-network and validates (post-load and validation).
    void AttachClippedData();
    void InvalidateClippedData();
    // The curve of the record when it has a piece, else the default (null before validation).
    CartesianCurve* Longitudinal(const Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& record,
                                 const CurveView<CartesianCurve, Ruvex::CartesianCurveElement>& view,
                                 const Ruvex::CountedPtr<CartesianCurve>& fallback) const;

    SubNetwork* m_subNetwork = nullptr;
    Intersection* m_startIntersection = nullptr;
    Intersection* m_endIntersection = nullptr;
    std::vector<uint64_t> m_inRoad;
    std::vector<Portion*> m_portions;
    bool m_trackValid = false;
    double m_maxWidth = 0;
    std::string m_roadCategory;
    double m_curvatureStep = 1.0;
    Ruvex::CountedPtr<CartesianCurve> m_defaultSZ;
    Ruvex::CountedPtr<CartesianCurve> m_defaultBanking;
    Ruvex::CountedPtr<CartesianCurve> m_defaultSZCurvature;
    CurveView<Curve2D, Ruvex::XYCurveElement> m_xyView;
    CurveView<CartesianCurve, Ruvex::CartesianCurveElement> m_szView;
    CurveView<CartesianCurve, Ruvex::CartesianCurveElement> m_bankingView;
    CurveView<CartesianCurve, Ruvex::CartesianCurveElement> m_szCurvatureView;
};

}  // namespace Orvia
