#include <orvia/topology/intersection.h>
#include <orvia/topology/link.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Orvia::LaneOnIntersectionData;
using Orvia::Link;
using Orvia::LinkTrajectory;
using Ruvex::CountedPtr;

namespace {

LaneOnIntersectionData End(const std::string& track, bool atEnd, const std::string& lane) {
    return LaneOnIntersectionData(track, atEnd, lane, LaneOnIntersectionData::kNoSubNetwork);
}

// Positions of the returned trajectories among the link's own, so answers read as pair indexes.
std::vector<size_t> Positions(const Link& link, const std::vector<LinkTrajectory*>& found) {
    std::vector<size_t> out;
    for (LinkTrajectory* t : found)
        for (size_t i = 0; i < link.getLanePairCount(); ++i)
            if (link.getLinkTrajectory(i) == t) out.push_back(i);
    return out;
}

}  // namespace

TEST(Link, PairEditingAndTrajectoryFilter) {
    CountedPtr<Link> link(new Link);
    link->setIsDegenerated(true);
    link->addLanePair(End("A", true, "l1"), End("B", false, "l2"), true);   // 0
    link->addLanePair(End("A", true, "l2"), End("C", false, "l1"), true);   // 1
    link->addLanePair(End("B", false, "l1"), End("A", false, "l1"), true);  // 2
    CountedPtr<Orvia::LanePair> bare(new Orvia::LanePair);
    bare->SetFrom(End("A", true, "l1"));
    bare->SetTo(End("B", false, "l2"));
    link->addLanePairElement(bare.Get());  // 3, no trajectory
    link->addLanePairElement(nullptr);
    ASSERT_EQ(link->getLanePairCount(), 4u);
    EXPECT_TRUE(link->getLinkTrajectory(0)->IsDegenerated());
    EXPECT_EQ(link->getLinkTrajectory(3), nullptr);

    std::vector<LinkTrajectory*> found;
    std::vector<size_t> indexes;
    using V = std::vector<size_t>;
    link->getLinkTrajectories("", "", "", "", found);
    EXPECT_EQ(Positions(*link, found), (V{0, 1, 2}));
    link->getLinkPairsIndexes("", "", "", "", indexes);
    EXPECT_EQ(indexes, (V{0, 1, 2, 3}));
    link->getLinkTrajectories("A", "l1", "", "", found);
    EXPECT_EQ(Positions(*link, found), (V{0}));
    link->getLinkPairsIndexes("A", "l1", "", "", indexes);
    EXPECT_EQ(indexes, (V{0, 3}));
    link->getLinkTrajectories("A", "", "", "", found);  // a named track needs a lane
    EXPECT_TRUE(found.empty());
    link->getLinkTrajectories("", "l9", "B", "l2", found);  // no track: the lane given is ignored
    EXPECT_EQ(Positions(*link, found), (V{0}));
    link->getLinkTrajectories("A", "l1", "C", "l1", found);
    EXPECT_TRUE(found.empty());

    link->getLinkTrajectories("", "", Link::kTrackStart, "", "", Link::kAnyExtremity, found);
    EXPECT_EQ(Positions(*link, found), (V{2}));
    link->getLinkTrajectories("", "", Link::kTrackEnd, "", "", Link::kTrackStart, found);
    EXPECT_EQ(Positions(*link, found), (V{0, 1}));
    link->getLinkTrajectories("A", "l1", Link::kTrackStart, "", "", Link::kAnyExtremity, found);
    EXPECT_TRUE(found.empty());
    link->getLinkTrajectories("", "", 7, "", "", Link::kAnyExtremity, found);
    EXPECT_TRUE(found.empty());

    // Removing a pair takes its trajectory along; the others keep theirs.
    LinkTrajectory* second = link->getLinkTrajectory(1);
    EXPECT_FALSE(link->removeLanePair(4));
    EXPECT_TRUE(link->removeLanePair(0));
    ASSERT_EQ(link->getLanePairCount(), 3u);
    EXPECT_EQ(link->getLinkTrajectory(0), second);
    link->getLinkTrajectories("A", "l1", "", "", found);
    EXPECT_TRUE(found.empty());
    link->getLinkPairsIndexes("A", "l1", "", "", indexes);
    EXPECT_EQ(indexes, (V{2}));

    // A copied pair gets a trajectory from its own fields.
    Orvia::LanePair* copy = link->addLanePair(bare.Get(), true);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, bare.Get());
    EXPECT_EQ(link->getLinkTrajectory(3)->GetFrom(), End("A", true, "l1"));
    EXPECT_EQ(link->getLinkTrajectory(3)->GetTo(), End("B", false, "l2"));
    EXPECT_EQ(link->addLanePair(nullptr, true), nullptr);
    link->getLinkTrajectories("A", "l1", Link::kTrackEnd, "B", "l2", Link::kTrackStart, found);
    EXPECT_EQ(Positions(*link, found), (V{3}));
}
