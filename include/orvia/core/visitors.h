#pragma once

// Walks over the file references of a model.

#include <set>
#include <string>
#include <vector>

namespace Ruvex {
class ExternalEntityElement;
class MaterialChanelElement;
class MaterialElement;
class ParkingSpotSkinElement;
}  // namespace Ruvex

namespace Orvia {

class EntitiesGeneration;
class ExternalElement;
class Marking;
class Network;
class Profile;
class SubNetwork;

// Calls one overridable operation per file reference. Every operation accepts null and then does nothing.
class OrviaVisitor {
public:
    virtual void Traverse(Ruvex::ParkingSpotSkinElement* skin);
    virtual void Traverse(Ruvex::ExternalEntityElement* entity);
    // A material: by default, each of its eight channels in stored order (absent ones as null).
    virtual void Traverse(Ruvex::MaterialElement* material);
    virtual void Traverse(Ruvex::MaterialChanelElement* chanel);
    virtual void Traverse(ExternalElement* element);
    // Around everything inside a sub-network.
    virtual void Traverse(SubNetwork* subNetwork);
    virtual void EndTraverse(SubNetwork* subNetwork);

    // The network's global terrain, rolling surface and physical surface, the material of its generated
    // terrain, its background images (ascending camera index), then each sub-network. Null is ignored.
    void Apply(Network* network);
    // Traverse(sub-network); its terrain, rolling surface, physical surface and proxy file; its materials;
    // the materials of its markings; the 3D objects of its intersections' clipped data; its profiles; the
    // external entities (with a path) of its entity generations; the skins of its parking spots;
    // EndTraverse(sub-network). A material that several of these share is visited once, so every file
    // reference of the sub-network reaches the visitor exactly once. Null is ignored.
    void Apply(SubNetwork* subNetwork);
    // The material of each lane, then the marking's and the decoration's material of each border.
    void Apply(Profile* profile);
    void Apply(Marking* marking);
    // Each external entity, in order.
    void Apply(EntitiesGeneration* generation);

protected:
    OrviaVisitor() = default;
    OrviaVisitor(const OrviaVisitor&) = default;
    OrviaVisitor& operator=(const OrviaVisitor&) = default;
    ~OrviaVisitor() = default;
};

// Turns every path absolute or relative against an ordered list of search directories.
class PathModeVisitor final : public OrviaVisitor {
public:
    enum ERelativePathMode { eAbsolute = 0, eRelative = 1 };

    PathModeVisitor(ERelativePathMode mode, const std::vector<std::string>& searchPaths);

    // When set, absolute paths are matched case-insensitively against the directories' contents.
    bool isFixCase() const { return m_fixCase; }
    void setFixCase(bool fixCase) { m_fixCase = fixCase; }
    const std::vector<std::string>& GetSearchPaths() const { return m_searchPaths; }

    using OrviaVisitor::Traverse;
    void Traverse(Ruvex::ParkingSpotSkinElement* skin) override;
    void Traverse(Ruvex::ExternalEntityElement* entity) override;
    // The material's own file, then its channels.
    void Traverse(Ruvex::MaterialElement* material) override;
    void Traverse(Ruvex::MaterialChanelElement* chanel) override;
    void Traverse(ExternalElement* element) override;
    // A sub-network with a proxy file: the proxy path is converted and its directory is searched first until
    // EndTraverse.
    void Traverse(SubNetwork* subNetwork) override;
    void EndTraverse(SubNetwork* subNetwork) override;

    // The converted path, normalised. Absolute: the first directory under which the file exists, else the
    // last directory without test. Relative: the shortest path relative to one of the directories (the first
    // on equal length). An empty path stays empty; without directories the path is only normalised.
    std::string ApplyMode(const std::string& path) const;

private:
    ERelativePathMode m_mode;
    std::vector<std::string> m_searchPaths;
    bool m_fixCase = false;
};

// Collects the paths of material, channel and external files that do not exist. Textures of parking-spot
// skins and files of external entities are not checked.
class CheckFilesVisitor : public OrviaVisitor {
public:
    // Sorted, without duplicates.
    const std::set<std::string>& GetMissingFiles() const { return m_missingFiles; }

    using OrviaVisitor::Traverse;
    // The material's own file, then its channels.
    void Traverse(Ruvex::MaterialElement* material) override;
    void Traverse(Ruvex::MaterialChanelElement* chanel) override;
    void Traverse(ExternalElement* element) override;

protected:
    // Adds a non-empty path whose file does not exist.
    void Check(const std::string& path);

private:
    std::set<std::string> m_missingFiles;
};

// Replaces one path by another in materials, channels and external elements. Paths are compared exactly,
// case included.
class ReplaceFileVisitor : public OrviaVisitor {
public:
    ReplaceFileVisitor(const std::string& oldPath, const std::string& newPath);

    using OrviaVisitor::Traverse;
    // The material's own file, then its channels.
    void Traverse(Ruvex::MaterialElement* material) override;
    void Traverse(Ruvex::MaterialChanelElement* chanel) override;
    void Traverse(ExternalElement* element) override;

private:
    std::string m_oldPath;
    std::string m_newPath;
};

}  // namespace Orvia
