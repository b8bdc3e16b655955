// Whole documents: the "Ruvex" root, its version, and what surrounds the loaded element.

#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include "pugi_dom.h"
#include "replace_file.h"
#include "xml_writer.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace Ruvex {

struct PreservedContent::Document {
    bool hasDeclaration = false;
    std::vector<PreservedAttribute> declaration;
    std::vector<PreservedNode> prolog;  // before the root; doctype kept with kind Other
    std::vector<PreservedNode> epilog;
    std::vector<PreservedAttribute> rootAttributes;
    std::vector<PreservedNode> rootNodes;  // anchor 0: before the loaded element, 1: after it
    bool latin1 = false;                   // written in ISO-8859-1, else UTF-8
    bool byteOrderMark = false;            // written before a UTF-8 text
};

namespace {

const std::string kRootTag = "Ruvex";
const std::string kVersionAttribute = "version";
const std::string kRevisionAttribute = "versionRevision";

std::vector<Problem>& LastProblems() {
    thread_local std::vector<Problem> problems;
    return problems;
}

// "2.4" or "2.4.3"; the revision attribute, when present, gives the third number.
bool ParseVersion(std::string_view text, int result[3]) {
    int index = 0;
    int parts[3] = {0, 0, 0};
    auto accept = [&] {
        for (int i = 0; i < 3; ++i)
            result[i] = parts[i];
        return true;
    };
    while (!text.empty() && index < 3) {
        size_t dot = text.find('.');
        std::string_view piece = text.substr(0, dot);
        if (detail::ParseInteger(piece, parts[index]) != AttributeStatus::Ok || parts[index] < 0)
            return false;
        ++index;
        if (dot == std::string_view::npos) return accept();
        text.remove_prefix(dot + 1);
    }
    return index > 0 && text.empty() && accept();
}

PreservedNode KeepDocumentNode(pugi::xml_node node, detail::PugiDocument& document, uint32_t anchor) {
    PreservedNode kept;
    kept.anchor = anchor;
    switch (node.type()) {
        case pugi::node_comment:
            kept.kind = NodeKind::Comment;
            break;
        case pugi::node_pi:
            kept.kind = NodeKind::ProcessingInstruction;
            kept.name = node.name();
            break;
        case pugi::node_pcdata:
            kept.kind = NodeKind::Text;
            break;
        case pugi::node_cdata:
            kept.kind = NodeKind::CData;
            break;
        case pugi::node_element: {
            kept.kind = NodeKind::Element;
            detail::PugiNode wrapper(node, &document);
            CountedPtr<GenericElement> copy(new GenericElement(node.name()));
            copy->LoadFromXMLElement(&wrapper, &document);
            kept.element = copy;
            return kept;
        }
        default:
            kept.kind = NodeKind::Other;
            break;  // doctype
    }
    kept.value = node.value();
    return kept;
}

void WriteDocumentNodes(detail::WriteDocument& document, const std::vector<PreservedNode>& nodes) {
    for (const PreservedNode& p : nodes) {
        // No text or element may sit outside the root; a doctype is kept with kind Other.
        if (p.kind != NodeKind::ProcessingInstruction && p.kind != NodeKind::Other &&
            p.kind != NodeKind::Comment)
            continue;
        document.root().Insert(document.NewNode(p.kind, p.name, p.value), nullptr);
    }
}

// The "Ruvex" root element, or empty with an error.
pugi::xml_node FindRoot(detail::PugiDocument& document) {
    pugi::xml_node root = document.doc().document_element();
    if (!root) {
        document.ReportAt(0, "the document holds no element");
        return {};
    }
    if (std::strcmp(root.name(), kRootTag.c_str()) != 0) {
        detail::PugiNode wrapper(root, &document);
        document.ReportProblem(&wrapper,
                               "expected the root element <" + kRootTag + ">, found <" + root.name() + ">");
        return {};
    }
    return root;
}

// The version the root gives (the current one when it gives none or one that does not read, with a
// warning); its other attributes are kept.
void ReadVersion(detail::PugiDocument& document, pugi::xml_node root, PreservedContent::Document& keep) {
    detail::PugiNode rootWrapper(root, &document);
    int version[3] = {kCurrentVersionMajor, kCurrentVersionMinor, kCurrentVersionRevision};
    const char* versionText = nullptr;
    const char* revisionText = nullptr;
    for (pugi::xml_attribute a = root.first_attribute(); a; a = a.next_attribute()) {
        if (kVersionAttribute == a.name())
            versionText = a.value();
        else if (kRevisionAttribute == a.name())
            revisionText = a.value();
        else
            keep.rootAttributes.push_back({a.name(), a.value()});
    }
    if (versionText && !ParseVersion(versionText, version))
        document.ReportWarning(&rootWrapper,
                               "attribute \"version\" of <Ruvex>: expected a version such as \"2.4\", "
                               "found \"" +
                                   std::string(versionText) + "\"; left at its default");
    int revision = 0;
    if (revisionText) {
        if (detail::ParseInteger(std::string_view(revisionText), revision) == AttributeStatus::Ok &&
            revision >= 0)
            version[2] = revision;
        else
            document.ReportWarning(&rootWrapper,
                                   "attribute \"versionRevision\" of <Ruvex>: expected a non-negative "
                                   "integer, found \"" +
                                       std::string(revisionText) + "\"; left at its default");
    }
    document.SetVersion(MakeVersionID(version[0], version[1], version[2]));
}

// What stands before and after the root: the declaration, comments, instructions, the doctype.
void KeepSurroundings(detail::PugiDocument& document, pugi::xml_node root, PreservedContent::Document& keep) {
    keep.latin1 = document.input().encoding() == detail::FileEncoding::Latin1;
    keep.byteOrderMark =
        document.input().byteOrderMark() && document.input().encoding() == detail::FileEncoding::UTF8;
    bool beforeRoot = true;
    for (pugi::xml_node n = document.doc().first_child(); n; n = n.next_sibling()) {
        if (n == root) {
            beforeRoot = false;
        } else if (n.type() == pugi::node_declaration) {
            keep.hasDeclaration = true;
            for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute())
                keep.declaration.push_back({a.name(), a.value()});
        } else {
            (beforeRoot ? keep.prolog : keep.epilog).push_back(KeepDocumentNode(n, document, 0));
        }
    }
}

