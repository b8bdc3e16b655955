#pragma once

// Cross-section profiles: lanes from left to right separated by borders, the markings and decorations that
// borders carry, and the library files that keep a profile or a marking on its own.
//
// Lateral distances are in metres from the axis, positive to the right of the direction of travel (negative
// on the left); vertical distances in metres above the axis. Lanes and borders refer by name to markings,
// grounds and materials kept by their owner (a sub-network or a library file); post-load turns the names into
// pointers, and a name that matches nothing stays as text, is saved unchanged and leaves the pointer null.

#include <orvia/ruvex/elements/profile.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

class PolyLine;

namespace Orvia {

class Ground;
class Lane;
class LaneBorder;
class Marking;
class Profile;
class SubNetwork;
class VehicleAuthorisation;

// Lane types, with their texts in the file ("paved", "paved entry", ...).
enum LaneType : uint32_t {
    eLanePaved = 0,
    eLanePavedEntry = 1,
    eLanePavedExit = 2,
    eLanePavedExpress = 3,
    eLanePavedRoundabout = 4,
    eLaneSidewalk = 5,
    eLaneEmergency = 6,
    eLaneParking = 7,
    eLaneZebra = 8,
    eLaneMedian = 9,
    eLaneShoulder = 10,
    eLaneEmbankment = 11,
    eLaneDitch = 12,
    eLaneBarrier = 13,
    eLaneLand = 14,
    eLaneRunway = 15,
    eLaneTaxiway = 16,
    eLanePavedMajor = 17,
    eLaneHardShoulder = 18,
    eLaneCurb = 19,
};
// What a text outside the table reads as.
inline constexpr LaneType kUnknownLaneType = static_cast<LaneType>(std::numeric_limits<uint32_t>::max());

// Which way traffic runs on a lane: "direct" along the axis, "inverse" against it.
enum ECirculationWay : uint32_t { eWayNone = 0, eWayDirect = 1, eWayInverse = 2, eWayBoth = 3 };
inline constexpr ECirculationWay kUnknownCirculationWay =
    static_cast<ECirculationWay>(std::numeric_limits<uint32_t>::max());
// "none", "direct", "inverse", "both"; "unknown" for any other value.
const char* ToText(ECirculationWay way);
// The way of an exact text; kUnknownCirculationWay for any other (and for null).
ECirculationWay ToECirculationWay(const char* text);

enum ERoadType : uint32_t { eRoadNone = 0, eRoadTunnel = 1, eRoadBridge = 2, eRoadUnknown = 3 };
// "none", "tunnel", "bridge", "unknown"; "unknown" for any other value.
const char* ToText(ERoadType type);
// The road type of an exact text; eRoadUnknown for any other (and for null).
ERoadType ToERoadType(const char* text);

// A painted line along a border (element record: widths and lengths in metres, the crossing logics as texts).
class Marking : public Ruvex::MarkingElement {
public:
    // Whether traffic may cross the line, and how.
    enum EMarkingLogic : uint32_t { eUnknown = 0, eCan = 1, eWarning = 2, eCannot = 3 };

    Marking() = default;
    Marking(const Marking& other);
    ~Marking() override;

    // Reads the record, then the crossing logics from their texts; a text outside the table reads as
    // eUnknown and is reported as a warning (the text itself is kept and saved as read).
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    double GetWidth() const { return m_Width; }
    double GetLineLength() const { return m_LineLength; }
    double GetTotLength() const { return m_TotLength; }
    bool GetDoubleMarking() const { return m_DoubleMarking; }
    const std::string& GetCategory() const { return m_Category; }
    double GetMarkingQuality() const { return m_MarkingQuality; }
    // Crossing logic from the left side to the right side, and back.
    EMarkingLogic GetLeftToRightId() const { return m_leftToRight; }
    EMarkingLogic GetRightToLeftId() const { return m_rightToLeft; }
    void SetLeftToRightId(EMarkingLogic logic);
    void SetRightToLeftId(EMarkingLogic logic);

