// Cross-section profiles: structure edits, neighbour maps, queries, and the profile library file.

#include <orvia/core/element_copy.h>
#include <orvia/core/legacy_converter.h>
#include <orvia/core/unique_name.h>
#include <orvia/geometry/polyline.h>
#include <orvia/geometry/profile.h>
#include <orvia/ruvex/factory.h>

#include <algorithm>

namespace Orvia {

namespace {

// Documents of this version and older keep profiles in the older layout.
constexpr uint32_t kProfileLegacyVersion = Ruvex::MakeVersionID(2, 0, 0);

// Road vehicles: every category but pedestrians, trams, trains and aircraft (the road-sign default).
constexpr const char* kDefaultVehicleCategories =
    "bicycle,moped,motorcycle,car,trail,caravan,bus,agricultural vehicle,goods transport,poluting transport,"
    "dangerous transport,nailed tires,truck,police,firefighter,ambulance";
constexpr float kDefaultMaterialGrey = 0.2f;

template <class T>
T* FindByName(const Ruvex::HashVector<Ruvex::CountedPtr<T>>& list, const std::string& name) {
    if (name.empty()) return nullptr;
    const size_t index = list.find(name);
    return index == list.npos ? nullptr : list[index].Get();
}

// Appends `clone` when it is of the list's class; otherwise it is destroyed.
template <class T>
void PushClone(Ruvex::HashVector<Ruvex::CountedPtr<T>>& list, Ruvex::Element* clone) {
    Ruvex::CountedPtr<Ruvex::Element> owned(clone);
    if (auto* item = dynamic_cast<T*>(clone)) list.push_back(Ruvex::CountedPtr<T>(item));
}

void GiveVehicleRules(Lane* lane) {
    Ruvex::CountedPtr<Ruvex::Element> created(Ruvex::CreateElement("VehicleType"));
    auto* rules = dynamic_cast<Ruvex::VehicleTypeElement*>(created.Get());
    if (!rules) return;
    rules->SetVehicleCategories(kDefaultVehicleCategories);
    lane->Ruvex::LaneElement::SetVehicleAuth(rules);
}

Profile* MakeTwoLanes(ECirculationWay leftWay, ECirculationWay rightWay) {
    auto* profile = new Profile;
    profile->SetName("Default Profile");
    Lane* left = profile->AddLane();
    left->SetHorWidth(Profile::kDefaultLaneWidth, true);
    Lane* right = profile->AddLane();
    right->SetHorWidth(Profile::kDefaultLaneWidth, false);
    for (Lane* lane : {left, right}) {
        lane->SetLaneType(eLanePaved);
        GiveVehicleRules(lane);
    }
    left->SetCirculationWay(leftWay);
    right->SetCirculationWay(rightWay);
    return profile;
}

}  // namespace

Profile::~Profile() {
    // Lanes held elsewhere outlive their profile.
    for (Lane* lane : m_lanes)
        if (lane && lane->m_profile == this) lane->m_profile = nullptr;
}

bool Profile::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    m_Lanes.clear();
    m_LaneBorders.clear();
    m_line = 0;
    m_column = 0;
    bool loaded = false;
    if (parser->GetVersion() <= kProfileLegacyVersion)
        loaded = QorOldData::DataConverter::LoadProfile(this, element, parser);
    else
        loaded = Ruvex::ProfileElement::LoadFromXMLElement(element, parser);
    m_roadType = ToERoadType(m_RoadTypeText.c_str());
    if (m_roadType == eRoadUnknown && m_RoadTypeText != ToText(eRoadUnknown))
        parser->ReportWarning(element, "unknown road type \"" + m_RoadTypeText + "\", read as unknown");
    UpdateLaneToLaneBorderMap();
    UpdateLaneBorderToLaneMap();
    // A place costs a pass over the file's lines: only a profile that loads unsound keeps its own and its
    // borders'.
    if (!CheckStructure().empty()) RecordPlaces(element);
    return loaded;
}

