#include "commands.h"

#include <orvia/core/external_element.h>
#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/core/visitors.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/sub_network.h>
#include <orvia/vek/path.h>

#include <cstdio>

namespace OrviaTool {

namespace {

struct Reference {
    std::string path;
    std::string where;  // the sub-network (if any) and the element that holds the path
};

// Records every file reference in walk order, with the element that holds it.
class Lister final : public Orvia::OrviaVisitor {
public:
    void Traverse(Ruvex::ParkingSpotSkinElement* skin) override {
        if (skin) Add(skin->GetFillingTexture(), "ParkingSpotSkin");
    }
    void Traverse(Ruvex::ExternalEntityElement* entity) override {
        if (entity) Add(entity->GetFilePath(), "ExternalEntity");
    }
    void Traverse(Ruvex::MaterialElement* material) override {
        if (!material) return;
        m_material = "Material " + material->GetName();
        Add(material->GetFilePath(), m_material);
        OrviaVisitor::Traverse(material);
    }
    void Traverse(Ruvex::MaterialChanelElement* chanel) override {
        if (chanel) Add(chanel->GetFilePath(), m_material + " / " + chanel->GetTagName());
    }
    void Traverse(Orvia::ExternalElement* element) override {
        if (element) Add(element->GetFilePath(), element->GetTagName());
    }
    void Traverse(Orvia::SubNetwork* subNetwork) override {
        if (subNetwork) m_subNetwork = "SubNetwork " + subNetwork->GetName() + " / ";
    }
    void EndTraverse(Orvia::SubNetwork*) override { m_subNetwork.clear(); }

    std::vector<Reference> references;

private:
    void Add(const std::string& path, const std::string& where) {
        if (!path.empty()) references.push_back({path, m_subNetwork + where});
    }
    std::string m_subNetwork;
    std::string m_material;
};

std::vector<std::string> DirectoryOf(const std::string& file) {
    return {vek::JustDirName(file)};
}

}  // namespace

int RunFiles(const FilesOptions& options) {
    Orvia::Init(Ruvex::Encoding::GetMode());
    Ruvex::CountedPtr<Orvia::Network> network;
    if (LoadNetwork(options.file, network) != 0) return 1;
    if (!options.replaceOld.empty()) {
        Orvia::ReplaceFileVisitor(options.replaceOld, options.replaceNew).Apply(network.Get());
    }
    // Stored relative paths are relative to the input; they are made absolute before being made relative to
    // the output.
    if (options.absolute || options.relative) network->MakeAbsolutePaths(DirectoryOf(options.file));
    if (options.relative) {
        const std::vector<std::string> directory =
            DirectoryOf(options.output.empty() ? options.file : options.output);
        Orvia::PathModeVisitor(Orvia::PathModeVisitor::eRelative, directory).Apply(network.Get());
    }
    Lister shown;
    shown.Apply(network.Get());

    // Existence is judged as loading would resolve the paths: against the document's directory, beside the
    // proxy file first. A second copy keeps the listing's paths as they are.
    Ruvex::CountedPtr<Orvia::Network> resolved(Orvia::Network::Load(options.file.c_str(), {}));
    if (!resolved) return Fail(options.file, "the file cannot be read");
    if (!options.replaceOld.empty())
        Orvia::ReplaceFileVisitor(options.replaceOld, options.replaceNew).Apply(resolved.Get());
    resolved->MakeAbsolutePaths(DirectoryOf(options.file));
    Lister absolute;
    absolute.Apply(resolved.Get());

    size_t missing = 0;
    std::string json = "{\"file\": " + JsonQuoted(options.file) + ", \"files\": [";
    for (size_t i = 0; i < shown.references.size(); ++i) {
        const Reference& reference = shown.references[i];
        const bool exists = i < absolute.references.size() && vek::FileExist(absolute.references[i].path);
        missing += exists ? 0 : 1;
        if (options.json) {
            json += (i ? ", " : "") + std::string("{\"path\": ") + JsonQuoted(reference.path) +
                    ", \"element\": " + JsonQuoted(reference.where) +
                    ", \"exists\": " + (exists ? "true" : "false") + "}";
        } else {
            std::printf("%s\t%s\t%s\n", exists ? "ok" : "missing", Printable(reference.path).c_str(),
                        Printable(reference.where).c_str());
        }
    }
    if (options.json) std::printf("%s]}\n", json.c_str());

    if (!options.output.empty() && !network->Save(options.output.c_str()))
        return Fail(options.output, "the file cannot be written");
    return options.check && missing ? 1 : 0;
}

}  // namespace OrviaTool
