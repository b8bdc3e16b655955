#include <orvia/core/visitors.h>

#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/geometry/profile.h>
#include <orvia/topology/entities_generation.h>
#include <orvia/topology/intersection.h>
#include <orvia/topology/sub_network.h>
#include <orvia/vek/path.h>

#include <unordered_set>

namespace Orvia {

namespace {

// Markings, lanes and borders name the sub-network's own materials, which the walk has already passed on;
// the set keeps each material to one visit per walk.
class MaterialOnce {
public:
    explicit MaterialOnce(OrviaVisitor& visitor) : m_visitor(visitor) {}
    void Visit(Ruvex::MaterialElement* material) {
        if (material && m_seen.insert(material).second) m_visitor.Traverse(material);
    }
    void Visit(Marking* marking) {
        if (marking) Visit(marking->GetMaterial());
    }
    void Visit(Profile* profile) {
        if (!profile) return;
        for (size_t i = 0; i < profile->GetLaneCount(); ++i)
            if (Lane* lane = profile->GetLane(i)) Visit(lane->GetMaterial());
        for (size_t i = 0; i < profile->GetLaneBorderCount(); ++i) {
            LaneBorder* border = profile->GetLaneBorder(i);
            if (!border) continue;
            Visit(border->GetMarking());
            if (Decoration* decoration = border->GetDecoration()) Visit(decoration->GetMaterial());
        }
    }

private:
    OrviaVisitor& m_visitor;
    std::unordered_set<const Ruvex::MaterialElement*> m_seen;
};

// A 3D object that a document read without the library's factory left as a plain record is given the
// runtime class, so that the visitor can reach it.
ExternalElement* ObjectOf(Ruvex::ClippedDataElement& clipped) {
    Ruvex::CountedPtr<Ruvex::ExternalFileElement> slot(clipped.GetObject3D());
    ExternalElement::Adopt(slot);
    if (slot.Get() != clipped.GetObject3D()) clipped.SetObject3D(slot.Get());
    return static_cast<ExternalElement*>(slot.Get());
}

}  // namespace

void OrviaVisitor::Traverse(Ruvex::ParkingSpotSkinElement*) {}
void OrviaVisitor::Traverse(Ruvex::ExternalEntityElement*) {}

void OrviaVisitor::Traverse(Ruvex::MaterialElement* material) {
    if (!material) return;
    for (Ruvex::MaterialChanelElement* chanel : material->GetChanels())
        Traverse(chanel);
}

void OrviaVisitor::Traverse(Ruvex::MaterialChanelElement*) {}
void OrviaVisitor::Traverse(ExternalElement*) {}
void OrviaVisitor::Traverse(SubNetwork*) {}
void OrviaVisitor::EndTraverse(SubNetwork*) {}

void OrviaVisitor::Apply(Network* network) {
    if (!network) return;
    Traverse(network->GetGlobalTerrain());
    Traverse(network->GetRollingSurface());
    Traverse(network->GetPhysicalSurface());
    if (network->GetGeneratedTerrainMaterialElement()) Traverse(network->GetGeneratedTerrainMaterial());
    for (const auto& [index, image] : network->GetBackGroundImages())
        Traverse(static_cast<ExternalElement*>(image.Get()));
    for (size_t i = 0; i < network->GetSubNetworkCount(); ++i)
        Apply(network->GetSubNetwork(i));
}

void OrviaVisitor::Apply(SubNetwork* subNetwork) {
    if (!subNetwork) return;
    Traverse(subNetwork);
    Traverse(subNetwork->GetTerrain());
    Traverse(subNetwork->GetRollingSurface());
    Traverse(subNetwork->GetPhysicalSurface());
    Traverse(subNetwork->GetProxyFile());
    MaterialOnce materials(*this);
    for (const auto& material : subNetwork->GetMaterials())
        materials.Visit(material.Get());
    for (const auto& marking : subNetwork->GetMarkings())
        materials.Visit(dynamic_cast<Marking*>(marking.Get()));
    for (const auto& intersection : subNetwork->GetIntersections()) {
        if (!intersection) continue;
        for (const auto& clipped : intersection->GetClippedData())
            if (clipped) Traverse(ObjectOf(*clipped));
    }
    for (const auto& profile : subNetwork->GetProfiles())
        materials.Visit(dynamic_cast<Profile*>(profile.Get()));
    for (const auto& generation : subNetwork->GetEntitiesGenerations()) {
        if (!generation) continue;
        for (const auto& entity : generation->GetExternalEntities())
            if (entity && !entity->GetFilePath().empty()) Traverse(entity.Get());
    }
    for (const auto& spot : subNetwork->GetParkingSpots())
        if (spot) Traverse(spot->GetSkin());
    EndTraverse(subNetwork);
}

void OrviaVisitor::Apply(Profile* profile) {
    MaterialOnce(*this).Visit(profile);
}

void OrviaVisitor::Apply(Marking* marking) {
    if (marking) Traverse(marking->GetMaterial());
}

void OrviaVisitor::Apply(EntitiesGeneration* generation) {
    if (!generation) return;
    for (const auto& entity : generation->GetExternalEntities())
        Traverse(entity.Get());
}

PathModeVisitor::PathModeVisitor(ERelativePathMode mode, const std::vector<std::string>& searchPaths)
    : m_mode(mode), m_searchPaths(searchPaths) {}

std::string PathModeVisitor::ApplyMode(const std::string& path) const {
    if (path.empty()) return path;
    std::string result;
    if (m_mode == eAbsolute) {
        for (size_t i = 0; i < m_searchPaths.size(); ++i) {
            std::string candidate = vek::AbsoluteFilename(m_searchPaths[i], path, m_fixCase);
            if (i + 1 == m_searchPaths.size() || vek::FileExist(candidate)) {
                result = std::move(candidate);
                break;
            }
        }
    } else if (m_mode == eRelative) {
        bool first = true;
        for (const std::string& directory : m_searchPaths) {
            std::string candidate = vek::RelativeFilename(directory, path);
            if (first || candidate.size() < result.size()) result = std::move(candidate);
            first = false;
        }
    }
    if (result.empty()) result = path;
    return vek::NormalizePath(result);
}

void PathModeVisitor::Traverse(Ruvex::ParkingSpotSkinElement* skin) {
    if (skin) skin->SetFillingTexture(ApplyMode(skin->GetFillingTexture()));
}

void PathModeVisitor::Traverse(Ruvex::ExternalEntityElement* entity) {
    if (entity) entity->SetFilePath(ApplyMode(entity->GetFilePath()));
}

void PathModeVisitor::Traverse(Ruvex::MaterialElement* material) {
    if (!material) return;
    material->SetFilePath(ApplyMode(material->GetFilePath()));
    OrviaVisitor::Traverse(material);
}

void PathModeVisitor::Traverse(Ruvex::MaterialChanelElement* chanel) {
    if (chanel) chanel->SetFilePath(ApplyMode(chanel->GetFilePath()));
}

void PathModeVisitor::Traverse(ExternalElement* element) {
    if (!element) return;
    element->SetFilePath(ApplyMode(element->GetFilePath()));
}

void PathModeVisitor::Traverse(SubNetwork* subNetwork) {
    if (!subNetwork) return;
    if (ExternalElement* proxy = subNetwork->GetProxyFile()) {
        Traverse(proxy);
        m_searchPaths.insert(m_searchPaths.begin(), vek::JustDirName(proxy->GetFilePath()));
    }
}

void PathModeVisitor::EndTraverse(SubNetwork* subNetwork) {
    if (!subNetwork || !subNetwork->GetProxyFile() || m_searchPaths.empty()) return;
    m_searchPaths.erase(m_searchPaths.begin());
}

void CheckFilesVisitor::Check(const std::string& path) {
    if (!path.empty() && !vek::FileExist(path)) m_missingFiles.insert(path);
}

void CheckFilesVisitor::Traverse(Ruvex::MaterialElement* material) {
    if (!material) return;
    Check(material->GetFilePath());
    OrviaVisitor::Traverse(material);
}

void CheckFilesVisitor::Traverse(Ruvex::MaterialChanelElement* chanel) {
    if (chanel) Check(chanel->GetFilePath());
}

void CheckFilesVisitor::Traverse(ExternalElement* element) {
    if (element) Check(element->GetFilePath());
}

ReplaceFileVisitor::ReplaceFileVisitor(const std::string& oldPath, const std::string& newPath)
    : m_oldPath(oldPath), m_newPath(newPath) {}

void ReplaceFileVisitor::Traverse(Ruvex::MaterialElement* material) {
    if (!material) return;
    if (material->GetFilePath() == m_oldPath) material->SetFilePath(m_newPath);
    OrviaVisitor::Traverse(material);
}

void ReplaceFileVisitor::Traverse(Ruvex::MaterialChanelElement* chanel) {
    if (chanel && chanel->GetFilePath() == m_oldPath) chanel->SetFilePath(m_newPath);
}

void ReplaceFileVisitor::Traverse(ExternalElement* element) {
    if (element && element->GetFilePath() == m_oldPath) element->SetFilePath(m_newPath);
}

}  // namespace Orvia
