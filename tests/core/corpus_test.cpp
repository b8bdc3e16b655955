// The documents of tests/data, loaded through the library's factory: each loads cleanly, saves, reloads to
// the same tree and saves to the same bytes; together they meet every tag the element layer and the factory
// know.

#include <orvia/core/library.h>
#include <orvia/core/orvia_factory.h>
#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

using namespace Ruvex;
namespace fs = std::filesystem;

namespace {

const fs::path kCorpus = fs::path(ORVIA_SOURCE_DIR) / "tests" / "data";

// The library's factory, noting every tag it is asked for.
class RecordingFactory : public Orvia::OrviaFactory {
public:
    Element* Create(const std::string& tag) override {
        tags.insert(tag);
        return OrviaFactory::Create(tag);
    }
    std::set<std::string> tags;
};

std::vector<fs::path> CorpusFiles() {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kCorpus))
        if (entry.is_regular_file() && entry.path().extension() == ".xml") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string ReadAll(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void DescribeNodes(const std::vector<PreservedNode>& nodes, std::string& out);

// The whole object tree as text: tag, every declared attribute's value, declared children in order, and all
// that was kept as read. Two trees that describe alike hold the same data in the same places.
void Describe(const Element& element, std::string& out) {
    out += element.GetTagName() + "{";
    FormatBuffer buffer;
    for (const AttributeField& field : element.GetSchema().attributes)
        out += std::string(field.name) + "=" + std::string(field.format(element, buffer, field)) + ";";
    const PreservedContent* kept = element.GetPreserved();
    if (kept)
        for (const PreservedAttribute& a : kept->attributes)
            out += "+" + a.name + "=" + a.value + ";";
    for (const ChildField& field : element.GetSchema().children) {
        out += std::string(field.member) + "[";
        field.forEach(element, &out, [](void* context, Element* child) {
            Describe(*child, *static_cast<std::string*>(context));
        });
        out += "]";
    }
    if (kept) {
        DescribeNodes(kept->nodes, out);
        for (const PreservedContainer& c : kept->containers) {
            out += "+" + c.tag + "(";
            for (const PreservedAttribute& a : c.attributes)
                out += a.name + "=" + a.value + ";";
            DescribeNodes(c.nodes, out);
            out += ")";
        }
    }
    out += "}";
}

void DescribeNodes(const std::vector<PreservedNode>& nodes, std::string& out) {
    for (const PreservedNode& node : nodes) {
        // A node kept behind a named child is placed by that child; its plain count moves with what a save
        // adds.
        const std::string place = node.after.empty() ? std::to_string(node.anchor)
                                                     : node.after + "#" + std::to_string(node.afterCount);
        out += "+@" + place + ":" + std::to_string(static_cast<int>(node.kind)) + ":";
        if (node.element)
            Describe(*node.element, out);
        else
            out += node.name + "|" + node.value;
    }
}

// Elements below `element` whose class has fields yet left something of the file unread: a misspelt name in
// the corpus, or a table that lost a field. Classes without fields keep their content as read by design.
void CollectLeftovers(const Element& element, std::vector<std::string>& out) {
    const Schema& schema = element.GetSchema();
    const PreservedContent* kept = element.GetPreserved();
    const bool hasFields = !schema.attributes.empty() || !schema.children.empty();
    if (hasFields && kept && (!kept->attributes.empty() || !kept->nodes.empty() || !kept->containers.empty()))
        out.push_back(element.GetTagName());
    for (const ChildField& field : schema.children)
        field.forEach(element, &out, [](void* context, Element* child) {
            CollectLeftovers(*child, *static_cast<std::vector<std::string>*>(context));
        });
}

// The tags the factory's table names: every quoted word of its source, which holds nothing else in quotes.
std::set<std::string> FactoryTableTags() {
    const std::string source = ReadAll(fs::path(ORVIA_SOURCE_DIR) / "world" / "orvia_factory.cpp");
    std::set<std::string> tags;
    for (size_t open = source.find('"'); open != std::string::npos; open = source.find('"', open + 1)) {
        const size_t close = source.find('"', open + 1);
        if (close == std::string::npos) break;
        tags.insert(source.substr(open + 1, close - open - 1));
        open = close;
    }
    return tags;
}

}  // namespace

TEST(Corpus, EveryDocumentRoundTripsAndEveryTagIsMet) {
    CountedPtr<RecordingFactory> factory(new RecordingFactory);
    SetFactory(factory.Get());
    Orvia::Init(Encoding::GetMode());  // keeps the recording factory: it is the library's
    ASSERT_EQ(GetFactory(), factory.Get());

    const std::vector<fs::path> files = CorpusFiles();
    ASSERT_GE(files.size(), 12u);
    const fs::path saved =
        fs::temp_directory_path() / ("orvia_corpus_" + std::to_string(::getpid()) + ".xml");
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.lexically_relative(kCorpus).string());
        CountedPtr<Element> first(Load(file.c_str(), false));
        ASSERT_TRUE(first) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems()[0]));
        EXPECT_TRUE(GetLastProblems().empty()) << ToString(GetLastProblems()[0]);
        if (file.filename() != "kept.xml") {
            std::vector<std::string> leftovers;
            CollectLeftovers(*first, leftovers);
            EXPECT_TRUE(leftovers.empty()) << "unread content in <" << leftovers.front() << ">";
        }

        ASSERT_TRUE(Save(first.Get(), saved.c_str())) << ToString(GetLastProblems()[0]);
        const std::string text = ReadAll(saved);
        EXPECT_EQ(SaveToString(first.Get()), text);
        CountedPtr<Element> second(Load(text.c_str(), true));
        ASSERT_TRUE(second);
        EXPECT_EQ(SaveToString(second.Get()), text);
        std::string before;
        std::string after;
        Describe(*first, before);
        Describe(*second, after);
        EXPECT_EQ(before, after);
    }
    fs::remove(saved);

    // Every registered data class and every tag of the factory's table was asked for while loading.
    std::set<std::string> wanted = FactoryTableTags();
    for (const DataClassInfo& info : DataClasses())
        wanted.insert(std::string(info.tag));
    std::string missing;
    for (const std::string& tag : wanted)
        if (!factory->tags.count(tag)) missing += tag + " ";
    EXPECT_EQ(missing, "") << "registered or factory tags never met";

    Orvia::Close();
}