void Profile::RecordPlaces(Ruvex::IDOMElement* element) {
    m_line = element->GetLine();
    m_column = element->GetColumn();
    size_t next = 0;
    for (Ruvex::IDOMElement* child = element->GetFirstNode(); child && next < m_borders.size();
         child = child->GetNextNode()) {
        if (child->GetNodeKind() != Ruvex::NodeKind::Element || child->GetTagName() != "LaneBorder") continue;
        if (LaneBorder* border = m_borders[next++]) {
            border->m_line = child->GetLine();
            border->m_column = child->GetColumn();
        }
    }
}

void Profile::RefreshViews() {
    m_lanes.clear();
    m_lanes.reserve(m_Lanes.size());
    for (const auto& item : m_Lanes) {
        auto* lane = dynamic_cast<Lane*>(item.Get());
        if (lane) lane->m_profile = this;
        m_lanes.push_back(lane);
    }
    m_borders.clear();
    m_borders.reserve(m_LaneBorders.size());
    for (const auto& item : m_LaneBorders)
        m_borders.push_back(dynamic_cast<LaneBorder*>(item.Get()));
}

void Profile::UpdateLaneToLaneBorderMap() {
    RefreshViews();
}

void Profile::UpdateLaneBorderToLaneMap() {
    RefreshViews();
}

void Profile::UpdateMaps() {
    UpdateLaneToLaneBorderMap();
    UpdateLaneBorderToLaneMap();
}

Lane* Profile::AddLane() {
    if (m_LaneBorders.empty())
        m_LaneBorders.push_back(Ruvex::CountedPtr<Ruvex::LaneBorderElement>(new LaneBorder));
    auto* border = new LaneBorder;
    if (const Ruvex::LaneBorderElement* last = m_LaneBorders.back().Get()) {
        border->SetHorizDistToAxis(last->GetHorizDistToAxis());
        border->SetVertDistToAxis(last->GetVertDistToAxis());
    }
    auto* lane = new Lane;
    m_Lanes.push_back(Ruvex::CountedPtr<Ruvex::LaneElement>(lane));
    m_LaneBorders.push_back(Ruvex::CountedPtr<Ruvex::LaneBorderElement>(border));
    UpdateMaps();
    return lane;
}

Lane* Profile::InsertLane(size_t index) {
    if (m_Lanes.empty() || m_LaneBorders.empty() || index >= m_Lanes.size() || index >= m_LaneBorders.size())
        return AddLane();
    auto* border = new LaneBorder;
    if (const Ruvex::LaneBorderElement* at = m_LaneBorders[index].Get()) {
        border->SetHorizDistToAxis(at->GetHorizDistToAxis());
        border->SetVertDistToAxis(at->GetVertDistToAxis());
    }
    auto* lane = new Lane;
    m_Lanes.insert(index, Ruvex::CountedPtr<Ruvex::LaneElement>(lane));
    m_LaneBorders.insert(m_LaneBorders.begin() + static_cast<std::ptrdiff_t>(index + 1),
                         Ruvex::CountedPtr<Ruvex::LaneBorderElement>(border));
    UpdateMaps();
    return lane;
}

bool Profile::RemoveLane(size_t index) {
    if (index >= m_Lanes.size()) return false;
    if (m_Lanes.size() == 1) {
        ClearLanes();
        return true;
    }
    size_t borderToRemove = index + 1;
    if (Lane* lane = GetLane(index); lane && GetLeftLaneBorder(lane) && GetRightLaneBorder(lane)) {
        const bool toRight = lane->GetCenterOffset().first >= 0.0;
        lane->SetHorWidth(0.0, toRight);
        borderToRemove = toRight ? index + 1 : index;
    }
    if (Lane* lane = GetLane(index)) lane->m_profile = nullptr;
    m_Lanes.erase(index);
    if (borderToRemove < m_LaneBorders.size())
        m_LaneBorders.erase(m_LaneBorders.begin() + static_cast<std::ptrdiff_t>(borderToRemove));
    UpdateMaps();
    return true;
}

void Profile::ClearLanes() {
    for (Lane* lane : m_lanes)
        if (lane && lane->m_profile == this) lane->m_profile = nullptr;
    m_Lanes.clear();
    m_LaneBorders.clear();
    UpdateMaps();
}

