#include "evaluation/selectionchip.h"

#include "allelerows.h"
#include "cyclefolder.h"
#include "markers/sitesets.h"
#include "textlayout.h"

#include <algorithm>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{
// The next n alleles of both phases of an individual, from place at (from 0) on.
void readphases(infile &in, int64 individ, array2<int8> &phases, int64 at, int64 n)
{
    for (int64 m = 1; m <= 2; ++m) readallelerow(in, individ, phases.column(m) + at, n, 1);
}

void readindividual(const state &s, generationphases &phases, int64 individ)
{
    int64 at = 0;
    for (std::size_t h = 0; h < phases.chip.size(); ++h) {
        const int64 n = s.loci.nsnponthischipchrom(s.chips.tmpchip, static_cast<int64>(h) + 1);
        readphases(phases.chip[h], individ, phases.snpalleles, at, n);
        at += n;
    }
    at = 0;
    for (std::size_t h = 0; h < phases.qtn.size(); ++h) {
        const int64 n = s.loci.nqtnonthischrom(static_cast<int64>(h) + 1);
        readphases(phases.qtn[h], individ, phases.qtnalleles, at, n);
        at += n;
    }
}

int64 nloci(const state &s)
{
    return s.loci.nsnp + (areqtnadded(s) ? s.loci.ntotqtn : 0);
}

void addalleles(const int8 *a, const int8 *b, int8 *sums, int64 n)
{
    int64 j = 0;
#ifdef __SSE2__
    for (; j + 16 <= n; j += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(sums + j),
                         _mm_add_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(a + j)),
                                      _mm_loadu_si128(reinterpret_cast<const __m128i *>(b + j))));
#endif
    for (; j < n; ++j) sums[j] = static_cast<int8>(a[j] + b[j]);
}

// Genotypes of n loci, put together in pieces that stay in the cache.
char *putgenotypes(char *to, const array2<int8> &phases, int64 n)
{
    int8 genotypes[1024];
    const int8 *a = phases.column(1), *b = phases.column(2);
    for (int64 at = 0; at < n; at += 1024) {
        const int64 piece = std::min<int64>(1024, n - at);
        addalleles(a + at, b + at, genotypes, piece);
        to = putalleles(to, genotypes, piece);
    }
    return to;
}

void writegenotyperecord(const state &s, outfile &out, const generationphases &phases,
                         int64 individ)
{
    char *p = beginallelerows(out, individ, nloci(s));
    p = putgenotypes(p, phases.snpalleles, s.loci.nsnp);
    if (areqtnadded(s)) putgenotypes(p, phases.qtnalleles, s.loci.ntotqtn);
    endallelerows(out, nloci(s));
}

void writephaserecord(const state &s, outfile &out, const generationphases &phases, int64 individ,
                      int64 m)
{
    char *p = beginallelerows(out, individ, nloci(s));
    p = putalleles(p, phases.snpalleles.column(m), s.loci.nsnp);
    if (areqtnadded(s)) putalleles(p, phases.qtnalleles.column(m), s.loci.ntotqtn);
    endallelerows(out, nloci(s));
}

void countalleles(const array2<int8> &phases, int64 *counts, int64 n)
{
    const int8 *a = phases.column(1), *b = phases.column(2);
    for (int64 j = 0; j < n; ++j) counts[j] += a[j] + b[j];
}

// Under genomic prediction only individuals with a phenotype train.
void writetrainingindividual(state &s, selectionchipfiles &files, const generationphases &phases,
                             int64 individ)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    const bool genomic = sel.selmethindicator == 2;
    if (genomic && cycle.phenvaltrain(individ - cycle.starttrainindiv + 1) == -99) return;
    writegenotyperecord(s, files.genotypetrain, phases, individ);
    writephaserecord(s, files.phasetrain, phases, individ, 1);
    writephaserecord(s, files.phasetrain, phases, individ, 2);
    if (!genomic) return;
    countalleles(phases.snpalleles, cycle.fixedsnp.data(), s.loci.nsnp);
    if (areqtnadded(s))
        countalleles(phases.qtnalleles, cycle.fixedsnp.data() + s.loci.nsnp, s.loci.ntotqtn);
}

void rewind(generationphases &phases)
{
    for (std::vector<infile> *files : {&phases.chip, &phases.qtn})
        for (infile &in : *files) {
            in.stopifmore();
            in.rewind();
        }
}

std::string chipname(const state &s)
{
    return "TmpChip" + numbertext(s.chips.tmpchip);
}
} // namespace

std::string traininggenotypes(const state &s)
{
    return chipname(s) + "GenotypeTrain.txt";
}

std::string trainingphases(const state &s)
{
    return chipname(s) + "PhaseTrain.txt";
}

std::string testgenotypes(const state &s)
{
    return chipname(s) + "GenotypeTest.txt";
}

std::string scaledgenotypes(const state &s, int64 runid)
{
    return chipname(s) + (runid == 2 ? "GenotypeTestScaledRecomb.txt" : "GenotypeTestScaled.txt");
}

std::string lastgenotypes(const state &s)
{
    return chipname(s) + "GenotypeLastGeneration.txt";
}

selectionchipfiles openchipfiles(const state &s, int64 selectioncycle)
{
    const std::string folder = cyclefolder(selectioncycle);
    selectionchipfiles files;
    if (s.selection.selontbvyes1no0 == 0) {
        files.genotypetrain.open(folder + traininggenotypes(s));
        files.phasetrain.open(folder + trainingphases(s));
    }
    files.genotypetest.open(folder + testgenotypes(s));
    return files;
}

void closechipfiles(selectionchipfiles &files)
{
    for (outfile *file : {&files.genotypetrain, &files.phasetrain, &files.genotypetest})
        file->close();
}

generationphases openphases(const state &s, int64 gen)
{
    generationphases phases;
    phases.snpalleles.allocate(s.loci.nsnp, 2);
    if (areqtnadded(s)) phases.qtnalleles.allocate(s.loci.ntotqtn, 2);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        phases.chip.emplace_back(phasefile(h, siteset(s.chips.tmpchip), gen), author::system);
        if (areqtnadded(s))
            phases.qtn.emplace_back(phasefile(h, setofselection(s), gen), author::system);
    }
    return phases;
}

void writetrainingchip(state &s, selectionchipfiles &files, generationphases &phases,
                       int64 startindiv, int64 endindiv)
{
    for (int64 i = startindiv; i <= endindiv; ++i) {
        readindividual(s, phases, i);
        writetrainingindividual(s, files, phases, i);
    }
    rewind(phases);
}

void writetestchip(state &s, selectionchipfiles &files, generationphases &phases, int64 startindiv,
                   int64 endindiv)
{
    for (int64 i = startindiv; i <= endindiv; ++i) {
        readindividual(s, phases, i);
        if (i >= s.cycle.starttestindiv && i <= s.cycle.endtestindiv)
            writegenotyperecord(s, files.genotypetest, phases, i);
    }
    rewind(phases);
}
