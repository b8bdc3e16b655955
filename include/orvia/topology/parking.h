#pragma once

// Parking: rows of spots laid along a track, and single spots placed in a sub-network.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class ClippedData;
class Track;

// Laid along the track of the clipped data that carries it.
class ParkingLot : public Ruvex::ParkingLotElement {
public:
    ~ParkingLot() override;

    // Not owned; null when loose.
    Track* GetTrack() const { return m_track; }
    ClippedData* GetClippedData() const { return m_clippedData; }
    void SetCarrier(Track* track, ClippedData* clippedData) {
        m_track = track;
        m_clippedData = clippedData;
    }

private:
    Track* m_track = nullptr;
    ClippedData* m_clippedData = nullptr;
};

class ParkingSpot : public Ruvex::ParkingSpotElement {
public:
    ~ParkingSpot() override;
};

}  // namespace Orvia
