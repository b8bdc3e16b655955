#pragma once

// Clipped data: objects placed on the network either relative to a track (in track coordinates, within a
// scope) or at a fixed mark under a parent element. Each carries user data.

#include <orvia/core/user_data.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/elements/clipped.h>
#include <orvia/vek/mark.h>
#include <orvia/vek/transform.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace Orvia {

class ExternalElement;
class LinearObject;
class ParkingLot;
class RoadSign;
class Obstacle;
class Sequence;
class SubNetwork;
class SurfaceModifier;
class Track;

// A scope limit at or beyond this magnitude counts as absent (a tenth of the largest single-precision value:
// files write the absent limit as that value, which may come back rounded).
inline constexpr double kScopeLimitThreshold = 3.4028234663852886e37;
// The bound of a side that has no limit.
inline constexpr double kNoBound = 3.4028234663852886e38;

// What every kind of clipped data shares beside its record: the sub-network, the qualified name, the user
// data and access to the record.
class ClippedData : public UserDataContainer {
public:
    // The record common to every kind: name, static flag and carried object.
    virtual Ruvex::ClippedDataElement& GetClippedDataElement() = 0;
    virtual const Ruvex::ClippedDataElement& GetClippedDataElement() const = 0;

    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    void SetInSubNetwork(SubNetwork* subNetwork);
    const std::string& GetName() const { return GetClippedDataElement().GetName(); }
    // "<sub-network>//<name>" with a sub-network, else the name.
    const std::string& GetQualifiedName() const { return m_qualifiedName; }
    // The qualified name when the network holds more than one sub-network (the plain name may then be
    // ambiguous), else the name.
    const std::string& GetNameQualifiedIfNeeded() const;
    void UpdateQualifiedName();

    // The carried object; at most one kind is set in a sound record. The getters give null for another kind.
    ExternalElement* Get3DObject() const;
    void Set3DObject(ExternalElement* object);
    bool IsObject() const { return GetClippedDataElement().GetObject3D() != nullptr; }
    RoadSign* GetRoadSign() const;
    void SetRoadSign(RoadSign* sign);
    bool IsRoadSign() const { return GetClippedDataElement().GetRoadSign() != nullptr; }
    Obstacle* GetObstacle() const;
    void SetObstacle(Obstacle* obstacle);
    bool IsObstacle() const { return GetClippedDataElement().GetObstacle() != nullptr; }
    SurfaceModifier* GetSurfaceModifier() const;
    void SetSurfaceModifier(SurfaceModifier* modifier);
    bool IsSurfaceModifier() const { return GetClippedDataElement().GetSurfaceModifier() != nullptr; }
    Ruvex::SequenceElement* GetSequenceX() const { return GetClippedDataElement().GetSequenceX(); }
    Ruvex::SequenceElement* GetSequenceY() const { return GetClippedDataElement().GetSequenceY(); }
    Ruvex::SequenceElement* GetSequenceZ() const { return GetClippedDataElement().GetSequenceZ(); }
    // axis 0, 1, 2 for X, Y, Z; other axes are ignored.
    void SetSequence(Ruvex::SequenceElement* sequence, int axis);
    bool IsSequence() const { return GetSequenceX() || GetSequenceY() || GetSequenceZ(); }
    LinearObject* GetLinearObject() const;
    void SetLinearObject(LinearObject* object);
    bool IsLinearObject() const { return GetClippedDataElement().GetLinearObject() != nullptr; }
    bool IsStatic() const { return GetClippedDataElement().GetStatic(); }
    void SetStatic(bool isStatic) { GetClippedDataElement().SetStatic(isStatic); }

    // The linear object (and, on a track, the parking lot) forget this clipped data.
    virtual void ReleaseCarriedLinks();

protected:
    ClippedData() = default;
    ClippedData(const ClippedData&) = default;
    ClippedData& operator=(const ClippedData&) = default;
    ~ClippedData() override;

    // Keeps a child that `record` does not declare as a user datum when it is one. True when taken.
    bool LoadUserDataChild(const Ruvex::Element& record, Ruvex::IDOMElement* child,
                           Ruvex::IDOMParser* parser);

private:
    SubNetwork* m_subNetwork = nullptr;
    std::string m_qualifiedName;
};

// Where a clipped object sits on its track (abscissa, lateral and vertical offsets, metres).
class TrackClip : public Ruvex::TrackClipElement {
public:
    ~TrackClip() override;
    // A new clip with the same values (count 0; the caller owns it).
    TrackClip* Clone() const;
    // Nothing for null.
    void CopyFrom(const Ruvex::TrackClipElement* other);
};

// The part of a track an object applies to, relative to its clip. A limit beyond kScopeLimitThreshold in
// magnitude is absent.
class TrackScope : public Ruvex::TrackScopeElement {
public:
    ~TrackScope() override;