// Loads the first element under the root; what else the root holds is kept around it. Null when there is
// none.
Element* LoadTopElement(detail::PugiDocument& document, pugi::xml_node root,
                        PreservedContent::Document& keep) {
    Element* object = nullptr;
    uint32_t anchor = 0;
    for (pugi::xml_node n = root.first_child(); n; n = n.next_sibling()) {
        if (!object && n.type() == pugi::node_element) {
            detail::PugiNode wrapper(n, &document);
            object = CreateElement(n.name());
            object->AddRef();
            object->LoadFromXMLElement(&wrapper, &document);
            anchor = 1;
            continue;
        }
        keep.rootNodes.push_back(KeepDocumentNode(n, document, anchor));
    }
    if (!object) {
        detail::PugiNode wrapper(root, &document);
        document.ReportProblem(&wrapper, "the <Ruvex> root holds no element");
    }
    return object;
}

Element* LoadDocument(detail::PugiDocument& document, std::vector<Problem>& problems) {
    pugi::xml_node root = FindRoot(document);
    Element* object = nullptr;
    auto keep = std::make_shared<PreservedContent::Document>();
    if (root) {
        ReadVersion(document, root, *keep);
        KeepSurroundings(document, root, *keep);
        object = LoadTopElement(document, root, *keep);
    }
    problems = document.problems();
    if (object && document.HasErrors()) {
        object->Release();
        object = nullptr;
    }
    if (!object) return nullptr;
    object->EditPreserved().document = std::move(keep);
    object->SetRefCount(0);
    return object;
}

// The declaration: always one, and the encoding it names is the one the text is written in.
void WriteDeclaration(detail::WriteDocument& document, const PreservedContent::Document* kept) {
    using detail::WriteNode;
    const bool latin1 = kept && kept->latin1;
    std::string_view encoding = latin1 ? "ISO-8859-1" : "UTF-8";
    std::string_view standalone;
    if (kept && kept->hasDeclaration)
        for (const PreservedAttribute& a : kept->declaration) {
            if (a.name == "encoding" && detail::NamesEncoding(a.value, latin1 ? detail::FileEncoding::Latin1
                                                                              : detail::FileEncoding::UTF8))
                encoding = a.value;
            else if (a.name == "standalone" && (a.value == "yes" || a.value == "no"))
                standalone = a.value;
        }
    WriteNode* declaration = document.NewNode(WriteNode::Kind::Declaration, "xml");
    document.root().Insert(declaration, nullptr);
    // What is written follows the rules of XML 1.0, whatever version the file named.
    declaration->AppendNewAttribute("version", "1.0");
    declaration->AppendNewAttribute("encoding", encoding);
    if (!standalone.empty()) declaration->AppendNewAttribute("standalone", standalone);
}