    // The material named by the record, once resolved (null when unresolved).
    Ruvex::MaterialElement* GetMaterial() const { return m_material.Get(); }
    // Stores the material and its name (null clears both).
    void SetMaterial(Ruvex::MaterialElement* material);
    Ruvex::UVMappingElement* GetUVMapping() const { return m_UVMapping.Get(); }

    // Resolves the material name among `materials`.
    void PostLoad(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials);

    // Same values (lengths, flags, category, quality, logics, material name); the name is not compared.
    bool IsEqual(const Marking* other) const;
    // Same two crossing logics.
    bool LogicIsEqual(const Marking* other) const;
    // A deep copy (count 0; the caller owns it).
    Marking* Clone() const;
    // Writes a marking library file holding a copy of this marking. False when the file cannot be written.
    bool Save(const char* path) const;
    // The marking of a marking library file (count 0; the caller owns it), its material resolved against the
    // file's own; null when the file does not load or holds no marking.
    static Marking* Load(const char* path);

    // The logic of an exact text; eUnknown for any other (and for null).
    static EMarkingLogic ToEMarkingLogic(const char* text);
    // "unknown", "can", "warning", "cannot"; "unknown" for any other value.
    static const char* ToText(EMarkingLogic logic);

private:
    EMarkingLogic m_leftToRight = eUnknown;
    EMarkingLogic m_rightToLeft = eUnknown;
    Ruvex::CountedPtr<Ruvex::MaterialElement> m_material;
};

// A shape swept along a border: a polyline in the cross-section plane (lateral, vertical; metres, relative to
// the border), with its material.
class Decoration : public Ruvex::DecorationElement {
public:
    ~Decoration() override;

    // The shape; null when the record holds none or holds a plain record (a document read without the
    // library's factory).
    ::PolyLine* GetPolyLine() const;
    Ruvex::MaterialElement* GetMaterial() const { return m_material.Get(); }
    void SetMaterial(Ruvex::MaterialElement* material);
    Ruvex::UVMappingElement* GetUVMapping() const { return m_UVMapping.Get(); }
    // True when the shape has at least two points.
    bool HasDecoration() const;
    // The length of the shape's control polygon (m); 0 without a shape.
    double GetApproximatePolylineLength() const;
    // Resolves the material name among the materials of the profile's owner.
    void PostLoad(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials);
    // Replaces this decoration's content with a deep copy of other's; nothing for null.
    void CopyFrom(const Decoration* other);
    Decoration* Clone() const;

private:
    Ruvex::CountedPtr<Ruvex::MaterialElement> m_material;
};

// A point of the cross-section between two lanes (element record).
class LaneBorder : public Ruvex::LaneBorderElement {
public:
    ~LaneBorder() override;

    // Reads the record and remembers where it stood in the file.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    double GetHorizDistToAxis() const { return m_HorizDistToAxis; }
    double GetVertDistToAxis() const { return m_VertDistToAxis; }
    double GetMarkingOffset() const { return m_MarkingOffset; }
    // The marking named by the record, once resolved (null when unresolved or unnamed).
    Marking* GetMarking() const { return m_marking.Get(); }
    // Stores the marking and its name (null clears both).
    void SetMarking(Marking* marking);
    // Null when the border carries none.
    Decoration* GetDecoration() const;
    // The decoration, made empty first when the border carries none (or a plain record).
    Decoration* GetOrCreateDecoration();

    // Same distances (within `tolerance`, m), marking offset, marking name and decoration shape.
    bool IsEqual(const LaneBorder* other, double tolerance = 0.0) const;
    // A deep copy with the same resolved pointers (count 0; the caller owns it).
    LaneBorder* Clone() const;

    // Where the border stood in the file it was read from (1-based; 0 when built in memory).
    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

private:
    friend class Profile;
    Ruvex::CountedPtr<Marking> m_marking;
    size_t m_line = 0;
    size_t m_column = 0;
};

// One lane of a profile (element record). Its two borders are found through its profile.
class Lane : public Ruvex::LaneElement {
public:
    Lane() = default;
    ~Lane() override;