size_t Profile::GetLaneIndex(const Lane* lane) const {
    if (!lane) return npos;
    const auto it = std::find(m_lanes.begin(), m_lanes.end(), lane);
    return it == m_lanes.end() ? npos : static_cast<size_t>(it - m_lanes.begin());
}

size_t Profile::GetLaneBorderIndex(const LaneBorder* border) const {
    if (!border) return npos;
    const auto it = std::find(m_borders.begin(), m_borders.end(), border);
    return it == m_borders.end() ? npos : static_cast<size_t>(it - m_borders.begin());
}

Lane* Profile::GetLaneByName(const char* name) const {
    if (!name) return nullptr;
    for (Lane* lane : m_lanes)
        if (lane && lane->GetName() == name) return lane;
    return nullptr;
}

Lane* Profile::GetLaneWithDistance(double d) const {
    return GetLane(GetLaneIndexWithDistance(d));
}

size_t Profile::GetLaneIndexWithDistance(double d) const {
    const size_t lanes = m_lanes.size();
    if (lanes == 0) return npos;
    // A count that does not match leaves the lanes without a right border out of the scan.
    const size_t scanned = std::min(lanes, m_borders.empty() ? 0 : m_borders.size() - 1);
    // Backwards without an early exit, so that the first match wins and the loop has no branch on d: which
    // lane a distance falls in is seldom the same twice in a row.
    size_t found = lanes - 1;
    for (size_t i = scanned; i-- > 0;) {
        const LaneBorder* right = m_borders[i + 1];
        found = right && right->m_HorizDistToAxis >= d ? i : found;
    }
    return found;
}

std::string Profile::GetUniqueLaneName(const std::string& requested) const {
    return GetUniqueName(requested, m_Lanes);
}

bool Profile::SetCirculationWay(size_t lane, ECirculationWay way) {
    Lane* target = GetLane(lane);
    if (!target) return false;
    target->SetCirculationWay(way);
    return true;
}

namespace {

// Profiles hold a handful of lanes: a scan of the typed view costs less than a map per profile, in bytes and
// in load time. From the back, so that an object listed twice answers for its last place.
template <typename T>
size_t LastIndexOf(const std::vector<T*>& items, const T* item) {
    for (size_t i = items.size(); i-- > 0;)
        if (items[i] == item) return i;
    return items.size();
}

}  // namespace

LaneBorder* Profile::GetLeftLaneBorder(const Lane* lane) const {
    const size_t i = lane ? LastIndexOf(m_lanes, lane) : m_lanes.size();
    return i < m_lanes.size() ? GetLaneBorder(i) : nullptr;
}

LaneBorder* Profile::GetRightLaneBorder(const Lane* lane) const {
    const size_t i = lane ? LastIndexOf(m_lanes, lane) : m_lanes.size();
    return i < m_lanes.size() ? GetLaneBorder(i + 1) : nullptr;
}

Lane* Profile::GetLeftLane(const LaneBorder* border) const {
    const size_t i = border ? LastIndexOf(m_borders, border) : m_borders.size();
    return i < m_borders.size() && i > 0 ? GetLane(i - 1) : nullptr;
}

Lane* Profile::GetRightLane(const LaneBorder* border) const {
    const size_t i = border ? LastIndexOf(m_borders, border) : m_borders.size();
    return i < m_borders.size() ? GetLane(i) : nullptr;
}

std::pair<double, double> Profile::GetLeftPos() const {
    const Ruvex::LaneBorderElement* border = m_LaneBorders.empty() ? nullptr : m_LaneBorders.front().Get();
    return border ? std::pair(border->GetHorizDistToAxis(), border->GetVertDistToAxis())
                  : std::pair(0.0, 0.0);
}

std::pair<double, double> Profile::GetRightPos() const {
    const Ruvex::LaneBorderElement* border = m_LaneBorders.empty() ? nullptr : m_LaneBorders.back().Get();
    return border ? std::pair(border->GetHorizDistToAxis(), border->GetVertDistToAxis())
                  : std::pair(0.0, 0.0);
}

void Profile::SetRoadType(ERoadType type) {
    m_roadType = type;
    m_RoadTypeText = ToText(type);
}

