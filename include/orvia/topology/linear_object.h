#pragma once

// Objects laid along a track by an axis of their own (guard rails, walls, fences), and their sub-parts.

#include <orvia/geometry/axis.h>
#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/schema.h>
#include <orvia/vek/box.h>

#include <cstddef>

namespace Orvia {

class ClippedData;

// Read from and saved as "Linear". The object's own axis runs over its curves; an object without a plan
// piece, or whose plan length is not a finite number, has no valid axis, and its queries answer as on an
// empty curve. Its cached lengths are never negative nor NaN.
class LinearObject : public Ruvex::LinearElement, public Axis {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    LinearObject();
    ~LinearObject() override;

    // Null when absent or set as plain records through the element's setters.
    Curve2D* GetXYCurve() const override;
    CartesianCurve* GetSZCurve() const override;
    CartesianCurve* GetBankingCurve() const override;
    // Both cached lengths become the plan curve's length (0 without one, or when it is not a finite,
    // non-negative number).
    void UpdateCacheData() override;
    bool Validate() override;
    // Chains the plan pieces from the curve's origin; false without a plan piece or with a broken length.
    bool ValidateAxis() override;
    // Runs the curves backwards, and the control polygon with them.
    void InvertAxis() override;

    size_t GetControlPointsCount() const { return m_ControlPoints.size(); }
    // False (point untouched) out of range.
    bool GetControlPoint(size_t index, vek::Vector2& point) const;
    // Inserts before `index` (npos or beyond appends); returns the new point's index.
    size_t AddControlPoint(const vek::Vector2& point, size_t index = npos);
    // False out of range.
    bool RemoveControlPoint(size_t index);

    // The clipped data that carries the object (not owned; null when loose).
    ClippedData* GetClippedData() const { return m_clippedData; }
    void SetClippedData(ClippedData* clippedData) { m_clippedData = clippedData; }
    // The box the carrying clipped data allows, in track coordinates (s, t, z); empty until it validates.
    const vek::Box3& GetClipBox() const { return m_clipBox; }
    void SetClipBox(const vek::Box3& box) { m_clipBox = box; }

protected:
    // The curve tags become runtime curves; every other child goes to the record.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    ClippedData* m_clippedData = nullptr;
    vek::Box3 m_clipBox;
};

// Read from and saved as "SubParts"; everything a file puts in it is kept as it stands.
class SubPart : public Ruvex::SubPartsElement {
public:
    ~SubPart() override;
};

}  // namespace Orvia