    // Reads the record, then the lane type and the way from their texts; a text outside its table takes the
    // table's fallback (kUnknownLaneType, kUnknownCirculationWay) and is reported as a warning, the text
    // being kept and saved as read.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // --- Borders
    // -------------------------------------------------------------------------------------------- Null when
    // the lane has no profile or the profile lacks the border.
    LaneBorder* GetLeftKey() const;
    LaneBorder* GetRightKey() const;
    // Index among the profile's borders; npos when absent.
    size_t GetLeftKeyIndex() const;
    size_t GetRightKeyIndex() const;

    // Right border's horizontal distance minus the left one's (m); 0 without both borders.
    double GetHorWidth() const;
    // Keeps the other lanes' widths: borders on the side away from the axis move (toRight: the right border
    // and every border to its right; otherwise the left border and every border to its left). The side is
    // the right one when the lane's centre is at or right of the axis.
    void SetHorWidth(double width);
    void SetHorWidth(double width, bool toRight);
    // Moves the left (right) border to x. With clamp, x is kept between the neighbouring borders (this lane's
    // other border, and the far border of the neighbouring lane unless this lane is first (last)); the result
    // says whether a limit was applied. Without clamp, x is taken as it is and the result is false. False
    // and no change when the border is missing.
    bool SetLeftHorDistance(double x, bool clamp);
    bool SetRightHorDistance(double x, bool clamp);
    // (horizontal, vertical) distances of the left / right border; (0, 0) when missing.
    std::pair<double, double> GetLeftPosition() const;
    std::pair<double, double> GetRightPosition() const;
    double GetLeftPositionX() const { return GetLeftPosition().first; }
    double GetLeftPositionY() const { return GetLeftPosition().second; }
    double GetRightPositionX() const { return GetRightPosition().first; }
    double GetRightPositionY() const { return GetRightPosition().second; }
    // Midpoint of the two border positions.
    std::pair<double, double> GetCenterOffset() const;

    // --- Type, way, speed
    // -----------------------------------------------------------------------------------
    LaneType GetLaneType() const { return m_laneType; }
    // Stores the type and its text ("unknown" outside the table).
    void SetLaneType(LaneType type);
    ECirculationWay GetCirculationWay() const { return m_way; }
    void SetCirculationWay(ECirculationWay way);
    // m/s; Ruvex::VehicleTypeElement::gNoLimit for none.
    double GetSpeedLimit() const { return m_SpeedLimit; }
    void SetSpeedLimit(double speed) { m_SpeedLimit = speed; }
    // True when either the limit or `speed` is "no limit", otherwise when speed <= the limit: read from the
    // lane's side, the lane is fast enough for that speed.
    bool IsTooFast(double speed) const;

    // --- Classes of lane types
    // ------------------------------------------------------------------------------
    static bool PavedType(LaneType type);
    static bool Driveable(LaneType type);
    static bool NotDriveable(LaneType type) { return !Driveable(type); }
    static bool SuitableForVehicleType(LaneType type);
    static bool ForAircraftType(LaneType type);
    bool IsPavedType() const { return PavedType(m_laneType); }
    bool IsSuitableForVehicleType() const { return SuitableForVehicleType(m_laneType); }
    bool IsForAircraftType() const { return ForAircraftType(m_laneType); }
    // A sidewalk with no lane of a paved type to its left (right) in the profile.
    bool IsLeftSidewalk() const;
    bool IsRightSidewalk() const;
    // False for null, or when both authorisations exist and share no vehicle category; otherwise true when
    // both lanes are paved, both are for aircraft, or both have the same type. A lane without an
    // authorisation admits every category.
    bool IsCompatibleWith(Lane* other) const;

    // "paved", "paved entry", ... "curb"; "unknown" for any other value.
    static const char* ToText(LaneType type);
    // The type of an exact text; kUnknownLaneType for any other (and for null).
    static LaneType ToELaneType(const char* text);

