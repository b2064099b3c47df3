#include "founders/mutationslots.h"
#include "openstate.h"
#include "testsupport.h"
#include "textlayout.h"

using mutationslots = infolder;

// A mutation lies halfway between its left neighbour and the next simulated site, at the ends of
// the map on the outermost slots.
TEST_F(mutationslots, betweenneighbours)
{
    writefile(chromfolder(1) + "PhysicalMapInput.txt", "0.25 0.5 0.75\n");
    writefile(chromfolder(1) + "SegSites.txt", " 3\n");
    writefile(chromfolder(1) + "MacsHaplotypes.txt", " 0 1 0\n");
    for (int64 seed = 1; seed <= 40; ++seed) {
        openstate s;
        s.founders.nchrom = 1;
        s.founders.ndenovomutperchr = 5;
        s.random.idum = -seed;
        s.sites.nsegregtmp = 3;
        s.sites.nmut = 5;
        s.sites.nsegreg = 8;
        arrayscope arrays;
        insertmutations(s, 1, arrays);
        const array1<double> &map = s.sites.allphysicalmap;
        const auto simulated = [&](int64 slot) { return s.sites.mutindicator(slot) == 0; };
        int64 nsimulated = 0;
        for (int64 slot = 1; slot <= 8; ++slot) {
            int64 right = slot + 1;
            while (right <= 8 && !simulated(right)) ++right;
            const double there = right <= 8 ? map(right) : 1;
            if (simulated(slot))
                EXPECT_EQ(map(slot), 0.25 * static_cast<double>(++nsimulated));
            else
                EXPECT_EQ(map(slot), slot == 1 ? 0 : slot == 8 ? 1 : (map(slot - 1) + there) / 2);
        }
        EXPECT_EQ(nsimulated, 3);
    }
}
