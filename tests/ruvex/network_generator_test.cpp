#include "bench/network_generator.h"

#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/factory.h>

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

using namespace Ruvex;

namespace {

std::string SaveCity(const OrviaBench::CityShape& shape, OrviaBench::CityStats* stats = nullptr) {
    OrviaBench::CityBuilder builder(shape);
    CountedPtr<NetworkElement> network = builder.Build();
    if (stats) *stats = builder.Stats();
    return SaveToString(network.Get());
}

// Start tags in the text: '<' before a name (not "</", "<!" or "<?"; attribute values escape '<').
size_t CountStartTags(const std::string& text) {
    size_t count = 0;
    for (size_t i = 0; i + 1 < text.size(); ++i)
        count += text[i] == '<' && std::isalpha(static_cast<unsigned char>(text[i + 1]));
    return count;
}

}  // namespace

TEST(CityGenerator, SmallCityIsReproducibleAndLoadsWithExpectedCounts) {
    OrviaBench::CityShape shape;
    shape.seed = 3;
    shape.subNetworks = 3;
    shape.grid = 5;
    OrviaBench::CityStats stats;
    const std::string text = SaveCity(shape, &stats);
    ASSERT_FALSE(text.empty()) << (GetLastProblems().empty() ? "" : ToString(GetLastProblems().front()));
    EXPECT_EQ(CountStartTags(text), stats.elements);
    EXPECT_EQ(SaveCity(shape), text);
    // The file is what SaveToString gives, whatever was generated before in the process.
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / "orvia_generator_test_city.xml";
    ASSERT_TRUE(OrviaBench::GenerateCityNetwork(path.string(), shape));
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), text);
    std::filesystem::remove(path);
    shape.seed = 4;  // only the seed changes: the counts below stay those of the grid
    EXPECT_NE(SaveCity(shape), text);

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

    size_t tracks = 0;
    for (size_t s = 0; s < n; ++s) {
        const SubNetworkElement& sub = *network->GetSubNetworks()[s];
        EXPECT_EQ(sub.GetIntersections().size(), g * g);
        const size_t ends = (s > 0 ? g : 0) + (s + 1 < n ? g : 0);
        EXPECT_EQ(sub.GetTracks().size(), 2 * g * (g - 1) + ends);
        tracks += sub.GetTracks().size();
        // The last portion ends with the track.
        for (const auto& track : sub.GetTracks())
            EXPECT_EQ(track->GetPortions().back()->GetEndDistance(), shape.spacingM);
    }
    EXPECT_EQ(tracks, stats.tracks);
    // A city this size has some of everything, clipped data (which no data class declares) included: the
    // second save below shows they come back kept.
    EXPECT_GT(stats.trackClippedData, 0u);
    EXPECT_GT(stats.lightAnimations, 0u);

    // What was generated is what a load keeps: saving the loaded tree gives the same bytes.
    EXPECT_EQ(SaveToString(root.Get()), text);
}