    // --- Ground, material, vehicles
    // ------------------------------------------------------------------------- The ground named by the
    // record, once resolved; null when unresolved or of a class other than Ground.
    Ground* GetGround() const;
    // Stores the ground and its name (null clears both).
    void SetGround(Ground* ground);
    Ruvex::GroundElement* GetGroundElement() const { return m_ground.Get(); }
    Ruvex::MaterialElement* GetMaterial() const { return m_material.Get(); }
    // Stores the material and its name (null clears both).
    void SetMaterial(Ruvex::MaterialElement* material);
    Ruvex::UVMappingElement* GetUVMapping() const { return m_UVMapping.Get(); }
    void SetUVMapping(Ruvex::UVMappingElement* mapping) { m_UVMapping = mapping; }
    // The lane's authorisation; null when it has none or holds a plain record.
    VehicleAuthorisation* GetVehicleAuth() const;
    void SetVehicleAuth(VehicleAuthorisation* authorisation);

    Profile* GetProfile() const { return m_profile; }
    void SetProfile(Profile* profile) { m_profile = profile; }

    // Same type, way, speed limit, ground and material names, and vehicle rules; names are not compared.
    bool IsEqual(const Lane* other) const;
    // Takes other's record values (deep), type, way and resolved pointers; keeps its name and profile.
    void CopyFrom(const Lane* other);
    // A deep copy without a profile (count 0; the caller owns it).
    Lane* Clone() const;

    // Reads the type and the way from the record's texts (after the texts were set through the record).
    void RefreshFromText();

    static constexpr size_t npos = std::numeric_limits<size_t>::max();

private:
    friend class Profile;
    LaneType m_laneType = eLanePaved;
    ECirculationWay m_way = eWayDirect;
    Profile* m_profile = nullptr;
    Ruvex::CountedPtr<Ruvex::GroundElement> m_ground;
    Ruvex::CountedPtr<Ruvex::MaterialElement> m_material;
};

// A problem of a profile's structure, with where the profile (or the border concerned) stood in its file.
struct ProfileProblem {
    size_t line = 0;
    size_t column = 0;
    std::string message;
};

// A cross-section (element record): lanes left to right and the borders between and around them. For n lanes
// there are n + 1 borders, lane i lying between borders i and i + 1. Two maps kept in step with the lists
// (lane -> its borders, border -> its lanes) answer the neighbour queries; every structural edit made here
// rebuilds them. A file may hold lists that break the rule (borders out of order, a count that does not
// match): the profile loads, CheckStructure lists the problems, and the queries stay defined (a missing
// border or lane reads as null).
class Profile : public Ruvex::ProfileElement {
public:
    static constexpr size_t npos = std::numeric_limits<size_t>::max();
    // Tolerance of IsEqual (m): distances closer than this are the same.
    static constexpr double kEqualTolerance = 1e-9;
    // The default profiles' lane width (m) and speed limit (m/s, 50 km/h).
    static constexpr double kDefaultLaneWidth = 3.5;
    static constexpr double kDefaultSpeedLimit = 13.8888889;

    Profile() = default;
    // The maps point into the lists: copies go through Clone.
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ~Profile() override;

    // False for null arguments. Clears lanes and borders, reads the record (documents of version 2.0.0 and
    // older through the legacy converter), then the road type from its text (a text outside the table reads
    // as eRoadUnknown and is reported as a warning, the text being kept) and rebuilds the maps. Lists that
    // break the structure load as they stand (see CheckStructure).
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // --- Lanes
    // ---------------------------------------------------------------------------------------------- Appends
    // a lane of width 0 at the right end (its right border copies the last border; an empty profile first
    // gets a border at (0, 0)). Returns the new lane.
    Lane* AddLane();
    // A lane of width 0 before lane `index`, with a new border after border `index` at its position; an
    // empty profile or an index at or beyond the count appends (AddLane). Returns the new lane.
    Lane* InsertLane(size_t index);
    // Removes lane `index` and closes the gap: the lane's width is taken out on the side away from the axis
    // (as SetHorWidth(0)), then the lane and its now coincident outer border go. The last lane takes both
    // borders with it. False when the index is out of range.
    bool RemoveLane(size_t index);
    bool RemoveLane(const Lane* lane) { return RemoveLane(GetLaneIndex(lane)); }
    // Removes every lane and border.
    void ClearLanes();

