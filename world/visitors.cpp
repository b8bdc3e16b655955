#include <orvia/core/visitors.h>

#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/network.h>
#include <orvia/topology/sub_network.h>
#include <orvia/vek/path.h>

namespace Orvia {

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
    for (const auto& material : subNetwork->GetMaterials())
        Traverse(material.Get());
    EndTraverse(subNetwork);
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

}  // namespace Orvia