void Profile::Invert(bool keepCirculationWay) {
    for (const auto& item : m_LaneBorders) {
        Ruvex::LaneBorderElement* border = item.Get();
        if (!border) continue;
        border->SetHorizDistToAxis(-border->GetHorizDistToAxis());
        border->SetMarkingOffset(-border->GetMarkingOffset());
        Ruvex::DecorationElement* decoration = border->GetDecoration();
        Ruvex::PolyLineElement* shape = decoration ? decoration->GetPolyLine() : nullptr;
        if (!shape) continue;
        if (auto* runtime = dynamic_cast<::PolyLine*>(shape)) {
            std::vector<vek::Vector2> points = runtime->GetControlPoints();
            for (vek::Vector2& p : points)
                p.x = -p.x;
            runtime->SetControlPoints(points);
        } else {
            std::vector<vek::Vector2> points = shape->GetPoints();
            for (vek::Vector2& p : points)
                p.x = -p.x;
            shape->SetPoints(points);
        }
    }
    std::reverse(m_LaneBorders.begin(), m_LaneBorders.end());
    std::vector<Ruvex::CountedPtr<Ruvex::LaneElement>> lanes(m_Lanes.begin(), m_Lanes.end());
    m_Lanes.clear();
    for (auto it = lanes.rbegin(); it != lanes.rend(); ++it)
        m_Lanes.push_back(*it);
    UpdateMaps();
    if (keepCirculationWay) return;
    for (Lane* lane : m_lanes) {
        if (!lane) continue;
        if (lane->GetCirculationWay() == eWayDirect)
            lane->SetCirculationWay(eWayInverse);
        else if (lane->GetCirculationWay() == eWayInverse)
            lane->SetCirculationWay(eWayDirect);
    }
}

bool Profile::IsEqual(const Profile* other, double tolerance) const {
    if (!other || m_roadType != other->m_roadType || m_lanes.size() != other->m_lanes.size() ||
        m_borders.size() != other->m_borders.size())
        return false;
    for (size_t i = 0; i < m_lanes.size(); ++i) {
        if (!m_lanes[i] || !other->m_lanes[i]) {
            if (m_lanes[i] != other->m_lanes[i]) return false;
            continue;
        }
        if (!m_lanes[i]->IsEqual(other->m_lanes[i])) return false;
    }
    for (size_t i = 0; i < m_borders.size(); ++i) {
        if (!m_borders[i] || !other->m_borders[i]) {
            if (m_borders[i] != other->m_borders[i]) return false;
            continue;
        }
        if (!m_borders[i]->IsEqual(other->m_borders[i], tolerance)) return false;
    }
    return true;
}

Profile* Profile::Clone() const {
    auto* copy = new Profile;
    copy->m_name = m_name;
    copy->m_RoadTypeText = m_RoadTypeText;
    copy->m_roadType = m_roadType;
    copy->m_line = m_line;
    copy->m_column = m_column;
    if (const Ruvex::PreservedContent* kept = GetPreserved()) copy->EditPreserved() = *kept;
    for (const auto& item : m_Lanes) {
        Ruvex::Element* lane = nullptr;
        if (const auto* runtime = dynamic_cast<const Lane*>(item.Get()))
            lane = runtime->Clone();
        else if (item)
            lane = CloneElement(*item);
        if (auto* record = dynamic_cast<Ruvex::LaneElement*>(lane))
            copy->m_Lanes.push_back(Ruvex::CountedPtr<Ruvex::LaneElement>(record));
        else if (lane)
            lane->Release();
    }
    for (const auto& item : m_LaneBorders) {
        Ruvex::Element* border = nullptr;
        if (const auto* runtime = dynamic_cast<const LaneBorder*>(item.Get()))
            border = runtime->Clone();
        else if (item)
            border = CloneElement(*item);
        if (auto* record = dynamic_cast<Ruvex::LaneBorderElement*>(border))
            copy->m_LaneBorders.push_back(Ruvex::CountedPtr<Ruvex::LaneBorderElement>(record));
        else if (border)
            border->Release();
    }
    copy->UpdateMaps();
    return copy;
}