    bool HasFromLimit() const { return m_From > -kScopeLimitThreshold; }
    bool HasToLimit() const { return m_To < kScopeLimitThreshold; }
    bool HasLeftLimit() const { return m_LeftLimit > -kScopeLimitThreshold; }
    bool HasRightLimit() const { return m_RightLimit < kScopeLimitThreshold; }
    bool HasBottomLimit() const { return m_BottomLimit > -kScopeLimitThreshold; }
    bool HasTopLimit() const { return m_TopLimit < kScopeLimitThreshold; }
    // The abscissa range relative to the clip: from and to as stored, absent limits included.
    void GetRange(double& from, double& to) const {
        from = m_From;
        to = m_To;
    }

    // The way as read; eWayBoth for a text outside the table.
    ECirculationWay GetCirculationWay() const;
    void SetCirculationWay(ECirculationWay way);

    // Lane indices the object applies to; empty means every lane. Read from the record on load; the record
    // is rewritten from the set on save only when the set holds other indices than the record.
    std::set<uint64_t>& LaneScope() { return m_laneScope; }
    const std::set<uint64_t>& LaneScope() const { return m_laneScope; }

    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

private:
    std::set<uint64_t> m_laneScope;
};

// An object clipped onto a track; saved under the tag it was made for ("ClippedData" inside a track).
class TrackClippedData : public Ruvex::TrackClippedDataElement, public ClippedData {
public:
    TrackClippedData() = default;
    explicit TrackClippedData(const std::string& tag) : Ruvex::TrackClippedDataElement(tag) {}
    ~TrackClippedData() override;

    Ruvex::ClippedDataElement& GetClippedDataElement() override { return *this; }
    const Ruvex::ClippedDataElement& GetClippedDataElement() const override { return *this; }
    using ClippedData::GetName;
    void SetName(const std::string& name) override;
    // The runtime view of the carried object hides the record's.
    using ClippedData::GetLinearObject;
    using ClippedData::GetObstacle;
    using ClippedData::GetRoadSign;
    using ClippedData::GetSurfaceModifier;
    using ClippedData::SetLinearObject;
    using ClippedData::SetObstacle;
    using ClippedData::SetRoadSign;
    using ClippedData::SetSurfaceModifier;

    Track* GetParent() const { return m_track; }
    // Also invalidates the bounds.
    void SetParent(Track* track);
    // The scope as a runtime scope; null when there is none or it is a plain record.
    TrackScope* GetTrackScope() const;
    ParkingLot* GetParkingLotObject() const;

    // Computes the bounds once until Invalidate, and only with a parent track: the clip abscissa is clamped
    // into [0, track length] (stored), while the bounds of this validation still use the abscissa as found.
    // Each bound is the scope limit plus the clip's matching offset; an absent limit gives 0 and the track
    // length along the track, -/+kNoBound across and vertically. A carried surface modifier gets the box
    // (start, left)-(end, right), a linear object (start, left, bottom)-(end, right, top).
    void Validate();
    void Invalidate() { m_valid = false; }
    bool IsValid() const { return m_valid; }

    // After Validate: inclusive on every side. No allocation.
    bool IsInScope(double s, double t, double z);
    // True when the scope has no lane set or its set holds `lane`.
    bool IsInLaneScope(uint64_t lane) const;

    double GetStartAbscissa() const { return m_start; }
    double GetEndAbscissa() const { return m_end; }
    double GetLeftDist() const { return m_left; }
    double GetRightDist() const { return m_right; }
    double GetBottomDist() const { return m_bottom; }
    double GetTopDist() const { return m_top; }

    // Orders by start abscissa, then end abscissa, then name.
    bool operator<(const TrackClippedData& other) const;

    void ReleaseCarriedLinks() override;

    // The record's element followed by the user data.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Children the record does not declare are kept as user data when they are some.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    Track* m_track = nullptr;
    bool m_valid = false;
    double m_start = 0, m_end = 0, m_left = 0, m_right = 0, m_bottom = 0, m_top = 0;
};

// An object placed at a fixed mark in its parent's frame.
class MarkClippedData : public Ruvex::MarkClippedDataElement, public ClippedData {
public:
    ~MarkClippedData() override;

    Ruvex::ClippedDataElement& GetClippedDataElement() override { return *this; }
    const Ruvex::ClippedDataElement& GetClippedDataElement() const override { return *this; }
    using ClippedData::GetName;
    void SetName(const std::string& name) override;
    // The runtime view of the carried object hides the record's.
    using ClippedData::GetLinearObject;
    using ClippedData::GetObstacle;
    using ClippedData::GetRoadSign;
    using ClippedData::GetSurfaceModifier;
    using ClippedData::SetLinearObject;
    using ClippedData::SetObstacle;
    using ClippedData::SetRoadSign;
    using ClippedData::SetSurfaceModifier;

    // The element the mark is relative to (an intersection, or the sub-network itself); not owned.
    Ruvex::Element* GetParent() const { return m_parent; }
    void SetParent(Ruvex::Element* parent) { m_parent = parent; }

    vek::Mark GetMark() const;
    void SetMark(const vek::Mark& mark);
    // Moves the mark: the placement becomes transform * mark.
    void ApplyTransform(const vek::Transform& transform);

    // The record's element followed by the user data.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Children the record does not declare are kept as user data when they are some.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    Ruvex::Element* m_parent = nullptr;
};

}  // namespace Orvia
