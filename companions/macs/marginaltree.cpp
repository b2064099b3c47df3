#include "macs/marginaltree.h"

#include <algorithm>
#include <bit>

namespace macs
{
void sumtree::reset(std::size_t nentries)
{
    nleaves = std::bit_ceil(nentries);
    sums.assign(2 * nleaves, 0.0);
}

void sumtree::set(std::size_t entry, double value)
{
    std::size_t at = nleaves + entry;
    sums[at] = value;
    for (at /= 2; at >= 1; at /= 2) sums[at] = sums[2 * at] + sums[2 * at + 1];
}

std::size_t sumtree::find(double &value) const
{
    std::size_t at = 1;
    while (at < nleaves) {
        at *= 2;
        if (value >= sums[at]) value -= sums[at++];
    }
    return at - nleaves;
}

namespace
{
void setlength(marginaltree &tree, nodeid node)
{
    const nodeid above = tree.parent[node];
    // Rounding at the border of two sizes may put a parent an ulp below its child.
    const double length = above == nonode ? 0 : std::max(0.0, tree.time[above] - tree.time[node]);
    tree.lengths.set(static_cast<std::size_t>(node), length);
}

void replacechild(marginaltree &tree, nodeid above, nodeid was, nodeid is)
{
    if (above == nonode)
        tree.root = is;
    else
        tree.child[tree.child[1][above] == was][above] = is;
    tree.parent[is] = above;
}

// Where a freed lineage coalesces: tau, and how many coalescences of the tree lie before.
struct joining {
    double tau = 0;
    std::size_t nearlier = 0;
};

joining drawjoining(const marginaltree &tree, double tau, randomstream &random)
{
    const std::vector<double> &taus = tree.coalescetau;
    std::size_t i =
        static_cast<std::size_t>(std::upper_bound(taus.begin(), taus.end(), tau) - taus.begin());
    double left = random.exponential();
    for (; i < taus.size(); ++i) {
        const double nlineages = static_cast<double>(taus.size() + 1 - i);
        const double hazard = nlineages * (taus[i] - tau);
        if (left < hazard) return {tau + left / nlineages, i};
        left -= hazard;
        tau = taus[i];
    }
    return {tau + left, i}; // above the root a single lineage is left
}

// One of the lineages that live at the joining, all with the same chance. Each is the
// branch below one of the later coalescences: of the two branches below each of k-1 coalescences, k
// reach down to the joining, so that at least half of the tries succeed.
nodeid drawlineage(const marginaltree &tree, const joining &at, randomstream &random)
{
    const std::size_t nlater = tree.coalescenode.size() - at.nearlier;
    if (nlater == 0) return tree.root;
    for (;;) {
        const auto pick = static_cast<std::size_t>(random.below(static_cast<int64>(2 * nlater)));
        const nodeid above = tree.coalescenode[at.nearlier + pick / 2];
        const nodeid node = tree.child[pick % 2][above];
        if (tree.tau[node] <= at.tau) return node;
    }
}

// Moves a coalescence to its new place in the order.
void reorder(marginaltree &tree, nodeid node, const joining &to)
{
    auto &taus = tree.coalescetau;
    auto &nodes = tree.coalescenode;
    auto from = std::lower_bound(taus.begin(), taus.end(), tree.tau[node]) - taus.begin();
    while (nodes[static_cast<std::size_t>(from)] != node) ++from; // equal taus
    auto place = static_cast<std::ptrdiff_t>(to.nearlier);
    if (from < place) {
        std::move(taus.begin() + from + 1, taus.begin() + place, taus.begin() + from);
        std::move(nodes.begin() + from + 1, nodes.begin() + place, nodes.begin() + from);
        --place;
    } else {
        std::move_backward(taus.begin() + place, taus.begin() + from, taus.begin() + from + 1);
        std::move_backward(nodes.begin() + place, nodes.begin() + from, nodes.begin() + from + 1);
    }
    taus[static_cast<std::size_t>(place)] = to.tau;
    nodes[static_cast<std::size_t>(place)] = node;
}

// Takes the branch above a node, with the coalescence at its end, to a joining on another branch.
void movebranch(marginaltree &tree, const sizehistory &history, nodeid node, nodeid target,
                const joining &at)
{
    const nodeid joint = tree.parent[node];
    const nodeid sibling = tree.child[tree.child[0][joint] == node][joint];
    // On the sibling's branch or on the joint's own only the time changes.
    if (target != sibling && target != joint) {
        replacechild(tree, tree.parent[joint], joint, sibling);
        replacechild(tree, tree.parent[target], target, joint);
        replacechild(tree, joint, sibling, target);
    }
    reorder(tree, joint, at);
    tree.tau[joint] = at.tau;
    tree.time[joint] = history.timeattau(at.tau);
    setlength(tree, node);
    setlength(tree, sibling);
    setlength(tree, joint);
    if (target != sibling && target != joint) setlength(tree, target);
}
} // namespace

void buildtree(marginaltree &tree, nodeid nhaplotypes, const sizehistory &history,
               randomstream &random)
{
    const auto n = static_cast<std::size_t>(nhaplotypes);
    tree.nhaplotypes = nhaplotypes;
    tree.parent.assign(2 * n - 1, nonode);
    for (auto &side : tree.child) side.assign(2 * n - 1, nonode);
    tree.tau.assign(2 * n - 1, 0.0);
    tree.time.assign(2 * n - 1, 0.0);
    tree.coalescetau.clear();
    tree.coalescenode.clear();

    std::vector<nodeid> lineages(n);
    for (std::size_t i = 0; i < n; ++i) lineages[i] = static_cast<nodeid>(i);
    double tau = 0;
    for (nodeid made = nhaplotypes; lineages.size() > 1; ++made) {
        const double k = static_cast<double>(lineages.size());
        tau += random.exponential() / (k * (k - 1) / 2);
        for (auto &side : tree.child) {
            const nodeid pick = random.below(static_cast<int64>(lineages.size()));
            side[made] = lineages[pick];
            tree.parent[side[made]] = made;
            lineages[pick] = lineages.back();
            lineages.pop_back();
        }
        lineages.push_back(made);
        tree.tau[made] = tau;
        tree.time[made] = history.timeattau(tau);
        tree.coalescetau.push_back(tau);
        tree.coalescenode.push_back(made);
    }
    tree.root = lineages.front();
    tree.lengths.reset(2 * n - 1);
    for (nodeid i = 0; i < 2 * nhaplotypes - 1; ++i) setlength(tree, i);
}

treepoint drawpoint(const marginaltree &tree, randomstream &random)
{
    for (;;) {
        double along = random.uniform() * tree.lengths.total();
        const std::size_t branch = tree.lengths.find(along);
        if (along < tree.lengths.get(branch))
            return {static_cast<nodeid>(branch), tree.time[branch] + along};
    }
}

bool recombine(marginaltree &tree, const sizehistory &history, randomstream &random)
{
    const treepoint from = drawpoint(tree, random);
    const double tau = std::clamp(history.tauattime(from.time), tree.tau[from.node],
                                  tree.tau[tree.parent[from.node]]);
    const joining at = drawjoining(tree, tau, random);
    const nodeid target = drawlineage(tree, at, random);
    if (target == from.node) return false;
    movebranch(tree, history, from.node, target, at);
    return true;
}

void markdescendants(const marginaltree &tree, nodeid node, char *alleles,
                     std::vector<nodeid> &stack)
{
    stack.clear();
    for (;;) {
        while (node >= tree.nhaplotypes) {
            stack.push_back(tree.child[1][node]);
            node = tree.child[0][node];
        }
        alleles[node] = '1';
        if (stack.empty()) return;
        node = stack.back();
        stack.pop_back();
    }
}
} // namespace macs
