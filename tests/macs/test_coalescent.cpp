// The coalescent itself: its trees stay whole.
#include "macs/simulate.h"

#include "testsupport.h"

#include <algorithm>
#include <set>

using namespace macs;

namespace
{
int64 ndescendants(const marginaltree &tree, nodeid node)
{
    std::string alleles(static_cast<std::size_t>(tree.nhaplotypes), '0');
    std::vector<nodeid> stack;
    markdescendants(tree, node, alleles.data(), stack);
    return std::count(alleles.begin(), alleles.end(), '1');
}

// Everything that is kept twice agrees, and all haplotypes hang on the root.
void checktree(const marginaltree &tree)
{
    const nodeid n = tree.nhaplotypes;
    double total = 0;
    for (nodeid i = 0; i < 2 * n - 1; ++i) {
        const nodeid above = tree.parent[i];
        ASSERT_EQ(above == nonode, i == tree.root);
        const double length = tree.lengths.get(static_cast<std::size_t>(i));
        if (above == nonode) {
            ASSERT_EQ(length, 0);
            continue;
        }
        ASSERT_TRUE((tree.child[0][above] == i) != (tree.child[1][above] == i));
        ASSERT_LE(tree.tau[i], tree.tau[above]);
        ASSERT_EQ(length, std::max(0.0, tree.time[above] - tree.time[i]));
        total += length;
    }
    ASSERT_NEAR(totallength(tree), total, 1e-12 * total);
    ASSERT_TRUE(std::is_sorted(tree.coalescetau.begin(), tree.coalescetau.end()));
    std::set<nodeid> nodes(tree.coalescenode.begin(), tree.coalescenode.end());
    ASSERT_EQ(nodes.size(), static_cast<std::size_t>(n - 1));
    for (std::size_t i = 0; i < nodes.size(); ++i)
        ASSERT_EQ(tree.tau[tree.coalescenode[i]], tree.coalescetau[i]);
    ASSERT_EQ(ndescendants(tree, tree.root), n);
}

} // namespace

TEST(macscoalescent, treestayswhole)
{
    const sizehistory history({{0.05, 3}, {0.2, 0.1}, {1, 20}});
    randomstream random(3);
    for (const nodeid n : {2, 3, 5, 60}) {
        marginaltree tree;
        buildtree(tree, n, history, random);
        int64 nchanges = 0;
        for (int i = 0; i < 3000; ++i) {
            nchanges += recombine(tree, history, random);
            ASSERT_NO_FATAL_FAILURE(checktree(tree)) << n << " haplotypes, recombination " << i;
        }
        EXPECT_GT(nchanges, 1000);
        EXPECT_LT(nchanges, 3000);
    }
}
