#include "Brenvask/brenvask.h"

#include "Brenvask/allelefrequencies.h"
#include "Brenvask/genotypefile.h"
#include "Brenvask/relationshipfile.h"
#include "Brenvask/relationships.h"
#include "evaluationhelpers/progress.h"
#include "words.h"

namespace
{
void reportgenotypes(const genotypefile &genotypes)
{
    note(genotypes.name + ": " + numbertext(genotypes.store.nindiv) + " individuals, " +
         numbertext(genotypes.store.nsnp) + " loci, " +
         numbertext(static_cast<int64>(genotypes.store.missing.size())) + " missing genotypes");
}
} // namespace

void brenvask()
{
    note("Brenvask: genomic relationships");
    removerelationships();
    const brenvaskspec spec = readbrenvaskspec("BrenvaskSpec.txt");
    const std::string filename = choosegenotypefile(spec);
    genotypefile genotypes;
    {
        const step reading("Reading " + filename);
        genotypes = readgenotypefile(filename, spec.numberofsnp);
    }
    reportgenotypes(genotypes);
    const basefrequencies base = choosefrequencies(spec, genotypes);
    relationships g;
    {
        const step computing("Computing the relationships");
        g = computerelationships(genotypes.store, base.freq, base.source, spec.diagonalfudgefactor);
    }
    note("Sum of 2p(1-p): " + shortnumber(g.scale));
    storefrequencies(genotypes);
    {
        const step writing("Writing the relationships");
        writerelationships(genotypes.indiv, g);
    }
    note("Brenvask has ended normally");
}