    Lane* GetLane(size_t index) const { return index < m_lanes.size() ? m_lanes[index] : nullptr; }
    size_t GetLaneCount() const { return m_lanes.size(); }
    size_t GetLaneIndex(const Lane* lane) const;
    // First lane of that exact name, or null.
    Lane* GetLaneByName(const char* name) const;
    Lane* GetFirstLane() const { return m_lanes.empty() ? nullptr : m_lanes.front(); }
    Lane* GetLastLane() const { return m_lanes.empty() ? nullptr : m_lanes.back(); }
    // The first lane, from the left, whose right border's horizontal distance is >= d; the last lane when d
    // is beyond every border; null for a profile without lanes. A border belongs to the lane on its left. No
    // allocation.
    Lane* GetLaneWithDistance(double d) const;
    // The index of the lane GetLaneWithDistance(d) answers (npos without lanes); the lane's borders are those
    // of the same index and the next. For queries that need the borders, not the lane. No allocation.
    size_t GetLaneIndexWithDistance(double d) const;
    std::string GetUniqueLaneName(const std::string& requested) const;
    // False when the lane index is out of range.
    bool SetCirculationWay(size_t lane, ECirculationWay way);

    // --- Borders
    // --------------------------------------------------------------------------------------------
    LaneBorder* GetLaneBorder(size_t index) const {
        return index < m_borders.size() ? m_borders[index] : nullptr;
    }
    size_t GetLaneBorderCount() const { return m_borders.size(); }
    size_t GetLaneBorderIndex(const LaneBorder* border) const;
    // From the maps; null when the lane (border) is not of this profile or has no such neighbour.
    LaneBorder* GetLeftLaneBorder(const Lane* lane) const;
    LaneBorder* GetRightLaneBorder(const Lane* lane) const;
    Lane* GetLeftLane(const LaneBorder* border) const;
    Lane* GetRightLane(const LaneBorder* border) const;
    // Position (horizontal, vertical) of the first / last border; (0, 0) without borders.
    std::pair<double, double> GetLeftPos() const;
    std::pair<double, double> GetRightPos() const;
    double GetLeftPosX() const { return GetLeftPos().first; }
    double GetLeftPosY() const { return GetLeftPos().second; }
    double GetRightPosX() const { return GetRightPos().first; }
    double GetRightPosY() const { return GetRightPos().second; }

    // Rebuild the typed views of the lists, through which lanes and borders find each other, from the
    // record's lists; call after editing the lists through the record.
    void UpdateLaneToLaneBorderMap();
    void UpdateLaneBorderToLaneMap();

    ERoadType GetRoadType() const { return m_roadType; }
    // Stores the type and its text ("unknown" outside the table).
    void SetRoadType(ERoadType type);

    // --- Whole profile
    // -------------------------------------------------------------------------------------- Mirrors the
    // profile across the axis: every horizontal distance and marking offset is negated, the lateral
    // coordinate of every decoration shape too, and the lists are reversed, so lanes still run left to right.
    // The ways "direct" and "inverse" swap unless keepCirculationWay is set (the profile then describes the
    // same road seen from the other end). Inverting twice gives the profile back.
    void Invert(bool keepCirculationWay = false);
    // True when `other` has the same road type, the same number of lanes and borders, and pairwise equal
    // lanes (Lane::IsEqual) and borders (LaneBorder::IsEqual, distances within `tolerance` metres). Names are
    // not compared. False for null.
    bool IsEqual(const Profile* other, double tolerance = kEqualTolerance) const;
    // A deep copy (same name, lanes, borders and resolved pointers), without a sub-network (count 0; the
    // caller owns it).
    Profile* Clone() const;

