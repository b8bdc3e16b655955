// The abstract planar curve piece: a curve parameterised by its own arc length s in [0, GetLength()],
// computed in its own frame (start at the origin, heading +x) and placed by a start position and a start
// orientation.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include <orvia/geometry/point_data.h>
#include <orvia/vek/box.h>
#include <orvia/vek/math.h>
#include <orvia/vek/transform2d.h>
#include <orvia/vek/vector.h>

namespace Ruvex {
class Element;
class IDOMElement;
class IDOMParser;
}  // namespace Ruvex

// A concrete piece is also the persistent element of its tag; its reference count is the element's.
// Samples take no locks and allocate nothing. A piece belongs to one thread at a time: the bounding box is a
// cache rebuilt lazily on the next GetBoundingBox().
class ParametricFunction {
public:
    // Arc length, metres.
    virtual double GetLength() const = 0;
    virtual void SetLength(double length) = 0;
    // Placed sample at arc length s (metres). s outside [0, length] continues the piece's own formula:
    // nothing is clamped. Within kForcedOrientationWindow of s = 0 a forced start orientation replaces the
    // heading; otherwise heading = local heading + start orientation, not re-normalised.
    virtual PointData GetPointData(double s) const;
    virtual vek::Vector2 GetStartPosition() const;
    // Recomputes only when the position changes; a position that is not finite is refused.
    virtual void SetStartPosition(const vek::Vector2& position);
    // Radians, in (-pi, pi].
    virtual double GetStartOrientation() const;
    // Any angle (radians); stored brought into (-pi, pi] (3pi/2 -> -pi/2, -pi -> pi). Recomputes only when
    // the stored value changes. A value that is not finite is refused.
    virtual void SetStartOrientation(double orientation);
    // A new piece of the same class with the same data and placement, count 0: the caller owns it.
    virtual ParametricFunction* Clone() const = 0;
    // Same class and exactly equal intrinsic data; the placement is not compared. False for null.
    virtual bool IsEqual(const ParametricFunction* other) const = 0;
    // The same points run backwards: the piece then starts at its old end, heading reversed.
    virtual void Invert();
    // Cuts at ratio * length, 0 < ratio < 1 (null otherwise): this piece keeps the first part and the second
    // part, starting where the first now ends, is returned with count 0 (the caller owns it).
    virtual ParametricFunction* Split(double ratio);
    // The start and 101 evenly spaced samples, grown by 0.5 % of the length on every side. Cached; rebuilt on
    // the first call after a change.
    virtual const vek::Box2& GetBoundingBox() const;
    // The persistent element side of this object (never null).
    virtual Ruvex::Element* GetElement() const = 0;
    // The element side's reference count; Release destroys the object when it drops to 0.
    virtual uint64_t AddRef();
    virtual uint64_t Release();
    // Mirrors the piece about its start tangent (the local x axis): left turns become right turns. The base,
    // fit for straight pieces, does nothing.
    virtual void Flip();
    // Heading reported near s = 0 (see GetPointData); a value within kForcedOrientationWindow of 0 means
    // "not forced". Plain setter.
    virtual void SetForcedStartOrientation(double orientation);
    virtual ~ParametricFunction();

    double GetForcedStartOrientation() const { return m_forcedStartOrientation; }

