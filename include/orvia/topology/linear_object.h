#pragma once

// Objects laid along a track by an axis of their own (guard rails, walls, fences), and their sub-parts.

#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/schema.h>
#include <orvia/vek/box.h>

namespace Orvia {

class ClippedData;

// Read from and saved as "Linear".
class LinearObject : public Ruvex::LinearElement {
public:
    ~LinearObject() override;

    // The clipped data that carries the object (not owned; null when loose).
    ClippedData* GetClippedData() const { return m_clippedData; }
    void SetClippedData(ClippedData* clippedData) { m_clippedData = clippedData; }
    // The box the carrying clipped data allows, in track coordinates (s, t, z); empty until it validates.
    const vek::Box3& GetClipBox() const { return m_clipBox; }
    void SetClipBox(const vek::Box3& box) { m_clipBox = box; }

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