std::vector<ProfileProblem> Profile::CheckStructure() const {
    std::vector<ProfileProblem> problems;
    const size_t lanes = m_Lanes.size();
    const size_t borders = m_LaneBorders.size();
    if ((lanes != 0 || borders != 0) && borders != lanes + 1)
        problems.push_back({m_line, m_column,
                            "profile \"" + m_name + "\" has " + std::to_string(lanes) + " lanes and " +
                                std::to_string(borders) + " borders (expected " + std::to_string(lanes + 1) +
                                ")"});
    for (size_t i = 1; i < m_borders.size(); ++i) {
        const LaneBorder* before = m_borders[i - 1];
        const LaneBorder* border = m_borders[i];
        if (before && border && border->GetHorizDistToAxis() < before->GetHorizDistToAxis()) {
            const bool placed = border->GetSourceLine() != 0;
            problems.push_back({placed ? border->GetSourceLine() : m_line,
                                placed ? border->GetSourceColumn() : m_column,
                                "profile \"" + m_name + "\": border " + std::to_string(i) +
                                    " lies left of border " + std::to_string(i - 1)});
        }
    }
    for (size_t i = 0; i < m_lanes.size(); ++i)
        if (!m_lanes[i])
            problems.push_back(
                {m_line, m_column,
                 "profile \"" + m_name + "\": lane " + std::to_string(i) + " is not a lane object"});
    for (size_t i = 0; i < m_borders.size(); ++i)
        if (!m_borders[i])
            problems.push_back(
                {m_line, m_column,
                 "profile \"" + m_name + "\": border " + std::to_string(i) + " is not a border object"});
    return problems;
}

void Profile::PostLoad(const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MarkingElement>>& markings,
                       const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::GroundElement>>& grounds,
                       const Ruvex::HashVector<Ruvex::CountedPtr<Ruvex::MaterialElement>>& materials) {
    UpdateMaps();
    for (Lane* lane : m_lanes) {
        if (!lane) continue;
        lane->m_ground = FindByName(grounds, lane->GetGroundName());
        lane->m_material = FindByName(materials, lane->GetMaterialName());
    }
    for (LaneBorder* border : m_borders) {
        if (!border) continue;
        border->m_marking = dynamic_cast<Marking*>(FindByName(markings, border->GetMarkingName()));
        if (Decoration* decoration = border->GetDecoration()) decoration->PostLoad(materials);
    }
}

size_t Profile::ChangeGroundName(const std::string& oldName, const std::string& newName) {
    size_t changed = 0;
    for (const auto& lane : m_Lanes)
        if (lane && lane->GetGroundName() == oldName) {
            lane->SetGroundName(newName);
            ++changed;
        }
    return changed;
}

size_t Profile::ChangeMarkingName(const std::string& oldName, const std::string& newName) {
    size_t changed = 0;
    for (const auto& border : m_LaneBorders)
        if (border && border->GetMarkingName() == oldName) {
            border->SetMarkingName(newName);
            ++changed;
        }
    return changed;
}

size_t Profile::ChangeMaterialName(const std::string& oldName, const std::string& newName) {
    size_t changed = 0;
    for (const auto& lane : m_Lanes)
        if (lane && lane->GetMaterialName() == oldName) {
            lane->SetMaterialName(newName);
            ++changed;
        }
    for (const auto& border : m_LaneBorders) {
        Ruvex::DecorationElement* decoration = border ? border->GetDecoration() : nullptr;
        if (decoration && decoration->GetMaterialName() == oldName) {
            decoration->SetMaterialName(newName);
            ++changed;
        }
    }
    return changed;
}

Profile* Profile::CreateDefault() {
    Profile* profile = MakeTwoLanes(eWayInverse, eWayDirect);
    for (Lane* lane : profile->m_lanes)
        lane->SetSpeedLimit(kDefaultSpeedLimit);
    return profile;
}