    // The placement half of GetPointData(s), for callers that know the piece's exact class (the composite
    // curve's queries): the global sample of the local sample `local` taken at s, through the placement
    // transform rather than the virtual LocalToGlobal. Same values as GetPointData(s) for a class that keeps
    // the base LocalToGlobal.
    PointData PlaceLocalSample(double s, const PointData& local) const {
        return PointData(m_localToGlobal.apply(local.position), PlacedHeading(s, local.heading),
                         local.curvature);
    }
    // The heading GetPointData(s) reports for a local heading (radians).
    double PlacedHeading(double s, double localHeading) const {
        return IsHeadingForcedAt(s) ? m_forcedStartOrientation : localHeading + m_startOrientation;
    }
    // The unit tangent (cos, sin) of PlacedHeading(s, h), given the local one (cos h, sin h): unforced, the
    // local tangent turned by the placement, equal to rounding without a sine (for h = 0, exactly the
    // transform's cosine and sine).
    vek::Vector2 PlacedTangent(double s, const vek::Vector2& localTangent) const {
        if (IsHeadingForcedAt(s))
            return {std::cos(m_forcedStartOrientation), std::sin(m_forcedStartOrientation)};
        return m_localToGlobal.applyVector(localTangent);
    }
    // The local frame mapped to the global one (start position, start orientation).
    const vek::Transform2D& GetLocalToGlobal() const { return m_localToGlobal; }

    // Both the "near the start" window of GetPointData (metres) and the "not forced" band of the forced
    // orientation (radians).
    static constexpr double kForcedOrientationWindow = 0.01;
    // Longest piece (m): beyond any world a network describes, and short enough that sums of lengths and
    // squared distances stay finite. Lengths outside [0, kMaxLength] are refused by the setters and brought
    // into it, with a warning, by the loaders.
    static constexpr double kMaxLength = 1e8;
    // Sharpest curvature (1/m) a loaded piece keeps, a radius of a millimetre: sharper values are brought to
    // it with a warning.
    static constexpr double kMaxCurvature = 1e3;
    // Whether a setter takes this length: finite, within [0, kMaxLength] (false for NaN).
    static bool IsValidLength(double length) { return length >= 0 && length <= kMaxLength; }
    // What the constructors store for a length: its absolute value, at most kMaxLength, 0 for NaN.
    static double ConstructedLength(double length) {
        const double magnitude = std::fabs(length);
        return magnitude <= kMaxLength ? magnitude : (magnitude > kMaxLength ? kMaxLength : 0);
    }

protected:
    ParametricFunction();
    ParametricFunction(const ParametricFunction&) = default;
    ParametricFunction& operator=(const ParametricFunction&) = default;

    // Called after every change of shape or placement: rebuilds the transforms, invalidates the box.
    // Overrides rebuild their own derived state and call this.
    virtual void DataChanged();
    // Sample in the piece's own frame.
    virtual PointData GetLocalPointData(double s) const = 0;
    // Changes the intrinsic data so that the piece runs backwards; called by Invert() once the placement has
    // moved to the old end.
    virtual void InvertLocalData() = 0;
    virtual vek::Vector2 LocalToGlobal(const vek::Vector2& local) const;
    virtual vek::Vector2 GlobalToLocal(const vek::Vector2& global) const;

    // For changes that keep the transforms but move the points (inverting a symmetric piece).
    void InvalidateBoundingBox() { m_boundingBoxDirty = true; }

    // For the loaders: value brought into [lo, hi], with a warning naming the attribute at `where` when it
    // was outside.
    double ClampLoaded(double value, double lo, double hi, const char* attribute, Ruvex::IDOMElement* where,
                       Ruvex::IDOMParser* parser) const;
    // Control points with every coordinate brought into [-kMaxLength, kMaxLength] (NaN to 0): a piece through
    // a point beyond that has a length no query can use. One warning for the attribute.
    void ClampLoadedPoints(std::vector<vek::Vector2>& points, const char* attribute,
                           Ruvex::IDOMElement* where, Ruvex::IDOMParser* parser) const;

private:
    bool IsHeadingForcedAt(double s) const {
        return vek::isEqual(s, 0, kForcedOrientationWindow) &&
               !vek::isEqual(m_forcedStartOrientation, 0, kForcedOrientationWindow);
    }

    vek::Vector2 m_startPosition;
    double m_startOrientation = 0;
    mutable vek::Box2 m_boundingBox;
    mutable bool m_boundingBoxDirty = true;
    vek::Transform2D m_localToGlobal;
    vek::Transform2D m_globalToLocal;
    double m_forcedStartOrientation = 0;
};
