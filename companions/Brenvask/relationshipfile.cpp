#include "Brenvask/relationshipfile.h"

#include "files.h"

#include <cmath>
#include <cstdio>

namespace
{
constexpr const char *filename = "GFullMatrix1-1.txt";
}

void writerelationships(const array1<int64> &indiv, const relationships &g)
{
    outfile out(filename);
    textline line;
    for (int64 i = 1; i <= g.n; ++i) {
        puti(line, indiv(i), 20);
        for (int64 k = 1; k <= g.n; ++k) {
            const double value = relationship(g, k, i); // symmetric to the last bit
            if (std::fabs(value) < 1e7)
                putf(line, value, 20, 10);
            else
                putfree(line, value);
        }
        out.writeline(line);
    }
    out.close();
}

void removerelationships()
{
    std::remove(filename); // mostly there is none
}