bool BuildDocument(Element* root, detail::WriteDocument& document, std::string& text) {
    using detail::WriteNode;
    const PreservedContent* preserved = root->GetPreserved();
    const PreservedContent::Document* kept = preserved ? preserved->document.get() : nullptr;

    WriteDeclaration(document, kept);
    if (kept) WriteDocumentNodes(document, kept->prolog);

    WriteNode* rootNode = document.NewNode(WriteNode::Kind::Element, kRootTag);
    document.root().Insert(rootNode, nullptr);
    rootNode->AppendNewAttribute(
        kVersionAttribute, std::to_string(kCurrentVersionMajor) + "." + std::to_string(kCurrentVersionMinor));
    rootNode->AppendNewAttribute(kRevisionAttribute, std::to_string(kCurrentVersionRevision));
    if (kept)
        for (const PreservedAttribute& a : kept->rootAttributes)
            rootNode->AppendAttribute(a.name, a.value);

    // The element sits at level 2, under the "Ruvex" root.
    size_t& depth = detail::BuildDepth();
    const size_t outer = std::exchange(depth, 1);
    auto* built = static_cast<WriteNode*>(root->BuildXMLElement(&document));
    if (!built) {
        depth = outer;
        document.ReportProblem(nullptr, "the element could not be written");
        return false;
    }
    rootNode->Insert(built, nullptr);
    if (kept) detail::MergePreservedNodes(document, rootNode, kept->rootNodes);
    if (kept) WriteDocumentNodes(document, kept->epilog);
    document.ApplyDeferred();
    depth = outer;
    if (document.HasErrors()) return false;
    // Children that runtime classes append after the generic part are not counted while building; what is
    // written must read back all the same.
    if (!document.Serialize(text, kept && kept->latin1, kMaxNestingDepth)) return false;
    if (kept && kept->byteOrderMark) text.insert(0, "\xEF\xBB\xBF");
    return true;
}

}  // namespace

Element* Load(const char* pathOrText, bool fromMemory) {
    std::vector<Problem>& problems = LastProblems();
    problems.clear();
    if (!pathOrText) {
        problems.push_back(Problem{"", 0, 0, "no document given"});
        return nullptr;
    }
    detail::ParseBuffer text;
    detail::TextOrigin origin;
    if (fromMemory) {
        text.size = std::strlen(pathOrText);
        text.data = std::make_unique_for_overwrite<char[]>(text.size + 1);
        std::memcpy(text.data.get(), pathOrText, text.size + 1);
        origin.text = pathOrText;
    } else if (detail::ReadDocumentFile(pathOrText, text)) {
        origin.path = pathOrText;
    } else {
        problems.push_back(Problem{pathOrText, 0, 0, "cannot read the file"});
        return nullptr;
    }
    detail::PugiDocument document(fromMemory ? std::string("buffer") : std::string(pathOrText));
    if (!document.Parse(std::move(text), origin)) {
        problems = document.problems();
        return nullptr;
    }
    // Checked before any object exists: loading and destroying the tree then never recurse deeper.
    const size_t problemsBefore = document.problems().size();
    if (pugi::xml_node deep = document.CheckElements(kMaxNestingDepth)) {
        // A document refused for its depth reports that alone, not the repeats met on the way.
        document.problems().resize(problemsBefore);
        document.ReportAt(deep.offset_debug(),
                          "elements are nested deeper than " + std::to_string(kMaxNestingDepth) + " levels");
        problems = document.problems();
        return nullptr;
    }
    return LoadDocument(document, problems);
}

std::string SaveToString(Element* root) {
    std::vector<Problem>& problems = LastProblems();
    problems.clear();
    std::string text;
    if (!root) return text;
    detail::WriteDocument document("buffer");
    if (!BuildDocument(root, document, text)) {
        problems = document.problems();
        text.clear();
    }
    return text;
}

bool Save(Element* root, const char* path) {
    std::vector<Problem>& problems = LastProblems();
    problems.clear();
    if (!root || !path || !*path) {
        problems.push_back(Problem{path ? path : "", 0, 0, "nothing to save or no file name"});
        return false;
    }
    std::string text;
    detail::WriteDocument document(path);
    if (!BuildDocument(root, document, text)) {
        problems = document.problems();
        return false;
    }
    std::string error;
    std::string warning;
    if (!detail::ReplaceFile(path, text, error, warning)) {
        problems.push_back(Problem{path, 0, 0, error});
        return false;
    }
    if (!warning.empty()) problems.push_back(Problem{path, 0, 0, warning, true});
    return true;
}

const std::vector<Problem>& GetLastProblems() {
    return LastProblems();
}

}  // namespace Ruvex
