#include <orvia/topology/track.h>

#include <orvia/core/legacy_converter.h>
#include <orvia/core/network.h>
#include <orvia/core/orvia_factory.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/connector.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/portion.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <typeinfo>

namespace Orvia {

namespace {

// The exact type needs no search of the hierarchy; queries ask for the curves at every call.
template <class T, class Record>
T* As(Record* record) {
    if (!record) return nullptr;
    return typeid(*record) == typeid(T) ? static_cast<T*>(record) : dynamic_cast<T*>(record);
}

// What a host's factory makes for a curve tag, which the track takes when it is a runtime curve; null with no
// factory or ours, which make the plain record for these tags (the track then makes its own curve without
// making and dropping one).
Ruvex::CountedPtr<Ruvex::Element> MadeByHost(std::string_view tag) {
    const Ruvex::Factory* factory = Ruvex::GetFactory();
    if (!factory || typeid(*factory) == typeid(OrviaFactory)) return nullptr;
    return Ruvex::CountedPtr<Ruvex::Element>(Ruvex::CreateElement(std::string(tag)));
}

struct CrossValues {
    double slope = 0;   // -(dh / dw) across the lane
    double height = 0;  // m above the axis
};

// The rule of the lane at t between borders (lo, lh) and (ro, rh). The ratio tests |t|, not |t - lo|: lanes
// away from the axis thus read as flat beyond one lane width, which the files written so far rely on.
// Written as selects rather than branches: t and the lane it falls in vary from one query to the next.
CrossValues CrossFromBorders(double t, double lo, double lh, double ro, double rh) {
    const double w = ro - lo;
    const double width = std::fabs(w);
    const double rise = rh - lh;
    const bool narrow = width < Track::kNarrowLane;
    const double inside = lh + (std::fabs(t - lo) / width) * rise;
    const double outside = t - lo < lo ? lh : rh;
    const double height = std::fabs(t) / width < 1 ? inside : outside;
    return {narrow ? 0.0 : -rise / w, narrow ? 0.5 * (lh + rh) : height};
}

// The lane's borders by index: the lane itself is not read, and its keys need no search among the lanes.
CrossValues CrossOfProfile(const Profile* profile, double t) {
    if (!profile) return {};
    const size_t lane = profile->GetLaneIndexWithDistance(t);
    if (!profile->GetLane(lane)) return {};
    const LaneBorder* left = profile->GetLaneBorder(lane);
    const LaneBorder* right = profile->GetLaneBorder(lane + 1);
    return CrossFromBorders(t, left ? left->GetHorizDistToAxis() : 0.0,
                            left ? left->GetVertDistToAxis() : 0.0, right ? right->GetHorizDistToAxis() : 0.0,
                            right ? right->GetVertDistToAxis() : 0.0);
}

// A modified portion: the borders are blended first (a modified one follows its modifier), then the lane at
// t is taken in that blend as Profile::GetLaneWithDistance would.
CrossValues CrossOfModifiedPortion(const Portion& portion, double x, double r, double t) {
    const Profile* a = portion.GetStartProfile();
    const Profile* b = portion.GetEndProfile();
    const size_t count = a->GetLaneBorderCount();
    auto borderAt = [&](size_t i, double& offset, double& height) {
        const LaneBorder* p = a->GetLaneBorder(i);
        const LaneBorder* q = b->GetLaneBorder(i);
        const double po = p ? p->GetHorizDistToAxis() : 0.0, qo = q ? q->GetHorizDistToAxis() : 0.0;
        const double ph = p ? p->GetVertDistToAxis() : 0.0, qh = q ? q->GetVertDistToAxis() : 0.0;
        const BorderModifier* modifier = portion.GetModifiedBorder(i);
        offset = modifier ? modifier->GetDistanceFromAxis(x) : (1 - r) * po + r * qo;
        height = (1 - r) * ph + r * qh;
    };
    double lo = 0, lh = 0, ro = 0, rh = 0;
    borderAt(0, lo, lh);
    for (size_t i = 1; i < count; ++i) {
        borderAt(i, ro, rh);
        if (ro >= t || i + 1 == count) break;
        lo = ro;
        lh = rh;
    }
    return CrossFromBorders(t, lo, lh, ro, rh);
}

double FirstOffset(const Profile* profile) {
    const LaneBorder* border = profile ? profile->GetLaneBorder(0) : nullptr;
    return border ? border->GetHorizDistToAxis() : 0.0;
}

double LastOffset(const Profile* profile) {
    const size_t count = profile ? profile->GetLaneBorderCount() : 0;
    const LaneBorder* border = count ? profile->GetLaneBorder(count - 1) : nullptr;
    return border ? border->GetHorizDistToAxis() : 0.0;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// TrackExtremity

Profile* TrackExtremity::GetProfile() const {
    if (!m_track) return nullptr;
    const Portion* portion = m_atEnd ? m_track->GetLastPortion() : m_track->GetFirstPortion();
    if (!portion) return nullptr;
    return m_atEnd ? portion->GetEndProfile() : portion->GetStartProfile();
}

void TrackExtremity::GetPosition(vek::Vector3& p) const {
    p = vek::Vector3();
    if (!m_track) return;
    const double s = m_atEnd ? m_track->GetXYLength() : 0.0;
    m_track->GetPosition(p, s, 0.0);
}

vek::Vector3 TrackExtremity::GetPosition() const {
    vek::Vector3 p;
    GetPosition(p);
    return p;
}

void TrackExtremity::GetDirection(vek::Vector3& v) const {
    v = vek::Vector3();
    if (!m_track) return;
    if (!m_atEnd) {
        m_track->GetTangent(v, 0.0);
        return;
    }
    m_track->GetTangent(v, m_track->GetXYLength());
    v = v * -1.0;
}

vek::Vector3 TrackExtremity::GetDirection() const {
    vek::Vector3 v;
    GetDirection(v);
    return v;
}

void TrackExtremity::GetNormal(vek::Vector3& n) const {
    n = vek::Vector3(0, 0, 1);
    if (m_track) m_track->GetNormal(n, m_atEnd ? m_track->GetXYLength() : 0.0);
}

vek::Vector3 TrackExtremity::GetNormal() const {
    vek::Vector3 n;
    GetNormal(n);
    return n;
}

// ---------------------------------------------------------------------------------------------------------------
// Track: axis

Track::Track() = default;

Track::Track(SubNetwork* subNetwork) : Axis(subNetwork), m_subNetwork(subNetwork) {}

Track::~Track() = default;

Network* Track::GetNetwork() const {
    return m_subNetwork ? m_subNetwork->GetNetwork() : nullptr;
}

namespace {

template <class Typed, class Record, class View>
inline Typed* Viewed(const Ruvex::CountedPtr<Record>& record, const View& view) {
    return record.Get() == view.held.Get() ? view.typed : As<Typed>(record.Get());
}

template <class Typed, class Record, class View>
void Refresh(const Ruvex::CountedPtr<Record>& record, View& view) {
    if (record.Get() == view.held.Get()) return;
    view.held = record;
    view.typed = As<Typed>(record.Get());
}

}  // namespace

void Track::RefreshCurveViews() {
    Refresh<Curve2D>(m_XYCurve, m_xyView);
    Refresh<CartesianCurve>(m_SZCurve, m_szView);
    Refresh<CartesianCurve>(m_BankingCurve, m_bankingView);
    Refresh<CartesianCurve>(m_SZCurvatureCurve, m_szCurvatureView);
}

Curve2D* Track::GetXYCurve() const {
    return Viewed<Curve2D>(m_XYCurve, m_xyView);
}

inline CartesianCurve* Track::Longitudinal(
    const Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& record,
    const CurveView<CartesianCurve, Ruvex::CartesianCurveElement>& view,
    const Ruvex::CountedPtr<CartesianCurve>& fallback) const {
    CartesianCurve* curve = Viewed<CartesianCurve>(record, view);
    if (curve && curve->GetFunctionCount() > 0) return curve;
    return fallback ? fallback.Get() : curve;
}

CartesianCurve* Track::GetSZCurve() const {
    return Longitudinal(m_SZCurve, m_szView, m_defaultSZ);
}

CartesianCurve* Track::GetBankingCurve() const {
    return Longitudinal(m_BankingCurve, m_bankingView, m_defaultBanking);
}

CartesianCurve* Track::GetSZCurvatureCurve() const {
    return Longitudinal(m_SZCurvatureCurve, m_szCurvatureView, m_defaultSZCurvature);
}

void Track::UpdateCacheData() {
    const Curve2D* xy = GetXYCurve();
    const double length = xy ? xy->GetLength() : 0.0;
    SetCachedXYLength(length);
    SetCachedTotalLength(length);
    SetBoundingMargin(m_maxWidth);
}

bool Track::Validate() {
    const bool axisWasValid = IsAxisValid();
    if (!ValidateAxis()) return false;
    if (!IsXYLengthValid()) UpdateCacheData();
    SetXYLengthValid(true);
    if (!m_trackValid) {
        for (const Portion* portion : m_portions) {
            if (!portion) continue;
            for (const Profile* profile : {portion->GetStartProfile(), portion->GetEndProfile()})
                m_maxWidth =
                    std::max({m_maxWidth, std::fabs(FirstOffset(profile)), std::fabs(LastOffset(profile))});
        }
        m_trackValid = true;
        SetBoundingMargin(m_maxWidth);
        AttachClippedData();
    }
    // The box samples every piece a hundred times: built on its first query, not at every load.
    if (!axisWasValid) InvalidateBoundingBox();
    return true;
}

void Track::Invalidate() {
    Axis::Invalidate();
    m_trackValid = false;
    InvalidateClippedData();
    // The nodes' outlines follow the track's borders.
    if (m_startIntersection) m_startIntersection->Invalidate();
    if (m_endIntersection) m_endIntersection->Invalidate();
}

bool Track::ValidateAxis() {
    RefreshCurveViews();
    if (IsAxisValid()) return true;
    Curve2D* xy = GetXYCurve();
    if (!xy || xy->GetFunctionCount() == 0) return false;
    xy->UpdateFunctionsFromStart();
    UpdateCacheData();
    const double length = xy->GetLength();
    auto hasPiece = [](const Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& record) {
        const CartesianCurve* curve = As<CartesianCurve>(record.Get());
        return curve && curve->GetFunctionCount() > 0;
    };
    // The tags made once: "SZCurvatureCurve" does not fit a string's own buffer.
    static const std::string kSZ = "SZCurve", kBanking = "BankingCurve", kSZCurvature = "SZCurvatureCurve";
    auto line = [length](const std::string& tag, double z0, double z1) {
        Ruvex::CountedPtr<CartesianCurve> curve(new CartesianCurve(tag));
        auto* piece = new PolynomialFunction;
        piece->SetLinear({0, z0}, {length, z1});
        curve->AddFunction(piece);
        return curve;
    };
    m_defaultSZ = nullptr;
    m_defaultBanking = nullptr;
    m_defaultSZCurvature = nullptr;
    if (!hasPiece(m_SZCurve))
        m_defaultSZ = line(kSZ, m_startIntersection ? m_startIntersection->GetPosition().z : 0.0,
                           m_endIntersection ? m_endIntersection->GetPosition().z : 0.0);
    if (!hasPiece(m_BankingCurve)) m_defaultBanking = line(kBanking, 0, 0);
    if (!hasPiece(m_SZCurvatureCurve)) m_defaultSZCurvature = line(kSZCurvature, 0, 0);
    SetAxisValid(true);
    SetXYLengthValid(true);
    return true;
}

void Track::InvertAxis() {
    // The nodes' records see the track from its other end now.
    InvertTrackAnchorInfo(m_startIntersection);
    if (m_endIntersection != m_startIntersection) InvertTrackAnchorInfo(m_endIntersection);
    InvertCurves();
    std::swap(m_startIntersection, m_endIntersection);
    std::swap(m_StartIntersectionName, m_EndIntersectionName);
    Invalidate();
    Validate();
}

void Track::InvertAxis(bool invertPortions, bool keepWay) {
    if (invertPortions)
        InvertPortionsProfiles(keepWay, true, true);
    else
        InvertAxis();
}

Axis* Track::CloneAxis() const {
    return Clone();
}

bool Track::ComputeCurvatureCurve(CartesianCurve* curve) const {
    const Curve2D* xy = GetXYCurve();
    if (!curve || !(m_curvatureStep > 0) || !std::isfinite(m_curvatureStep) || !IsAxisValid() || !xy)
        return false;
    const double length = xy->GetLength();
    if (!(length > 0)) return false;
    curve->Clear();
    double s0 = 0, k0 = GetSZCurvature(0);
    for (size_t i = 1; s0 < length; ++i) {
        // A last step shorter than a micrometre would make a needless sliver.
        double s1 = std::min(length, static_cast<double>(i) * m_curvatureStep);
        if (length - s1 < 1e-6) s1 = length;
        const double k1 = GetSZCurvature(s1);
        auto* piece = new PolynomialFunction;
        piece->SetLinear({s0, k0}, {s1, k1});
        curve->AddFunction(piece);
        s0 = s1;
        k0 = k1;
    }
    return true;
}

double Track::GetBanking(double s) const {
    const CartesianCurve* banking = GetBankingCurve();
    const PolynomialFunction* f = banking ? banking->GetFunctionAt(s) : nullptr;
    return f ? f->GetValue(s) : 0.0;
}

double Track::GetBankingTangent(double s) const {
    const CartesianCurve* banking = GetBankingCurve();
    const PolynomialFunction* f = banking ? banking->GetFunctionAt(s) : nullptr;
    return f ? f->GetDerivative(s) : 0.0;
}

double Track::GetXYCurvature(double s, double t) const {
    const Curve2D* xy = GetXYCurve();
    PointData pd;
    return xy && xy->GetPointData(s, t, pd) ? pd.curvature : 0.0;
}

double Track::GetSZCurvature(double s) const {
    const CartesianCurve* sz = GetSZCurve();
    const PolynomialFunction* f = sz ? sz->GetFunctionAt(s) : nullptr;
    return f ? f->GetCurvature(s) : 0.0;
}

size_t Track::GetXYFunctionIndex(double s, double& startAbscissa) const {
    const Curve2D* xy = GetXYCurve();
    return xy ? xy->GetFunctionIndex(s, startAbscissa) : npos;
}

vek::Vector3 Track::GetOffsetIn() const {
    if (!m_startIntersection) return {};
    return TrackExtremity(const_cast<Track*>(this), false).GetPosition() - m_startIntersection->GetPosition();
}

vek::Vector3 Track::GetOffsetOut() const {
    if (!m_endIntersection) return {};
    return TrackExtremity(const_cast<Track*>(this), true).GetPosition() - m_endIntersection->GetPosition();
}

vek::Box3 Track::GetBoundingBox() const {
    vek::Box3 box;
    const_cast<Track*>(this)->Axis::GetBoundingBox(box);
    return box;
}

// ---------------------------------------------------------------------------------------------------------------
// Track: queries

namespace {

using PortionList = std::vector<Ruvex::CountedPtr<Ruvex::PortionElement>>;

inline double PortionEnd(const PortionList& portions, size_t i) {
    return portions[i] ? portions[i]->GetEndDistance() : 0.0;
}

// Here rather than a member so that the queries of this file inline it.
inline size_t PortionIndexAt(const PortionList& portions, double s) {
    const size_t n = portions.size();
    if (n == 0) return Track::npos;
    auto bisect = [&](size_t lo, size_t hi) {
        for (;;) {
            const size_t k = lo + (hi - lo) / 2;
            if (s <= PortionEnd(portions, k)) {
                if (k == 0 || PortionEnd(portions, k - 1) <= s) return k;
                if (k == lo) return lo;
                hi = k;
            } else {
                if (k == hi - 1) return hi - 1;
                lo = k;
            }
        }
    };
    const size_t m = n / 2;
    if (s > PortionEnd(portions, m)) return m == n - 1 ? n - 1 : bisect(m, n);
    if (n > 1 && PortionEnd(portions, m - 1) > s) return bisect(0, m);
    return m;
}

inline double PortionStart(const PortionList& portions, size_t index) {
    return index == 0 || index > portions.size() ? 0.0 : PortionEnd(portions, index - 1);
}

}  // namespace

size_t Track::GetPortionIndexAt(double s) const {
    return PortionIndexAt(m_Portions, s);
}

double Track::GetPortionStart(size_t index) const {
    return PortionStart(m_Portions, index);
}

bool Track::GetMark(vek::Mark& mark, double s, const double& t) const {
    // Every look-up comes before the horizontal sampling: their loads then overlap with it instead of waiting
    // for it (the curves and portions of a track are seldom in cache).
    const Curve2D* xy = GetXYCurve();
    if (!xy) return false;
    const CartesianCurve* sz = GetSZCurve();
    const PolynomialFunction* elevation = sz ? sz->GetFunctionAt(s) : nullptr;
    const PolynomialFunction* bankingPiece = nullptr;
    size_t index = npos;
    if (t != 0) {
        const CartesianCurve* bankingCurve = GetBankingCurve();
        bankingPiece = bankingCurve ? bankingCurve->GetFunctionAt(s) : nullptr;
        index = PortionIndexAt(m_Portions, s);
    }
    PointData pd;
    if (!xy->GetPointData(s, t, pd)) return false;
    double z = 0, p = 0;
    if (elevation) {
        z = elevation->GetValue(s);
        p = elevation->GetDerivative(s);
    }
    double roll = 0;
    if (t != 0) {
        const double banking = bankingPiece ? bankingPiece->GetValue(s) : 0.0;
        z = ApplyBankingOnAltitude(z, t, banking);
        roll = banking;
        if (const Portion* portion = GetPortion(index)) {
            const double start = PortionStart(m_Portions, index);
            const double length = portion->GetEndDistance() - start;
            if (length >= kShortPortion) {
                const double r = (s - start) / length;
                const Profile* a = portion->GetStartProfile();
                const Profile* b = portion->GetEndProfile();
                // The portion keeps modified borders only between profiles with the same borders.
                if (a && b && portion->HasModifiedBorders()) {
                    const CrossValues values = CrossOfModifiedPortion(*portion, s - start, r, t);
                    roll += values.slope;
                    z += values.height;
                } else if (a == b) {
                    // Most portions keep one profile: nothing to blend.
                    const CrossValues values = CrossOfProfile(a, t);
                    roll += values.slope;
                    z += values.height;
                } else {
                    const CrossValues va = CrossOfProfile(a, t);
                    const CrossValues vb = CrossOfProfile(b, t);
                    roll += (1 - r) * va.slope + r * vb.slope;
                    z += (1 - r) * va.height + r * vb.height;
                }
            }
        }
    }
    mark.position = {pd.position.x, pd.position.y, z};
    mark.roll = roll;
    mark.pitch = -p;
    mark.yaw = pd.heading;
    return true;
}

bool Track::GetWidthAt(double s, double& left, double& right) const {
    left = right = 0;
    size_t index = PortionIndexAt(m_Portions, s);
    const Portion* portion = GetPortion(index);
    if (!portion) {
        index = 0;
        portion = GetFirstPortion();
    }
    if (!portion) return false;
    const double start = PortionStart(m_Portions, index);
    const double d = portion->GetEndDistance() - start;
    const double r = d < kShortPortionWidth ? 0.0 : (s - start) / d;
    const Profile* a = portion->GetStartProfile();
    const Profile* b = portion->GetEndProfile();
    left = (1 - r) * FirstOffset(a) + r * FirstOffset(b);
    right = (1 - r) * LastOffset(a) + r * LastOffset(b);
    if (const BorderModifier* first = portion->GetModifiedBorder(0))
        left = first->GetDistanceFromAxis(s - start);
    if (const BorderModifier* last = portion->GetModifiedBorder(portion->GetLastBorderId()))
        right = last->GetDistanceFromAxis(s - start);
    return true;
}

namespace {

const char* OtherExtremity(const std::string& word) {
    return word == "start" ? "end" : (word == "end" ? "start" : nullptr);
}

}  // namespace

void Track::InvertTrackAnchorInfo(Intersection* intersection) {
    if (!intersection) return;
    for (const auto& piece : intersection->GetContourPieces()) {
        if (!piece) continue;
        if (piece->GetStartAnchorTrack() == m_name) {
            piece->SetStartAnchorOnTrackEnd(!piece->GetStartAnchorOnTrackEnd());
            piece->SetStartAnchorOnLeftSide(!piece->GetStartAnchorOnLeftSide());
        }
        if (piece->GetEndAnchorTrack() == m_name) {
            piece->SetEndAnchorOnTrackEnd(!piece->GetEndAnchorOnTrackEnd());
            piece->SetEndAnchorOnLeftSide(!piece->GetEndAnchorOnLeftSide());
        }
    }
    for (const auto& pair : intersection->GetBannedLinks()) {
        if (!pair) continue;
        if (const char* word = OtherExtremity(pair->GetFromTrackBoundInfo());
            word && pair->GetFromTrack() == m_name)
            pair->SetFromTrackBoundInfo(word);
        if (const char* word = OtherExtremity(pair->GetToTrackBoundInfo());
            word && pair->GetToTrack() == m_name)
            pair->SetToTrackBoundInfo(word);
    }
}

void Track::SetName(const std::string& name) {
    if (name == m_name) return;
    if (Network* network = GetNetwork()) {
        const std::string& subNetworkName = m_subNetwork->GetName();
        for (uint64_t roadIndex : m_inRoad) {
            Road* road = network->GetRoad(roadIndex);
            if (!road) continue;
            for (size_t i = 0; i < road->GetRoadPieceCount(); ++i) {
                RoadPiece* piece = road->GetRoadPiece(i);
                if (piece && piece->GetSubNetworkName() == subNetworkName && piece->GetTrackName() == m_name)
                    piece->SetTrackName(name);
            }
        }
    }
    // The nodes name the track in their banned links and outline anchors.
    if (m_startIntersection) m_startIntersection->ReplaceTrackName(m_name, name);
    if (m_endIntersection && m_endIntersection != m_startIntersection)
        m_endIntersection->ReplaceTrackName(m_name, name);
    TrackElement::SetName(name);
}

// The default elevation runs between the two nodes' altitudes: a new node rebuilds it. Turning back into
// the same track end is banned by default at the new node, and those bans leave the old one.
void Track::SetStartIntersection(Intersection* intersection) {
    if (intersection == m_startIntersection) return;
    if (m_startIntersection) {
        m_startIntersection->UpdateBannedTrackSelfLinks(this, false, true);
        m_startIntersection->Invalidate();
    }
    if (intersection) intersection->UpdateBannedTrackSelfLinks(this, false, false);
    m_startIntersection = intersection;
    m_StartIntersectionName = intersection ? intersection->GetName() : std::string();
    Invalidate();
}

void Track::SetEndIntersection(Intersection* intersection) {
    if (intersection == m_endIntersection) return;
    if (m_endIntersection) {
        m_endIntersection->UpdateBannedTrackSelfLinks(this, true, true);
        m_endIntersection->Invalidate();
    }
    if (intersection) intersection->UpdateBannedTrackSelfLinks(this, true, false);
    m_endIntersection = intersection;
    m_EndIntersectionName = intersection ? intersection->GetName() : std::string();
    Invalidate();
}

SubNetworkJunction* Track::GetStartSubNetworkJunction() const {
    Network* network = GetNetwork();
    return network ? network->GetSubNetworkJunction(this, true) : nullptr;
}

SubNetworkJunction* Track::GetEndSubNetworkJunction() const {
    Network* network = GetNetwork();
    return network ? network->GetSubNetworkJunction(this, false) : nullptr;
}

TrackConnector* Track::FindStartNode() const {
    if (m_startIntersection) return m_startIntersection;
    return GetStartSubNetworkJunction();
}

TrackConnector* Track::FindEndNode() const {
    if (m_endIntersection) return m_endIntersection;
    return GetEndSubNetworkJunction();
}

void Track::AddRoad(uint64_t roadIndex) {
    if (std::find(m_inRoad.begin(), m_inRoad.end(), roadIndex) == m_inRoad.end())
        m_inRoad.push_back(roadIndex);
}

void Track::RemoveRoad(uint64_t roadIndex) {
    std::erase(m_inRoad, roadIndex);
}

void Track::ReplaceRoad(uint64_t oldIndex, uint64_t newIndex) {
    auto it = std::find(m_inRoad.begin(), m_inRoad.end(), oldIndex);
    if (it != m_inRoad.end()) *it = newIndex;
}

Road* Track::GetInRoad(size_t i) const {
    Network* network = GetNetwork();
    return network && i < m_inRoad.size() ? network->GetRoad(m_inRoad[i]) : nullptr;
}

// ---------------------------------------------------------------------------------------------------------------
// Track: portions

void Track::RefreshPortionView() {
    m_portions.clear();
    m_portions.reserve(m_Portions.size());
    for (const auto& item : m_Portions) {
        auto* portion = dynamic_cast<Portion*>(item.Get());
        if (portion) portion->SetTrack(this);
        m_portions.push_back(portion);
    }
}

Portion* Track::AddToPortionList() {
    Ruvex::CountedPtr<Portion> portion(new Portion(this));
    m_Portions.push_back(portion);
    m_portions.push_back(portion.Get());
    Invalidate();
    return portion.Get();
}

size_t Track::GetPortionIndex(const Portion* portion) const {
    if (!portion) return npos;
    const auto it = std::find(m_portions.begin(), m_portions.end(), portion);
    return it == m_portions.end() ? npos : static_cast<size_t>(it - m_portions.begin());
}

bool Track::SplitPortion(double s, bool modifierToSecond, bool update) {
    const size_t index = GetPortionIndexAt(s);
    Portion* portion = GetPortion(index);
    if (!portion || !(s > GetPortionStart(index) && s < portion->GetEndDistance())) return false;
    Ruvex::CountedPtr<Portion> second(new Portion(this));
    second->CopyFrom(portion);
    if (modifierToSecond)
        portion->SetProfileModifier(nullptr);
    else
        second->SetProfileModifier(nullptr);
    m_Portions.insert(m_Portions.begin() + static_cast<std::ptrdiff_t>(index) + 1, second);
    portion->SetEndDistance(s);
    if (update) {
        UpdatePortion();
    } else {
        RefreshPortionView();
        Invalidate();
    }
    return true;
}

bool Track::ModifyPortion(size_t index, double s) {
    Portion* portion = GetPortion(index);
    if (!portion || !std::isfinite(s) || index + 1 == m_portions.size()) return false;
    const double next = m_Portions[index + 1] ? m_Portions[index + 1]->GetEndDistance() : s;
    portion->SetEndDistance(std::clamp(s, GetPortionStart(index), std::max(GetPortionStart(index), next)));
    UpdatePortion();
    return true;
}

bool Track::ModifyPortion(size_t index, bool atStart, double s) {
    if (!atStart) return ModifyPortion(index, s);
    return index > 0 && index < m_portions.size() && ModifyPortion(index - 1, s);
}

bool Track::RemovePortion(size_t first, size_t count) {
    if (first >= m_Portions.size()) return false;
    const size_t last = std::min(m_Portions.size(), first + std::min(count, m_Portions.size()));
    m_Portions.erase(m_Portions.begin() + static_cast<std::ptrdiff_t>(first),
                     m_Portions.begin() + static_cast<std::ptrdiff_t>(last));
    UpdatePortion();
    return true;
}

void Track::UpdatePortion() {
    RefreshPortionView();
    for (Portion* portion : m_portions)
        if (portion) portion->PostLoad(this);
    Invalidate();
    Validate();
}

// ---------------------------------------------------------------------------------------------------------------
// Track: editing

void Track::ShortenLength(double amount, bool fromStart, bool cutElevation) {
    if (!Validate()) return;
    const double length = GetXYLength();
    amount = std::clamp(amount, 0.0, 0.5 * length);
    const double newLength = length - amount;
    if (fromStart) InvertAxis();
    if (cutElevation)
        if (CartesianCurve* sz = As<CartesianCurve>(m_SZCurve.Get()); sz && sz->GetFunctionCount() > 0) {
            const size_t index = sz->GetFunctionIndexAt(newLength);
            sz->SplitFunction(index, newLength);
            const size_t keep = sz->GetFunctionIndexAt(newLength) + 1;
            if (keep < sz->GetFunctionCount()) sz->RemoveFunction(keep, sz->GetFunctionCount() - keep);
        }
    SetXYLength(newLength);
    SetAxisValid(false);
    Invalidate();
    Validate();
    if (fromStart) InvertAxis();
}

void Track::InvertPortionsProfiles(bool keepWay, bool reverseOrder, bool invertProfiles) {
    InvertAxis();
    const double length = GetXYLength();
    for (size_t i = m_portions.size(); i-- > 0;)
        if (m_portions[i]) m_portions[i]->InvertProfile(keepWay, true, invertProfiles, length);
    if (reverseOrder) std::reverse(m_Portions.begin(), m_Portions.end());
    UpdatePortion();
}

void Track::InvertTrack(bool keepWay) {
    InvertPortionsProfiles(keepWay, true, true);
}

namespace {

// Keeps the part of `curve` before s (keepBefore) or after it, the latter moved to start at abscissa 0.
void CutLongitudinal(CartesianCurve& curve, double s, bool keepBefore) {
    if (curve.GetFunctionCount() == 0) return;
    const size_t index = curve.GetFunctionIndexAt(s);
    curve.SplitFunction(index, s);
    // The piece ending at s, after the cut.
    size_t last = curve.GetFunctionIndexAt(s);
    if (const PolynomialFunction* f = curve.GetFunction(last);
        f && f->GetXMax() < s && last + 1 < curve.GetFunctionCount())
        ++last;
    if (keepBefore) {
        if (last + 1 < curve.GetFunctionCount())
            curve.RemoveFunction(last + 1, curve.GetFunctionCount() - last - 1);
        return;
    }
    const PolynomialFunction* f = curve.GetFunction(last);
    const size_t first = f && f->GetXMax() <= s && last + 1 < curve.GetFunctionCount() ? last + 1 : last;
    if (first > 0) curve.RemoveFunction(0, first);
    curve.Offset({-s, 0});
}

}  // namespace

Axis* Track::Split(double s) {
    if (!Validate()) return nullptr;
    const double length = GetXYLength();
    if (!(s > 0 && s < length)) return nullptr;
    Ruvex::CountedPtr<Track> second(Clone());
    second->SetName(m_subNetwork ? m_subNetwork->GetUniqueTrackName(m_name) : m_name);
    // Horizontal: the pieces keep their placement, so the second part starts where the first now ends.
    Curve2D* xy = second->GetXYCurve();
    double pieceStart = 0;
    const size_t index = xy->GetFunctionIndex(s, pieceStart);
    const ParametricFunction* piece = xy->GetFunction(index);
    const double pieceLength = piece ? piece->GetLength() : 0.0;
    size_t drop = index;
    if (pieceLength > 0 && s - pieceStart > Curve2D::kLengthTolerance &&
        xy->SplitFunction(index, (s - pieceStart) / pieceLength))
        drop = index + 1;
    else if (pieceLength > 0 && pieceStart + pieceLength - s <= Curve2D::kLengthTolerance)
        drop = index + 1;
    if (drop > 0) xy->RemoveFunction(0, drop);
    SetXYLength(s);
    // Longitudinal curves, defaults included, so that both halves keep the original's profile.
    using Slot = Ruvex::CountedPtr<Ruvex::CartesianCurveElement> Track::*;
    const Slot slots[] = {&Track::m_SZCurve, &Track::m_BankingCurve, &Track::m_SZCurvatureCurve};
    CartesianCurve* sources[] = {GetSZCurve(), GetBankingCurve(), GetSZCurvatureCurve()};
    for (size_t i = 0; i < 3; ++i) {
        if (!sources[i]) continue;
        Ruvex::CountedPtr<CartesianCurve> before(sources[i]->Clone());
        Ruvex::CountedPtr<CartesianCurve> after(sources[i]->Clone());
        CutLongitudinal(*before, s, true);
        CutLongitudinal(*after, s, false);
        this->*slots[i] = before.Get();
        second.Get()->*slots[i] = after.Get();
    }
    // Portions: the one holding s is cut in two.
    const size_t at = GetPortionIndexAt(s);
    if (at != npos) {
        const bool onEnd = m_Portions[at] && m_Portions[at]->GetEndDistance() <= s;
        if (at + 1 < m_Portions.size())
            m_Portions.erase(m_Portions.begin() + static_cast<std::ptrdiff_t>(at) + 1, m_Portions.end());
        m_Portions[at]->SetEndDistance(s);
        auto& theirs = second->m_Portions;
        theirs.erase(theirs.begin(), theirs.begin() + static_cast<std::ptrdiff_t>(onEnd ? at + 1 : at));
        for (auto& portion : theirs)
            portion->SetEndDistance(portion->GetEndDistance() - s);
        if (!theirs.empty()) theirs.back()->SetEndDistance(length - s);
    }
    second->m_startIntersection = nullptr;
    second->m_StartIntersectionName.clear();
    m_endIntersection = nullptr;
    m_EndIntersectionName.clear();
    UpdatePortion();
    second->SetSubNetwork(m_subNetwork);
    second->UpdatePortion();
    second->SetSubNetwork(nullptr);
    // Handed over with count 0, like Clone.
    Track* result = second.Get();
    result->AddRef();
    second = nullptr;
    result->SetRefCount(0);
    return result;
}

Track* Track::Clone() const {
    auto* copy = new Track;
    copy->CopyFrom(this);
    return copy;
}

void Track::CopyFrom(const Track* other) {
    if (!other || other == this) return;
    TrackElement::operator=(*other);
    UserDataContainer::CopyFrom(other);
    // Deep copies of the curves, so that edits of the copy leave the original alone.
    if (const Curve2D* xy = other->GetXYCurve()) m_XYCurve = new Curve2D(*xy);
    auto copyCurve = [](const Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& from) {
        const CartesianCurve* curve = As<CartesianCurve>(from.Get());
        return Ruvex::CountedPtr<Ruvex::CartesianCurveElement>(curve ? curve->Clone() : from.Get());
    };
    m_SZCurve = copyCurve(other->m_SZCurve);
    m_BankingCurve = copyCurve(other->m_BankingCurve);
    m_SZCurvatureCurve = copyCurve(other->m_SZCurvatureCurve);
    m_Portions.clear();
    for (const Portion* portion : other->m_portions)
        if (portion) {
            Ruvex::CountedPtr<Portion> copy(new Portion(this));
            copy->CopyFrom(portion);
            m_Portions.push_back(copy);
        }
    m_startIntersection = other->m_startIntersection;
    m_endIntersection = other->m_endIntersection;
    m_roadCategory = other->m_roadCategory;
    m_curvatureStep = other->m_curvatureStep;
    RefreshPortionView();
    for (Portion* portion : m_portions)
        portion->PostLoad(this);
    Invalidate();
    Validate();
}

void Track::PostLoad(SubNetwork* subNetwork) {
    SetSubNetwork(subNetwork);
    m_inRoad.clear();
    m_startIntersection = nullptr;
    m_endIntersection = nullptr;
    if (!subNetwork) return;
    // An empty name is a free end, whatever an unnamed intersection may exist. The banned links were saved
    // with the file: linking here leaves them as they are.
    if (!m_StartIntersectionName.empty())
        m_startIntersection = subNetwork->GetIntersectionByName(m_StartIntersectionName);
    if (!m_EndIntersectionName.empty())
        m_endIntersection = subNetwork->GetIntersectionByName(m_EndIntersectionName);
    if (!m_startIntersection && !m_endIntersection) LinkByLegacyIndices();
    Invalidate();
    UpdatePortion();
    AttachClippedData();
}

namespace {

// The index an older file's "Legacy" record gives in `attribute`; -1 when absent or not a number.
int64_t LegacyIndex(const Ruvex::Element& record, std::string_view attribute) {
    if (const auto* typed = dynamic_cast<const Ruvex::LegacyElement*>(&record))
        return attribute == "firstIndex" ? typed->GetFirstIndex() : typed->GetSecondIndex();
    const Ruvex::PreservedContent* content = record.GetPreserved();
    if (!content) return -1;
    for (const Ruvex::PreservedAttribute& a : content->attributes)
        if (a.name == attribute) {
            char* end = nullptr;
            const long long value = std::strtoll(a.value.c_str(), &end, 10);
            return end && *end == '\0' && end != a.value.c_str() ? value : -1;
        }
    return -1;
}

}  // namespace

// Files written before ends were named gave the positions of the two intersections in the sub-network's list,
// in a "Legacy" child that no class takes: it is read once and dropped.
void Track::LinkByLegacyIndices() {
    const Ruvex::PreservedContent* content = GetPreserved();
    if (!content || !m_subNetwork) return;
    for (size_t i = 0; i < content->nodes.size(); ++i) {
        const Ruvex::Element* record = content->nodes[i].element.Get();
        if (content->nodes[i].kind != Ruvex::NodeKind::Element || !record || record->GetTagName() != "Legacy")
            continue;
        const size_t count = m_subNetwork->GetIntersectionCount();
        const int64_t first = LegacyIndex(*record, "firstIndex");
        const int64_t second = LegacyIndex(*record, "secondIndex");
        if (first >= 0 && static_cast<uint64_t>(first) < count)
            SetStartIntersection(m_subNetwork->GetIntersectionByIndex(static_cast<size_t>(first)));
        if (second >= 0 && static_cast<uint64_t>(second) < count)
            SetEndIntersection(m_subNetwork->GetIntersectionByIndex(static_cast<size_t>(second)));
        auto& nodes = EditPreserved().nodes;
        nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(i));
        return;
    }
}

bool Track::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_XYCurve = nullptr;
    m_SZCurve = nullptr;
    m_BankingCurve = nullptr;
    m_SZCurvatureCurve = nullptr;
    m_Portions.clear();
    m_portions.clear();
    m_ClippedData.clear();
    ClearUserData();
    Invalidate();
    const uint32_t version = parser->GetVersion();
    const bool loaded = version <= kLegacyVersion
                            ? QorOldData::DataConverter::LoadTrack(this, element, parser)
                            : TrackElement::LoadFromXMLElement(element, parser);
    // Saving writes the current version, so the sign is corrected once, here.
    if (version < kBankingSignVersion)
        if (CartesianCurve* banking = As<CartesianCurve>(m_BankingCurve.Get())) banking->InvertY();
    RefreshPortionView();
    if (loaded) CheckPortionDistances(element, parser);
    return loaded;
}

// Portions are read as tiling the axis in increasing order: an end that is not a distance, or that goes back,
// becomes the end before it (the portion is empty); portions beyond the axis are only said, since queries
// there extrapolate anyway.
void Track::CheckPortionDistances(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    std::vector<Ruvex::IDOMElement*> places;
    for (Ruvex::IDOMElement* child = element->GetFirstChild(); child; child = child->GetNextSibling())
        if (child->GetTagName() == "Portion") places.push_back(child);
    // Without one place per portion the warnings could point at the wrong element.
    if (places.size() != m_Portions.size()) places.assign(m_Portions.size(), element);
    double previous = 0;
    for (size_t i = 0; i < m_Portions.size(); ++i) {
        Ruvex::PortionElement* portion = m_Portions[i].Get();
        if (!portion) continue;
        const double end = portion->GetEndDistance();
        if (!(end >= previous)) {
            char text[200];
            std::snprintf(
                text, sizeof text,
                "attribute \"endDistance\" of <Portion> is %.17g, not at or after its start %.17g: read "
                "as %.17g",
                end, previous, previous);
            parser->ReportWarning(places[i], text);
            portion->SetEndDistance(previous);
        }
        previous = portion->GetEndDistance();
    }
    const Curve2D* xy = GetXYCurve();
    const double length = xy ? xy->GetLength() : 0.0;
    if (!m_Portions.empty() && xy && previous > length + kPortionOverrun) {
        char text[160];
        std::snprintf(text, sizeof text, "the portions of <Track> run to %.17g, beyond its length %.17g",
                      previous, length);
        parser->ReportWarning(places.back(), text);
    }
}

bool Track::LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) {
    if (!child || !parser) return false;
    const std::string_view tag = child->GetTagName();
    // A second curve of one kind is kept as read, not taken as the curve.
    // Asked of the factory first, so that a host's class is used when it is a runtime curve.
    if (tag == "XYCurve") {
        if (m_XYCurve) return false;
        Ruvex::CountedPtr<Ruvex::Element> made = MadeByHost(tag);
        Ruvex::CountedPtr<Curve2D> curve(As<Curve2D>(made.Get()));
        if (!curve) curve = new Curve2D;
        if (!curve->LoadFromXMLElement(child, parser)) return false;
        m_XYCurve = curve.Get();
        return true;
    }
    if (tag == "SZCurve" || tag == "BankingCurve" || tag == "SZCurvatureCurve") {
        Ruvex::CountedPtr<Ruvex::CartesianCurveElement>& slot =
            tag == "SZCurve" ? m_SZCurve : (tag == "BankingCurve" ? m_BankingCurve : m_SZCurvatureCurve);
        if (slot) return false;
        Ruvex::CountedPtr<Ruvex::Element> made = MadeByHost(tag);
        Ruvex::CountedPtr<CartesianCurve> curve(As<CartesianCurve>(made.Get()));
        if (!curve) curve = new CartesianCurve(std::string(tag));
        if (!curve->LoadFromXMLElement(child, parser)) return false;
        slot = curve.Get();
        return true;
    }
    if (TrackElement::LoadChild(child, parser)) return true;
    return TryToLoadElement(child, parser);
}

Ruvex::IDOMElement* Track::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = TrackElement::BuildXMLElement(parser);
    if (element) ToElement(element, parser);
    return element;
}

}  // namespace Orvia