    // Problems of the lists: a border count other than lanes + 1, borders whose horizontal distances decrease
    // from left to right, lists holding plain records. Empty for a sound profile.
    std::vector<ProfileProblem> CheckStructure() const;
    size_t GetSourceLine() const { return m_line; }
    size_t GetSourceColumn() const { return m_column; }

    // --- References
    // ----------------------------------------------------------------------------------------- Resolves the
    // marking of every border and the ground and material of every lane by name among the owner's lists (and
    // the materials of decorations); unresolved names leave null pointers.
    void PostLoad(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MarkingElement>>& markings,
                  const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::GroundElement>>& grounds,
                  const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials);
    // Rename every reference to oldName (lanes' grounds; borders' markings; lanes' and decorations'
    // materials). Return how many references changed.
    size_t ChangeGroundName(const std::string& oldName, const std::string& newName);
    size_t ChangeMarkingName(const std::string& oldName, const std::string& newName);
    size_t ChangeMaterialName(const std::string& oldName, const std::string& newName);

    SubNetwork* GetParentSubNetwork() const { return m_subNetwork; }
    void SetParentSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }

    // "Default Profile": two "paved" lanes of 3.5 m on [-3.5, 0] and [0, 3.5] for road vehicles.
    // CreateDefault: left lane "inverse", right lane "direct", both limited to 50 km/h. MakeDefaultProfile:
    // left lane "direct", right lane "inverse", no speed limit, and a grey material (0.2) on both lanes.
    // Count 0; the caller owns the result.
    static Profile* CreateDefault();
    static Profile* MakeDefaultProfile();

private:
    // The typed views of the record's lists.
    void RefreshViews();
    void RecordPlaces(Ruvex::IDOMElement* element);
    void UpdateMaps();

    ERoadType m_roadType = eRoadNone;
    SubNetwork* m_subNetwork = nullptr;
    // Typed views of the record's lists (null where an item is a plain record) and the two maps.
    std::vector<Lane*> m_lanes;
    std::vector<LaneBorder*> m_borders;
    size_t m_line = 0;
    size_t m_column = 0;
};

// A profile library file: the profile (first of the list) with the grounds, markings and materials it names.
class ProfileStandalone : public Ruvex::ProfileStandaloneElement {
public:
    ~ProfileStandalone() override;

    // The first profile, or null.
    Profile* GetProfile() const;
    const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::GroundElement>>& GetGroundArray() const {
        return m_Grounds;
    }
    const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MarkingElement>>& GetMarkingArray() const {
        return m_Markings;
    }
    // Writes the library. False when the file cannot be written.
    bool Save(const char* path);
    // A library file, its references resolved (count 0; the caller owns it); null when the file does not load
    // or its root is not a profile library.
    static ProfileStandalone* Load(const char* path);
    // A deep copy, its references resolved against its own lists.
    ProfileStandalone* Clone() const;

    // Resolves the profiles' and markings' references against the library's own lists.
    void PostLoad();
    // By exact name; null when absent or of another class.
    Ground* FindGround(const std::string& name) const;
    Marking* FindMarking(const std::string& name) const;
    // Renames the references held by the library's profiles (and, for materials, its markings); the named
    // element itself is renamed by its owner. Return how many references changed.
    size_t ChangeGroundName(const std::string& oldName, const std::string& newName);
    size_t ChangeMarkingName(const std::string& oldName, const std::string& newName);
    size_t ChangeMaterialName(const std::string& oldName, const std::string& newName);
};

// A marking library file: the marking (first of the list) with the materials it names.
class MarkingStandalone : public Ruvex::MarkingStandaloneElement {
public:
    ~MarkingStandalone() override;

    // The first marking, or null.
    Marking* GetMarking() const;
    bool Save(const char* path);
    // Count 0; the caller owns it. Null when the file does not load or its root is not a marking library.
    static MarkingStandalone* Load(const char* path);
    // Resolves the markings' materials against the library's own.
    void PostLoad();
};

}  // namespace Orvia
