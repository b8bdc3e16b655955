#pragma once

// Road signs, the obstacles traffic must avoid, and the vehicle authorisations that say whom a rule
// addresses.

#include <orvia/ruvex/elements/traffic.h>
#include <orvia/traffic/traffic_light.h>
#include <orvia/traffic/vehicle_authorisation.h>
#include <orvia/vek/box.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvia {

class RoadSign;

// Told when the lights of a sign it watches changed (a traffic-light programme moved on).
class RoadSignObserver {
public:
    virtual ~RoadSignObserver() = default;
    virtual void OnRoadSignChanged(RoadSign* sign) = 0;
};

// A sign placed by clipped data. The record keeps the type and direction as texts; the values are read from
// them at load and the setters write both, so an unknown type word is kept (and reads as eUnknown).
class RoadSign : public Ruvex::RoadSignElement {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);

    enum ESignType : uint32_t {
        eUnknown = 0,
        eDanger,
        eDangerRightTurn,
        eDangerLeftTurn,
        eDangerSpeedBump,
        eDangerRightPriority,
        eDangerTrafficLightAhead,
        eDangerRoundAboutAhead,
        eDangerCrosswind,
        eDangerRightDoubleCurve,
        eDangerLeftDoubleCurve,
        eDangerChildren,
        eDangerFallingRocks,
        eDangerDomesticAnimals,
        eDangerRoadworksAhead,
        eYield,
        eStop,
        eTrafficLight,
        eWrongWay,
        eNoLeftTurn,
        eNoRightTurn,
        eNoUTurn,
        eNoOvertaking,
        eBarrier,
        eNoParking,
        eNoStopOrParking,
        eStraightObligatory,
        eLeftTurnObligatory,
        eRightTurnObligatory,
        eLeftOrRightObligatory,
        eProceedStraightOrTurnLeft,
        eProceedStraightOrTurnRight,
        eLeftDirectionObligatory,
        eRightDirectionObligatory,
        ePassOnRightSide,
        ePassOnLeftSide,
        eMessageBoard,
        eDistanceBoard,
        eParking,
        eDeadEnd,
        eTollGate,
        eStartHighway,
        eEndHighway,
        eStartPrioritaryRoad,
        eEndPrioritaryRoad,
        eDirection,
        eExit,
        eOneWay,
        ePedestrianArea,
        ePedestrianCrossing,
        eRailroadCrossing,
        eTramwayCrossing,
        ePedestrianCrossingAhead,
        eTramCrossingAhead,
        eSpeedLimit,
        eEndSpeedLimit,
        eMinimumSpeed,
        eSpeedLimitZone,
        eEndSpeedLimitZone,
        eEnteringBuiltUpArea,
        eLeavingBuiltUpArea,
        eCycleLane,
        eEndCycleLane,
        eReservedBicycle,
        eEndReservedBicycle,
        eReservedPedestrian,
        eEndReservedPedestrian,
        eReservedPublicTransport,
        eEndReservedPublicTransport,
        eReservedTram,
        eEndReservedTram,
        eReservedEquestrian,
        eEndReservedEquestrian,
        eDangerTwoWayTraffic,
        eOvertakeSegment,
        eDoubleOvertakeSegment,
        eEndNoOvertaking,
        eSwitchOnHeadlamps,
        eSwitchOffHeadlamps,
        eTunnel,
        eBeacon,
        eBeaconTurnRight,
        eBeaconTurnLeft,
        eMaximumHeight,
        eBusStop,
        eEndOfObligation,
        eMinimumDistance,
        eSnowChainsObligatory,
        eLeftStraightArrow,
        eLeftArrow,
        eStraightArrow,
        eRightArrow,
        eRightStraightArrow,
        eYieldLine,
        eStopLine,
        eTrafficLightLine,
    };

    // An empty sign as a file fills it: no lights and no vehicle authorisation until the file gives them.
    RoadSign() = default;
    // A sign of that type with its defaults: a traffic light gets three lamps ("LAMP03" red off, "LAMP02"
    // orange off, "LAMP01" green on; all directions, road vehicles) and addresses every category; a
    // pedestrian crossing addresses road vehicles and pedestrians; any other type road vehicles.
    explicit RoadSign(ESignType type);
    ~RoadSign() override;

    // "unknown" for values outside the table.
    static const char* ToText(ESignType type);
    // Exact comparison; eUnknown for null or any other text.
    static ESignType ToESignType(const char* text);

    // Reads the record; a type word outside the table is reported and read as eUnknown.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    ESignType SignType() const { return m_signType; }
    void SetSignType(ESignType type);
    // Bit set of EDirection.
    uint32_t Direction() const { return m_direction; }
    void SetDirection(uint32_t directions);
    // Null when the sign has none (or holds a plain record).
    VehicleAuthorisation* GetVehicleAuthorisation() const;
    void SetVehicleAuthorisation(VehicleAuthorisation* authorisation) { m_VehicleType = authorisation; }

    // --- Lights, in order. Null out of range; removals false out of range.
    size_t GetLightCount() const { return m_lights.size(); }
    Light* GetLight(size_t index) const { return index < m_lights.size() ? m_lights[index] : nullptr; }
    // Appends (null ignored).
    void AddLight(Light* light);
    // Inserts before index (index >= count appends); null ignored.
    void InsertLight(size_t index, Light* light);
    bool RemoveLight(size_t index);
    void Clear();

    // Index of the first light whose vehicle set shares a bit with category, whose colour is colour and
    // whose direction shares a bit with direction; npos when none.
    size_t GetLightId(Light::EColor colour, uint32_t direction, uint32_t category) const;
    // Illumination of the first light whose vehicle set shares a bit with category and whose colour is
    // colour; false (out untouched) when none.
    bool GetLightState(uint32_t category, Light::EColor colour, Light::EIllumination& out) const;

    // --- Observers (not owned), told in registration order.
    void RegisterObserver(RoadSignObserver* observer);
    void ClearObserver() { m_observers.clear(); }
    void NotifyObservers();
    // Called by a programme after it changed any light; tells the observers.
    virtual void OnLightsChanged();

    RoadSign* Clone() const;
    void CopyFrom(const RoadSign* other);

private:
    void RefreshLights();

    ESignType m_signType = eUnknown;
    uint32_t m_direction = 0;
    std::vector<Light*> m_lights;  // views of m_Lights, in order
    std::vector<RoadSignObserver*> m_observers;
};

// A box that traffic must avoid (metres, in the frame of the clipped data that carries it), and the side on
// which it may be passed.
class Obstacle : public Ruvex::ObstacleElement {
public:
    enum EDodgeWay : uint32_t { eLeft = 0, eRight = 1, eBothSides = 2, eCannot = 3 };

    Obstacle() = default;
    ~Obstacle() override;

    // "unknown" for values outside the table.
    static const char* ToText(EDodgeWay way);
    // Exact comparison; eLeft for null or any other text.
    static EDodgeWay FromText(const char* text);

    // Reads the record; a dodge word outside the table is reported and read as "left".
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // True when the box holds the point, bounds included.
    virtual bool Collides(double x, double y, double z) const;
    virtual void SetDimensions(const vek::Box3& box);
    vek::Box3 GetDimensions() const;
    EDodgeWay GetDodgeWay() const { return m_dodgeWay; }
    void SetDodgeWay(EDodgeWay way);

    Obstacle* Clone() const;
    void CopyFrom(const Obstacle* other);

private:
    EDodgeWay m_dodgeWay = eLeft;
};

}  // namespace Orvia
