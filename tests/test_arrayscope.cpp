#include "arrays.h"
#include "arrayscope.h"
#include "stops.h"
#include "testsupport.h"

TEST(arrayscope, freesonthewayoutofastop)
{
    array1<int64> made, held;
    const outcome result = runbody([&] {
        arrayscope arrays;
        arrays.make(made, 3, 7);
        arrays.hold(held);
        held.allocate(2);
        EXPECT_EQ(made(3), 7);
        stopwithcode(5);
    });
    EXPECT_EQ(result.code(), 5);
    EXPECT_FALSE(made.allocated() || held.allocated());
}
