#include "bench/network_generator.h"

#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

using namespace Ruvex;

namespace {

std::string SaveCity(const OrviaBench::CityShape& shape, OrviaBench::CityStats* stats = nullptr) {
    OrviaBench::CityBuilder builder(shape);
    CountedPtr<NetworkElement> network = builder.Build();
    if (stats) *stats = builder.Stats();
    return SaveToString(network.Get());
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Start tags in the text: '<' before a name (not "</", "<!" or "<?"; attribute values escape '<').
size_t CountStartTags(const std::string& text) {
    size_t count = 0;
    for (size_t i = 0; i + 1 < text.size(); ++i)
        count += text[i] == '<' && std::isalpha(static_cast<unsigned char>(text[i + 1]));
    return count;
}

}  // namespace

TEST(CityGenerator, SameSeedSameBytes) {
    OrviaBench::CityShape shape;
    shape.seed = 7;
    shape.subNetworks = 3;
    shape.grid = 4;
    const std::string first = SaveCity(shape);
    ASSERT_FALSE(first.empty()) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    EXPECT_EQ(SaveCity(shape), first);

    // The file is what SaveToString gives, whatever was generated before in the process.
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / "orvia_generator_test_city.xml";
    ASSERT_TRUE(OrviaBench::GenerateCityNetwork(path.string(), shape));
    EXPECT_EQ(ReadFile(path), first);
    std::filesystem::remove(path);

    shape.seed = 8;
    EXPECT_NE(SaveCity(shape), first);
}

TEST(CityGenerator, SmallCityLoadsWithExpectedCounts) {
    OrviaBench::CityShape shape;
    shape.seed = 3;
    shape.subNetworks = 3;
    shape.grid = 5;
    OrviaBench::CityStats stats;
    const std::string text = SaveCity(shape, &stats);
    EXPECT_EQ(CountStartTags(text), stats.elements);

    CountedPtr<Element> root(Load(text.c_str(), true));
    ASSERT_TRUE(root) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    EXPECT_TRUE(GetLastProblems().empty());
    auto* network = dynamic_cast<NetworkElement*>(root.Get());
    ASSERT_NE(network, nullptr);

    // The grid alone fixes these.
    const size_t g = static_cast<size_t>(shape.grid);
    const size_t n = static_cast<size_t>(shape.subNetworks);
    ASSERT_EQ(network->GetSubNetworks().size(), n);
    EXPECT_EQ(network->GetSubNetworkJunctions().size(), (n - 1) * g);
    ASSERT_EQ(network->GetRoads().size(), g);
    // A row crosses every sub-network: g - 1 tracks in each, and one on each side of every junction.
    EXPECT_EQ(network->GetRoads()[0]->GetPieces().size(), n * (g - 1) + 2 * (n - 1));

    // The stats the benchmark reports are what the file holds; every animated light is a sign on one of its
    // sub-network's tracks, kept as a child no data class declares.
    size_t tracks = 0;
    size_t clipped = 0;
    size_t animations = 0;
    for (size_t s = 0; s < n; ++s) {
        const SubNetworkElement& sub = *network->GetSubNetworks()[s];
        EXPECT_EQ(sub.GetIntersections().size(), g * g);
        const size_t ends = (s > 0 ? g : 0) + (s + 1 < n ? g : 0);
        EXPECT_EQ(sub.GetTracks().size(), 2 * g * (g - 1) + ends);
        std::set<std::string> signs;
        for (const auto& track : sub.GetTracks()) {
            ++tracks;
            EXPECT_EQ(track->GetPortions().back()->GetEndDistance(), shape.spacingM);
            if (const PreservedContent* kept = track->GetPreserved())
                for (const PreservedNode& node : kept->nodes) {
                    ASSERT_TRUE(node.element);
                    EXPECT_EQ(node.element->GetTagName(), "ClippedData");
                    for (const PreservedAttribute& a : node.element->GetPreserved()->attributes)
                        if (a.name == "name") signs.insert(a.value);
                    ++clipped;
                }
        }
        for (const auto& group : sub.GetTrafficLightGroups())
            for (const auto& animation : group->GetAnimations()) {
                ++animations;
                EXPECT_EQ(signs.count(animation->GetRoadSignName()), 1u) << animation->GetRoadSignName();
            }
    }
    EXPECT_EQ(tracks, stats.tracks);
    EXPECT_EQ(clipped, stats.trackClippedData);
    EXPECT_EQ(animations, stats.lightAnimations);
    EXPECT_GT(clipped, 0u);
    EXPECT_GT(animations, 0u);

    // What was generated is what a load keeps: saving the loaded tree gives the same bytes.
    EXPECT_EQ(SaveToString(root.Get()), text);
}
