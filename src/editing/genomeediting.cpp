#include "editing/genomeediting.h"

#include "allelerows.h"
#include "cyclefolder.h"
#include "editing/edittargets.h"
#include "editing/genedrive.h"
#include "files.h"
#include "markers/sitesets.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

int64 editableparents(const state &s, int64 parentgen)
{
    const int64 nselfed = s.pop.nselfedparinthisgen(parentgen);
    return nselfed > 0 ? nselfed : s.pop.nsireinthisgen(parentgen);
}

void checkeditednumber(const state &s, int64 parentgen)
{
    const bool selfed = s.pop.nselfedparinthisgen(parentgen) > 0;
    if (s.editing.nindedited <= editableparents(s, parentgen)) return;
    printline(selfed ? "ERROR: Number of plants to be edited is greater than the number of selfed "
                       "parents"
                     : "ERROR: Number of sires/male parents to be edited is greater than the "
                       "number of sires/male parents");
    stopwithcode(selfed ? 110010 : 110011);
}

array1<int64> readqtnforge(const state &s)
{
    array1<int64> qtnforgeindic(s.loci.ntotqtn, 1);
    if (!s.editing.userqtnonoff) return qtnforgeindic;
    infile in("UserSelectedQtnToBeEdited.txt");
    in.record();
    for (int64 &indicator : qtnforgeindic) indicator = in.integer();
    return qtnforgeindic;
}

namespace
{
outfile openinformation(int64 selectioncycle)
{
    outfile out(cyclefolder(selectioncycle) + "GeneEditingInformation.txt");
    textline line;
    puta(line, "    IdOfGenEditIndiv         GlobalQtnId   ObservedQtnGenotype   AimedQtnGenotype",
         81);
    out.writeline(line);
    return out;
}

// QTN genotypes of the parents to be edited alone.
struct parentgenotypes {
    array1<int64> columnof; // (ntestindiv) 0 for a candidate that isn't edited
    array2<int8> genotypes; // (ntotqtn, columns)
};

parentgenotypes readgenotypes(const state &s, int64 parentgen)
{
    parentgenotypes parents;
    parents.columnof.allocate(s.cycle.ntestindiv);
    int64 ncolumns = 0;
    for (int64 k = 1; k <= s.editing.nindedited; ++k) {
        const int64 place = s.edits.indivtobeedited(k);
        if (place > 0 && parents.columnof(place) == 0) parents.columnof(place) = ++ncolumns;
    }
    parents.genotypes.allocate(s.loci.ntotqtn, ncolumns);
    int64 before = 0; // QTN on the chromosomes before
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        const int64 n = s.loci.nqtnonthischrom(h);
        infile in(genotypefile(h, setofselection(s), parentgen), author::system);
        int64 id = firstindivofgen(s, parentgen) - 1;
        for (const int64 column : parents.columnof) {
            ++id;
            if (column == 0)
                in.record();
            else
                readallelerow(in, id, parents.genotypes.column(column) + before, n, 2);
        }
        in.stopifmore();
        before += n;
    }
    return parents;
}

void recordedit(state &s, outfile &out, int64 k, int64 nedits, int64 listed, int64 genotype)
{
    const editingsettings &edit = s.editing;
    editdata &edits = s.edits;
    const int64 individ = edits.idofgenomeeditinds(k);
    const int64 qtn = edits.qtnidsortedbyabsvalrecodedid(listed);
    const int64 favallele = edits.qtnforgeneditposneg(listed);
    edits.genomeeditqtnpos(k, nedits) = edits.qtnidsortedbyabsval(listed);
    edits.genomeeditqtnchrom(k, nedits) = edits.qtnidsortedbyabsvalchrom(listed);
    edits.genomeeditqtnposneg(k, nedits) = favallele;
    textline line;
    for (int64 value : {individ, qtn, genotype}) puti(line, value, 20);
    puta(line, favallele == 1 ? "2" : "0", 10);
    out.writeline(line);
    if (edit.genedriveonoff) setdriveflags(s, individ, qtn);
}

// The first QTN of the list at which parent k lacks the favourable allele.
void editparent(state &s, outfile &out, int64 k, const int8 *genotypes,
                const array1<int64> &qtnforgeindic)
{
    const editingsettings &edit = s.editing;
    const editdata &edits = s.edits;
    int64 nedits = 0;
    for (int64 q = 1; q <= s.loci.ntotqtn && nedits < edit.ngeneditsperind; ++q) {
        const int64 qtn = edits.qtnidsortedbyabsvalrecodedid(q);
        if (qtnforgeindic(qtn) != 1 ||
            edits.qtnidsortedbyabsvalmutindivid(q) >= s.cycle.starttestindiv)
            continue;
        const int64 genotype = genotypes[qtn - 1];
        if (genotype == 2 * edits.qtnforgeneditposneg(q)) continue;
        recordedit(s, out, k, ++nedits, q, genotype);
    }
}
} // namespace

void editgenome(state &s, int64 selectioncycle, int64 currentgen)
{
    const editingsettings &edit = s.editing;
    editdata &edits = s.edits;
    const cycledata &cycle = s.cycle;
    checkeditednumber(s, currentgen - 1);
    outfile out = openinformation(selectioncycle);
    readeditlist(s, selectioncycle, currentgen);
    const array1<int64> qtnforgeindic = readqtnforge(s);
    if (edit.ngeneditsperind > 0 && edit.nindedited > 0) {
        const parentgenotypes parents = readgenotypes(s, currentgen - 1);
        for (int64 k = 1; k <= edit.nindedited; ++k) {
            const int64 place = edits.indivtobeedited(k);
            if (place == 0) continue; // fewer parents were chosen than may be edited
            edits.idofgenomeeditinds(k) = cycle.endtestindiv + place - cycle.ntestindiv;
            editparent(s, out, k, parents.genotypes.column(parents.columnof(place)), qtnforgeindic);
        }
    }
    out.close();
}