Profile* Profile::MakeDefaultProfile() {
    Profile* profile = MakeTwoLanes(eWayDirect, eWayInverse);
    Ruvex::CountedPtr<Ruvex::MaterialElement> material(new Ruvex::MaterialElement);
    material->SetName("Default Material");
    Ruvex::CountedPtr<Ruvex::Element> created(Ruvex::CreateElement("Diffuse"));
    if (auto* diffuse = dynamic_cast<Ruvex::MaterialChanelElement*>(created.Get())) {
        diffuse->SetRed(kDefaultMaterialGrey);
        diffuse->SetGreen(kDefaultMaterialGrey);
        diffuse->SetBlue(kDefaultMaterialGrey);
        material->SetDiffuse(diffuse);
    }
    for (Lane* lane : profile->m_lanes)
        lane->SetMaterial(material.Get());
    return profile;
}

// ---------------------------------------------------------------------------------------------------------------
// ProfileStandalone

ProfileStandalone::~ProfileStandalone() = default;

Profile* ProfileStandalone::GetProfile() const {
    return m_Profiles.empty() ? nullptr : dynamic_cast<Profile*>(m_Profiles[0].Get());
}

bool ProfileStandalone::Save(const char* path) {
    return path && Ruvex::Save(this, path);
}

ProfileStandalone* ProfileStandalone::Load(const char* path) {
    if (!path) return nullptr;
    Ruvex::Element* root = Ruvex::Load(path, false);
    auto* library = dynamic_cast<ProfileStandalone*>(root);
    if (!library) {
        if (root) root->Release();  // never referenced: destroyed
        return nullptr;
    }
    library->PostLoad();
    return library;
}

ProfileStandalone* ProfileStandalone::Clone() const {
    auto* copy = new ProfileStandalone;
    // Runtime members hold state beyond their records (a decoration's shape): each clones itself.
    for (const auto& item : m_Profiles) {
        const auto* profile = dynamic_cast<const Profile*>(item.Get());
        if (item) PushClone(copy->m_Profiles, profile ? profile->Clone() : CloneElement(*item));
    }
    for (const auto& item : m_Markings) {
        const auto* marking = dynamic_cast<const Marking*>(item.Get());
        if (item) PushClone(copy->m_Markings, marking ? marking->Clone() : CloneElement(*item));
    }
    for (const auto& item : m_Grounds)
        if (item) PushClone(copy->m_Grounds, CloneElement(*item));
    for (const auto& item : m_Materials)
        if (item) PushClone(copy->m_Materials, CloneElement(*item));
    if (const Ruvex::PreservedContent* kept = GetPreserved()) copy->EditPreserved() = *kept;
    copy->PostLoad();
    return copy;
}

void ProfileStandalone::PostLoad() {
    for (const auto& item : m_Markings)
        if (auto* marking = dynamic_cast<Marking*>(item.Get())) marking->PostLoad(m_Materials);
    for (const auto& item : m_Profiles)
        if (auto* profile = dynamic_cast<Profile*>(item.Get()))
            profile->PostLoad(m_Markings, m_Grounds, m_Materials);
}

Marking* ProfileStandalone::FindMarking(const std::string& name) const {
    return dynamic_cast<Marking*>(FindByName(m_Markings, name));
}

size_t ProfileStandalone::ChangeGroundName(const std::string& oldName, const std::string& newName) {
    size_t changed = 0;
    for (const auto& item : m_Profiles)
        if (auto* profile = dynamic_cast<Profile*>(item.Get()))
            changed += profile->ChangeGroundName(oldName, newName);
    PostLoad();
    return changed;
}

size_t ProfileStandalone::ChangeMarkingName(const std::string& oldName, const std::string& newName) {
    size_t changed = 0;
    for (const auto& item : m_Profiles)
        if (auto* profile = dynamic_cast<Profile*>(item.Get()))
            changed += profile->ChangeMarkingName(oldName, newName);
    PostLoad();
    return changed;
}

size_t ProfileStandalone::ChangeMaterialName(const std::string& oldName, const std::string& newName) {
    size_t changed = 0;
    for (const auto& item : m_Profiles)
        if (auto* profile = dynamic_cast<Profile*>(item.Get()))
            changed += profile->ChangeMaterialName(oldName, newName);
    for (const auto& marking : m_Markings)
        if (marking && marking->GetMaterialName() == oldName) {
            marking->SetMaterialName(newName);
            ++changed;
        }
    PostLoad();
    return changed;
}

}  // namespace Orvia
